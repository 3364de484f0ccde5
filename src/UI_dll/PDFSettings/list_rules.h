// The rules of the list of print settings: how rows look and sort, which one is selected, which name is free.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "common/rwPDFSet_functions.h"

namespace pdf_settings {

// One setting file. The kind tells whose it is, and is the first key of the order.
struct SettingEntry {
    static constexpr int32_t kOwn = SettingFolder::kUser;  // may be edited and deleted
    static constexpr int32_t kCustom = SettingFolder::kAdministrator;
    static constexpr int32_t kInstalled = SettingFolder::kInstallation;

    int32_t kind = kOwn;
    std::wstring path;        // full
    std::wstring name;        // as the file holds it, else the file's own
    bool is_readable = true;  // else it is not written over: editing makes a copy
};

// Row texts are cut to this many units, names that a copy is made of to the other.
inline constexpr size_t kRowUnits = 120;
inline constexpr size_t kNameUnits = 110;

// The position of the row's icon in the small image list, or -2 (I_IMAGENONE).
[[nodiscard]] int row_image(int32_t kind) noexcept;

// By kind, then by name, comparing UTF-16 units.
[[nodiscard]] bool sorts_before(const SettingEntry& a, const SettingEntry& b) noexcept;

// The last row of that path, case aside; 0 when there is none.
[[nodiscard]] size_t row_to_select(std::span<const SettingEntry> rows, std::wstring path);

// The row to select after row `removed` went and `left` rows stay.
[[nodiscard]] int row_after_removal(int removed, int left) noexcept;

// A name without the number in brackets, "(12)", that it ends with.
[[nodiscard]] std::wstring_view base_name(std::wstring_view name) noexcept;

// The base name, or the first of "name(1)", "name(2)", ... that is not taken.
[[nodiscard]] std::wstring free_name(std::wstring_view base,
                                     const std::function<bool(const std::wstring&)>& is_taken);

// A setting's name as the name of a file, without extension: what a file name may not hold becomes "_", and
// device names, blanks and dots at its end are made harmless. Never empty.
[[nodiscard]] std::wstring file_name_of(std::wstring_view name);

}  // namespace pdf_settings
