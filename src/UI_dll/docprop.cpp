#include "UI_dll/docprop.h"

#include "UI_dll/ptrinfo.h"
#include "common/memory_probe.h"
#include "common/trace.h"

namespace docprop {

namespace {

constexpr LONG kFailure = -1;

LONG fail(DWORD error) noexcept {
    SetLastError(error);
    return kFailure;
}

LONG write_merged(const DocumentPropertyHeader& header) {
    std::unique_ptr<PrinterInformation> information;
    if (!MapPrinter(information, header.hPrinter, header.pdmIn, true))
        return fail(ERROR_INVALID_DATA);
    if (!ConvertDevmodeOut(&information->devmode.dm, header.pdmIn, header.pdmOut))
        return fail(ERROR_INVALID_PARAMETER);
    TRACE("c.2");
    return 1;
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
    const bool writes = (header->fMode & (DM_COPY | DM_UPDATE)) && !(header->fMode & kNoPermission);
    return writes ? write_merged(*header) : 1;
}

LONG document_properties(HWND /*window*/, HANDLE printer, LPWSTR device, DEVMODEW* output, DEVMODEW* input,
                         DWORD mode) {
    DocumentPropertyHeader header = {.cbSize = sizeof header,
                                     .Reserved = 0,
                                     .hPrinter = printer,
                                     .pszPrinterName = device,
                                     .pdmIn = input,
                                     .pdmOut = output,
                                     .cbOut = kDriverDevmodeSize,
                                     .fMode = mode};
    if (mode & DM_PROMPT) {
        TRACE("no sheet");
        return fail(ERROR_CALL_NOT_IMPLEMENTED);
    }
    return answer_query(&header);
}

}  // namespace docprop
