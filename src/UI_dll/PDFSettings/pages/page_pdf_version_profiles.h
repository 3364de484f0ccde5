// The list of colour profiles on the PDF version page, and profiles that are looked up by their files. Texts
// are UTF-16; a profile goes by its description.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

namespace pdf_settings {

// The selected description; empty: none.
[[nodiscard]] std::wstring selected_profile(HWND page);

// Adds the description at the end of the list, be it there or not.
void add_profile(HWND page, std::wstring description);

[[nodiscard]] bool has_profile(HWND page, const std::wstring& description);

// Selects the first item with the description. False without one; the selection then stays.
bool select_profile(HWND page, const std::wstring& description);

// Opens the list as wide as it and the button beside it are.
void widen_profiles(HWND page);

// Whether the version takes the profile in that file.
[[nodiscard]] bool is_fitting_profile(uint32_t version, const std::wstring& path);

// Asks for a profile's file; the dialog starts at the profile that a setting calls `current`. Nothing when it
// is cancelled or cannot be shown.
[[nodiscard]] std::optional<std::wstring> choose_profile(HWND page, const std::wstring& current);

// What a setting calls that file: one of the profile folder goes by its name alone.
[[nodiscard]] std::wstring stored_profile_name(const std::wstring& path);

}  // namespace pdf_settings
