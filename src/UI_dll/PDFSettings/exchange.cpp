#include "UI_dll/PDFSettings/exchange.h"

#include "UI_dll/PDFSettings/page.h"

namespace pdf_settings {

std::wstring control_text(HWND page, int control) {
    const HWND window = GetDlgItem(page, control);
    const int length = window ? GetWindowTextLengthW(window) : 0;
    if (length <= 0)
        return {};
    std::wstring text(static_cast<size_t>(length), L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), length + 1)));
    return text;
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

int selected(HWND page, int control, int otherwise) noexcept {
    const LRESULT position = SendDlgItemMessageW(page, control, CB_GETCURSEL, 0, 0);
    return position >= 0 ? static_cast<int>(position) : otherwise;
}

void select(HWND page, int control, int position) noexcept {
    SendDlgItemMessageW(page, control, CB_SETCURSEL, static_cast<WPARAM>(position), 0);
}

}  // namespace pdf_settings
