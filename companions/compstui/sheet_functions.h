// What callers reach through pfnComPropSheet.
#pragma once

#include "companions/compstui/interface.h"

namespace compstui {

// Answers CPSFUNC_*; 0, or a number below 0 from functions that count, when the handle or parameter is wrong
// or the function is not served (last error 120). Called on the sheet's thread.
LONG_PTR CALLBACK com_prop_sheet(HANDLE handle, UINT function, LPARAM first, LPARAM second) noexcept;

}  // namespace compstui
