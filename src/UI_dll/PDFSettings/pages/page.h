// The pages of the edit sheet: what each brings.
#pragma once

#include <windows.h>

#include <prsht.h>

#include "UI_dll/PDFSettings/dialog_state.h"

namespace pdf_settings {

// The operations of one page. All are called on the sheet's thread; null: the page does nothing there.
struct PageOperations {
    PageIndex index;
    UINT template_id;  // dialog template
    UINT title_id;     // string resource

    // WM_INITDIALOG: prepares the controls and shows the edited setting.
    void (*init)(HWND page);

    // Shows that setting in the controls, as if its values had been entered; after `init`.
    void (*show)(HWND page, const Setting& setting);

    // WM_COMMAND: `control` tells of `notification`.
    void (*command)(HWND page, int control, int notification) = nullptr;

    // PSN_SETACTIVE.
    void (*set_active)(HWND page) = nullptr;

    // Whether the controls are valid; if not, it has said so and put the focus on the offending one.
    // PSN_KILLACTIVE, before `apply`, and with all other pages' when the setting is saved.
    bool (*check)(HWND page) = nullptr;

    // PSN_APPLY, after a check that has passed: writes the controls into the edited setting.
    void (*apply)(HWND page);

    // Every other message. The dialog procedure's result.
    INT_PTR (*other)(HWND page, UINT message, WPARAM wparam, LPARAM lparam) = nullptr;
};

// The pages, each in a source of its own.
extern const PageOperations kGeneral, kPDFVersion, kColor, kCompress, kFont, kSecurities, kWaterMark,
    kOpenAction, kInfo;

// The sibling with that title (a string resource): null when there is none.
[[nodiscard]] HWND find_sibling_page(HWND page, UINT title_id);

}  // namespace pdf_settings
