// The common property-sheet service: what both sheets answer alike.
#pragma once

#include <memory>
#include <optional>

#include "UI_dll/ddi.h"
#include "UI_dll/sheet_information.h"

namespace cpsui {

// Runs a sheet through "compstui.dll": its result (1 = OK, 0 = cancelled), or nothing, traced, when the
// service is missing or fails.
[[nodiscard]] std::optional<DWORD> run_sheet(HWND window, PFNPROPSHEETUI sheet, void* header);

// Whether the registry value "HideSettingTab" or the administrator's "NoSettingTabs" leaves the settings page
// as the only one.
[[nodiscard]] bool only_settings_page();

// Gives the information's sheet its single page: the settings page alone, or the option page.
void set_up_page(SheetInformation& information, bool settings_page_only);

// Answers INIT: from now on the information is the sheet's, which frees it at DESTROY, also when this fails.
// Its title is the printer's name or, where that is unknown, the settings page's.
LONG open_sheet(PROPSHEETUI_INFO& info, LPARAM parameter, std::unique_ptr<SheetInformation> information,
                bool add_settings_page);

// The answer to a reason: 1 or 0, or -1. `information` is owned by the sheet from INIT to DESTROY. A sheet
// whose title is missing adds no common page.
LONG DefCommonUIFunc(PROPSHEETUI_INFO& info, LPARAM parameter, SheetInformation* information,
                     const wchar_t* title, bool add_settings_page);

}  // namespace cpsui

// The option items' callback: the items only tell, so it does nothing.
LONG APIENTRY NSETCallBack(CPSUICBPARAM* parameter) noexcept;
