// What touches the controls of the dialog's windows.
#pragma once

#include <windows.h>

#include <array>
#include <string>

namespace pdf_settings {

// The text of a window, whole.
[[nodiscard]] std::wstring window_text(HWND window);

[[nodiscard]] std::wstring control_text(HWND page, int control);
[[nodiscard]] bool is_checked(HWND page, int control) noexcept;
void set_checked(HWND page, int control, bool checked) noexcept;
void enable(HWND page, int control, bool enabled) noexcept;
void set_shown(HWND page, int control, bool shown) noexcept;

// Shows a text in an edit, into which no more than `limit` units of UTF-16 can be typed.
void set_text(HWND page, int control, const std::wstring& text, size_t limit);

template <size_t Count>
void enable(HWND page, const std::array<int, Count>& controls, bool enabled) noexcept {
    for (const int control : controls)
        enable(page, control, enabled);
}

// Adds a text at the end of a combo box; its position.
LRESULT add_item(HWND page, int control, const std::wstring& text);

// Fills a combo box anew with the string resources `first` .. `first + count - 1`.
void fill_list(HWND page, int control, UINT first, UINT count);
// The selected position of a combo box, or `otherwise` when nothing is selected.
[[nodiscard]] int selected(HWND page, int control, int otherwise = 0) noexcept;
void select(HWND page, int control, int position) noexcept;

// What an empty edit says in grey: what leaving it so means.
void set_cue(HWND page, int control, const std::wstring& text);

// Tells what is in a window that the system's colours are others: of that only the sheet learns, while lists
// keep the colours that they were made with.
void pass_on_colours(HWND window) noexcept;

// Where a window lies in its parent, in pixels.
[[nodiscard]] RECT window_place(HWND window, HWND parent) noexcept;

// --- A procedure of ours in the place of a window's own: one for each window, on the window's thread ---

// Puts `procedure` there and remembers the former one; ours passes on by call_replaced() what it does not
// answer itself, WM_NCDESTROY for one. Nothing happens when `window` is null, when it has one of ours
// already, or when the former one cannot be kept.
void replace_procedure(HWND window, WNDPROC procedure) noexcept;

// The answer of the former procedure; the system's, where that one has been given back. With WM_NCDESTROY it
// is forgotten.
LRESULT call_replaced(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

// Gives the former one back, unless somebody else has replaced `procedure` since: theirs leads to ours, which
// stays and from then on only passes on.
void restore_procedure(HWND window, WNDPROC procedure) noexcept;

// While it lives the window does not draw; it is drawn anew at the end.
class RedrawOff {
public:
    explicit RedrawOff(HWND window) noexcept;
    ~RedrawOff();
    RedrawOff(const RedrawOff&) = delete;
    RedrawOff& operator=(const RedrawOff&) = delete;

private:
    HWND window_;
};

}  // namespace pdf_settings
