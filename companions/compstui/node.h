// The tree of handles behind one sheet: functions, the groups of pages that they add, and pages.
#pragma once

#include <memory>
#include <vector>

#include "common/qk/handle.h"
#include "companions/compstui/interface.h"

namespace compstui {

class Sheet;

enum class NodeKind { function, group, page };

// A node is what a caller's handle points to. It lives as long as its sheet, so that the handle of a deleted
// node is still known for one; its mark tells a handle from any other number.
class Node {
public:
    Node(NodeKind node_kind, Sheet& its_sheet, Node* its_parent) noexcept
        : kind(node_kind), sheet(its_sheet), parent(its_parent) {}
    virtual ~Node() { mark_ = 0; }
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    [[nodiscard]] HANDLE handle() noexcept { return this; }
    [[nodiscard]] bool live() const noexcept { return mark_ == kMark; }

    // The node and what is below it no longer answer to their handles.
    void retire() noexcept;

    const NodeKind kind;
    Sheet& sheet;
    Node* const parent;
    std::vector<std::unique_ptr<Node>> children;

private:
    friend Node* find_node(HANDLE handle) noexcept;
    static constexpr unsigned long long kMark = 0x65646f4e49555350;

    unsigned long long mark_ = kMark;
};

// The node behind a caller's handle; null for any other number.
[[nodiscard]] Node* find_node(HANDLE handle) noexcept;

// A caller's function with what it was told. `info` is the caller's as long as the node lives.
class FunctionNode : public Node {
public:
    FunctionNode(Sheet& its_sheet, Node* its_parent, PFNPROPSHEETUI function, LPARAM parameter) noexcept;

    // Calls the function with a reason; its answer.
    LONG call(WORD reason, LPARAM parameter);

    PROPSHEETUI_INFO info = {};

private:
    PFNPROPSHEETUI function_;
};

// The function that `node` is, or that stands over it.
[[nodiscard]] FunctionNode& function_of(Node& node) noexcept;

class PageNode;

// The live pages of `node` and below, in the order of the sheet.
[[nodiscard]] std::vector<PageNode*> pages_of(Node& node);

}  // namespace compstui
