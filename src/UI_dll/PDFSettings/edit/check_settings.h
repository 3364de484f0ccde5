// The edit sheet's button that checks all pages.
#pragma once

#include <windows.h>

namespace pdf_settings {

// Tells everything that the pages would refuse, each with its place, and turns to the first; or that nothing
// is wrong. Nothing is stored.
void check_settings(HWND sheet);

}  // namespace pdf_settings
