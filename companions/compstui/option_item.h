// Option items: list boxes that tell what is chosen, or headings without a value. A user may look at the
// list, but changes nothing with it.
#pragma once

#include <span>

#include "companions/compstui/interface.h"

namespace compstui {

// Checks items, their types and parameters, for a group of `pages` pages. 0, or the ERR_CPSUI_* of the first
// that is wrong.
[[nodiscard]] LONG check_items(std::span<const OPTITEM> items, size_t pages) noexcept;

// Shows the item in the controls of `page` that its type numbers (ListControl), as far as the page has them.
void show_item(HWND page, const OPTITEM& item, HINSTANCE instance);

}  // namespace compstui
