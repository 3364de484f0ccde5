// What an open property sheet keeps in the properties of its thread.
#pragma once

#include <windows.h>

#include <string>

// While it lives the thread's "hPDFPrinter" and "PrinterName" are the sheet's. What stood there, that of a
// job or of a sheet around this one, is hidden, the handle under "hSavePDFPrinter", and comes back
// afterwards. Made and destroyed on one thread; those of nested sheets in reverse order.
class SheetThread {
public:
    explicit SheetThread(HANDLE printer);
    ~SheetThread();
    SheetThread(const SheetThread&) = delete;
    SheetThread& operator=(const SheetThread&) = delete;

    // The name of the sheet's printer; empty when it cannot be asked.
    [[nodiscard]] std::wstring& name() noexcept { return name_; }

private:
    std::wstring name_;
    ULONG_PTR hidden_printer_;
    ULONG_PTR hidden_name_;
};
