#include "UI_dll/docprop.h"

#include <memory>

#include "UI_dll/cpsui.h"
#include "UI_dll/ps_to_devmode.h"
#include "UI_dll/ptrinfo.h"
#include "common/driver_util.h"
#include "common/memory_probe.h"
#include "common/text.h"
#include "common/threadprop.h"
#include "common/trace.h"

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
    std::unique_ptr<PrinterInformation> information;
    if (!MapPrinter(information, printer.get(), header.pdmIn, true))
        return fail(ERROR_INVALID_DATA);
    if (!ConvertDevmodeOut(&information->devmode.dm, header.pdmIn, header.pdmOut))
        return fail(ERROR_INVALID_PARAMETER);
    TRACE("c.2");
    return 1;
}

// The sheet's handle hides that of a job on the same thread until the sheet is gone.
void enter_thread(HANDLE printer) {
    SetThreadProp(threadprop::kSavedPrinter, FreeThreadProp(threadprop::kPrinter));
    SetThreadProp(threadprop::kPrinter, reinterpret_cast<ULONG_PTR>(printer));
    sheet_thread::keep_printer_name(printer_name(printer));
}

void leave_thread() {
    FreeThreadProp(threadprop::kPrinter);
    if (const ULONG_PTR saved = FreeThreadProp(threadprop::kSavedPrinter))
        SetThreadProp(threadprop::kPrinter, saved);
}

LONG initialise(PROPSHEETUI_INFO& info, LPARAM parameter, const DocumentPropertyHeader& header) {
    enter_thread(header.hPrinter);
    std::unique_ptr<PrinterInformation> information;
    if (!MapPrinter(information, header.hPrinter, header.pdmIn, true)) {
        TRACE("ddps7");
        leave_thread();
        return fail(ERROR_INVALID_DATA);
    }
    if (writes_devmode(header)) {
        information->may_update = true;
        information->output = header.pdmOut;
    }
    const bool settings_page_only = cpsui::only_settings_page();
    information->sheet.pfnCallBack = &NSETCallBack;
    cpsui::set_up_page(*information, settings_page_only);
    SetupDPOptItems(*information);
    PrinterInformation* kept = information.release();  // the sheet's, until DESTROY
    return cpsui::DefCommonUIFunc(info, parameter, kept, kept->title.c_str(), !settings_page_only);
}

void write_result(const DocumentPropertyHeader& header, PrinterInformation& information, LPARAM parameter) {
    const auto* result = reinterpret_cast<const SETRESULT_INFO*>(parameter);
    if (!information.output || !qk::is_readable(result, sizeof *result) || result->Result != CPSUI_OK)
        return;
    SetPSToDEVMODE(information.printer, information.devmode.dm);
    ConvertDevmodeOut(&information.devmode.dm, header.pdmIn, information.output);
}

LONG answer_reason(PROPSHEETUI_INFO& info, LPARAM parameter, const DocumentPropertyHeader& header) {
    auto* information = reinterpret_cast<PrinterInformation*>(info.UserData);
    switch (info.Reason) {
        case PROPSHEETUI_REASON_INIT:
            return initialise(info, parameter, header);
        case PROPSHEETUI_REASON_DESTROY:
            if (information)  // not of a sheet whose INIT has failed
                leave_thread();
            break;
        case PROPSHEETUI_REASON_SET_RESULT:
            if (information)
                write_result(header, *information, parameter);
            break;
        default:
            break;
    }
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
    DocumentPropertyHeader header = {.cbSize = sizeof header,
                                     .Reserved = 0,
                                     .hPrinter = printer,
                                     .pszPrinterName = device,
                                     .pdmIn = input,
                                     .pdmOut = output,
                                     .cbOut = kDriverDevmodeSize,
                                     .fMode = mode};
    if (!(mode & DM_PROMPT))
        return answer_query(&header);
    return cpsui::show(window, &DrvDocumentPropertySheets, &header) == CPSUI_OK ? IDOK : IDCANCEL;
}

}  // namespace docprop

namespace sheet_thread {

void keep_printer_name(const std::wstring& name) {
    const std::unique_ptr<std::wstring> old(
        reinterpret_cast<std::wstring*>(FreeThreadProp(threadprop::kPrinterName)));
    auto fresh = std::make_unique<std::wstring>(name);
    SetThreadProp(threadprop::kPrinterName, reinterpret_cast<ULONG_PTR>(fresh.get()));
    (void)fresh.release();
}

}  // namespace sheet_thread
