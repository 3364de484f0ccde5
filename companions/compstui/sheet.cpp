#include "companions/compstui/sheet.h"

#include <algorithm>
#include <string>

#include "common/qk/guard.h"
#include "companions/compstui/page.h"
#include "companions/compstui/sheet_size.h"
#include "companions/compstui/strings.h"

namespace compstui {

namespace {

constexpr int kDeepest = 16;

int depth_of(const Node* node) noexcept {
    int depth = 0;
    for (; node; node = node->parent)
        ++depth;
    return depth;
}

PROPSHEETUI_INFO_HEADER fresh_header(HWND owner) noexcept {
    PROPSHEETUI_INFO_HEADER header = {};
    header.cbSize = sizeof header;
    header.Flags = PSUIHDRF_PROPTITLE;
    header.hWndParent = owner;
    return header;
}

// Asks `function` for the sheet's header. One that only adds somebody else's function, as the print system's
// own does, may leave it without a title: then the first function below that has one settles the header.
bool try_fill_header(FunctionNode& function, PROPSHEETUI_INFO_HEADER& header) {
    if (function.call(PROPSHEETUI_REASON_GET_INFO_HEADER, reinterpret_cast<LPARAM>(&header)) <= 0)
        return false;
    for (const auto& child : function.children) {
        if (header.pTitle)
            break;
        PROPSHEETUI_INFO_HEADER below = fresh_header(header.hWndParent);
        if (child->kind == NodeKind::function && try_fill_header(static_cast<FunctionNode&>(*child), below) &&
            below.pTitle)
            header = below;
    }
    return true;
}

DWORD sheet_flags(const PROPSHEETUI_INFO_HEADER& header) noexcept {
    DWORD flags = PSH_NOCONTEXTHELP;
    if (header.Flags & PSUIHDRF_NOAPPLYNOW)
        flags |= PSH_NOAPPLYNOW;
    if ((header.Flags & PSUIHDRF_PROPTITLE) && !(header.Flags & PSUIHDRF_EXACT_PTITLE))
        flags |= PSH_PROPTITLE;
    if (header.Flags & PSUIHDRF_USEHICON)
        flags |= header.hIcon ? PSH_USEHICON : 0;
    else if (has_icon(header.hInst, header.IconID))
        flags |= PSH_USEICONID;
    return flags;
}

}  // namespace

LONG Sheet::run(HWND owner, PFNPROPSHEETUI function, LPARAM parameter, DWORD* result) {
    root_ = std::make_unique<FunctionNode>(*this, nullptr, function, parameter);
    LONG status = ERR_CPSUI_GETLASTERROR;
    const auto end = [&] {
        qk::LastErrorKeeper keep;
        destroying_ = true;
        destroy(*root_, status >= 0 ? kLeftByButton : 0);
    };
    try {
        // Only the root is told, and its answer counts for nothing: functions that do not know it refuse it.
        root_->call(kReasonBeforeInit, parameter);
        const LONG answer = root_->call(PROPSHEETUI_REASON_INIT, parameter);
        if (answer > 0)
            status = show(owner);
        else if (answer < 0)
            status = answer;
    } catch (...) {
        status = ERR_CPSUI_GETLASTERROR;
        end();
        throw;
    }
    if (status >= 0 && result)
        *result = static_cast<DWORD>(root_->info.Result);
    end();
    return status;
}

LONG Sheet::show(HWND owner) {
    PROPSHEETUI_INFO_HEADER header = fresh_header(owner);
    return try_fill_header(*root_, header) ? show_pages(header) : ERR_CPSUI_GETLASTERROR;
}

LONG Sheet::show_pages(const PROPSHEETUI_INFO_HEADER& header) {
    const std::vector<PageNode*> pages = pages_of(*root_);
    if (pages.empty())
        return ERR_CPSUI_NO_PROPSHEETPAGE;
    std::vector<HPROPSHEETPAGE> handles;
    for (PageNode* page : pages)
        handles.push_back(page->property_page());
    const std::wstring title = text_of(header.pTitle, header.hInst);
    PROPSHEETHEADERW sheet = {};
    sheet.dwSize = sizeof sheet;
    sheet.dwFlags = sheet_flags(header) | PSH_USECALLBACK;
    sheet.hwndParent = header.hWndParent;
    sheet.hInstance = header.hInst;
    if (sheet.dwFlags & PSH_USEHICON)
        sheet.hIcon = header.hIcon;
    else if (sheet.dwFlags & PSH_USEICONID)
        sheet.pszIcon = MAKEINTRESOURCEW(header.IconID);
    sheet.pszCaption = title.c_str();
    sheet.nPages = static_cast<UINT>(handles.size());
    sheet.phpage = handles.data();
    if (const auto start = std::find(pages.begin(), pages.end(), start_); start != pages.end())
        sheet.nStartPage = static_cast<UINT>(start - pages.begin());
    const SheetSize size(pages);
    sheet.pfnCallback = &SheetSize::callback;
    shown_ = true;
    for (PageNode* page : pages)
        page->give_up_property_page();
    const INT_PTR left = PropertySheetW(&sheet);
    if (left < 0)
        return ERR_CPSUI_GETLASTERROR;
    if (left == ID_PSREBOOTSYSTEM)
        return CPSUI_REBOOTSYSTEM;
    if (left == ID_PSRESTARTWINDOWS)
        return CPSUI_RESTARTWINDOWS;
    return left > 0 ? CPSUI_OK : CPSUI_CANCEL;
}

FunctionNode* Sheet::add_function(FunctionNode& parent, PFNPROPSHEETUI function, LPARAM parameter) {
    if (depth_of(&parent) >= kDeepest)
        return nullptr;
    auto* added = new FunctionNode(*this, &parent, function, parameter);
    parent.children.emplace_back(added);
    if (added->call(PROPSHEETUI_REASON_INIT, parameter) > 0)
        return added;
    qk::LastErrorKeeper keep;
    take_out(*added);
    return nullptr;
}

void Sheet::take_out(FunctionNode& node) {
    destroying_ = true;
    destroy(node, 0);
    destroying_ = false;
    auto& siblings = node.parent->children;
    const auto at = std::find_if(siblings.begin(), siblings.end(),
                                 [&](const auto& child) { return child.get() == &node; });
    // Not freed before the sheet is: somebody on the call stack may be this very function.
    removed_.push_back(std::move(*at));
    siblings.erase(at);
    node.retire();
}

bool Sheet::has_room() const {
    return root_ && pages_of(*root_).size() < MAXPROPPAGES;
}

int Sheet::hand_up(Node& from, LRESULT result) {
    SETRESULT_INFO told = {};
    told.cbSize = sizeof told;
    told.hSetResult = from.handle();
    told.Result = result;
    int asked = 0;
    for (Node* at = &from; at; at = at->parent) {
        if (at->kind != NodeKind::function)
            continue;
        ++asked;
        auto& function = static_cast<FunctionNode&>(*at);
        if (function.call(PROPSHEETUI_REASON_SET_RESULT, reinterpret_cast<LPARAM>(&told)) <= 0)
            break;
    }
    return asked;
}

void Sheet::destroy(Node& node, LPARAM how_left) {
    for (size_t i = node.children.size(); i-- > 0;)
        destroy(*node.children[i], how_left);
    if (node.kind == NodeKind::function)
        static_cast<FunctionNode&>(node).call(PROPSHEETUI_REASON_DESTROY, how_left);
}

LONG show_sheet(HWND owner, PFNPROPSHEETUI function, LPARAM parameter, DWORD* result) noexcept {
    if (result)
        *result = CPSUI_CANCEL;
    if (!function)
        return failed<LONG>(ERROR_INVALID_PARAMETER, ERR_CPSUI_INVALID_PDATA);
    return qk::guarded<LONG>(ERR_CPSUI_ALLOCMEM_FAILED, [&] {
        constexpr INITCOMMONCONTROLSEX kControls = {sizeof kControls, ICC_TAB_CLASSES | ICC_STANDARD_CLASSES};
        InitCommonControlsEx(&kControls);
        return Sheet().run(owner, function, parameter, result);
    });
}

}  // namespace compstui
