// Rules of option items: what a caller may hand over, what a value reads as, what the user may do to it.
// Items are list boxes, or headings without a value. Nothing here touches a window.
#pragma once

#include <span>
#include <string>

#include "companions/compstui/interface.h"

namespace compstui {

// Checks items, their types and parameters, for a group of `pages` pages. 0, or the ERR_CPSUI_* of the first
// that is wrong.
[[nodiscard]] LONG check_items(std::span<const OPTITEM> items, size_t pages) noexcept;

// The texts to choose from; none for a heading.
[[nodiscard]] std::span<const OPTPARAM> parameters_of(const OPTITEM& item) noexcept;

// What stands in the tree: "name: value", or the name alone. Numbers of texts mean `instance`'s strings.
[[nodiscard]] std::wstring item_text(const OPTITEM& item, HINSTANCE instance);

// Whether the user may change the item's value, given the sheet's permission.
[[nodiscard]] bool may_change(const OPTITEM& item, bool may_update) noexcept;

}  // namespace compstui
