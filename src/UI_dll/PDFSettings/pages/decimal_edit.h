// Edits for lengths.
#pragma once

#include <windows.h>

namespace pdf_settings {

// A comma that is typed into the edit becomes the decimal point: many keyboards have no other decimal sign.
// Null: nothing happens.
void take_comma_as_point(HWND edit) noexcept;

}  // namespace pdf_settings
