// What the value's controls hold, and the scroll bar's moves.
#include <algorithm>

#include "companions/compstui/value_pane.h"

namespace compstui {

std::optional<LONG> ValuePane::find_selection(const OPTITEM& item) const {
    const HWND control = value();
    switch (kind_of(item)) {
        case ValueKind::radio:
            for (LONG i = 0; i < item.pOptType->Count; ++i) {
                if (IsDlgButtonChecked(page_, kOptionRadio + static_cast<int>(i)) == BST_CHECKED)
                    return i;
            }
            return std::nullopt;
        case ValueKind::list:
        case ValueKind::combo: {
            wchar_t name[16] = {};
            GetClassNameW(control, name, 16);
            const bool combo = CompareStringOrdinal(name, -1, WC_COMBOBOXW, -1, TRUE) == CSTR_EQUAL;
            const LRESULT at = SendMessageW(control, combo ? CB_GETCURSEL : LB_GETCURSEL, 0, 0);
            if (at < 0)
                return std::nullopt;
            return static_cast<LONG>(
                SendMessageW(control, combo ? CB_GETITEMDATA : LB_GETITEMDATA, static_cast<WPARAM>(at), 0));
        }
        case ValueKind::arrow: {
            BOOL whole = FALSE;
            const auto number = static_cast<LONG>(GetDlgItemInt(page_, kOptionValue, &whole, TRUE));
            return whole && range_of(item).holds(number) ? std::optional(number) : std::nullopt;
        }
        case ValueKind::track:
            return static_cast<LONG>(SendMessageW(control, TBM_GETPOS, 0, 0));
        case ValueKind::scroll:
            return GetScrollPos(control, SB_CTL);
        case ValueKind::check:
            return IsDlgButtonChecked(page_, kOptionValue) == BST_CHECKED ? 1 : 0;
        default:
            return std::nullopt;
    }
}

std::wstring ValuePane::typed_text(const OPTITEM& item) const {
    std::wstring text(edit_units(item), L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(value(), text.data(), static_cast<int>(text.size()))));
    return text;
}

void ValuePane::scroll(const OPTITEM& item, WPARAM how) {
    if (kind_of(item) != ValueKind::scroll)
        return;
    const Range range = range_of(item);
    const auto page = std::clamp<LONG>(static_cast<LONG>(parameters_of(item)[2].lParam), 1, 1000000);
    LONG at = GetScrollPos(value(), SB_CTL);
    switch (LOWORD(how)) {
        case SB_LINELEFT:
            at -= at > range.low;
            break;
        case SB_LINERIGHT:
            at += at < range.high;
            break;
        case SB_PAGELEFT:
            at = at - range.low > page ? at - page : range.low;
            break;
        case SB_PAGERIGHT:
            at = range.high - at > page ? at + page : range.high;
            break;
        case SB_LEFT:
            at = range.low;
            break;
        case SB_RIGHT:
            at = range.high;
            break;
        case SB_THUMBPOSITION:
        case SB_THUMBTRACK: {
            SCROLLINFO info = {sizeof info, SIF_TRACKPOS, 0, 0, 0, 0, 0};
            GetScrollInfo(value(), SB_CTL, &info);
            at = info.nTrackPos;
            break;
        }
        default:
            return;
    }
    SetScrollPos(value(), SB_CTL, range.nearest(at), TRUE);
}

}  // namespace compstui
