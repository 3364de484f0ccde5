#include "companions/compstui/option_list.h"

#include "companions/compstui/strings.h"

namespace compstui {

namespace {

// The icon of the chosen parameter; hidden where the caller's library has none of that number.
void show_icon(HWND icon, const OPTITEM& item, HINSTANCE instance) {
    const auto parameters = parameters_of(item);
    const auto chosen = static_cast<size_t>(item.Sel);
    const ULONG_PTR id = chosen < parameters.size() ? parameters[chosen].IconID : 0;
    const bool found = has_icon(instance, id);
    if (found)
        SendMessageW(icon, STM_SETICON, reinterpret_cast<WPARAM>(LoadIconW(instance, MAKEINTRESOURCEW(id))),
                     0);
    ShowWindow(icon, found ? SW_SHOWNA : SW_HIDE);
}

void put(HWND list, const std::wstring& text, LONG value, LONG chosen) {
    const LRESULT at = SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
    SendMessageW(list, LB_SETITEMDATA, static_cast<WPARAM>(at), value);
    if (value == chosen)
        SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(at), 0);
}

}  // namespace

void show_list(HWND page, int first, const OPTITEM& item, HINSTANCE instance, bool enabled) {
    clear_list(page, first);
    const std::wstring name = text_of(item.pName, instance);
    SetDlgItemTextW(page, first + kListTitle, name.c_str());
    if (!(item.Flags & OPTIF_NO_GROUPBOX_NAME))
        SetDlgItemTextW(page, first + kListFrame, name.c_str());
    const auto parameters = parameters_of(item);
    const HWND list = GetDlgItem(page, first + kListBox);
    if (!parameters.empty() && (item.pOptType->Style & OTS_LBCB_INCL_ITEM_NONE))
        put(list, std::wstring(own_string(IDS_CPSUI_LBCB_NOSEL)), -1, item.Sel);
    for (size_t i = 0; i < parameters.size(); ++i)
        if (!(parameters[i].Flags & OPTPF_HIDE))
            put(list, text_of(parameters[i].pData, instance), static_cast<LONG>(i), item.Sel);
    EnableWindow(list, enabled && !parameters.empty());
    show_icon(GetDlgItem(page, first + kListIcon), item, instance);
}

void clear_list(HWND page, int first) {
    for (const int text : {kListFrame, kListTitle})
        SetDlgItemTextW(page, first + text, L"");
    const HWND list = GetDlgItem(page, first + kListBox);
    SendMessageW(list, LB_RESETCONTENT, 0, 0);
    EnableWindow(list, FALSE);
    ShowWindow(GetDlgItem(page, first + kListIcon), SW_HIDE);
}

std::optional<LONG> find_selection(HWND page, int first) {
    const LRESULT at = SendDlgItemMessageW(page, first + kListBox, LB_GETCURSEL, 0, 0);
    if (at < 0)
        return std::nullopt;
    return static_cast<LONG>(
        SendDlgItemMessageW(page, first + kListBox, LB_GETITEMDATA, static_cast<WPARAM>(at), 0));
}

HWND add_control(HWND page, const wchar_t* window_class, DWORD style, int id, RECT units) {
    MapDialogRect(page, &units);
    const HWND control = CreateWindowExW(style & WS_TABSTOP ? WS_EX_CLIENTEDGE : 0, window_class, L"",
                                         style | WS_CHILD | WS_VISIBLE, units.left, units.top,
                                         units.right - units.left, units.bottom - units.top, page,
                                         reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
    SendMessageW(control, WM_SETFONT, static_cast<WPARAM>(SendMessageW(page, WM_GETFONT, 0, 0)), FALSE);
    return control;
}

void make_list(HWND page, int first) {
    add_control(page, WC_BUTTONW, BS_GROUPBOX, first + kListFrame, {7, 113, 245, 211});
    add_control(page, WC_STATICW, SS_NOPREFIX, first + kListTitle, {42, 125, 239, 133});
    add_control(page, WC_LISTBOXW, LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_VSCROLL | WS_TABSTOP,
                first + kListBox, {42, 137, 239, 205});
    add_control(page, WC_STATICW, SS_ICON, first + kListIcon, {14, 137, 35, 157});
}

}  // namespace compstui
