#include "UI_dll/docprop.h"

#include <memory>
#include <new>
#include <utility>

#include "UI_dll/cpsui.h"
#include "UI_dll/ps_to_devmode.h"
#include "UI_dll/ptrinfo.h"
#include "UI_dll/sheet_information.h"
#include "common/driver_util.h"
#include "common/qk/memory_probe.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"

namespace docprop {

namespace {

constexpr LONG kFailure = -1;

LONG fail(DWORD error) noexcept {
    SetLastError(error);
    return kFailure;
}

// Whether the mode asks for a DEVMODE and the caller may have it.
bool writes_devmode(const DocumentPropertyHeader& header) noexcept {
    return (header.fMode & (DM_COPY | DM_UPDATE)) && !(header.fMode & kNoPermission) && header.pdmOut;
}

LONG write_merged(const DocumentPropertyHeader& header) {
    const CallPrinter printer(header.hPrinter, header.pszPrinterName);
    const MappedPrinter mapped = MapPrinter(printer.get(), header.pdmIn);
    if (!ConvertDevmodeOut(&mapped.devmode.dm, header.pdmIn, header.pdmOut))
        return fail(ERROR_INVALID_PARAMETER);
    TRACE("c.2");
    return 1;
}

LONG initialise(PROPSHEETUI_INFO& info, LPARAM parameter, const DocumentPropertyHeader& header) {
    const bool settings_page_only = cpsui::only_settings_page();
    auto thread = std::make_unique<SheetThread>(header.hPrinter, printer_name(header.hPrinter));
    std::unique_ptr<SheetInformation> information(
        new (std::nothrow) SheetInformation(MapPrinter(header.hPrinter, header.pdmIn), std::move(thread)));
    if (!information) {
        TRACE("ddps7");
        return fail(ERROR_INVALID_DATA);
    }
    if (writes_devmode(header)) {
        information->may_update = true;
        information->output = header.pdmOut;
    }
    information->sheet.pfnCallBack = &NSETCallBack;
    cpsui::set_up_page(*information, settings_page_only);
    SetupDPOptItems(*information);
    return cpsui::open_sheet(info, parameter, std::move(information), !settings_page_only);
}

void write_result(const DocumentPropertyHeader& header, const SheetInformation& information,
                  LPARAM parameter) {
    const auto* result = reinterpret_cast<const SETRESULT_INFO*>(parameter);
    if (!information.output || !qk::is_readable(result, sizeof *result) || result->Result == CPSUI_CANCEL)
        return;
    // A copy: results come once for each page that has one, and a setting must leave nothing of an earlier
    // one.
    DriverDevmode devmode = information.mapped.devmode;
    SetPSToDEVMODE(information.mapped.printer, devmode.dm);
    ConvertDevmodeOut(&devmode.dm, header.pdmIn, information.output);
}

LONG answer_reason(PROPSHEETUI_INFO& info, LPARAM parameter, const DocumentPropertyHeader& header) {
    auto* information = reinterpret_cast<SheetInformation*>(info.UserData);
    if (info.Reason == PROPSHEETUI_REASON_INIT)
        return initialise(info, parameter, header);
    if (info.Reason == PROPSHEETUI_REASON_SET_RESULT && information)
        write_result(header, *information, parameter);
    return cpsui::DefCommonUIFunc(info, parameter, information, nullptr, false);
}

}  // namespace

LONG answer_query(DocumentPropertyHeader* header) {
    if (!qk::is_writable(header, sizeof *header))
        return fail(ERROR_INVALID_PARAMETER);
    if (header->fMode == 0 || !header->pdmOut) {
        TRACE("c.1");
        header->cbOut = kDriverDevmodeSize;
        return static_cast<LONG>(kDriverDevmodeSize);
    }
    return writes_devmode(*header) ? write_merged(*header) : 1;
}

LONG answer_sheet(PROPSHEETUI_INFO& info, LPARAM parameter) {
    const auto* header = reinterpret_cast<const DocumentPropertyHeader*>(info.lParamInit);
    if (!qk::is_readable(header, sizeof *header) || header->cbSize < sizeof *header)
        return fail(ERROR_INVALID_PARAMETER);
    const LONG result = answer_reason(info, parameter, *header);
    TRACE_F(L"ret=%d", static_cast<int>(result));
    TRACE("<<:j");
    return result;
}

LONG document_properties(HWND window, HANDLE printer, LPWSTR device, DEVMODEW* output, DEVMODEW* input,
                         DWORD mode) {
    // The service takes no header on the stack.
    const auto header = std::make_unique<DocumentPropertyHeader>(
        DocumentPropertyHeader{.cbSize = sizeof(DocumentPropertyHeader),
                               .Reserved = 0,
                               .hPrinter = printer,
                               .pszPrinterName = device,
                               .pdmIn = input,
                               .pdmOut = output,
                               .cbOut = kDriverDevmodeSize,
                               .fMode = mode});
    if (!(mode & DM_PROMPT)) {
        TRACE_SCOPE("DrvDocumentPropertySheets");  // whose answer without a sheet it is
        return answer_query(header.get());
    }
    return cpsui::run_sheet(window, &DrvDocumentPropertySheets, header.get()) == CPSUI_OK ? IDOK : IDCANCEL;
}

}  // namespace docprop
