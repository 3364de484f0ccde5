// The exported entry points of the printer-driver user-interface interface, and its structures that the tool
// chain's headers lack.
#pragma once

#include <windows.h>
#include <winspool.h>
#include <winddiui.h>

#include <cstddef>

struct DocumentPropertyHeader {  // DOCUMENTPROPERTYHEADER
    WORD cbSize;
    WORD Reserved;
    HANDLE hPrinter;
    LPWSTR pszPrinterName;
    DEVMODEW* pdmIn;
    DEVMODEW* pdmOut;
    DWORD cbOut;
    DWORD fMode;
};
static_assert(sizeof(DocumentPropertyHeader) == 48);
static_assert(offsetof(DocumentPropertyHeader, hPrinter) == 8 &&
              offsetof(DocumentPropertyHeader, pdmOut) == 32);
static_assert(offsetof(DocumentPropertyHeader, fMode) == 44);

struct DevicePropertyHeader {  // DEVICEPROPERTYHEADER
    WORD cbSize;
    WORD Flags;
    HANDLE hPrinter;
    LPWSTR pszPrinterName;
};
static_assert(sizeof(DevicePropertyHeader) == 24);

struct DevQueryPrintInfo;  // DEVQUERYPRINT_INFO: passed on to the spooler, never looked into

inline constexpr DWORD kNoPermission = 32;  // DM_NOPERMISSION, in a header's mode

extern "C" {

LONG WINAPI DrvDocumentPropertySheets(PROPSHEETUI_INFO* info, LPARAM parameter) noexcept;
LONG WINAPI DrvDocumentProperties(HWND window, HANDLE printer, LPWSTR device, DEVMODEW* output,
                                  DEVMODEW* input, DWORD mode) noexcept;
LONG WINAPI DrvAdvancedDocumentProperties(HWND window, HANDLE printer, LPWSTR device, DEVMODEW* output,
                                          DEVMODEW* input) noexcept;
BOOL WINAPI DrvConvertDevMode(LPWSTR printer, DEVMODEW* source, DEVMODEW* target, DWORD* needed,
                              DWORD mode) noexcept;
DWORD WINAPI DrvDeviceCapabilities(HANDLE printer, LPWSTR device, WORD index, void* output,
                                   DEVMODEW* devmode) noexcept;
DWORD WINAPI DrvSplDeviceCaps(HANDLE printer, LPWSTR device, WORD index, void* output, DWORD output_size,
                              DEVMODEW* devmode) noexcept;
// DrvDocumentEvent, DrvPrinterEvent and PrinterProperties are declared in winddiui.h.
LONG WINAPI DrvDevicePropertySheets(PROPSHEETUI_INFO* info, LPARAM parameter) noexcept;
BOOL WINAPI DevQueryPrintEx(DevQueryPrintInfo* info) noexcept;

}  // extern "C"
