#include "UI_dll/PDFSettings/pages/exchange.h"

#include "UI_dll/PDFSettings/dialog_state.h"
#include "common/qk/text.h"
#include "common/qk/wipe.h"

namespace pdf_settings {

namespace {

// What a control shows: a mark, the selected position or a text.
std::wstring shown_by(HWND control) {
    wchar_t name[20] = {};
    GetClassNameW(control, name, static_cast<int>(std::size(name)));
    if (qk::equal_no_case(name, WC_BUTTONW))
        return std::to_wstring(SendMessageW(control, BM_GETCHECK, 0, 0));
    const bool is_list = (GetWindowLongPtrW(control, GWL_STYLE) & CBS_DROPDOWNLIST) == CBS_DROPDOWNLIST;
    if (is_list && (qk::equal_no_case(name, WC_COMBOBOXW) || qk::equal_no_case(name, WC_COMBOBOXEXW)))
        return std::to_wstring(SendMessageW(control, CB_GETCURSEL, 0, 0));
    return window_text(control);
}

}  // namespace

void remember_controls(HWND page) {
    auto& shown = dialog_state().sheet.shown;
    for (HWND control = GetWindow(page, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT))
        shown[control] = qk::SecretText(shown_by(control));
}

bool is_touched(HWND page, int control) {
    const HWND window = GetDlgItem(page, control);
    const auto& shown = dialog_state().sheet.shown;
    const auto first = shown.find(window);
    if (first == shown.end())
        return false;
    const qk::SecretText now(shown_by(window));  // it may be a password
    return first->second.get() != now.get();
}

void load_number(HWND page, int control, int up_down, int low, int high, int value) {
    SendDlgItemMessageW(page, control, EM_SETLIMITTEXT, std::to_wstring(high).size(), 0);
    if (up_down)
        SendDlgItemMessageW(page, up_down, UDM_SETRANGE32, static_cast<WPARAM>(low), high);
    SetDlgItemTextW(page, control, std::to_wstring(value).c_str());
}

}  // namespace pdf_settings
