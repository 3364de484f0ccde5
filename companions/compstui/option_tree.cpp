// The tree of an option page.
#include <algorithm>
#include <array>

#include "companions/compstui/group.h"
#include "companions/compstui/option_view.h"

namespace compstui {

void OptionView::fill_tree() {
    filling_ = true;
    pane_->clear();
    current_ = nullptr;
    TreeView_DeleteAllItems(tree_);
    std::array<HTREEITEM, 256> parents = {};  // by level: the last item above it
    HTREEITEM chosen = nullptr;
    const auto items = group_.items();
    for (size_t i = 0; i < items.size(); ++i) {
        const OPTITEM& item = items[i];
        if (!group_.lists(index_, item))
            continue;
        std::wstring text = item_text(item, group_.instance_of(item));
        TVINSERTSTRUCTW insert = {};
        insert.hParent = item.Level > 0 && parents[item.Level - 1u] ? parents[item.Level - 1u] : TVI_ROOT;
        insert.hInsertAfter = TVI_LAST;
        insert.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_STATE;
        insert.item.pszText = text.data();
        insert.item.lParam = static_cast<LPARAM>(i);
        insert.item.state = item.Flags & OPTIF_COLLAPSE ? 0 : TVIS_EXPANDED;
        insert.item.stateMask = TVIS_EXPANDED;
        const auto added = reinterpret_cast<HTREEITEM>(
            SendMessageW(tree_, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert)));
        std::fill(parents.begin() + item.Level, parents.end(), added);
        const bool is_first_value = !chosen && kind_of(item) != ValueKind::none;
        if (is_first_value || (item.Flags & OPTIF_INITIAL_TVITEM))
            chosen = added;
    }
    if (!chosen)
        chosen = TreeView_GetRoot(tree_);
    TreeView_SelectItem(tree_, chosen);
    filling_ = false;
    choose(chosen);
    show_current();
}

void OptionView::choose(HTREEITEM chosen) {
    TVITEMW item = {};
    item.mask = TVIF_PARAM;
    item.hItem = chosen;
    const bool found = chosen && SendMessageW(tree_, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    current_ = found ? &group_.items()[static_cast<size_t>(item.lParam)] : nullptr;
}

void OptionView::set_tree_text(size_t item) {
    const OPTITEM& changed_item = group_.items()[item];
    std::wstring text = item_text(changed_item, group_.instance_of(changed_item));
    TVITEMW found = {};
    found.mask = TVIF_PARAM;
    // In the order of the tree; all of its items are expanded or not, none is left out.
    const auto next_of = [&](HTREEITEM at) {
        HTREEITEM next = TreeView_GetChild(tree_, at);
        for (; !next && at; at = TreeView_GetParent(tree_, at))
            next = TreeView_GetNextSibling(tree_, at);
        return next;
    };
    for (HTREEITEM at = TreeView_GetRoot(tree_); at; at = next_of(at)) {
        found.hItem = at;
        SendMessageW(tree_, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&found));
        if (static_cast<size_t>(found.lParam) != item)
            continue;
        found.mask = TVIF_TEXT;
        found.pszText = text.data();
        SendMessageW(tree_, TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&found));
        return;
    }
}

}  // namespace compstui
