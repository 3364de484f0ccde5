// The settings page of the property sheets: the list of print settings.
#pragma once

#include <windows.h>

// The page's dialog procedure, for the template IDD_SETTINGS. The thread that shows the sheet.
INT_PTR CALLBACK settings_page_proc(HWND page, UINT message, WPARAM wparam, LPARAM lparam);
