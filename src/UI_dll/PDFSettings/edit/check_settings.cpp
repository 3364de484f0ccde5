#include "UI_dll/PDFSettings/edit/check_settings.h"

#include <commctrl.h>
#include <prsht.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "UI_dll/PDFSettings/controls.h"
#include "UI_dll/PDFSettings/dialog_state.h"
#include "UI_dll/PDFSettings/edit/page_table.h"
#include "UI_dll/PDFSettings/messages.h"
#include "common/qk/text.h"
#include "print_settings/differences.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

std::vector<Finding> find_faults() {
    struct Collecting {
        std::vector<Finding> findings;
        Collecting() { dialog_state().sheet.findings = &findings; }
        ~Collecting() { dialog_state().sheet.findings = nullptr; }
        Collecting(const Collecting&) = delete;
        Collecting& operator=(const Collecting&) = delete;
    } collecting;
    for (size_t page = 0; page < kPageCount; ++page)
        (void)check_page(static_cast<PageIndex>(page));
    return std::move(collecting.findings);
}

// --- Where it stands ---

bool is_button(HWND window) noexcept {
    wchar_t kind[16] = {};
    GetClassNameW(window, kind, static_cast<int>(std::size(kind)));
    return qk::equal_no_case(kind, WC_BUTTONW);
}

// The title of the group box around the control; empty without one.
std::wstring group_of(HWND control) {
    const HWND page = GetParent(control);
    const RECT inner = window_place(control, page);
    for (HWND before = control; (before = GetWindow(before, GW_HWNDPREV)) != nullptr;) {
        if (!is_button(before) || (GetWindowLongPtrW(before, GWL_STYLE) & BS_TYPEMASK) != BS_GROUPBOX)
            continue;
        const RECT box = window_place(before, page);
        if (inner.left > box.left && inner.top > box.top && inner.right < box.right &&
            inner.bottom < box.bottom)
            return window_text(before);
    }
    return {};
}

// What the page calls the control: its own text, or that of the label before it.
std::wstring name_of(HWND control) {
    return ps::display::plain(window_text(is_button(control) ? control : GetWindow(control, GW_HWNDPREV)));
}

// "Compression – Colour images – Reduced to", as the changes are told.
std::wstring place_of(const Finding& finding) {
    std::wstring place = window_text(finding.page);
    if (const HWND control = GetDlgItem(finding.page, finding.control))
        for (const std::wstring& part : {group_of(control), name_of(control)})
            if (!part.empty())
                place = ps::display::join(place, part);
    return place;
}

// Turns to the control, whatever the page in front thinks of itself.
void go_to(HWND sheet, const Finding& finding) {
    const auto& pages = dialog_state().sheet.pages;
    const auto index = std::ranges::find(pages, finding.page) - pages.begin();
    dialog_state().sheet.opening = true;
    SendMessageW(sheet, PSM_SETCURSEL, static_cast<WPARAM>(index), 0);
    dialog_state().sheet.opening = false;
    if (const HWND control = GetDlgItem(finding.page, finding.control))
        SetFocus(control);
}

}  // namespace

void check_settings(HWND sheet) {
    const std::vector<Finding> findings = find_faults();
    if (findings.empty()) {
        show_message(sheet, dialog_text(IDS_CHECKED), IDS_REFUSED, MB_OK | MB_ICONINFORMATION);
        return;
    }
    std::wstring text;
    for (const Finding& finding : findings)
        text += L"\n\n" + place_of(finding) + L": " + finding.text;
    show_message(sheet, dialog_text(IDS_CHECK_FOUND) + text, IDS_REFUSED, MB_OK | MB_ICONERROR);
    go_to(sheet, findings.front());
}

}  // namespace pdf_settings
