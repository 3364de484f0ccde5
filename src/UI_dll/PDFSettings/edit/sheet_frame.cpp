#include "UI_dll/PDFSettings/edit/sheet_frame.h"

#include <commctrl.h>
#include <prsht.h>

#include <algorithm>

#include "UI_dll/PDFSettings/controls.h"
#include "UI_dll/PDFSettings/edit/page_table.h"
#include "UI_dll/PDFSettings/help.h"
#include "UI_dll/PDFSettings/messages.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

HWND tabs_of(HWND sheet) noexcept {
    return reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETTABCONTROL, 0, 0));
}

void move(HWND child, LONG left, LONG top) noexcept {
    SetWindowPos(child, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void grow(HWND window, SIZE by) noexcept {
    RECT place = {};
    GetWindowRect(window, &place);
    SetWindowPos(window, nullptr, 0, 0, place.right - place.left + by.cx, place.bottom - place.top + by.cy,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace

void fit_to_pages(HWND sheet) {
    const auto& pages = dialog_state().sheet.pages;
    RECT wanted = {0, 0, PAGE_WIDTH, PAGE_HEIGHT}, room = {};
    if (!MapDialogRect(pages[kGeneralPage], &wanted) || !GetClientRect(pages[kGeneralPage], &room))
        return;
    const SIZE lacks = {std::max<LONG>(0, wanted.right - room.right),
                        std::max<LONG>(0, wanted.bottom - room.bottom)};
    if (lacks.cx == 0 && lacks.cy == 0)
        return;
    const HWND tabs = tabs_of(sheet);
    for (HWND child = GetWindow(sheet, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        if (child == tabs || std::ranges::find(pages, child) != pages.end()) {
            grow(child, lacks);
        } else {
            const RECT place = window_place(child, sheet);
            move(child, place.left + lacks.cx, place.top + lacks.cy);
        }
    }
    grow(sheet, lacks);
    SendMessageW(sheet, DM_REPOSITION, 0, 0);  // its lower edge may have left the screen
}

// The sheet hides its Apply button and gives Cancel the place; ours checks the pages. It is shown again,
// twice as wide, and the row of buttons moves left by what it then takes.
void set_up_check_button(HWND sheet) {
    const HWND apply = GetDlgItem(sheet, kApplyButton);
    if (!apply)
        return;
    const HWND ok_button = GetDlgItem(sheet, IDOK), cancel_button = GetDlgItem(sheet, IDCANCEL);
    const RECT ok = window_place(ok_button, sheet);
    const RECT cancel = window_place(cancel_button, sheet);
    const RECT place = window_place(apply, sheet);
    const LONG width = 2 * (place.right - place.left);
    const LONG left = std::min(place.left, std::max(place.right, cancel.right) - width);
    SetWindowPos(apply, nullptr, left, place.top, width, place.bottom - place.top,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    SetWindowTextW(apply, dialog_text(IDS_CHECK_BUTTON).c_str());
    EnableWindow(apply, TRUE);
    if (const LONG overlap = cancel.right - left; overlap > 0) {
        const LONG gap = std::max<LONG>(0, cancel.left - ok.right);
        move(cancel_button, cancel.left - overlap - gap, cancel.top);
        move(ok_button, ok.left - overlap - gap, ok.top);
    }
    // The sheet greys the button once more before it stands.
    PostMessageW(dialog_state().sheet.pages[kGeneralPage], kSheetStands, 0, 0);
}

namespace {

// Shows a button of ours in the row, `place` buttons from its left end, where the keyboard comes to it after
// `before`; the last of the row. Null without memory.
HWND add_button(HWND sheet, HWND before, LONG place, INT_PTR id, UINT text) {
    const RECT like = window_place(GetDlgItem(sheet, IDOK), sheet);
    const LONG width = like.right - like.left;
    const LONG gap = std::max<LONG>(0, window_place(GetDlgItem(sheet, IDCANCEL), sheet).left - like.right);
    const HWND button = CreateWindowExW(
        0, WC_BUTTONW, dialog_text(text).c_str(), WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_PUSHBUTTON,
        window_place(tabs_of(sheet), sheet).left + place * (width + gap), like.top, width,
        like.bottom - like.top, sheet, reinterpret_cast<HMENU>(id), nullptr, nullptr);
    if (!button)
        return nullptr;
    SendMessageW(button, WM_SETFONT, static_cast<WPARAM>(SendMessageW(before, WM_GETFONT, 0, 0)), FALSE);
    SetWindowPos(button, before, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    return button;
}

}  // namespace

// Help is not the sheet's own, which is greyed with each page that does not ask for it. F1 is its key: the
// letters are all taken.
void add_buttons(HWND sheet) {
    const HWND check = GetDlgItem(sheet, kApplyButton);
    const HWND restore = check ? add_button(sheet, check, 0, IDC_RESTORE, IDS_RESTORE_BUTTON) : nullptr;
    if (restore && find_chapter(page_table()[kGeneralPage].chapter))
        add_button(sheet, restore, 1, IDC_SHEET_HELP, IDS_HELP_BUTTON);
}

}  // namespace pdf_settings
