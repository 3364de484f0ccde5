#include "UI_dll/PDFSettings/pages/decimal_edit.h"

#include "common/qk/guard.h"

namespace pdf_settings {

namespace {

// The window property of the edit that holds its own procedure.
constexpr wchar_t kProcedureBefore[] = L"ZR_UI80.DecimalProcedure";

LRESULT CALLBACK decimal_procedure(HWND edit, UINT message, WPARAM wparam, LPARAM lparam) {
    return qk::guarded<LRESULT>(0, [&]() -> LRESULT {
        const auto before = reinterpret_cast<WNDPROC>(GetPropW(edit, kProcedureBefore));
        if (message == WM_NCDESTROY)
            RemovePropW(edit, kProcedureBefore);
        if (message == WM_CHAR && wparam == L',')
            wparam = L'.';
        return before ? CallWindowProcW(before, edit, message, wparam, lparam)
                      : DefWindowProcW(edit, message, wparam, lparam);
    });
}

}  // namespace

void take_comma_as_point(HWND edit) noexcept {
    const LONG_PTR before = edit ? GetWindowLongPtrW(edit, GWLP_WNDPROC) : 0;
    if (before && SetPropW(edit, kProcedureBefore, reinterpret_cast<HANDLE>(before)))
        SetWindowLongPtrW(edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&decimal_procedure));
}

}  // namespace pdf_settings
