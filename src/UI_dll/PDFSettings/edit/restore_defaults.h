// Back to the values of a new setting: a button of the edit sheet.
#pragma once

#include <windows.h>

namespace pdf_settings {

// Asks which pages are meant, and shows the default values in their controls. The name of the setting stays,
// and so does what no control shows; nothing is stored before OK.
void restore_defaults(HWND sheet);

}  // namespace pdf_settings
