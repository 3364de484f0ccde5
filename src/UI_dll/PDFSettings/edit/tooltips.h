// What the controls of the edit sheet say when the mouse rests on them.
#pragma once

#include <windows.h>

namespace pdf_settings {

// Gives the controls of the sheet's pages, which are all made, their tooltips. They go with the sheet.
void add_tooltips(HWND sheet);

}  // namespace pdf_settings
