// Setting files that come and go, and names that change, from the list page.
#pragma once

#include <windows.h>

#include <shellapi.h>

#include <span>
#include <string>

namespace pdf_settings {

// Asks for setting files, one or several, and brings them in. Of more than the dialog can tell none.
void import_asked(HWND list_page);

// Brings files in as new settings of the user's, each under a free name: no file is written over. Selects the
// last one; what could not be brought in, or not as it is, is told in one box.
void import_files(HWND list_page, std::span<const std::wstring> paths);

// The same for files that were dropped (WM_DROPFILES), which it releases.
void import_dropped(HWND list_page, HDROP files);

// Asks where to, and copies the selected row's file there. A file that is there stays.
void export_selected(HWND list_page);

// The row's text becomes an edit (F2). Nothing for a row that is not the user's, or cannot be read.
void begin_rename(HWND list_page);

// Gives the setting in the file another name, and fills the list again. Says so when it cannot.
void rename_setting(HWND list_page, const std::wstring& path, const std::wstring& name);

}  // namespace pdf_settings
