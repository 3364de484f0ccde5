#include "companions/compstui/page.h"

#include <algorithm>
#include <cstring>

#include "common/qk/guard.h"
#include "companions/compstui/group.h"
#include "companions/compstui/sheet.h"

namespace compstui {

namespace {

// Dialog procedures use DWLP_USER and the window's user data as they like; a property is out of their way.
constexpr wchar_t kProperty[] = L"compstui page";

}  // namespace

PageNode::PageNode(Sheet& its_sheet, Node* its_parent) noexcept
    : Node(NodeKind::page, its_sheet, its_parent) {}

PageNode::~PageNode() {
    if (property_page_)
        DestroyPropertySheetPage(property_page_);
}

bool PageNode::try_create(const PROPSHEETPAGEW& description, std::wstring title) {
    const DWORD size = description.dwSize;
    if (size < PROPSHEETPAGEW_V1_SIZE || size > kLargestPage)
        return failed(ERROR_INVALID_PARAMETER, false);
    std::memcpy(seen_, &description, size);
    PSPINFO info = {};
    info.cbSize = sizeof info;
    info.hComPropSheet = function_of(*this).handle();
    info.hCPSUIPage = handle();
    info.pfnComPropSheet = &com_prop_sheet;
    std::memcpy(seen_ + size, &info, sizeof info);
    auto& seen = *reinterpret_cast<PROPSHEETPAGEW*>(seen_);
    title_ = std::move(title);
    if (!title_.empty()) {
        seen.dwFlags |= PSP_USETITLE;
        seen.pszTitle = title_.c_str();
    }
    if (group)
        seen.lParam = reinterpret_cast<LPARAM>(seen_ + size);
    procedure_ = seen.pfnDlgProc;
    callback_ = seen.dwFlags & PSP_USECALLBACK ? seen.pfnCallback : nullptr;

    PROPSHEETPAGEW page = {};
    std::memcpy(&page, seen_, std::min<size_t>(size, sizeof page));
    page.dwSize = std::min<DWORD>(size, sizeof page);
    page.pfnDlgProc = &PageNode::procedure;
    page.lParam = reinterpret_cast<LPARAM>(this);
    if (callback_)
        page.pfnCallback = &PageNode::callback;
    property_page_ = CreatePropertySheetPageW(&page);
    return property_page_ != nullptr;
}

HINSTANCE PageNode::instance() const noexcept {
    return reinterpret_cast<const PROPSHEETPAGEW*>(seen_)->hInstance;
}

const DLGTEMPLATE* PageNode::find_template() const noexcept {
    const auto& seen = *reinterpret_cast<const PROPSHEETPAGEW*>(seen_);
    if (seen.dwFlags & PSP_DLGINDIRECT)
        return seen.pResource;
    return compstui::find_template(seen.hInstance, seen.pszTemplate);
}

PageNode* PageNode::of(HWND window) noexcept {
    return static_cast<PageNode*>(GetPropW(window, kProperty));
}

UINT CALLBACK PageNode::callback(HWND window, UINT message, PROPSHEETPAGEW* page) noexcept {
    auto* node = reinterpret_cast<PageNode*>(page->lParam);
    return node->callback_(window, message, reinterpret_cast<PROPSHEETPAGEW*>(node->seen_));
}

INT_PTR CALLBACK PageNode::procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
    return qk::guarded<INT_PTR>(FALSE, [&]() -> INT_PTR {
        if (message == WM_INITDIALOG) {
            auto* page = reinterpret_cast<PageNode*>(reinterpret_cast<PROPSHEETPAGEW*>(lparam)->lParam);
            return SetPropW(window, kProperty, page) ? page->initialise(window, wparam) : FALSE;
        }
        PageNode* page = of(window);
        return page ? page->answer(window, message, wparam, lparam) : FALSE;
    });
}

INT_PTR PageNode::initialise(HWND window, WPARAM focus) {
    if (group && !group->lead)
        group->lead = window;
    INT_PTR handled = FALSE;
    if (procedure_)
        handled = procedure_(window, WM_INITDIALOG, focus, reinterpret_cast<LPARAM>(seen_));
    if (group && !handled)
        group->show_items(window, index);
    return procedure_ ? handled : TRUE;
}

// What the caller's procedure has handled is the caller's alone.
INT_PTR PageNode::answer(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const INT_PTR handled = procedure_ ? procedure_(window, message, wparam, lparam) : FALSE;
    if (message == WM_NCDESTROY) {
        RemovePropW(window, kProperty);
        if (group && group->lead == window)
            group->lead = nullptr;
    } else if (!handled && group && message == WM_NOTIFY &&
               reinterpret_cast<const NMHDR*>(lparam)->code == PSN_APPLY) {
        const bool good = group->lead != window || group->apply(window);
        SetWindowLongPtrW(window, DWLP_MSGRESULT, good ? PSNRET_NOERROR : PSNRET_INVALID_NOCHANGEPAGE);
        return TRUE;
    }
    return handled;
}

const DLGTEMPLATE* find_template(HINSTANCE instance, const wchar_t* name) noexcept {
    const HRSRC found = FindResourceW(instance, name, RT_DIALOG);
    const HGLOBAL loaded = found ? LoadResource(instance, found) : nullptr;
    return static_cast<const DLGTEMPLATE*>(loaded ? LockResource(loaded) : nullptr);
}

ULONG_PTR page_user_data(HWND window) noexcept {
    const PageNode* page = PageNode::of(window);
    return page ? page->user_data : failed<ULONG_PTR>(ERROR_INVALID_WINDOW_HANDLE, 0);
}

BOOL try_set_page_user_data(HWND window, ULONG_PTR data) noexcept {
    PageNode* page = PageNode::of(window);
    if (!page)
        return failed<BOOL>(ERROR_INVALID_WINDOW_HANDLE, FALSE);
    page->user_data = data;
    return TRUE;
}

}  // namespace compstui
