#include "UI_dll/ptrprop.h"

#include <winspool.h>
#include <winddiui.h>

#include "UI_dll/ptrinfo.h"
#include "common/handle.h"
#include "common/text.h"
#include "common/trace.h"

namespace ptrprop {

namespace {

int initialize(LPWSTR name) {
    PRINTER_DEFAULTSW access = {nullptr, nullptr, PRINTER_ALL_ACCESS};
    qk::PrinterHandleObj printer;
    if (!OpenPrinterW(name, printer.put(), &access))
        return 1;
    std::unique_ptr<PrinterInformation> information;
    if (!MapPrinter(information, printer.get(), nullptr, false))
        return 1;
    const DEVMODEW& dm = information->devmode.dm;
    const std::wstring device(dm.dmDeviceName, wcsnlen(dm.dmDeviceName, std::size(dm.dmDeviceName)));
    return AddFormsToDataBase(printer.get(), device, information->model_write_failed);
}

}  // namespace

BOOL printer_event(LPWSTR printer, int event) {
    TRACE("DrvPrinterEvent");
    int result = 1;
    if (event == PRINTER_EVENT_INITIALIZE) {
        TRACE("  PRINTER_EVENT_INITIALIZE");
        result = initialize(printer);
    } else {
        TRACE("  default");
    }
    TRACE_F(L"ret=%d", result);
    return result;
}

}  // namespace ptrprop
