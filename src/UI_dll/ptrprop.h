// The spooler's printer events.
#pragma once

#include <windows.h>

namespace ptrprop {

// PRINTER_EVENT_INITIALIZE keeps the printer's "Model" value in step and returns 0 when it has been written, 1
// when another model stands there or it could not be written; every other event returns 1 and touches nothing.
[[nodiscard]] BOOL printer_event(LPWSTR printer, int event);

}  // namespace ptrprop
