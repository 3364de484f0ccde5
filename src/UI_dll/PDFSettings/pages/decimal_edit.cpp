#include "UI_dll/PDFSettings/pages/decimal_edit.h"

#include "UI_dll/PDFSettings/controls.h"
#include "common/qk/guard.h"

namespace pdf_settings {

namespace {

LRESULT CALLBACK decimal_procedure(HWND edit, UINT message, WPARAM wparam, LPARAM lparam) {
    return qk::guarded<LRESULT>(0, [&]() -> LRESULT {
        if (message == WM_CHAR && wparam == L',')
            wparam = L'.';
        return call_replaced(edit, message, wparam, lparam);
    });
}

}  // namespace

void take_comma_as_point(HWND edit) noexcept {
    replace_procedure(edit, &decimal_procedure);
}

}  // namespace pdf_settings
