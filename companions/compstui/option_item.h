// Rules of option items: what a caller may hand over, what a value reads as, what the user may do to it.
// Nothing here touches a window.
#pragma once

#include <span>
#include <string>

#include "companions/compstui/interface.h"

namespace compstui {

// Checks items, their types, parameters and extensions, for a group of `pages` pages. 0, or the ERR_CPSUI_*
// of the first that is wrong.
[[nodiscard]] LONG check_items(std::span<const OPTITEM> items, size_t pages) noexcept;

// How a value is shown and changed.
enum class ValueKind { none, radio, arrow, track, scroll, list, combo, edit, push, check };

[[nodiscard]] ValueKind kind_of(const OPTITEM& item) noexcept;
[[nodiscard]] bool is_number(ValueKind kind) noexcept;  // Sel is the value itself

[[nodiscard]] std::span<const OPTPARAM> parameters_of(const OPTITEM& item) noexcept;

struct Range {
    LONG low;
    LONG high;

    [[nodiscard]] bool holds(LONG value) const noexcept { return low <= value && value <= high; }
    [[nodiscard]] LONG nearest(LONG value) const noexcept {
        return value < low ? low : value > high ? high : value;
    }
};

// The values that a number may take, ends included, the smaller one first; 0 to 0 for other kinds.
[[nodiscard]] Range range_of(const OPTITEM& item) noexcept;

// Units of an edit box's buffer, its closing zero included.
[[nodiscard]] size_t edit_units(const OPTITEM& item) noexcept;

// The value in words; empty for an item without one. Numbers of texts mean `instance`'s strings.
[[nodiscard]] std::wstring value_text(const OPTITEM& item, HINSTANCE instance);

// What stands in the tree: "name: value", or the name alone.
[[nodiscard]] std::wstring item_text(const OPTITEM& item, HINSTANCE instance);

// Whether the user may change the item's value, given the sheet's permission.
[[nodiscard]] bool may_change(const OPTITEM& item, bool may_update) noexcept;

// The extension of an item: a check box or a button beside the value; null when it has none or hides it.
[[nodiscard]] const EXTCHKBOX* find_extra_check(const OPTITEM& item) noexcept;
[[nodiscard]] const EXTPUSH* find_extra_push(const OPTITEM& item) noexcept;

}  // namespace compstui
