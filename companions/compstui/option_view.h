// The option items of one page. On a page of the caller's each has controls of its own, by the number in its
// type; on the host's own page a tree lists them all, and the chosen one's list stands below it.
#pragma once

#include <vector>

#include "companions/compstui/option_item.h"

namespace compstui {

class GroupNode;

class OptionView {
public:
    // The view on `page`, the page `index` of `group`.
    OptionView(HWND page, GroupNode& group, size_t index, bool with_tree);

    // Messages of the page that nobody has handled yet.
    INT_PTR answer(UINT message, WPARAM wparam, LPARAM lparam);
    bool answer_notification(const NMHDR& notification);

private:
    struct Shown {
        OPTITEM* item;
        int first;  // its controls
    };

    void fill();
    void fill_tree();
    void choose(OPTITEM* item);
    void show(OPTITEM& item, int first);
    void set_tree_text(const OPTITEM& item);
    void take_selection(const Shown& shown);
    void obey(LONG action) const;

    HWND page_;
    GroupNode& group_;
    size_t index_;
    HWND tree_ = nullptr;
    std::vector<Shown> shown_;
    bool filling_ = false;
};

}  // namespace compstui
