// Small questions about the caller and the printer that several features ask.
#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <string>

// The current user's name, at most 99 units; empty when it is not known.
[[nodiscard]] std::wstring user_name();

// The printer's PRINTER_INFO_4W, its texts in the same block; null when the printer cannot be asked.
[[nodiscard]] std::unique_ptr<std::byte[]> GetPrinterInfo(HANDLE printer);

// The name of the printer behind a handle; empty when it cannot be asked. The second reads PRINTER_INFO_2W,
// of which print systems make more.
[[nodiscard]] std::wstring printer_name(HANDLE printer);
[[nodiscard]] std::wstring printer_name_of_info_2(HANDLE printer);

// The job mode that the rendering module or the dialog library has set for the printer and the current user;
// 0 when there is none. In modes 2 and 3 the chosen output file is not checked.
[[nodiscard]] DWORD fdlg_GetMMFJobMode(const std::wstring& printer_name);
