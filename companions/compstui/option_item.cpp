#include "companions/compstui/option_item.h"

#include <string>

#include "common/qk/memory_probe.h"
#include "companions/compstui/strings.h"

namespace compstui {

namespace {

LONG check_type(const OPTTYPE& type) noexcept {
    if (!qk::is_readable(&type, sizeof type) || type.cbSize != sizeof type)
        return ERR_CPSUI_INVALID_OPTTYPE_CBSIZE;
    if (type.Type == TVOT_NONE)
        return 0;
    if (type.Type != TVOT_LISTBOX)
        return ERR_CPSUI_INVALID_TVOT_TYPE;
    if (type.Count == 0)
        return ERR_CPSUI_INVALID_OPTTYPE_COUNT;
    if (!qk::is_readable(type.pOptParam, type.Count * sizeof(OPTPARAM)))
        return ERR_CPSUI_NULL_POPTPARAM;
    for (const OPTPARAM& parameter : std::span(type.pOptParam, type.Count))
        if (parameter.cbSize != sizeof parameter)
            return ERR_CPSUI_INVALID_OPTPARAM_CBSIZE;
    return 0;
}

LONG check_item(const OPTITEM& item, size_t pages) noexcept {
    if (item.cbSize != sizeof item)
        return ERR_CPSUI_INVALID_OPTITEM_CBSIZE;
    if (!item.pName)
        return ERR_CPSUI_NULL_OPTITEMNAME;
    if (item.DlgPageIdx >= pages)
        return ERR_CPSUI_INVALID_DLGPAGEIDX;
    return item.pOptType ? check_type(*item.pOptType) : 0;
}

}  // namespace

LONG check_items(std::span<const OPTITEM> items, size_t pages) noexcept {
    if (items.empty())
        return 0;
    if (!qk::is_writable(const_cast<OPTITEM*>(items.data()), items.size_bytes()))
        return ERR_CPSUI_NULL_POPTITEM;
    for (const OPTITEM& item : items)
        if (const LONG wrong = check_item(item, pages); wrong < 0)
            return wrong;
    return 0;
}

void show_item(HWND page, const OPTITEM& item, HINSTANCE instance) {
    if (!item.pOptType || item.pOptType->Type != TVOT_LISTBOX || item.pOptType->BegCtrlID == 0)
        return;
    const int first = item.pOptType->BegCtrlID;
    const std::span parameters(item.pOptType->pOptParam, item.pOptType->Count);
    const std::wstring name = text_of(item.pName, instance);
    SetDlgItemTextW(page, first + kListTitle, name.c_str());
    if (!(item.Flags & OPTIF_NO_GROUPBOX_NAME))
        SetDlgItemTextW(page, first + kListFrame, name.c_str());
    const HWND list = GetDlgItem(page, first + kListBox);
    for (const OPTPARAM& parameter : parameters)
        SendMessageW(list, LB_ADDSTRING, 0,
                     reinterpret_cast<LPARAM>(text_of(parameter.pData, instance).c_str()));
    SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(item.Sel), 0);
    const auto chosen = static_cast<size_t>(item.Sel);
    const ULONG_PTR icon = chosen < parameters.size() ? parameters[chosen].IconID : 0;
    if (has_icon(instance, icon))
        SendDlgItemMessageW(page, first + kListIcon, STM_SETICON,
                            reinterpret_cast<WPARAM>(LoadIconW(instance, MAKEINTRESOURCEW(icon))), 0);
}

}  // namespace compstui
