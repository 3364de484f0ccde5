// The rows of the settings page's list.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "UI_dll/PDFSettings/list_rules.h"

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

// The list control of the page or of its parent; null, traced, when neither has it.
[[nodiscard]] HWND find_list(HWND page);

// As wide as the list without its scroll bar, so that no horizontal one appears.
void size_column(HWND list);

// The selected row, or -1.
[[nodiscard]] int selected_row(HWND page);

// The selected row's entry; null when none is selected. The list's, until it is filled again.
[[nodiscard]] const SettingEntry* selected_entry(HWND page);

// Loads the selected row's file for editing, and shows what can be done with it.
void show_selected(HWND page);

// Takes every row out.
void forget_rows(HWND page);

// Takes a row out of the list, and selects its neighbour.
void remove_row(HWND page, int row);

// The printer of the sheet on this thread; empty when there is none.
[[nodiscard]] std::wstring sheet_printer();

// Whether the setting file that is chosen for the printer exists. True when none is chosen.
[[nodiscard]] bool is_setting_file_there(const std::wstring& printer);

}  // namespace pdf_settings
