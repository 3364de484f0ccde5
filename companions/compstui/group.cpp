#include "companions/compstui/group.h"

#include <algorithm>
#include <memory>

#include "common/memory_probe.h"
#include "companions/compstui/option_item.h"
#include "companions/compstui/page.h"
#include "companions/compstui/page_template.h"
#include "companions/compstui/sheet.h"
#include "companions/compstui/strings.h"

namespace compstui {

namespace {

constexpr ULONG_PTR kLastStandardSet = 4;  // CPSUI_PDLGPAGE_TREEVIEWONLY

bool is_standard(WORD template_id) noexcept {
    return template_id >= DP_STD_RESERVED_START;
}

// The dialog template that a caller's page means; null when its library has none of that number.
const DLGTEMPLATE* find_page_template(const DLGPAGE& page, HINSTANCE instance) noexcept {
    if (page.Flags & DPF_USE_HDLGTEMPLATE)
        return static_cast<const DLGTEMPLATE*>(page.hDlgTemplate ? LockResource(page.hDlgTemplate) : nullptr);
    if (is_standard(page.DlgTemplateID))
        return plain_page_template();
    return find_template(instance, MAKEINTRESOURCEW(page.DlgTemplateID));
}

}  // namespace

std::span<OPTITEM> GroupNode::items() const noexcept {
    return {description_.pOptItem, description_.cOptItem};
}

HINSTANCE GroupNode::instance_of(const OPTITEM& item) const noexcept {
    const bool extended = (item.Flags & OPTIF_HAS_POIEXT) && qk::is_readable(item.pOIExt, sizeof(OIEXT));
    return extended && item.pOIExt->hInstCaller ? item.pOIExt->hInstCaller : description_.hInstCaller;
}

bool GroupNode::lists(size_t index, const OPTITEM& item) const noexcept {
    return !(item.Flags & OPTIF_HIDE) && (tree_only_ || item.DlgPageIdx == index);
}

LONG GroupNode::notify(HWND page, WORD reason, OPTITEM* item, LPARAM old_value, _CPSUICALLBACK other) const {
    const _CPSUICALLBACK callback = other ? other : description_.pfnCallBack;
    if (!callback)
        return CPSUICB_ACTION_NONE;
    CPSUICBPARAM told = {};
    told.cbSize = sizeof told;
    told.Reason = reason;
    told.hDlg = page;
    told.pOptItem = description_.pOptItem;
    told.cOptItem = description_.cOptItem;
    told.Flags = may_update() ? CPSUIF_UPDATE_PERMISSION : 0;
    told.pCurItem = item ? item : description_.pOptItem;
    told.pOldSel = reinterpret_cast<wchar_t*>(old_value);
    told.UserData = description_.UserData;
    told.Result = CPSUI_OK;
    return callback(&told);
}

LONG GroupNode::check() const {
    if (description_.cbSize != sizeof description_)
        return ERR_CPSUI_INVALID_PDATA;
    if (!description_.hInstCaller)
        return ERR_CPSUI_NULL_HINST;
    if (!description_.pCallerName)
        return ERR_CPSUI_NULL_CALLERNAME;
    if (!description_.pDlgPage)
        return ERR_CPSUI_INVALID_PDLGPAGE;
    if (tree_only_)
        return check_items(items(), 1);
    if (description_.cDlgPage > MAX_DLGPAGE_COUNT)
        return ERR_CPSUI_TOO_MANY_DLGPAGES;
    if (description_.cDlgPage == 0 ||
        !qk::is_readable(description_.pDlgPage, description_.cDlgPage * sizeof(DLGPAGE)))
        return ERR_CPSUI_INVALID_PDLGPAGE;
    for (const DLGPAGE& page : std::span(description_.pDlgPage, description_.cDlgPage)) {
        if (page.cbSize != sizeof page)
            return ERR_CPSUI_INVALID_DLGPAGE_CBSIZE;
    }
    return check_items(items(), description_.cDlgPage);
}

LONG GroupNode::make_pages(const COMPROPSHEETUI& description) {
    if (!qk::try_copy(&description_, &description, sizeof description_))
        return ERR_CPSUI_INVALID_PDATA;
    const auto set = reinterpret_cast<ULONG_PTR>(description_.pDlgPage);
    tree_only_ = set != 0 && set <= kLastStandardSet;
    if (const LONG wrong = check(); wrong < 0)
        return wrong;
    if (tree_only_) {
        DLGPAGE page = {};
        page.cbSize = sizeof page;
        page.pTabName = MAKEINTRESOURCEW(IDS_CPSUI_ADVANCED);
        page.DlgTemplateID = DP_STD_TREEVIEWPAGE;
        const LONG made = make_page(page, 0);
        return made < 0 ? made : 1;
    }
    for (size_t i = 0; i < description_.cDlgPage; ++i) {
        if (const LONG wrong = make_page(description_.pDlgPage[i], i); wrong < 0)
            return wrong;
    }
    return description_.cDlgPage;
}

LONG GroupNode::make_page(const DLGPAGE& page, size_t index) {
    if (!sheet.has_room())
        return ERR_CPSUI_TOO_MANY_PROPSHEETPAGES;
    const HINSTANCE instance = description_.hInstCaller;
    PROPSHEETPAGEW shown = {};
    shown.dwSize = sizeof shown;
    shown.dwFlags = PSP_DLGINDIRECT;
    shown.hInstance = instance;
    shown.pResource = find_page_template(page, instance);
    shown.pfnDlgProc = page.DlgProc;
    if (!shown.pResource)
        return ERR_CPSUI_CREATEPROPPAGE_FAILED;
    if (page.Flags & DPF_ICONID_AS_HICON) {
        shown.dwFlags |= page.IconID ? PSP_USEHICON : 0;
        shown.hIcon = reinterpret_cast<HICON>(page.IconID);
    } else if (has_icon(instance, page.IconID)) {
        shown.dwFlags |= PSP_USEICONID;
        shown.pszIcon = MAKEINTRESOURCEW(page.IconID);
    }
    if (const auto& activation = function_of(*this).activation) {
        shown.dwFlags |= PSP_USEFUSIONCONTEXT;
        shown.hActCtx = activation.get();
    }
    auto made = std::make_unique<PageNode>(sheet, this);
    made->group = this;
    made->index = index;
    if (!made->try_create(shown, text_of(page.pTabName, instance)))
        return ERR_CPSUI_CREATEPROPPAGE_FAILED;
    children.push_back(std::move(made));
    return 1;
}

}  // namespace compstui
