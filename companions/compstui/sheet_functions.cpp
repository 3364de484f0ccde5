#include "companions/compstui/sheet_functions.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "common/memory_probe.h"
#include "companions/compstui/group.h"
#include "companions/compstui/page.h"
#include "companions/compstui/sheet.h"
#include "companions/compstui/strings.h"

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

PageNode* find_page(LPARAM handle) noexcept {
    Node* node = find_node(reinterpret_cast<HANDLE>(handle));
    return node && node->kind == NodeKind::page ? static_cast<PageNode*>(node) : nullptr;
}

LONG_PTR add_made_page(Node& node, LPARAM page, LPARAM) {
    FunctionNode* function = find_open_function(node);
    if (!function || !page || !node.sheet.has_room())
        return 0;
    auto added = std::make_unique<PageNode>(node.sheet, function);
    function->children.push_back(std::move(added));
    auto* made = static_cast<PageNode*>(function->children.back().get());
    made->adopt(reinterpret_cast<HPROPSHEETPAGE>(page));
    return as_result(made);
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
    if (function && qk::is_readable(description, sizeof *description)) {
        // In its place before its pages are made: they count against the sheet's room.
        function->children.push_back(std::move(added));
        auto& stands = static_cast<GroupNode&>(*function->children.back());
        made = stands.make_pages(*description);
        if (reports)
            *count = made;
        if (made > 0)
            return as_result(&stands);
        function->children.pop_back();
    }
    if (reports)
        *count = made;
    return failed<LONG_PTR>(ERROR_INVALID_PARAMETER, 0);
}

LONG_PTR add_function(Node& node, LPARAM function, LPARAM parameter) {
    FunctionNode* parent = find_open_function(node);
    if (!parent || !function)
        return 0;
    return as_result(node.sheet.add_function(*parent, reinterpret_cast<PFNPROPSHEETUI>(function), parameter));
}

LONG_PTR remove(Node& node, LPARAM handle, LPARAM) {
    Node* removed = find_node(reinterpret_cast<HANDLE>(handle));
    return removed && &removed->sheet == &node.sheet && node.sheet.try_remove(*removed) ? 1 : 0;
}

// A page or a group is named by its handle; without one the number of a page counts, from 0.
LONG_PTR set_start_page(Node& node, LPARAM handle, LPARAM number) {
    Node* from = handle ? find_node(reinterpret_cast<HANDLE>(handle)) : &node;
    if (!from || &from->sheet != &node.sheet)
        return 0;
    const auto pages = pages_of(*from);
    const auto chosen = static_cast<size_t>(handle ? 0 : number);
    if (chosen >= pages.size())
        return 0;
    node.sheet.start_page = pages[chosen];
    return 1;
}

LONG_PTR count_pages(Node& node, LPARAM handle, LPARAM) {
    Node* from = handle ? find_node(reinterpret_cast<HANDLE>(handle)) : &node;
    return from ? static_cast<LONG_PTR>(pages_of(*from).size()) : 0;
}

LONG_PTR set_result(Node& node, LPARAM handle, LPARAM result) {
    Node* from = handle ? find_node(reinterpret_cast<HANDLE>(handle)) : &node;
    return from && &from->sheet == &node.sheet ? node.sheet.hand_up(*from, result) : 0;
}

LONG_PTR get_pages(Node& node, LPARAM handles, LPARAM room) {
    const auto pages = pages_of(node);
    auto* target = reinterpret_cast<HANDLE*>(handles);
    if (room <= 0 || static_cast<size_t>(room) < pages.size() ||
        !qk::is_writable(target, pages.size() * sizeof *target))
        return failed<LONG_PTR>(ERROR_INSUFFICIENT_BUFFER, -1);
    std::transform(pages.begin(), pages.end(), target, [](PageNode* page) { return page->handle(); });
    return static_cast<LONG_PTR>(pages.size());
}

LONG_PTR load_string(Node&, LPARAM buffer, LPARAM size_and_id) {
    const size_t room = LOWORD(size_and_id);
    const std::wstring_view text = own_string(HIWORD(size_and_id));
    auto* target = reinterpret_cast<wchar_t*>(buffer);
    if (text.empty() || room == 0 || !qk::is_writable(target, room * sizeof *target))
        return failed<LONG_PTR>(ERROR_INVALID_PARAMETER, 0);
    const size_t copied = text.copy(target, room - 1);
    target[copied] = L'\0';
    return static_cast<LONG_PTR>(copied);
}

// For the pages of the groups that the function adds from now on.
LONG_PTR set_activation(Node& node, LPARAM context, LPARAM) {
    const auto handle = reinterpret_cast<HANDLE>(context);
    if (!handle || handle == INVALID_HANDLE_VALUE)
        return failed<LONG_PTR>(ERROR_INVALID_PARAMETER, 0);
    AddRefActCtx(handle);
    function_of(node).activation.reset(handle);
    return 1;
}

GroupNode* find_group(Node& node, LPARAM handle) noexcept {
    Node* from = handle ? find_node(reinterpret_cast<HANDLE>(handle)) : &node;
    if (from && from->kind == NodeKind::page)
        from = from->parent;
    return from && from->kind == NodeKind::group ? static_cast<GroupNode*>(from) : nullptr;
}

LONG_PTR ignore_apply(Node& node, LPARAM handle, LPARAM ignore) {
    GroupNode* group = find_group(node, handle);
    if (!group)
        return 0;
    group->ignores_apply = ignore != 0;
    return 1;
}

LONG_PTR apply_group(Node& node, LPARAM handle, LPARAM) {
    GroupNode* group = find_group(node, handle);
    return group && group->lead && group->apply(group->lead) ? group->sheet.hand_up(*group, CPSUI_OK) : 0;
}

LONG_PTR set_data(Node&, LPARAM block, LPARAM handle) {
    const auto* given = reinterpret_cast<const CPSUIDATABLOCK*>(block);
    PageNode* page = find_page(handle);
    if (!page || !qk::is_readable(given, sizeof *given) || !qk::is_readable(given->pbData, given->cbData))
        return 0;
    page->data_block.assign(given->pbData, given->pbData + given->cbData);
    return static_cast<LONG_PTR>(given->cbData);
}

// Copies as much as fits; without a buffer the size that is needed.
LONG_PTR query_data(Node&, LPARAM block, LPARAM handle) {
    const auto* wanted = reinterpret_cast<const CPSUIDATABLOCK*>(block);
    PageNode* page = find_page(handle);
    if (!page || !qk::is_readable(wanted, sizeof *wanted))
        return 0;
    if (!wanted->pbData)
        return static_cast<LONG_PTR>(page->data_block.size());
    const size_t copied = std::min<size_t>(wanted->cbData, page->data_block.size());
    if (!qk::is_writable(wanted->pbData, copied))
        return 0;
    std::copy_n(page->data_block.data(), copied, wanted->pbData);
    return static_cast<LONG_PTR>(copied);
}

struct Entry {
    UINT function;
    LONG_PTR (*answer)(Node& node, LPARAM first, LPARAM second);
};

constexpr Entry kEntries[] = {{CPSFUNC_ADD_HPROPSHEETPAGE, add_made_page},
                              {CPSFUNC_ADD_PROPSHEETPAGEW, add_page},
                              {CPSFUNC_ADD_PCOMPROPSHEETUIW, add_group},
                              {CPSFUNC_ADD_PFNPROPSHEETUIW, add_function},
                              {CPSFUNC_DELETE_HCOMPROPSHEET, remove},
                              {CPSFUNC_SET_HSTARTPAGE, set_start_page},
                              {CPSFUNC_GET_PAGECOUNT, count_pages},
                              {CPSFUNC_SET_RESULT, set_result},
                              {CPSFUNC_GET_HPSUIPAGES, get_pages},
                              {CPSFUNC_LOAD_CPSUI_STRINGW, load_string},
                              {CPSFUNC_SET_DATABLOCK, set_data},
                              {CPSFUNC_QUERY_DATABLOCK, query_data},
                              {CPSFUNC_IGNORE_CPSUI_PSN_APPLY, ignore_apply},
                              {CPSFUNC_DO_APPLY_CPSUI, apply_group},
                              {CPSFUNC_SET_FUSION_CONTEXT, set_activation}};

}  // namespace

LONG_PTR CALLBACK com_prop_sheet(HANDLE handle, UINT function, LPARAM first, LPARAM second) noexcept {
    return guarded<LONG_PTR>(0, [&]() -> LONG_PTR {
        Node* node = find_node(handle);
        if (!node)
            return failed<LONG_PTR>(ERROR_INVALID_HANDLE, 0);
        const auto* entry =
            std::find_if(std::begin(kEntries), std::end(kEntries),
                         [&](const Entry& candidate) { return candidate.function == function; });
        if (entry == std::end(kEntries))
            return failed<LONG_PTR>(ERROR_CALL_NOT_IMPLEMENTED, 0);
        return entry->answer(*node, first, second);
    });
}

}  // namespace compstui
