#include "companions/compstui/node.h"

#include <cstdint>

#include "common/qk/memory_probe.h"
#include "companions/compstui/page.h"

namespace compstui {

namespace {

void collect_pages(Node& node, std::vector<PageNode*>& pages) {
    if (node.live() && node.kind == NodeKind::page)
        pages.push_back(static_cast<PageNode*>(&node));
    for (const auto& child : node.children)
        collect_pages(*child, pages);
}

}  // namespace

void Node::retire() noexcept {
    mark_ = 0;
    for (const auto& child : children)
        child->retire();
}

Node* find_node(HANDLE handle) noexcept {
    auto* node = static_cast<Node*>(handle);
    const bool aligned = reinterpret_cast<uintptr_t>(handle) % alignof(Node) == 0;
    return aligned && qk::is_writable(handle, sizeof(Node)) && node->live() ? node : nullptr;
}

FunctionNode::FunctionNode(Sheet& its_sheet, Node* its_parent, PFNPROPSHEETUI function,
                           LPARAM parameter) noexcept
    : Node(NodeKind::function, its_sheet, its_parent), function_(function) {
    info.cbSize = sizeof info;
    info.Version = PROPSHEETUI_INFO_VERSION;
    info.Flags = PSUIINFO_UNICODE;
    info.hComPropSheet = handle();
    info.pfnComPropSheet = &com_prop_sheet;
    info.lParamInit = parameter;
}

LONG FunctionNode::call(WORD reason, LPARAM parameter) {
    info.Reason = reason;
    return function_(&info, parameter);
}

FunctionNode& function_of(Node& node) noexcept {
    Node* at = &node;
    while (at->kind != NodeKind::function)
        at = at->parent;
    return static_cast<FunctionNode&>(*at);
}

std::vector<PageNode*> pages_of(Node& node) {
    std::vector<PageNode*> pages;
    collect_pages(node, pages);
    return pages;
}

}  // namespace compstui
