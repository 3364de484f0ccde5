#include "UI_dll/ptrprop.h"

#include <memory>
#include <new>
#include <utility>

#include "UI_dll/cpsui.h"
#include "UI_dll/ptrinfo.h"
#include "UI_dll/sheet_information.h"
#include "common/driver_util.h"
#include "common/printer_handle.h"
#include "common/qk/memory_probe.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"

namespace ptrprop {

namespace {

int initialize(LPWSTR name) {
    PRINTER_DEFAULTSW access = {nullptr, nullptr, PRINTER_ALL_ACCESS};
    qk::PrinterHandleObj printer;
    if (!OpenPrinterW(name, printer.put(), &access))
        return 1;
    const MappedPrinter mapped = MapPrinter(printer.get(), nullptr);
    const DEVMODEW& dm = mapped.devmode.dm;
    const std::wstring device(dm.dmDeviceName, wcsnlen(dm.dmDeviceName, std::size(dm.dmDeviceName)));
    return AddFormsToDataBase(printer.get(), device);
}

constexpr LONG kFailure = -1;

LONG initialise_sheet(PROPSHEETUI_INFO& info, LPARAM parameter, HANDLE printer) {
    auto thread = std::make_unique<SheetThread>(printer, printer_name_of_info_2(printer));
    std::unique_ptr<SheetInformation> information(
        new (std::nothrow) SheetInformation(MapPrinter(printer, nullptr), std::move(thread)));
    if (!information) {
        TRACE("no memory for the page");
        SetLastError(ERROR_INVALID_DATA);
        return kFailure;
    }
    const bool settings_page_only = cpsui::only_settings_page();
    cpsui::set_up_page(*information, settings_page_only);
    SetupPPOptItems(*information);
    return cpsui::open_sheet(info, parameter, std::move(information), !settings_page_only);
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

BOOL printer_properties(HWND window, HANDLE printer) {
    const auto info = GetPrinterInfo(printer);
    const auto header = std::make_unique<DevicePropertyHeader>();  // the service takes none on the stack
    header->cbSize = sizeof *header;
    header->hPrinter = printer;
    header->pszPrinterName = info ? reinterpret_cast<PRINTER_INFO_4W*>(info.get())->pPrinterName : nullptr;
    return cpsui::run_sheet(window, &DrvDevicePropertySheets, header.get()) == CPSUI_OK;
}

LONG answer_sheet(PROPSHEETUI_INFO& info, LPARAM parameter) {
    const auto* header = reinterpret_cast<const DevicePropertyHeader*>(info.lParamInit);
    if (!qk::is_readable(header, sizeof *header) || header->cbSize < sizeof *header) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return kFailure;
    }
    if (info.Reason == PROPSHEETUI_REASON_INIT)
        return initialise_sheet(info, parameter, header->hPrinter);
    return cpsui::DefCommonUIFunc(info, parameter, reinterpret_cast<SheetInformation*>(info.UserData),
                                  nullptr, false);
}

}  // namespace ptrprop
