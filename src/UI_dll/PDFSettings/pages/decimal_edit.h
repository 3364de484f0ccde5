// Edits for lengths.
#pragma once

#include <windows.h>

namespace pdf_settings {

// A comma that is typed into the edit becomes the decimal point, since many keyboards have no other decimal
// sign; what is pasted stands there as plain_length() has it. Null: nothing happens.
void take_lengths(HWND edit) noexcept;

}  // namespace pdf_settings
