#include "UI_dll/PDFSettings/controls.h"

#include <commctrl.h>

#include "UI_dll/PDFSettings/messages.h"

namespace pdf_settings {

namespace {

// The window property that holds the procedure which one of ours has replaced: other state may go before the
// window does.
constexpr wchar_t kProcedureBefore[] = L"ZR_UI80.ProcedureBefore";

}  // namespace

std::wstring window_text(HWND window) {
    const int length = GetWindowTextLengthW(window);
    if (length <= 0)
        return {};
    std::wstring text(static_cast<size_t>(length), L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), length + 1)));
    return text;
}

std::wstring control_text(HWND page, int control) {
    const HWND window = GetDlgItem(page, control);
    return window ? window_text(window) : std::wstring();
}

bool is_checked(HWND page, int control) noexcept {
    return IsDlgButtonChecked(page, control) == BST_CHECKED;
}

void set_checked(HWND page, int control, bool checked) noexcept {
    CheckDlgButton(page, control, checked ? BST_CHECKED : BST_UNCHECKED);
}

void enable(HWND page, int control, bool enabled) noexcept {
    if (const HWND window = GetDlgItem(page, control))
        EnableWindow(window, enabled);
}

void set_shown(HWND page, int control, bool shown) noexcept {
    if (const HWND window = GetDlgItem(page, control))
        ShowWindow(window, shown ? SW_SHOWNA : SW_HIDE);
}

void set_text(HWND page, int control, const std::wstring& text, size_t limit) {
    SendDlgItemMessageW(page, control, EM_SETLIMITTEXT, limit, 0);
    SetDlgItemTextW(page, control, text.c_str());
}

LRESULT add_item(HWND page, int control, const std::wstring& text) {
    return SendDlgItemMessageW(page, control, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void fill_list(HWND page, int control, UINT first, UINT count) {
    SendDlgItemMessageW(page, control, CB_RESETCONTENT, 0, 0);
    for (UINT id = first; id < first + count; ++id)
        add_item(page, control, dialog_text(id));
}

int selected(HWND page, int control, int otherwise) noexcept {
    const LRESULT position = SendDlgItemMessageW(page, control, CB_GETCURSEL, 0, 0);
    return position >= 0 ? static_cast<int>(position) : otherwise;
}

void select(HWND page, int control, int position) noexcept {
    SendDlgItemMessageW(page, control, CB_SETCURSEL, static_cast<WPARAM>(position), 0);
}

void set_cue(HWND page, int control, const std::wstring& text) {
    SendDlgItemMessageW(page, control, EM_SETCUEBANNER, TRUE, reinterpret_cast<LPARAM>(text.c_str()));
}

void pass_on_colours(HWND window) noexcept {
    for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        SendMessageW(child, WM_SYSCOLORCHANGE, 0, 0);
        pass_on_colours(child);
    }
}

RECT window_place(HWND window, HWND parent) noexcept {
    RECT place = {};
    GetWindowRect(window, &place);
    MapWindowPoints(HWND_DESKTOP, parent, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

void replace_procedure(HWND window, WNDPROC procedure) noexcept {
    const LONG_PTR before = window ? GetWindowLongPtrW(window, GWLP_WNDPROC) : 0;
    if (before && !GetPropW(window, kProcedureBefore) &&
        SetPropW(window, kProcedureBefore, reinterpret_cast<HANDLE>(before)))
        SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(procedure));
}

LRESULT call_replaced(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const auto before = reinterpret_cast<WNDPROC>(GetPropW(window, kProcedureBefore));
    if (message == WM_NCDESTROY)
        RemovePropW(window, kProcedureBefore);
    return before ? CallWindowProcW(before, window, message, wparam, lparam)
                  : DefWindowProcW(window, message, wparam, lparam);
}

void restore_procedure(HWND window, WNDPROC procedure) noexcept {
    if (GetWindowLongPtrW(window, GWLP_WNDPROC) == reinterpret_cast<LONG_PTR>(procedure))
        SetWindowLongPtrW(window, GWLP_WNDPROC,
                          reinterpret_cast<LONG_PTR>(RemovePropW(window, kProcedureBefore)));
}

RedrawOff::RedrawOff(HWND window) noexcept : window_(window) {
    SendMessageW(window_, WM_SETREDRAW, FALSE, 0);
}

RedrawOff::~RedrawOff() {
    SendMessageW(window_, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(window_, nullptr, TRUE);
}

}  // namespace pdf_settings
