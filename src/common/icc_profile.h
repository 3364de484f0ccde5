// Colour profiles for output intents: where they lie, what they describe, which condition they stand for.
#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace icc {

// The machine's profile folder with its trailing backslash; empty when the driver folder is not known.
[[nodiscard]] std::wstring profile_folder();

// The full path of the profile that a setting names: an existing path as it is, else its file name in the
// profile folder. Nothing when the name is empty or there is no such file.
[[nodiscard]] std::optional<std::wstring> find_profile(std::wstring_view stored_name);

// The description in a profile's 'desc' tag (text description or multi-localized Unicode), at most 260 units.
// Nothing when the bytes are not such a profile; every offset in them is checked.
[[nodiscard]] std::optional<std::wstring> find_description(std::span<const std::byte> profile);

// The same of a file; profiles above 64 MiB are not read.
[[nodiscard]] std::optional<std::wstring> find_description(const std::wstring& path);

}  // namespace icc

// The identifier of the printing condition that a profile's description stands for; "Custom" when it is not a
// known one, never empty.
[[nodiscard]] std::string icc_ConditionIdFromDesc(const std::wstring& description);
