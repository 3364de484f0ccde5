// The four controls that show a list-box item on a page and let the user choose (ListControl).
#pragma once

#include <optional>

#include "companions/compstui/option_item.h"

namespace compstui {

// Shows `item` in the controls of `page` from number `first` on, as far as the page has them.
void show_list(HWND page, int first, const OPTITEM& item, HINSTANCE instance, bool enabled);

// Shows nothing in them.
void clear_list(HWND page, int first);

// What is chosen there: the new Sel; nothing without a choice.
[[nodiscard]] std::optional<LONG> find_selection(HWND page, int first);

// Makes such controls on the host's own page.
void make_list(HWND page, int first);

// Makes a control at `units`, in dialog units of `page`.
HWND add_control(HWND page, const wchar_t* window_class, DWORD style, int id, RECT units);

}  // namespace compstui
