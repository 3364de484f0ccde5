#include "companions/compstui/option_view.h"

#include <algorithm>
#include <array>

#include "companions/compstui/group.h"
#include "companions/compstui/option_list.h"

namespace compstui {

namespace {

// A control cannot be filled again while it is telling of its change: that is posted.
UINT refresh_message() noexcept {
    return RegisterWindowMessageW(L"compstui refresh");
}

}  // namespace

OptionView::OptionView(HWND page, GroupNode& group, size_t index, bool with_tree)
    : page_(page), group_(group), index_(index) {
    if (with_tree) {
        constexpr DWORD kStyle =
            TVS_HASLINES | TVS_LINESATROOT | TVS_HASBUTTONS | TVS_SHOWSELALWAYS | WS_TABSTOP;
        tree_ = add_control(page, WC_TREEVIEWW, kStyle, kOptionTree, {7, 7, 245, 107});
        make_list(page, kOptionList);
    }
    fill();
}

void OptionView::fill() {
    if (tree_)
        return fill_tree();
    shown_.clear();
    for (OPTITEM& item : group_.items())
        if (GroupNode::lists(index_, item) && !parameters_of(item).empty() && item.pOptType->BegCtrlID != 0)
            show(item, item.pOptType->BegCtrlID);
}

void OptionView::show(OPTITEM& item, int first) {
    item.Flags &= ~static_cast<DWORD>(OPTIF_CHANGED);
    show_list(page_, first, item, group_.instance(), may_change(item, group_.may_update()));
    shown_.push_back({&item, first});
}

// The item chosen before stays chosen; else the first one with a value is.
void OptionView::fill_tree() {
    const OPTITEM* before = shown_.empty() ? nullptr : shown_[0].item;
    filling_ = true;
    TreeView_DeleteAllItems(tree_);
    std::array<HTREEITEM, 256> parents = {};  // by level: the last item above it
    HTREEITEM chosen = nullptr;
    OPTITEM* chosen_item = nullptr;
    for (OPTITEM& item : group_.items()) {
        if (!GroupNode::lists(index_, item))
            continue;
        std::wstring text = item_text(item, group_.instance());
        TVINSERTSTRUCTW insert = {};
        insert.hParent = item.Level > 0 && parents[item.Level - 1u] ? parents[item.Level - 1u] : TVI_ROOT;
        insert.hInsertAfter = TVI_LAST;
        insert.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_STATE;
        insert.item.pszText = text.data();
        insert.item.lParam = reinterpret_cast<LPARAM>(&item);
        insert.item.state = item.Flags & OPTIF_COLLAPSE ? 0 : TVIS_EXPANDED;
        insert.item.stateMask = TVIS_EXPANDED;
        const auto added = reinterpret_cast<HTREEITEM>(
            SendMessageW(tree_, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert)));
        std::fill(parents.begin() + item.Level, parents.end(), added);
        if (!chosen || &item == before || (parameters_of(*chosen_item).empty() && chosen_item != before)) {
            chosen = added;
            chosen_item = &item;
        }
    }
    TreeView_SelectItem(tree_, chosen);
    filling_ = false;
    choose(chosen_item);
}

void OptionView::choose(OPTITEM* item) {
    shown_.clear();
    clear_list(page_, kOptionList);
    if (item)
        show(*item, kOptionList);
}

bool OptionView::answer_notification(const NMHDR& notification) {
    if (!tree_ || notification.hwndFrom != tree_ || notification.code != static_cast<UINT>(TVN_SELCHANGEDW))
        return false;
    if (filling_)
        return true;
    auto* item =
        reinterpret_cast<OPTITEM*>(reinterpret_cast<const NMTREEVIEWW&>(notification).itemNew.lParam);
    choose(item);
    if (item && (item->Flags & OPTIF_CALLBACK))
        obey(group_.notify(page_, CPSUICB_REASON_OPTITEM_SETFOCUS, item, item->Sel));
    return true;
}

INT_PTR OptionView::answer(UINT message, WPARAM wparam, LPARAM) {
    if (message == refresh_message()) {
        fill();
        return TRUE;
    }
    if (message != WM_COMMAND || HIWORD(wparam) != LBN_SELCHANGE)
        return FALSE;
    const auto shown = std::find_if(shown_.begin(), shown_.end(), [&](const Shown& candidate) {
        return candidate.first + kListBox == LOWORD(wparam);
    });
    if (shown == shown_.end())
        return FALSE;
    take_selection(*shown);
    return TRUE;
}

void OptionView::take_selection(const Shown& shown) {
    OPTITEM& item = *shown.item;
    const auto selection = find_selection(page_, shown.first);
    if (!selection || *selection == item.Sel)
        return;
    const LONG old = item.Sel;
    item.Sel = *selection;
    item.Flags |= OPTIF_CHANGEONCE;
    if (tree_)
        set_tree_text(item);
    SendMessageW(GetParent(page_), PSM_CHANGED, reinterpret_cast<WPARAM>(page_), 0);
    if (item.Flags & OPTIF_CALLBACK)
        obey(group_.notify(page_, CPSUICB_REASON_SEL_CHANGED, &item, old));
}

// Of the chosen item, the only one that the user can change.
void OptionView::set_tree_text(const OPTITEM& item) {
    std::wstring text = item_text(item, group_.instance());
    TVITEMW chosen = {};
    chosen.mask = TVIF_TEXT;
    chosen.hItem = TreeView_GetSelection(tree_);
    chosen.pszText = text.data();
    SendMessageW(tree_, TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&chosen));
}

void OptionView::obey(LONG action) const {
    if (action == CPSUICB_ACTION_OPTIF_CHANGED || action == CPSUICB_ACTION_REINIT_ITEMS)
        PostMessageW(page_, refresh_message(), 0, 0);
}

}  // namespace compstui
