// What stands around the pages of the edit sheet: their room and its buttons.
#pragma once

#include <windows.h>

namespace pdf_settings {

// Makes the sheet as large as its pages, which are all made, need it to be. Some systems make it for pages in
// the sheet's own font.
void fit_to_pages(HWND sheet);

// Shows the sheet's Apply button as the one that checks the pages.
void set_up_check_button(HWND sheet);

// Puts the buttons for the default values and, where there is help, for help at the left end of the row.
void add_buttons(HWND sheet);

}  // namespace pdf_settings
