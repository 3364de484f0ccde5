#include "UI_dll/PDFSettings/pages/decimal_edit.h"

#include <string>

#include "UI_dll/PDFSettings/controls.h"
#include "UI_dll/PDFSettings/pages/page_general_rules.h"
#include "common/qk/guard.h"
#include "common/qk/text.h"

namespace pdf_settings {

namespace {

void paste(HWND edit) {
    constexpr WPARAM kRoom = 100;  // for the blanks and the unit, beyond what can be typed
    const auto limit = static_cast<size_t>(SendMessageW(edit, EM_GETLIMITTEXT, 0, 0));
    SendMessageW(edit, EM_SETLIMITTEXT, kRoom, 0);
    call_replaced(edit, WM_PASTE, 0, 0);
    SendMessageW(edit, EM_SETLIMITTEXT, limit, 0);
    const std::wstring pasted = window_text(edit);
    const std::wstring plain(qk::cut(plain_length(pasted), limit));
    if (plain == pasted)
        return;
    SendMessageW(edit, EM_SETSEL, 0, -1);
    SendMessageW(edit, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(plain.c_str()));
}

LRESULT CALLBACK decimal_procedure(HWND edit, UINT message, WPARAM wparam, LPARAM lparam) {
    return qk::guarded<LRESULT>(0, [&]() -> LRESULT {
        if (message == WM_CHAR && wparam == L',')
            wparam = L'.';
        if (message == WM_PASTE)
            return paste(edit), 0;
        return call_replaced(edit, message, wparam, lparam);
    });
}

}  // namespace

void take_lengths(HWND edit) noexcept {
    replace_procedure(edit, &decimal_procedure);
}

}  // namespace pdf_settings
