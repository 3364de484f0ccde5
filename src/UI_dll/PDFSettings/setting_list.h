// The setting files that a user may choose from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "UI_dll/PDFSettings/dialog_state.h"
#include "UI_dll/PDFSettings/list_rules.h"

namespace pdf_settings {

// Every setting file of the user's folder, then of "CustomSettings\", "Settings\" and "Settings\legacy\" of
// the installation; in each folder by kind of file. Older settings are brought in first. A file whose name
// cannot be read is listed under its file name, one of those that come with the product under the name that
// the dialog's language has for it.
[[nodiscard]] std::vector<SettingEntry> ListUpPSFiles();

// The most UTF-16 units of a setting's name that can be typed.
inline constexpr size_t kMostNameUnits = 100;

// The name under which the list shows the file; one that cannot be read goes by its file's.
[[nodiscard]] std::wstring shown_setting_name(const std::wstring& path);

// Whether a listed file other than `ignored` (a path, or empty) holds a setting of exactly that name.
[[nodiscard]] bool is_name_taken(const std::wstring& name, const std::wstring& ignored);

// The name, or the first of "name(1)", "name(2)", ... that no listed file holds. Every file is read once.
[[nodiscard]] std::wstring free_setting_name(const std::wstring& base);

// Writes the setting as a new file of the user's folder, named after it. No folder that is searched for
// settings has a file of that name yet: a job would find that one. The file's path; empty, with the last
// error, when it could not be written, which leaves nothing behind.
[[nodiscard]] std::wstring create_setting_file(const Setting& setting);

// Copies the settings that an older version of the product left in the user's profile into the user's folder,
// once per user. A file that is there already stays; one that the installation has is brought in under
// another name.
void ImportOldCustomSettings();

// What tells whether the bytes of a file are still the same; nothing when it cannot be read.
[[nodiscard]] std::optional<uint64_t> file_mark(const std::wstring& path);

// Loads a file into the thread's edited setting and its saved copy. False, with standard values in both, when
// there is none or it cannot be read.
bool LoadSettingFile(const std::wstring& path);

}  // namespace pdf_settings
