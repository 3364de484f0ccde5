#include "companions/compstui/option_item.h"

#include <algorithm>
#include <array>

#include "common/memory_probe.h"
#include "companions/compstui/strings.h"

namespace compstui {

namespace {

struct TypeRule {
    ValueKind kind;
    WORD parameters;  // how many the type has; 0 for its own count
};

// By TVOT_*.
constexpr std::array<TypeRule, TVOT_LAST + 1> kRules = {{{ValueKind::radio, 2},
                                                         {ValueKind::radio, 3},
                                                         {ValueKind::arrow, 2},
                                                         {ValueKind::track, 3},
                                                         {ValueKind::scroll, 3},
                                                         {ValueKind::list, 0},
                                                         {ValueKind::combo, 0},
                                                         {ValueKind::edit, 2},
                                                         {ValueKind::push, 1},
                                                         {ValueKind::check, 1},
                                                         {ValueKind::combo, 0}}};

LONG check_edit(const OPTITEM& item, const OPTTYPE& type) noexcept {
    const ULONG_PTR units = type.pOptParam[1].IconID;
    if (units == 0 || units > 0xFFFF)
        return ERR_CPSUI_INVALID_EDITBOX_BUF_SIZE;
    return qk::is_writable(item.pSel, units * sizeof(wchar_t)) ? 0 : ERR_CPSUI_INVALID_EDITBOX_PSEL;
}

LONG check_type(const OPTITEM& item) noexcept {
    const OPTTYPE& type = *item.pOptType;
    if (!qk::is_readable(&type, sizeof type) || type.cbSize != sizeof type)
        return ERR_CPSUI_INVALID_OPTTYPE_CBSIZE;
    if (type.Type == TVOT_NONE)
        return 0;
    if (type.Type > TVOT_LAST)
        return ERR_CPSUI_INVALID_TVOT_TYPE;
    const TypeRule& rule = kRules[type.Type];
    if (type.Count == 0 || (rule.parameters != 0 && type.Count != rule.parameters))
        return ERR_CPSUI_INVALID_OPTTYPE_COUNT;
    if (!qk::is_readable(type.pOptParam, type.Count * sizeof(OPTPARAM)))
        return ERR_CPSUI_NULL_POPTPARAM;
    for (const OPTPARAM& parameter : std::span(type.pOptParam, type.Count)) {
        if (parameter.cbSize != sizeof parameter)
            return ERR_CPSUI_INVALID_OPTPARAM_CBSIZE;
    }
    if (rule.kind == ValueKind::push && type.Style > PUSHBUTTON_TYPE_HTSETUP && !(type.Style & 0x00E0))
        return ERR_CPSUI_INVALID_PUSHBUTTON_TYPE;
    return rule.kind == ValueKind::edit ? check_edit(item, type) : 0;
}

LONG check_extension(const OPTITEM& item) noexcept {
    if (!item.pExtChkBox)
        return 0;
    if (item.Flags & OPTIF_EXT_IS_EXTPUSH) {
        const EXTPUSH* push = item.pExtPush;
        if (!qk::is_readable(push, sizeof *push) || push->cbSize != sizeof *push)
            return ERR_CPSUI_INVALID_EXTPUSH_CBSIZE;
        const bool dialog = push->Flags & EPF_PUSH_TYPE_DLGPROC;
        if (dialog && !push->DlgProc)
            return ERR_CPSUI_NULL_EXTPUSH_DLGPROC;
        if (dialog && !push->hDlgTemplate)
            return ERR_CPSUI_NO_EXTPUSH_DLGTEMPLATEID;
        return dialog || push->pfnCallBack ? 0 : ERR_CPSUI_NULL_EXTPUSH_CALLBACK;
    }
    const EXTCHKBOX* check = item.pExtChkBox;
    if (!qk::is_readable(check, sizeof *check) || check->cbSize != sizeof *check)
        return ERR_CPSUI_INVALID_ECB_CBSIZE;
    return check->pTitle ? 0 : ERR_CPSUI_NULL_ECB_PTITLE;
}

LONG check_item(const OPTITEM& item, size_t pages) noexcept {
    if (item.cbSize != sizeof item)
        return ERR_CPSUI_INVALID_OPTITEM_CBSIZE;
    if (!item.pName)
        return ERR_CPSUI_NULL_OPTITEMNAME;
    if (item.DlgPageIdx >= pages)
        return ERR_CPSUI_INVALID_DLGPAGEIDX;
    if (const LONG wrong = item.pOptType ? check_type(item) : 0; wrong < 0)
        return wrong;
    return check_extension(item);
}

std::wstring check_text(const OPTITEM& item, HINSTANCE instance) {
    constexpr UINT kUnchecked[] = {IDS_CPSUI_FALSE, IDS_CPSUI_NO,  IDS_CPSUI_OFF, IDS_CPSUI_FALSE,
                                   IDS_CPSUI_NO,    IDS_CPSUI_OFF, IDS_CPSUI_NONE};
    constexpr UINT kChecked[] = {IDS_CPSUI_TRUE, IDS_CPSUI_YES, IDS_CPSUI_ON};
    const size_t style = std::min<size_t>(item.pOptType->Style, CHKBOXS_NONE_PDATA);
    if (item.Sel == 0)
        return std::wstring(own_string(kUnchecked[style]));
    if (style < std::size(kChecked))
        return std::wstring(own_string(kChecked[style]));
    return text_of(parameters_of(item)[0].pData, instance);
}

std::wstring number_text(const OPTITEM& item, HINSTANCE instance) {
    // The middle number of the third parameter scales what a track or scroll bar shows.
    const auto parameters = parameters_of(item);
    LONGLONG shown = item.Sel;
    if (parameters.size() > 2 && parameters[2].IconID > 1)
        shown *= static_cast<LONG>(parameters[2].IconID);
    const std::wstring unit = text_of(parameters[0].pData, instance);
    const bool space = !unit.empty() && !(item.pOptType->Flags & OPTTF_NOSPACE_BEFORE_POSTFIX);
    return std::to_wstring(shown) + (space ? L" " : L"") + unit;
}

}  // namespace

LONG check_items(std::span<const OPTITEM> items, size_t pages) noexcept {
    if (items.empty())
        return 0;
    if (!qk::is_writable(const_cast<OPTITEM*>(items.data()), items.size_bytes()))
        return ERR_CPSUI_NULL_POPTITEM;
    for (const OPTITEM& item : items) {
        if (const LONG wrong = check_item(item, pages); wrong < 0)
            return wrong;
    }
    return 0;
}

ValueKind kind_of(const OPTITEM& item) noexcept {
    return item.pOptType && item.pOptType->Type <= TVOT_LAST ? kRules[item.pOptType->Type].kind
                                                             : ValueKind::none;
}

bool is_number(ValueKind kind) noexcept {
    return kind == ValueKind::arrow || kind == ValueKind::track || kind == ValueKind::scroll;
}

std::span<const OPTPARAM> parameters_of(const OPTITEM& item) noexcept {
    if (kind_of(item) == ValueKind::none)
        return {};
    return {item.pOptType->pOptParam, item.pOptType->Count};
}

Range range_of(const OPTITEM& item) noexcept {
    if (!is_number(kind_of(item)))
        return {0, 0};
    const auto parameters = parameters_of(item);
    const auto [low, high] =
        std::minmax({static_cast<LONG>(parameters[1].IconID), static_cast<LONG>(parameters[1].lParam)});
    return {low, high};
}

size_t edit_units(const OPTITEM& item) noexcept {
    return kind_of(item) == ValueKind::edit ? parameters_of(item)[1].IconID : 0;
}

std::wstring value_text(const OPTITEM& item, HINSTANCE instance) {
    const ValueKind kind = kind_of(item);
    const auto parameters = parameters_of(item);
    switch (kind) {
        case ValueKind::none:
        case ValueKind::push:
            return {};
        case ValueKind::arrow:
        case ValueKind::track:
        case ValueKind::scroll:
            return number_text(item, instance);
        case ValueKind::edit:
            return qk::text_at(item.pSel, edit_units(item));
        case ValueKind::check:
            return check_text(item, instance);
        default:
            break;
    }
    if (item.Sel >= 0 && static_cast<size_t>(item.Sel) < parameters.size())
        return text_of(parameters[static_cast<size_t>(item.Sel)].pData, instance);
    return std::wstring(own_string(IDS_CPSUI_LBCB_NOSEL));
}

std::wstring item_text(const OPTITEM& item, HINSTANCE instance) {
    std::wstring text = text_of(item.pName, instance);
    const std::wstring value = value_text(item, instance);
    if (!value.empty())
        text.append(own_string(IDS_CPSUI_COLON_SEP)).append(value);
    return text;
}

bool may_change(const OPTITEM& item, bool may_update) noexcept {
    const bool push = kind_of(item) == ValueKind::push;
    if (push && (item.pOptType->Style & OTS_PUSH_ENABLE_ALWAYS))
        return true;
    const bool type_off = item.pOptType && (item.pOptType->Flags & OPTTF_TYPE_DISABLED);
    return may_update && !(item.Flags & OPTIF_DISABLED) && !type_off;
}

const EXTCHKBOX* find_extra_check(const OPTITEM& item) noexcept {
    return item.Flags & (OPTIF_EXT_IS_EXTPUSH | OPTIF_EXT_HIDE) ? nullptr : item.pExtChkBox;
}

const EXTPUSH* find_extra_push(const OPTITEM& item) noexcept {
    const bool shown = (item.Flags & OPTIF_EXT_IS_EXTPUSH) && !(item.Flags & OPTIF_EXT_HIDE);
    return shown ? item.pExtPush : nullptr;
}

}  // namespace compstui
