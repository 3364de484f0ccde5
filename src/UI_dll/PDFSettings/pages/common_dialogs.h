// The system's dialogs for a file and a colour. Their library is loaded while one is open only: a program
// that prints shall not carry it.
#pragma once

#include <windows.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace pdf_settings {

// Asks for an existing file. `filter`: name and pattern in turn, each ending with a zero. `current` (a path
// or empty) is where the dialog starts. Nothing when it is cancelled or cannot be shown.
[[nodiscard]] std::optional<std::wstring> choose_file(HWND owner, const std::wstring& title,
                                                      const std::wstring& filter,
                                                      const std::wstring& current);

// What was chosen of existing files.
struct ChosenFiles {
    std::vector<std::wstring> paths;  // none when it was cancelled or could not be shown
    bool too_many = false;            // more than the dialog can tell; then there are no paths
};

// Asks for one existing file or several of a folder. `filter` as above.
[[nodiscard]] ChosenFiles choose_files(HWND owner, const std::wstring& title, const std::wstring& filter);

// Asks for the name of a new file. `extension`, without point, is added to a name that has none; `name` is
// proposed. Nothing as above.
[[nodiscard]] std::optional<std::wstring> choose_new_file(HWND owner, const std::wstring& title,
                                                          const std::wstring& filter,
                                                          const wchar_t* extension, const std::wstring& name);

// Asks for a colour. `custom` are the user's own colours, which the dialog changes.
[[nodiscard]] std::optional<COLORREF> choose_colour(HWND owner, COLORREF current,
                                                    std::array<COLORREF, 16>& custom);

}  // namespace pdf_settings
