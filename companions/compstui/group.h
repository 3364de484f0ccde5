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

    // The library whose resources the numbers in `item` mean.
    [[nodiscard]] HINSTANCE instance_of(const OPTITEM& item) const noexcept;

    // Whether the page `index` lists `item`.
    [[nodiscard]] bool lists(size_t index, const OPTITEM& item) const noexcept;

    // Tells the group's callback of something; what it asks for (CPSUICB_ACTION_*). `item` is the one it is
    // about, by default the first; `old_value` what it was before (OldSel or pOldSel). `other`, when given,
    // is called in place of the group's callback.
    LONG notify(HWND page, WORD reason, OPTITEM* item = nullptr, LPARAM old_value = 0,
                _CPSUICALLBACK other = nullptr) const;

    // The user pressed OK or Apply; false when the callback keeps the sheet open.
    [[nodiscard]] bool apply(HWND page) const {
        return notify(page, CPSUICB_REASON_APPLYNOW) != CPSUICB_ACTION_NO_APPLY_EXIT;
    }

    HWND lead = nullptr;         // the first page shown: it speaks for the group
    bool ignores_apply = false;  // CPSFUNC_IGNORE_CPSUI_PSN_APPLY

private:
    [[nodiscard]] LONG check() const;
    [[nodiscard]] LONG make_page(const DLGPAGE& page, size_t index);

    COMPROPSHEETUI description_ = {};
    bool tree_only_ = false;  // one page of the host's own lists every item
};

}  // namespace compstui
