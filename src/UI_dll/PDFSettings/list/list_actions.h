// What the user does on the list page: its buttons, and clicks, keys and names in the list.
#pragma once

#include <windows.h>

namespace pdf_settings {

// Posted to the page, for rename_pending(): a row's text was edited.
inline constexpr UINT kRename = WM_APP + 33;

// A name that was typed last is given before anything else is done with the list: the message that asks for
// it would come in the middle of the next question or sheet.
void rename_pending(HWND page);

// A button of the page, or the key that stands for one. Whether it is one of the list's.
bool on_list_command(HWND page, int button);

// What the list tells of itself (WM_NOTIFY). Whether it was anything to act on; some have a result in
// DWLP_MSGRESULT.
bool on_list_notification(HWND page, const NMHDR& header);

}  // namespace pdf_settings
