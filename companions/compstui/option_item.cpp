#include "companions/compstui/option_item.h"

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
    for (const OPTPARAM& parameter : std::span(type.pOptParam, type.Count)) {
        if (parameter.cbSize != sizeof parameter)
            return ERR_CPSUI_INVALID_OPTPARAM_CBSIZE;
    }
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
    for (const OPTITEM& item : items) {
        if (const LONG wrong = check_item(item, pages); wrong < 0)
            return wrong;
    }
    return 0;
}

std::span<const OPTPARAM> parameters_of(const OPTITEM& item) noexcept {
    if (!item.pOptType || item.pOptType->Type != TVOT_LISTBOX)
        return {};
    return {item.pOptType->pOptParam, item.pOptType->Count};
}

std::wstring item_text(const OPTITEM& item, HINSTANCE instance) {
    std::wstring text = text_of(item.pName, instance);
    const auto parameters = parameters_of(item);
    if (parameters.empty())
        return text;
    text += own_string(IDS_CPSUI_COLON_SEP);
    const bool chosen = item.Sel >= 0 && static_cast<size_t>(item.Sel) < parameters.size();
    return chosen ? text + text_of(parameters[static_cast<size_t>(item.Sel)].pData, instance)
                  : text.append(own_string(IDS_CPSUI_LBCB_NOSEL));
}

bool may_change(const OPTITEM& item, bool may_update) noexcept {
    const bool type_off = item.pOptType && (item.pOptType->Flags & OPTTF_TYPE_DISABLED);
    return may_update && !(item.Flags & OPTIF_DISABLED) && !type_off;
}

}  // namespace compstui
