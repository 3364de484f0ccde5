// The settings page of the property sheets: the list of print settings.
#pragma once

#include <windows.h>

// The page's dialog procedure, for the template IDD_SETTINGS. The thread that shows the sheet.
INT_PTR CALLBACK settings_page_proc(HWND page, UINT message, WPARAM wparam, LPARAM lparam);

namespace pdf_settings {

// Loads the pictures for the page's DPI, shows them, and sizes the list's column.
void dlg_init_dpi_PDFSettings(HWND page);

}  // namespace pdf_settings
