#include "companions/compstui/option_view.h"

#include <algorithm>
#include <utility>

#include "companions/compstui/group.h"
#include "companions/compstui/strings.h"

namespace compstui {

namespace {

// Dialog units.
constexpr LONG kEdge = 7;         // between controls and the page's edge
constexpr LONG kHalfCaption = 4;  // a group box draws its line that much below its edge

// A control cannot be replaced while it is telling of its change: that is posted.
UINT refresh_message() noexcept {
    return RegisterWindowMessageW(L"compstui refresh");
}

SIZE pixels(HWND page, LONG x, LONG y) noexcept {
    RECT rect = {0, 0, x, y};
    MapDialogRect(page, &rect);
    return {rect.right, rect.bottom};
}

// Where the controls that the template has end.
LONG foot_of_controls(HWND page) noexcept {
    LONG foot = 0;
    for (HWND child = GetWindow(page, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        RECT taken = {};
        GetWindowRect(child, &taken);
        MapWindowPoints(nullptr, page, reinterpret_cast<POINT*>(&taken), 2);
        foot = std::max(foot, taken.bottom);
    }
    return foot;
}

void place(HWND control, const RECT& where) noexcept {
    SetWindowPos(control, nullptr, where.left, where.top, std::max(where.right - where.left, 1L),
                 std::max(where.bottom - where.top, 1L), SWP_NOZORDER | SWP_NOACTIVATE);
}

HWND add_control(HWND page, DWORD extended, const wchar_t* window_class, DWORD style, int id) {
    const HWND control =
        CreateWindowExW(extended, window_class, L"", style | WS_CHILD | WS_VISIBLE, 0, 0, 1, 1, page,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
    SendMessageW(control, WM_SETFONT, static_cast<WPARAM>(SendMessageW(page, WM_GETFONT, 0, 0)), FALSE);
    return control;
}

// Runs a caller's dialog for a push button; `identity` is a template's number or, when `indirect`, its
// handle.
void run_dialog(HWND page, HINSTANCE instance, DLGPROC procedure, ULONG_PTR identity, bool indirect) {
    if (indirect)
        DialogBoxIndirectParamW(instance,
                                static_cast<DLGTEMPLATE*>(LockResource(reinterpret_cast<HGLOBAL>(identity))),
                                page, procedure, 0);
    else
        DialogBoxParamW(instance, MAKEINTRESOURCEW(LOWORD(identity)), page, procedure, 0);
}

}  // namespace

std::unique_ptr<OptionView> OptionView::create(HWND page, GroupNode& group, size_t index) {
    const auto items = group.items();
    if (std::none_of(items.begin(), items.end(),
                     [&](const OPTITEM& item) { return group.lists(index, item); }))
        return nullptr;
    std::unique_ptr<OptionView> view(new OptionView(page, group, index));
    view->make_controls();
    view->fill_tree();
    return view;
}

OptionView::OptionView(HWND page, GroupNode& group, size_t index)
    : page_(page), group_(group), index_(index) {}

void OptionView::make_controls() {
    top_ = foot_of_controls(page_);
    tree_ = GetDlgItem(page_, kOptionTree);
    if (!tree_)
        tree_ = made_tree_ = add_control(
            page_, WS_EX_CLIENTEDGE, WC_TREEVIEWW,
            TVS_HASLINES | TVS_LINESATROOT | TVS_HASBUTTONS | TVS_SHOWSELALWAYS | WS_TABSTOP, kOptionTree);
    HWND frame = GetDlgItem(page_, kOptionFrame);
    if (!frame)
        frame = made_frame_ = add_control(page_, 0, WC_BUTTONW, BS_GROUPBOX, kOptionFrame);
    place_controls();
    pane_ = std::make_unique<ValuePane>(page_, frame);
}

// The tree above, the frame below, in the room that the template's controls leave.
void OptionView::place_controls() const {
    RECT page = {};
    GetClientRect(page_, &page);
    const SIZE edge = pixels(page_, kEdge, kEdge);
    const LONG caption = pixels(page_, 0, kHalfCaption).cy;
    const RECT room = {edge.cx, top_ + edge.cy, page.right - edge.cx, page.bottom - edge.cy};
    const LONG split = (room.top + room.bottom) / 2;
    if (made_tree_)
        place(made_tree_, {room.left, room.top, room.right, split});
    if (made_frame_)
        place(made_frame_, {room.left, split + edge.cy - caption, room.right, room.bottom});
}

bool OptionView::answer_notification(const NMHDR& notification) {
    if (notification.hwndFrom != tree_ || notification.code != static_cast<UINT>(TVN_SELCHANGEDW))
        return false;
    if (filling_)
        return true;
    choose(reinterpret_cast<const NMTREEVIEWW&>(notification).itemNew.hItem);
    show_current();
    if (current_ && (current_->Flags & OPTIF_CALLBACK))
        refresh(group_.notify(page_, CPSUICB_REASON_OPTITEM_SETFOCUS, current_, current_->Sel));
    return true;
}

void OptionView::show_current() {
    if (!current_) {
        pane_->clear();
        return;
    }
    const bool may_update = group_.may_update();
    const bool extra = may_update && !(current_->Flags & (OPTIF_EXT_DISABLED | OPTIF_DISABLED));
    pane_->show(*current_, group_.instance_of(*current_), may_change(*current_, may_update), extra);
}

INT_PTR OptionView::answer(UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == refresh_message()) {
        refresh_changed();
        return TRUE;
    }
    if (message == WM_SIZE && made_frame_ && !pane_->filling()) {
        place_controls();
        show_current();
        return FALSE;
    }
    if (!current_ || pane_->filling())
        return FALSE;
    if (message == WM_COMMAND && lparam != 0)
        return on_command(LOWORD(wparam), HIWORD(wparam));
    if (message == WM_HSCROLL && reinterpret_cast<HWND>(lparam) == GetDlgItem(page_, kOptionValue)) {
        pane_->scroll(*current_, wparam);
        take_selection();
        SetDlgItemTextW(page_, kOptionLabel, value_text(*current_, group_.instance_of(*current_)).c_str());
        return TRUE;
    }
    return FALSE;
}

INT_PTR OptionView::on_command(int id, WORD code) {
    if (id == kOptionValue) {
        on_value(code);
        return TRUE;
    }
    if (id == kOptionExtra && code == BN_CLICKED) {
        on_extra();
        return TRUE;
    }
    const bool radio = id >= kOptionRadio && kind_of(*current_) == ValueKind::radio;
    if (radio && code == BN_CLICKED)
        take_selection();
    return radio;
}

void OptionView::on_value(WORD code) {
    switch (kind_of(*current_)) {
        case ValueKind::list:
        case ValueKind::combo:
            static_assert(CBN_SELCHANGE == LBN_SELCHANGE);
            if (code == CBN_SELCHANGE)
                take_selection();
            return;
        case ValueKind::arrow:
            if (code == EN_CHANGE)
                take_selection();
            else if (code == EN_KILLFOCUS)  // what was no value becomes the last one again
                SendDlgItemMessageW(page_, kOptionArrow, UDM_SETPOS32, 0, current_->Sel);
            return;
        case ValueKind::edit:
            if (code == EN_CHANGE)
                take_text();
            return;
        case ValueKind::check:
            if (code == BN_CLICKED)
                take_selection();
            return;
        case ValueKind::push:
            if (code == BN_CLICKED)
                on_push(*current_);
            return;
        default:
            return;
    }
}

void OptionView::take_selection() {
    const auto selection = pane_->find_selection(*current_);
    if (!selection || *selection == current_->Sel)
        return;
    const LONG old = current_->Sel;
    current_->Sel = *selection;
    changed(CPSUICB_REASON_SEL_CHANGED, old);
}

void OptionView::take_text() {
    const std::wstring old = value_text(*current_, nullptr);
    const std::wstring typed = pane_->typed_text(*current_);
    if (typed == old)
        return;
    current_->pSel[typed.copy(current_->pSel, edit_units(*current_) - 1)] = L'\0';
    changed(CPSUICB_REASON_SEL_CHANGED, reinterpret_cast<LPARAM>(old.c_str()));
}

void OptionView::changed(WORD reason, LPARAM old_value) {
    current_->Flags |= OPTIF_CHANGEONCE;
    set_tree_text(static_cast<size_t>(current_ - group_.items().data()));
    SendMessageW(GetParent(page_), PSM_CHANGED, reinterpret_cast<WPARAM>(page_), 0);
    if (current_->Flags & OPTIF_CALLBACK)
        refresh(group_.notify(page_, reason, current_, old_value));
}

void OptionView::on_push(const OPTITEM& item) {
    const OPTPARAM& push = parameters_of(item)[0];
    auto* code = reinterpret_cast<void*>(push.pData);
    const bool enabled = may_change(item, group_.may_update());
    switch (item.pOptType->Style & 3) {
        case PUSHBUTTON_TYPE_DLGPROC:
            if (enabled && code)
                run_dialog(page_, group_.instance_of(item), reinterpret_cast<DLGPROC>(code),
                           static_cast<ULONG_PTR>(push.lParam), push.Flags & OPTPF_USE_HDLGTEMPLATE);
            return;
        case PUSHBUTTON_TYPE_CALLBACK:
            if (enabled)
                refresh(group_.notify(page_, CPSUICB_REASON_PUSHBUTTON, current_, item.Sel,
                                      reinterpret_cast<_CPSUICALLBACK>(code)));
            return;
        default:  // the system's halftone dialogs
            return;
    }
}

void OptionView::on_extra() {
    if (const EXTPUSH* push = find_extra_push(*current_)) {
        if (push->Flags & EPF_PUSH_TYPE_DLGPROC)
            run_dialog(page_, group_.instance_of(*current_), push->DlgProc,
                       reinterpret_cast<ULONG_PTR>(push->hDlgTemplate), push->Flags & EPF_USE_HDLGTEMPLATE);
        else
            refresh(
                group_.notify(page_, CPSUICB_REASON_EXTPUSH, current_, current_->Sel,
                              reinterpret_cast<_CPSUICALLBACK>(reinterpret_cast<void*>(push->pfnCallBack))));
        return;
    }
    const bool checked = IsDlgButtonChecked(page_, kOptionExtra) == BST_CHECKED;
    if (checked == ((current_->Flags & OPTIF_ECB_CHECKED) != 0))
        return;
    current_->Flags ^= OPTIF_ECB_CHECKED;
    changed(CPSUICB_REASON_ECB_CHANGED, current_->Sel);
}

void OptionView::refresh(LONG action) {
    if (action != CPSUICB_ACTION_OPTIF_CHANGED && action != CPSUICB_ACTION_REINIT_ITEMS)
        return;
    rebuild_ = rebuild_ || action == CPSUICB_ACTION_REINIT_ITEMS;
    PostMessageW(page_, refresh_message(), 0, 0);
}

void OptionView::refresh_changed() {
    const auto items = group_.items();
    bool rebuild = std::exchange(rebuild_, false);
    bool show = false;
    for (size_t i = 0; i < items.size(); ++i) {
        if (!(items[i].Flags & OPTIF_CHANGED) || !group_.lists(index_, items[i]))
            continue;
        items[i].Flags &= ~static_cast<DWORD>(OPTIF_CHANGED);
        show = show || &items[i] == current_;
        set_tree_text(i);
    }
    if (rebuild)
        fill_tree();
    else if (show)
        show_current();
}

}  // namespace compstui
