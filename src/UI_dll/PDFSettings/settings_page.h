// The settings page of the property sheets: the list of print settings.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

// The page's dialog procedure, for the template IDD_SETTINGS. The thread that shows the sheet.
INT_PTR CALLBACK settings_page_proc(HWND page, UINT message, WPARAM wparam, LPARAM lparam);

namespace pdf_settings {

// Each looks for the list in `page` and, when it is not there, in its parent; without a list it does nothing.

// Fills the list again and selects the file; none: the printer's current setting file.
void ResetSettingsList(HWND page, const std::optional<std::wstring>& path);

// Makes sure that the list has its one column.
void SetLVDummyColumn(HWND page, int list_id);

// Whether a row is selected that is the user's to edit.
[[nodiscard]] bool IsCurrentItemEditable(HWND page);

// The path of the selected row. With none selected the row that was selected last is, again; empty without a
// row.
[[nodiscard]] std::wstring selected_path(HWND page);

// Loads the pictures for the page's DPI, shows them, and sizes the list's column.
void dlg_init_dpi_PDFSettings(HWND page);

}  // namespace pdf_settings
