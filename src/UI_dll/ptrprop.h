// The spooler's printer events and the printer's property sheet.
#pragma once

#include "UI_dll/ddi.h"

namespace ptrprop {

// PRINTER_EVENT_INITIALIZE keeps the printer's "Model" value in step and returns 0 when it has been written,
// 1 when another model stands there or it could not be written; every other event returns 1 and touches
// nothing.
[[nodiscard]] BOOL printer_event(LPWSTR printer, int event);

// PrinterProperties: shows the printer's sheet; TRUE when it ended with OK.
[[nodiscard]] BOOL printer_properties(HWND window, HANDLE printer);

// Answers a reason of that sheet's life: 1 or 0, or -1.
[[nodiscard]] LONG answer_sheet(PROPSHEETUI_INFO& info, LPARAM parameter);

}  // namespace ptrprop
