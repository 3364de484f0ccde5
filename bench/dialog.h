// The settings dialog: how fast it lists and opens, and what it leaves behind.
#pragma once

namespace bench {

// Prints the dialog's costs; false when one is too slow, grows out of proportion, leaks or is not measured.
bool time_dialog();

}  // namespace bench
