// The drawing of the page that a print setting makes.
#pragma once

#include <windows.h>

#include "print_settings/PrintSettings.h"

namespace pdf_settings {

// Draws the preview of the list page anew, for the setting that is loaded.
void SetViewBox(HWND list_page);

// Draws the page of the setting that is loaded (WM_DRAWITEM of IDC_SETTINGS_PREVIEW).
void draw_view_box(const DRAWITEMSTRUCT& item);

// Draws the page of the setting into `area`: paper, orientation and scale, watermark, trim and bleed box,
// with `around` beside them. Without flicker; leaves `dc` as it was.
void draw_page(HDC dc, const RECT& area, HBRUSH around,
               const Corvanta::Vantrix::PrintSettings::PrintSettings& setting);

// The same on an owner-drawn control of a dialog, whose background goes on around the page.
void draw_page(const DRAWITEMSTRUCT& item, const Corvanta::Vantrix::PrintSettings::PrintSettings& setting);

}  // namespace pdf_settings
