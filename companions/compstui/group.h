// The pages that one COMPROPSHEETUI describes, with its option items and callback.
#pragma once

#include <span>

#include "companions/compstui/node.h"

namespace compstui {

class GroupNode : public Node {
public:
    GroupNode(Sheet& its_sheet, Node* its_parent) noexcept : Node(NodeKind::group, its_sheet, its_parent) {}

    // Checks the description and makes its pages. It is copied; the items and texts that it points to stay
    // the caller's and must live until the sheet is gone. Returns the number of pages or an ERR_CPSUI_* below
    // 0.
    [[nodiscard]] LONG make_pages(const COMPROPSHEETUI& description);

    // Shows the items of the page `index`, which is `page`.
    void show_items(HWND page, size_t index) const;

    // The user pressed OK or Apply: the callback may change what the functions above are told. False when it
    // keeps the sheet open.
    [[nodiscard]] bool apply(HWND page);

    HWND lead = nullptr;  // the first page shown: it speaks for the group

private:
    [[nodiscard]] std::span<OPTITEM> items() const noexcept;
    [[nodiscard]] LONG check() const;
    [[nodiscard]] LONG make_page(const DLGPAGE& page, size_t index);

    COMPROPSHEETUI description_ = {};
};

}  // namespace compstui
