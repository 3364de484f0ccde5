// The controls that show and change the value of one option item, inside the frame below the tree.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "companions/compstui/option_item.h"

namespace compstui {

class ValuePane {
public:
    // `frame` is a group box on `page`; the controls are children of the page.
    ValuePane(HWND page, HWND frame) noexcept : page_(page), frame_(frame) {}

    // Shows `item`'s value in place of what was shown.
    void show(const OPTITEM& item, HINSTANCE instance, bool enabled, bool extra_enabled);
    void clear() noexcept;

    // What the controls hold now, for an item that the pane shows: the new Sel; nothing while the user has
    // typed no value yet, and for kinds that are not chosen.
    [[nodiscard]] std::optional<LONG> find_selection(const OPTITEM& item) const;

    // What an edit box holds, cut to the item's buffer.
    [[nodiscard]] std::wstring typed_text(const OPTITEM& item) const;

    // Moves a scroll bar as WM_HSCROLL asks; a track bar has moved by itself.
    void scroll(const OPTITEM& item, WPARAM how);

    [[nodiscard]] bool filling() const noexcept { return filling_; }

private:
    HWND add(const wchar_t* window_class, const std::wstring& text, DWORD style, int id, RECT units);
    void fill(const OPTITEM& item, HINSTANCE instance);
    void add_radios(const OPTITEM& item, HINSTANCE instance);
    void add_list(const OPTITEM& item, HINSTANCE instance, bool combo);
    void add_arrow(const OPTITEM& item, HINSTANCE instance);
    void add_bar(const OPTITEM& item, HINSTANCE instance, bool track);
    void add_edit(const OPTITEM& item, HINSTANCE instance);
    void add_push(const OPTITEM& item, HINSTANCE instance);
    void add_check(const OPTITEM& item, HINSTANCE instance);
    void add_extra(const OPTITEM& item, HINSTANCE instance, bool enabled);
    [[nodiscard]] HWND value() const noexcept { return GetDlgItem(page_, kOptionValue); }

    HWND page_;
    HWND frame_;
    RECT area_ = {};   // of the frame's inside, pixels of the page
    SIZE units_ = {};  // the same in dialog units
    DWORD disabled_ = 0;
    bool filling_ = false;
    std::vector<HWND> controls_;
};

}  // namespace compstui
