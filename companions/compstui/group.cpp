#include "companions/compstui/group.h"

#include <memory>

#include "common/qk/memory_probe.h"
#include "companions/compstui/option_item.h"
#include "companions/compstui/page.h"
#include "companions/compstui/sheet.h"
#include "companions/compstui/strings.h"

namespace compstui {

namespace {

// The dialog template that a caller's page means; null when its library has none of that number.
const DLGTEMPLATE* find_page_template(const DLGPAGE& page, HINSTANCE instance) noexcept {
    if (page.Flags & DPF_USE_HDLGTEMPLATE)
        return static_cast<const DLGTEMPLATE*>(page.hDlgTemplate ? LockResource(page.hDlgTemplate) : nullptr);
    return find_template(instance, MAKEINTRESOURCEW(page.DlgTemplateID));
}

}  // namespace

std::span<OPTITEM> GroupNode::items() const noexcept {
    return {description_.pOptItem, description_.cOptItem};
}

void GroupNode::show_items(HWND page, size_t index) const {
    for (const OPTITEM& item : items())
        if (!(item.Flags & OPTIF_HIDE) && item.DlgPageIdx == index)
            show_item(page, item, description_.hInstCaller);
}

bool GroupNode::apply(HWND page) {
    CPSUICBPARAM told = {};
    told.cbSize = sizeof told;
    told.Reason = CPSUICB_REASON_APPLYNOW;
    told.hDlg = page;
    told.pOptItem = told.pCurItem = description_.pOptItem;
    told.cOptItem = description_.cOptItem;
    told.OldSel = -1;
    told.Flags = description_.Flags;
    told.UserData = description_.UserData;
    told.Result = CPSUI_OK;
    if (description_.pfnCallBack && description_.pfnCallBack(&told) == CPSUICB_ACTION_NO_APPLY_EXIT)
        return false;
    sheet.hand_up(*this, static_cast<LRESULT>(told.Result));
    return true;
}

LONG GroupNode::check() const {
    if (description_.cbSize != sizeof description_)
        return ERR_CPSUI_INVALID_PDATA;
    if (!description_.hInstCaller)
        return ERR_CPSUI_NULL_HINST;
    if (!description_.pCallerName)
        return ERR_CPSUI_NULL_CALLERNAME;
    if (description_.cDlgPage > MAX_DLGPAGE_COUNT)
        return ERR_CPSUI_TOO_MANY_DLGPAGES;
    if (description_.cDlgPage == 0 ||
        !qk::is_readable(description_.pDlgPage, description_.cDlgPage * sizeof(DLGPAGE)))
        return ERR_CPSUI_INVALID_PDLGPAGE;
    for (const DLGPAGE& page : std::span(description_.pDlgPage, description_.cDlgPage))
        if (page.cbSize != sizeof page)
            return ERR_CPSUI_INVALID_DLGPAGE_CBSIZE;
    return check_items(items(), description_.cDlgPage);
}

LONG GroupNode::make_pages(const COMPROPSHEETUI& description) {
    if (!qk::try_copy(&description_, &description, sizeof description_))
        return ERR_CPSUI_INVALID_PDATA;
    if (const LONG wrong = check(); wrong < 0)
        return wrong;
    for (size_t i = 0; i < description_.cDlgPage; ++i)
        if (const LONG wrong = make_page(description_.pDlgPage[i], i); wrong < 0)
            return wrong;
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
    auto made = std::make_unique<PageNode>(sheet, this);
    made->group = this;
    made->index = index;
    if (!made->try_create(shown, text_of(page.pTabName, instance)))
        return ERR_CPSUI_CREATEPROPPAGE_FAILED;
    children.push_back(std::move(made));
    return 1;
}

}  // namespace compstui
