// Editing what is selected in the list.
#pragma once

#include <windows.h>

namespace pdf_settings {

// Opens the edit sheet for the setting loaded from the selected row: the file itself, or, when `is_new` or
// when the row is not the user's to edit, a copy with a free name; with `names_original` the sheet's title
// says of what. Refills the list afterwards.
void DoEditDialog(HWND list_page, bool is_new, bool names_original = false);

}  // namespace pdf_settings
