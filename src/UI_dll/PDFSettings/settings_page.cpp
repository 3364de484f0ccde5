#include "UI_dll/PDFSettings/settings_page.h"

#include "UI_dll/guard.h"

namespace {

INT_PTR handle(HWND /*page*/, UINT message) noexcept {
    switch (message) {
        case WM_INITDIALOG:
            return TRUE;
        case WM_ERASEBKGND:
        case WM_CONTEXTMENU:
            return TRUE;  // handled: nothing is drawn, no menu is shown
        default:
            return FALSE;
    }
}

}  // namespace

INT_PTR CALLBACK settings_page_proc(HWND page, UINT message, WPARAM /*wparam*/, LPARAM /*lparam*/) {
    return ui::guarded<INT_PTR>(FALSE, [&] { return handle(page, message); });
}
