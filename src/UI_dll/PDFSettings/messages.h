// What the dialog says: its texts and its message boxes.
#pragma once

#include <windows.h>

#include <string>

#include "common/qk/guard.h"

namespace pdf_settings {

// A text of the language library, or "(no id{%u})" / "(no string{%u})".
[[nodiscard]] std::wstring dialog_text(UINT id);

// Shows a message box; the result is its button. Where nobody can see it, none, and 0: the debug output has
// it.
int show_message(HWND owner, const std::wstring& text, UINT caption_id, UINT style);

// Says that something failed, out of memory for one, and that the entries are still there. Does what it can.
void tell_failure(HWND owner) noexcept;

// Runs the part of a page in keeping the sheet open or letting it close. Where it fails, says so and answers
// `failure`: what a page does not answer would count as valid and as saved.
template <class Operation>
[[nodiscard]] LONG_PTR or_stay_open(HWND page, LONG_PTR failure, Operation operation) noexcept {
    bool done = false;
    const LONG_PTR result = qk::guarded<LONG_PTR>(failure, [&] {
        const LONG_PTR answer = operation();
        done = true;
        return answer;
    });
    if (!done)
        tell_failure(page);
    return result;
}

// The way a check refuses: the message with the caption IDS_REFUSED, then the focus on the control, whose
// text is selected; false. While findings are collected it only adds one, and is true: the check goes on.
bool refuse(HWND page, int control, UINT text_id, UINT icon = MB_ICONERROR);
bool refuse(HWND page, int control, const std::wstring& text, UINT icon = MB_ICONERROR);

// The system's text of a Windows error, with its line end; the number where there is none.
[[nodiscard]] std::wstring system_text(DWORD error);

}  // namespace pdf_settings
