// The settings dialog: how fast it lists and opens, and what it leaves behind.
#pragma once

namespace bench {

// Prints the dialog's costs; false when one is too slow, grows out of proportion, leaks or is not measured.
bool time_dialog();

// Opens the edit sheet for a new setting and cancels it: the microseconds until it stood with all its pages,
// 0 when it never did.
double open_and_close();

}  // namespace bench
