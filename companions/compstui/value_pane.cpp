#include "companions/compstui/value_pane.h"

#include <algorithm>

#include "common/memory_probe.h"
#include "companions/compstui/strings.h"

namespace compstui {

namespace {

constexpr LONG kRow = 14;  // dialog units, as all sizes here
constexpr LONG kMargin = 6;
constexpr LONG kTop = 12;  // below the frame's title

RECT row(LONG y, LONG width, LONG height = kRow - 2) {
    return {kMargin, y, width - kMargin, y + height};
}

// Pixels of 100 dialog units on `page`.
SIZE hundred_units(HWND page) noexcept {
    RECT units = {0, 0, 100, 100};
    MapDialogRect(page, &units);
    return {std::max(units.right, 1L), std::max(units.bottom, 1L)};
}

std::wstring push_text(const std::wstring& name, bool setup, bool dots) {
    std::wstring text = name;
    if (setup)
        text.append(L" ").append(own_string(IDS_CPSUI_SETUP));
    return dots ? text + L"..." : text;
}

bool has_hidden_none(const OPTITEM& item) noexcept {
    return item.pOptType->Style & OTS_LBCB_INCL_ITEM_NONE;
}

}  // namespace

void ValuePane::clear() noexcept {
    for (HWND control : controls_)
        DestroyWindow(control);
    controls_.clear();
    SetWindowTextW(frame_, L"");
}

void ValuePane::show(const OPTITEM& item, HINSTANCE instance, bool enabled, bool extra_enabled) {
    filling_ = true;
    clear();
    GetWindowRect(frame_, &area_);
    MapWindowPoints(nullptr, page_, reinterpret_cast<POINT*>(&area_), 2);
    const SIZE hundred = hundred_units(page_);
    units_ = {(area_.right - area_.left) * 100 / hundred.cx, (area_.bottom - area_.top) * 100 / hundred.cy};
    disabled_ = enabled ? 0 : WS_DISABLED;
    if (!(item.Flags & OPTIF_NO_GROUPBOX_NAME))
        SetWindowTextW(frame_, text_of(item.pName, instance).c_str());
    fill(item, instance);
    add_extra(item, instance, extra_enabled);
    filling_ = false;
}

HWND ValuePane::add(const wchar_t* window_class, const std::wstring& text, DWORD style, int id, RECT units) {
    MapDialogRect(page_, &units);
    const HWND control = CreateWindowExW(
        style & WS_BORDER ? WS_EX_CLIENTEDGE : 0, window_class, text.c_str(),
        (style & ~static_cast<DWORD>(WS_BORDER)) | disabled_ | WS_CHILD | WS_VISIBLE, area_.left + units.left,
        area_.top + units.top, units.right - units.left, units.bottom - units.top, page_,
        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
    if (!control)
        return nullptr;
    controls_.push_back(control);
    SendMessageW(control, WM_SETFONT, static_cast<WPARAM>(SendMessageW(page_, WM_GETFONT, 0, 0)), FALSE);
    SetWindowPos(control, frame_, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    return control;
}

void ValuePane::fill(const OPTITEM& item, HINSTANCE instance) {
    switch (kind_of(item)) {
        case ValueKind::none:
            return;
        case ValueKind::radio:
            return add_radios(item, instance);
        case ValueKind::list:
            return add_list(item, instance, (item.pOptType->Style & OTS_LBCB_PROPPAGE_LBUSECB) != 0);
        case ValueKind::combo:
            return add_list(item, instance, !(item.pOptType->Style & OTS_LBCB_PROPPAGE_CBUSELB));
        case ValueKind::arrow:
            return add_arrow(item, instance);
        case ValueKind::track:
            return add_bar(item, instance, true);
        case ValueKind::scroll:
            return add_bar(item, instance, false);
        case ValueKind::edit:
            return add_edit(item, instance);
        case ValueKind::push:
            return add_push(item, instance);
        case ValueKind::check:
            return add_check(item, instance);
    }
}

void ValuePane::add_radios(const OPTITEM& item, HINSTANCE instance) {
    const auto parameters = parameters_of(item);
    LONG y = kTop;
    for (size_t i = 0; i < parameters.size(); ++i) {
        const OPTPARAM& state = parameters[i];
        if (state.Flags & OPTPF_HIDE)
            continue;
        const DWORD first = y == kTop ? WS_GROUP | WS_TABSTOP : 0;
        const DWORD off = state.Flags & OPTPF_DISABLED ? WS_DISABLED : 0;
        const HWND radio = add(WC_BUTTONW, text_of(state.pData, instance), BS_AUTORADIOBUTTON | first | off,
                               kOptionRadio + static_cast<int>(i), row(y, units_.cx));
        if (item.Sel == static_cast<LONG>(i))
            SendMessageW(radio, BM_SETCHECK, BST_CHECKED, 0);
        y += kRow;
    }
}

void ValuePane::add_list(const OPTITEM& item, HINSTANCE instance, bool combo) {
    const bool sorted = item.pOptType->Style & OTS_LBCB_SORT;
    const bool has_extra = find_extra_push(item) || find_extra_check(item);
    constexpr LONG kMostOpen = 120;  // of a combo box with its list
    const LONG room = std::max<LONG>(units_.cy - kTop - kMargin - (has_extra ? kRow + kMargin : 0), 2 * kRow);
    const DWORD style = combo ? CBS_DROPDOWNLIST | (sorted ? CBS_SORT : 0)
                              : LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_BORDER | (sorted ? LBS_SORT : 0);
    const HWND list = add(combo ? WC_COMBOBOXW : WC_LISTBOXW, L"", style | WS_VSCROLL | WS_TABSTOP,
                          kOptionValue, row(kTop, units_.cx, combo ? std::min(room, kMostOpen) : room));
    const auto put = [&](const std::wstring& text, LONG selection) {
        const LRESULT at = SendMessageW(list, combo ? CB_ADDSTRING : LB_ADDSTRING, 0,
                                        reinterpret_cast<LPARAM>(text.c_str()));
        SendMessageW(list, combo ? CB_SETITEMDATA : LB_SETITEMDATA, static_cast<WPARAM>(at), selection);
    };
    if (has_hidden_none(item))
        put(std::wstring(own_string(IDS_CPSUI_LBCB_NOSEL)), -1);
    const auto parameters = parameters_of(item);
    for (size_t i = 0; i < parameters.size(); ++i) {
        if (!(parameters[i].Flags & OPTPF_HIDE))
            put(text_of(parameters[i].pData, instance), static_cast<LONG>(i));
    }
    const LRESULT count = SendMessageW(list, combo ? CB_GETCOUNT : LB_GETCOUNT, 0, 0);
    for (LRESULT i = 0; i < count; ++i) {
        const WPARAM at = static_cast<WPARAM>(i);
        if (static_cast<LONG>(SendMessageW(list, combo ? CB_GETITEMDATA : LB_GETITEMDATA, at, 0)) == item.Sel)
            SendMessageW(list, combo ? CB_SETCURSEL : LB_SETCURSEL, at, 0);
    }
}

void ValuePane::add_arrow(const OPTITEM& item, HINSTANCE instance) {
    const Range range = range_of(item);
    RECT place = row(kTop, units_.cx);
    place.right = place.left + 40;
    const DWORD digits = range.low < 0 ? 0 : ES_NUMBER;
    const HWND edit =
        add(WC_EDITW, L"", ES_AUTOHSCROLL | digits | WS_BORDER | WS_TABSTOP, kOptionValue, place);
    const HWND arrow =
        add(UPDOWN_CLASSW, L"", UDS_SETBUDDYINT | UDS_ALIGNRIGHT | UDS_ARROWKEYS | UDS_NOTHOUSANDS,
            kOptionArrow, place);
    SendMessageW(arrow, UDM_SETBUDDY, reinterpret_cast<WPARAM>(edit), 0);
    SendMessageW(arrow, UDM_SETRANGE32, static_cast<WPARAM>(range.low), range.high);
    SendMessageW(arrow, UDM_SETPOS32, 0, range.nearest(item.Sel));
    const auto parameters = parameters_of(item);
    add(WC_STATICW, text_of(parameters[0].pData, instance), 0, kOptionLow,
        {place.right + 4, kTop + 2, units_.cx - kMargin, kTop + kRow});
    add(WC_STATICW, text_of(parameters[1].pData, instance), 0, kOptionHigh, row(kTop + kRow + 2, units_.cx));
}

void ValuePane::add_bar(const OPTITEM& item, HINSTANCE instance, bool track) {
    const Range range = range_of(item);
    const auto parameters = parameters_of(item);
    const LONG step = std::clamp<LONG>(static_cast<LONG>(parameters[2].lParam), 1, 1000000);
    const HWND bar =
        add(track ? TRACKBAR_CLASSW : WC_SCROLLBARW, L"", (track ? TBS_HORZ : SBS_HORZ) | WS_TABSTOP,
            kOptionValue, row(kTop, units_.cx, track ? kRow + 4 : 10));
    const LONG at = range.nearest(item.Sel);
    if (track) {
        SendMessageW(bar, TBM_SETRANGEMIN, FALSE, range.low);
        SendMessageW(bar, TBM_SETRANGEMAX, FALSE, range.high);
        SendMessageW(bar, TBM_SETPAGESIZE, 0, step);
        SendMessageW(bar, TBM_SETPOS, TRUE, at);
    } else {
        // The thumb stands for one value: the last one is reached.
        SCROLLINFO info = {sizeof info, SIF_RANGE | SIF_POS, range.low, range.high, 0, at, 0};
        SetScrollInfo(bar, SB_CTL, &info, TRUE);
    }
    const LONG below = kTop + kRow + 6;
    const LONG middle = units_.cx / 2;
    add(WC_STATICW, text_of(parameters[1].pData, instance), 0, kOptionLow,
        {kMargin, below, middle, below + kRow});
    add(WC_STATICW, text_of(parameters[2].pData, instance), SS_RIGHT, kOptionHigh,
        {middle, below, units_.cx - kMargin, below + kRow});
    add(WC_STATICW, value_text(item, instance), SS_CENTER, kOptionLabel, row(below + kRow, units_.cx));
}

void ValuePane::add_edit(const OPTITEM& item, HINSTANCE instance) {
    const auto parameters = parameters_of(item);
    const HWND edit = add(WC_EDITW, qk::text_at(item.pSel, edit_units(item)),
                          ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP, kOptionValue, row(kTop, units_.cx));
    SendMessageW(edit, EM_LIMITTEXT, edit_units(item) - 1, 0);
    add(WC_STATICW, text_of(parameters[0].pData, instance), 0, kOptionLow, row(kTop + kRow + 2, units_.cx));
}

void ValuePane::add_push(const OPTITEM& item, HINSTANCE instance) {
    const WORD style = item.pOptType->Style;
    add(WC_BUTTONW,
        push_text(text_of(item.pName, instance), style & OTS_PUSH_INCL_SETUP_TITLE,
                  !(style & OTS_PUSH_NO_DOT_DOT_DOT)),
        BS_PUSHBUTTON | WS_TABSTOP, kOptionValue, row(kTop, units_.cx, kRow));
}

void ValuePane::add_check(const OPTITEM& item, HINSTANCE instance) {
    std::wstring text = text_of(parameters_of(item)[0].pData, instance);
    if (text.empty())
        text = text_of(item.pName, instance);
    const HWND box = add(WC_BUTTONW, text, BS_AUTOCHECKBOX | WS_TABSTOP, kOptionValue, row(kTop, units_.cx));
    SendMessageW(box, BM_SETCHECK, item.Sel != 0 ? BST_CHECKED : BST_UNCHECKED, 0);
}

void ValuePane::add_extra(const OPTITEM& item, HINSTANCE instance, bool enabled) {
    disabled_ = enabled ? 0 : WS_DISABLED;
    const RECT place = row(units_.cy - kRow - kMargin, units_.cx, kRow);
    if (const EXTPUSH* push = find_extra_push(item)) {
        add(WC_BUTTONW,
            push_text(text_of(push->pTitle, instance), push->Flags & EPF_INCL_SETUP_TITLE,
                      !(push->Flags & EPF_NO_DOT_DOT_DOT)),
            BS_PUSHBUTTON | WS_TABSTOP, kOptionExtra, place);
    } else if (const EXTCHKBOX* check = find_extra_check(item)) {
        const HWND box = add(WC_BUTTONW, text_of(check->pTitle, instance), BS_AUTOCHECKBOX | WS_TABSTOP,
                             kOptionExtra, place);
        SendMessageW(box, BM_SETCHECK, item.Flags & OPTIF_ECB_CHECKED ? BST_CHECKED : BST_UNCHECKED, 0);
    }
}

}  // namespace compstui
