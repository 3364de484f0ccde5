// The exported entry points: each traces, calls one inner function and lets no exception out.
#include "UI_dll/ddi.h"
#include "UI_dll/devcaps.h"
#include "UI_dll/docprop.h"
#include "UI_dll/ptrinfo.h"
#include "UI_dll/ptrprop.h"
#include "common/printer_handle.h"
#include "common/qk/guard.h"
#include "common/qk/memory_probe.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "job/document_event.h"
#include "lib/devmode.h"

namespace {

constexpr LONG kFailure = -1;
constexpr DWORD kAdvancedMode = DM_COPY | DM_PROMPT | DM_MODIFY | 16;  // 16: the advanced page

BOOL convert_devmode(LPWSTR printer, DEVMODEW* source, DEVMODEW* target, DWORD* needed, DWORD mode) {
    if (!qk::is_writable(needed, sizeof *needed)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const ConvertResult result = CommonDrvConvertDevmode(source, target, needed, mode);
    if (result != ConvertResult::kCallerFinishes || mode != kDriverDefault)
        return result == ConvertResult::kDone;
    qk::PrinterHandleObj handle;
    // Without a name the system would open the print server.
    const DriverDevmode standard = default_devmode();
    if (!qk::is_writable(target, kDriverDevmodeSize) || !printer ||
        !OpenPrinterW(printer, handle.put(), nullptr) || !qk::try_copy(target, &standard, sizeof standard)) {
        SetLastError(ERROR_INVALID_DATA);
        return FALSE;
    }
    return TRUE;
}

// The spooler library of older systems and of some other print systems lacks the function.
BOOL forward_query(DevQueryPrintInfo* info) {
    using Query = BOOL WINAPI(DevQueryPrintInfo*);
    const HMODULE spooler = GetModuleHandleW(L"winspool.drv");
    auto* query = spooler ? qk::find_export<Query>(spooler, "DevQueryPrintEx") : nullptr;
    if (query)
        return query(info);
    SetLastError(ERROR_PROC_NOT_FOUND);
    return FALSE;
}

}  // namespace

LONG WINAPI DrvDocumentPropertySheets(PROPSHEETUI_INFO* info, LPARAM parameter) noexcept {
    qk::trace::read_level();
    TRACE_SCOPE("DrvDocumentPropertySheets");
    return qk::guarded<LONG>(kFailure, [&] {
        return info ? docprop::answer_sheet(*info, parameter)
                    : docprop::answer_query(reinterpret_cast<DocumentPropertyHeader*>(parameter));
    });
}

LONG WINAPI DrvDocumentProperties(HWND window, HANDLE printer, LPWSTR device, DEVMODEW* output,
                                  DEVMODEW* input, DWORD mode) noexcept {
    qk::trace::read_level();
    TRACE_SCOPE("DrvDocumentProperties");
    return qk::guarded<LONG>(
        kFailure, [&] { return docprop::document_properties(window, printer, device, output, input, mode); });
}

LONG WINAPI DrvAdvancedDocumentProperties(HWND window, HANDLE printer, LPWSTR device, DEVMODEW* output,
                                          DEVMODEW* input) noexcept {
    qk::trace::read_level();
    TRACE_SCOPE("DrvAdvancedDocumentProperties");
    return qk::guarded<LONG>(kFailure, [&] {
        return docprop::document_properties(window, printer, device, output, input, kAdvancedMode);
    });
}

BOOL WINAPI DrvConvertDevMode(LPWSTR printer, DEVMODEW* source, DEVMODEW* target, DWORD* needed,
                              DWORD mode) noexcept {
    TRACE("DrvConvertDevMode");
    return qk::guarded<BOOL>(FALSE, [&] { return convert_devmode(printer, source, target, needed, mode); });
}

DWORD WINAPI DrvDeviceCapabilities(HANDLE printer, LPWSTR device, WORD index, void* output,
                                   DEVMODEW* devmode) noexcept {
    return qk::guarded<DWORD>(devcaps::kFailed,
                              [&] { return devcaps::capability(printer, device, index, output, devmode); });
}

DWORD WINAPI DrvSplDeviceCaps(HANDLE printer, LPWSTR device, WORD index, void* output, DWORD output_size,
                              DEVMODEW* devmode) noexcept {
    TRACE("DrvSplDeviceCaps");
    return qk::guarded<DWORD>(devcaps::kFailed, [&] {
        return devcaps::spooler_capability(printer, device, index, output, output_size, devmode);
    });
}

int WINAPI DrvDocumentEvent(HANDLE printer, HDC hdc, int event, ULONG in_size, void* in, ULONG out_size,
                            void* out) {
    return qk::guarded<int>(DOCUMENTEVENT_FAILURE, [&] {
        TRACE_F(L">>%d", event);
        return internal_DrvDocumentEvent(printer, hdc, event, in_size, in, out_size, out);
    });
}

BOOL WINAPI DrvPrinterEvent(LPWSTR printer, int event, DWORD /*flags*/, LPARAM /*parameter*/) {
    qk::trace::read_level();
    return qk::guarded<BOOL>(TRUE, [&] { return ptrprop::printer_event(printer, event); });
}

BOOL WINAPI PrinterProperties(HWND window, HANDLE printer) {
    qk::trace::read_level();
    TRACE_SCOPE("PrinterProperties");
    return qk::guarded<BOOL>(FALSE, [&] { return ptrprop::printer_properties(window, printer); });
}

LONG WINAPI DrvDevicePropertySheets(PROPSHEETUI_INFO* info, LPARAM parameter) noexcept {
    TRACE("DrvDevicePropertySheets");
    return qk::guarded<LONG>(kFailure, [&] {
        if (info)
            return ptrprop::answer_sheet(*info, parameter);
        SetLastError(ERROR_INVALID_PARAMETER);
        return kFailure;
    });
}

BOOL WINAPI DevQueryPrintEx(DevQueryPrintInfo* info) noexcept {
    TRACE("DevQueryPrintEx");
    return qk::guarded<BOOL>(FALSE, [&] { return forward_query(info); });
}
