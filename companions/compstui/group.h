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

    [[nodiscard]] std::span<OPTITEM> items() const noexcept;
    [[nodiscard]] bool may_update() const noexcept { return description_.Flags & CPSUIF_UPDATE_PERMISSION; }

    [[nodiscard]] HINSTANCE instance() const noexcept { return description_.hInstCaller; }

    // Whether the page `index` lists `item`.
    [[nodiscard]] static bool lists(size_t index, const OPTITEM& item) noexcept {
        return !(item.Flags & OPTIF_HIDE) && item.DlgPageIdx == index;
    }

    // Tells the group's callback of something; what it asks for (CPSUICB_ACTION_*). `item` is the one it is
    // about and `old` its value before.
    LONG notify(HWND page, WORD reason, OPTITEM* item, LONG old);

    // A page becomes the active one or is left.
    void notify_activity(HWND page, WORD reason);

    // The user pressed OK or Apply: the callback may change what the functions above are told. False when it
    // keeps the sheet open.
    [[nodiscard]] bool apply(HWND page);

    HWND lead = nullptr;  // the first page shown: it speaks for the group

private:
    [[nodiscard]] LONG check() const;
    [[nodiscard]] CPSUICBPARAM callback_parameter(HWND page, WORD reason) const;
    [[nodiscard]] LONG make_page(const DLGPAGE& page, size_t index);

    COMPROPSHEETUI description_ = {};
};

}  // namespace compstui
