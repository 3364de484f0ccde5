// The option items of one page: a tree of them all, and the chosen one's value below it.
#pragma once

#include <memory>
#include <string>

#include "companions/compstui/value_pane.h"

namespace compstui {

class GroupNode;

class OptionView {
public:
    // Makes the view on `page`, the page `index` of `group`; null when no item belongs there. Controls that
    // the template lacks (kOptionTree, kOptionFrame) are created in the room below its other controls.
    [[nodiscard]] static std::unique_ptr<OptionView> create(HWND page, GroupNode& group, size_t index);

    // Messages of the page that nobody has handled yet.
    INT_PTR answer(UINT message, WPARAM wparam, LPARAM lparam);
    bool answer_notification(const NMHDR& notification);

private:
    OptionView(HWND page, GroupNode& group, size_t index);

    void make_controls();
    void place_controls() const;
    void fill_tree();
    void choose(HTREEITEM chosen);
    void show_current();
    void refresh(LONG action);
    void refresh_changed();
    void set_tree_text(size_t item);
    INT_PTR on_command(int id, WORD code);
    void on_value(WORD code);
    void on_push(const OPTITEM& item);
    void on_extra();
    void take_selection();
    void take_text();
    void changed(WORD reason, LPARAM old_value);

    HWND page_;
    GroupNode& group_;
    size_t index_;
    HWND tree_ = nullptr;
    HWND made_tree_ = nullptr;   // null where the template has one
    HWND made_frame_ = nullptr;  // the same
    LONG top_ = 0;               // pixels: what the template has lies above
    std::unique_ptr<ValuePane> pane_;
    OPTITEM* current_ = nullptr;
    bool filling_ = false;
    bool rebuild_ = false;
};

}  // namespace compstui
