#include "UI_dll/PDFSettings/exchange.h"

#include "UI_dll/PDFSettings/dialog_state.h"
#include "UI_dll/PDFSettings/page.h"
#include "common/text.h"
#include "common/wipe.h"

namespace pdf_settings {

namespace {

std::wstring text_of(HWND window) {
    const int length = GetWindowTextLengthW(window);
    if (length <= 0)
        return {};
    std::wstring text(static_cast<size_t>(length), L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), length + 1)));
    return text;
}

// What a control shows: a mark, the selected position or a text.
std::wstring shown_by(HWND control) {
    wchar_t name[20] = {};
    GetClassNameW(control, name, static_cast<int>(std::size(name)));
    if (qk::equal_no_case(name, WC_BUTTONW))
        return std::to_wstring(SendMessageW(control, BM_GETCHECK, 0, 0));
    const bool is_list = (GetWindowLongPtrW(control, GWL_STYLE) & CBS_DROPDOWNLIST) == CBS_DROPDOWNLIST;
    if (is_list && (qk::equal_no_case(name, WC_COMBOBOXW) || qk::equal_no_case(name, WC_COMBOBOXEXW)))
        return std::to_wstring(SendMessageW(control, CB_GETCURSEL, 0, 0));
    return text_of(control);
}

}  // namespace

std::wstring control_text(HWND page, int control) {
    const HWND window = GetDlgItem(page, control);
    return window ? text_of(window) : std::wstring();
}

bool is_checked(HWND page, int control) noexcept {
    return IsDlgButtonChecked(page, control) == BST_CHECKED;
}

void check(HWND page, int control, bool checked) noexcept {
    CheckDlgButton(page, control, checked ? BST_CHECKED : BST_UNCHECKED);
}

void enable(HWND page, int control, bool enabled) noexcept {
    if (const HWND window = GetDlgItem(page, control))
        EnableWindow(window, enabled);
}

void show(HWND page, int control, bool shown) noexcept {
    if (const HWND window = GetDlgItem(page, control))
        ShowWindow(window, shown ? SW_SHOWNA : SW_HIDE);
}

void fill_list(HWND page, int control, UINT first, UINT count) {
    SendDlgItemMessageW(page, control, CB_RESETCONTENT, 0, 0);
    for (UINT id = first; id < first + count; ++id) {
        const std::wstring text = dialog_text(id);
        SendDlgItemMessageW(page, control, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
}

void remember_controls(HWND page) {
    auto& shown = dialog_state().shown;
    for (HWND control = GetWindow(page, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT))
        shown[control] = shown_by(control);
}

void forget_controls() {
    for (auto& [control, text] : dialog_state().shown)
        qk::wipe(text);  // some show passwords
    dialog_state().shown.clear();
}

bool is_touched(HWND page, int control) {
    const HWND window = GetDlgItem(page, control);
    const auto& shown = dialog_state().shown;
    const auto first = shown.find(window);
    if (first == shown.end())
        return false;
    std::wstring now = shown_by(window);
    const qk::WipedAtEnd wiped(now);
    return first->second != now;
}

int selected(HWND page, int control, int otherwise) noexcept {
    const LRESULT position = SendDlgItemMessageW(page, control, CB_GETCURSEL, 0, 0);
    return position >= 0 ? static_cast<int>(position) : otherwise;
}

void select(HWND page, int control, int position) noexcept {
    SendDlgItemMessageW(page, control, CB_SETCURSEL, static_cast<WPARAM>(position), 0);
}

}  // namespace pdf_settings
