// The printer information that every property sheet and query works on.
#pragma once

#include <windows.h>
#include <winspool.h>
#include <winddiui.h>

#include <memory>
#include <optional>
#include <string>

#include "UI_dll/optitem.h"
#include "UI_dll/sheet_thread.h"
#include "common/printer_handle.h"
#include "lib/devmode.h"

struct PrinterInformation {
    HANDLE printer = nullptr;  // the caller's
    bool may_update = false;
    bool document_properties = false;
    bool model_write_failed = false;
    DriverDevmode devmode = {};
    DWORD refused = 0;  // dmFields bits that the last merge refused
    static constexpr wchar_t kFormName[] = L"A4";
    const wchar_t* form_name = kFormName;  // the current form, whatever paper the DEVMODE holds
    SIZEL form_size = {210000, 297000};    // thousandths of a millimetre
    const DEVMODEW* caller_devmode = nullptr;

    // Of a property sheet only.
    std::unique_ptr<SheetThread> thread;
    std::optional<OptionItem> option;
    COMPROPSHEETUI sheet = {};
    DLGPAGE page = {};
    std::wstring title;
    LONG_PTR added = 0;          // the handle under which the common property sheet was added
    DEVMODEW* output = nullptr;  // filled on OK; null: the caller wants none
};

// Builds the information for a printer: the driver's default, the printer's own DEVMODE and the caller's (may
// be null) merged. Null, with `information` empty, when there is no memory for it.
PrinterInformation* MapPrinter(std::unique_ptr<PrinterInformation>& information, HANDLE printer,
                               const DEVMODEW* caller_devmode, bool document_properties);

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
