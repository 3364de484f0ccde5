// What callers reach through pfnComPropSheet.
#include <algorithm>
#include <memory>
#include <vector>

#include "common/qk/guard.h"
#include "common/qk/memory_probe.h"
#include "companions/compstui/group.h"
#include "companions/compstui/page.h"
#include "companions/compstui/sheet.h"

namespace compstui {

namespace {

LONG_PTR as_result(Node* node) noexcept {
    return node ? reinterpret_cast<LONG_PTR>(node->handle()) : 0;
}

// The function that pages can be added to now; null, with the last error, for another handle or a shown
// sheet.
FunctionNode* find_open_function(Node& node) {
    if (node.kind != NodeKind::function || !node.sheet.can_change())
        return failed<FunctionNode*>(ERROR_INVALID_STATE, nullptr);
    return static_cast<FunctionNode*>(&node);
}

LONG_PTR add_page(Node& node, LPARAM page, LPARAM) {
    FunctionNode* function = find_open_function(node);
    const auto* description = reinterpret_cast<const PROPSHEETPAGEW*>(page);
    if (!function || !node.sheet.has_room())
        return 0;
    if (!qk::is_readable(description, sizeof(DWORD)) || !qk::is_readable(description, description->dwSize))
        return failed<LONG_PTR>(ERROR_INVALID_PARAMETER, 0);
    auto added = std::make_unique<PageNode>(node.sheet, function);
    if (!added->try_create(*description))
        return 0;
    function->children.push_back(std::move(added));
    return as_result(function->children.back().get());
}

LONG_PTR add_group(Node& node, LPARAM group, LPARAM pages) {
    auto* count = reinterpret_cast<LONG*>(pages);
    const bool reports = qk::is_writable(count, sizeof *count);
    LONG made = ERR_CPSUI_INVALID_PDATA;
    FunctionNode* function = find_open_function(node);
    const auto* description = reinterpret_cast<const COMPROPSHEETUI*>(group);
    auto added = std::make_unique<GroupNode>(node.sheet, function);
    auto* stands = added.get();
    if (function && qk::is_readable(description, sizeof *description)) {
        // In its place before its pages are made: they count against the sheet's room.
        function->children.push_back(std::move(added));
        made = stands->make_pages(*description);
        if (made <= 0)
            function->children.pop_back();
    }
    if (reports)
        *count = made;
    return made > 0 ? as_result(stands) : failed<LONG_PTR>(ERROR_INVALID_PARAMETER, 0);
}

LONG_PTR add_function(Node& node, LPARAM function, LPARAM parameter) {
    FunctionNode* parent = find_open_function(node);
    if (!parent || !function)
        return 0;
    return as_result(node.sheet.add_function(*parent, reinterpret_cast<PFNPROPSHEETUI>(function), parameter));
}

// The node of the sheet of `node` behind a handle; null for any other number.
Node* find_in_sheet(Node& node, LPARAM handle) noexcept {
    Node* found = find_node(reinterpret_cast<HANDLE>(handle));
    return found && &found->sheet == &node.sheet ? found : nullptr;
}

LONG_PTR count_pages(Node& node, LPARAM, LPARAM) {
    return static_cast<LONG_PTR>(pages_of(node).size());
}

// The number of functions asked; -1 for a handle that is none.
LONG_PTR set_result(Node& node, LPARAM handle, LPARAM result) {
    Node* from = handle ? find_in_sheet(node, handle) : &node;
    return from ? node.sheet.hand_up(*from, result) : failed<LONG_PTR>(ERROR_INVALID_HANDLE, -1);
}

// `handle` is a page, or a group or function of which `index` is a page.
LONG_PTR set_start_page(Node& node, LPARAM handle, LPARAM index) {
    Node* from = handle ? find_in_sheet(node, handle) : &node;
    if (!from)
        return failed<LONG_PTR>(ERROR_INVALID_HANDLE, 0);
    const std::vector<PageNode*> pages = pages_of(*from);
    if (!node.sheet.can_change() || index < 0 || static_cast<size_t>(index) >= pages.size())
        return failed<LONG_PTR>(ERROR_INVALID_PARAMETER, 0);
    node.sheet.start_with(*pages[static_cast<size_t>(index)]);
    return 1;
}

struct Entry {
    UINT function;
    LONG_PTR (*answer)(Node& node, LPARAM first, LPARAM second);
};

constexpr Entry kEntries[] = {
    {CPSFUNC_ADD_PROPSHEETPAGEW, add_page},      {CPSFUNC_ADD_PCOMPROPSHEETUIW, add_group},
    {CPSFUNC_ADD_PFNPROPSHEETUIW, add_function}, {CPSFUNC_SET_HSTARTPAGE, set_start_page},
    {CPSFUNC_GET_PAGECOUNT, count_pages},        {CPSFUNC_SET_RESULT, set_result}};

}  // namespace

LONG_PTR CALLBACK com_prop_sheet(HANDLE handle, UINT function, LPARAM first, LPARAM second) noexcept {
    return qk::guarded<LONG_PTR>(0, [&]() -> LONG_PTR {
        Node* node = find_node(handle);
        if (!node)
            return failed<LONG_PTR>(ERROR_INVALID_HANDLE, function == CPSFUNC_SET_RESULT ? -1 : 0);
        const auto* entry =
            std::find_if(std::begin(kEntries), std::end(kEntries),
                         [&](const Entry& candidate) { return candidate.function == function; });
        if (entry == std::end(kEntries))
            return failed<LONG_PTR>(ERROR_CALL_NOT_IMPLEMENTED, 0);
        return entry->answer(*node, first, second);
    });
}

}  // namespace compstui
