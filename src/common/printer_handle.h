// The owner of a printer handle (OpenPrinter).
#pragma once

#include <windows.h>
#include <winspool.h>

#include "common/qk/handle.h"

namespace qk {

struct PrinterHandleTraits : NullIsNone<HANDLE> {
    static void close(HANDLE handle) noexcept { ClosePrinter(handle); }
};

using PrinterHandleObj = Owner<PrinterHandleTraits>;

}  // namespace qk
