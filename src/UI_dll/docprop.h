// Document properties: the answers to DEVMODE queries.
#pragma once

#include "UI_dll/ddi.h"

namespace docprop {

// Answers a query without sheet: the DEVMODE size, 1, or -1 with the last error (13: the printer's information
// cannot be built, 87: a header or DEVMODE that is not usable).
[[nodiscard]] LONG answer_query(DocumentPropertyHeader* header);

// DrvDocumentProperties: without DM_PROMPT the same for its parts.
[[nodiscard]] LONG document_properties(HWND window, HANDLE printer, LPWSTR device, DEVMODEW* output,
                                       DEVMODEW* input, DWORD mode);

}  // namespace docprop
