// The mapping of a printer that every property sheet and query works on.
#pragma once

#include <windows.h>
#include <winspool.h>

#include "common/printer_handle.h"
#include "lib/devmode.h"

// The current form, whatever paper the DEVMODE holds.
inline constexpr wchar_t kCurrentForm[] = L"A4";

struct MappedPrinter {
    HANDLE printer = nullptr;  // the caller's
    DriverDevmode devmode = {};
};

// Merges the driver's default, the printer's own DEVMODE and the caller's (may be null).
[[nodiscard]] MappedPrinter MapPrinter(HANDLE printer, const DEVMODEW* caller_devmode);

// A printer handle for one call: the caller's, or the printer of that name where the caller has none: some
// print systems only name it.
class CallPrinter {
public:
    CallPrinter(HANDLE printer, LPWSTR device) noexcept : printer_(printer) {
        if (!printer && device && OpenPrinterW(device, opened_.put(), nullptr))
            printer_ = opened_.get();
    }
    [[nodiscard]] HANDLE get() const noexcept { return printer_; }

private:
    qk::PrinterHandleObj opened_;
    HANDLE printer_;
};
