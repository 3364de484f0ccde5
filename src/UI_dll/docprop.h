// Document properties: DEVMODE queries and the document's property sheet.
#pragma once

#include "UI_dll/ddi.h"

namespace docprop {

// Answers a query without sheet: the DEVMODE size, 1, or -1 with the last error (13: the printer's
// information cannot be built, 87: a header or DEVMODE that is not usable).
[[nodiscard]] LONG answer_query(DocumentPropertyHeader* header);

// Answers a reason of the sheet's life (PROPSHEETUI_REASON_*): 1 or 0, or -1.
[[nodiscard]] LONG answer_sheet(PROPSHEETUI_INFO& info, LPARAM parameter);

// DrvDocumentProperties: with DM_PROMPT shows the sheet and returns IDOK or IDCANCEL, else answers a query.
[[nodiscard]] LONG document_properties(HWND window, HANDLE printer, LPWSTR device, DEVMODEW* output,
                                       DEVMODEW* input, DWORD mode);

}  // namespace docprop
