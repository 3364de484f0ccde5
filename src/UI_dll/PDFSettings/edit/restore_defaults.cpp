#include "UI_dll/PDFSettings/edit/restore_defaults.h"

#include <commctrl.h>
#include <prsht.h>

#include "UI_dll/PDFSettings/dialog_state.h"
#include "UI_dll/PDFSettings/edit/page_table.h"
#include "UI_dll/PDFSettings/messages.h"
#include "common/qk/guard.h"
#include "common/qk/resource_dll.h"
#include "common/qk/trace.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

INT_PTR CALLBACK question_procedure(HWND box, UINT message, WPARAM wparam, LPARAM) {
    return qk::guarded<INT_PTR>(FALSE, [&]() -> INT_PTR {
        if (message == WM_COMMAND)
            EndDialog(box, LOWORD(wparam));
        return message == WM_INITDIALOG || message == WM_COMMAND;
    });
}

void show_defaults(PageIndex index, const Setting& defaults) {
    const HWND page = dialog_state().sheet.pages[index];
    if (!page)
        return;
    const PageOperations& operations = *page_table()[index].operations;
    operations.show(page, defaults);
    if (operations.set_active)  // the other pages may have changed, too
        operations.set_active(page);
}

}  // namespace

void restore_defaults(HWND sheet) {
    TRACE("restore_defaults");
    const INT_PTR answer =
        DialogBoxParamW(qk::resource_module(), MAKEINTRESOURCEW(IDD_RESTORE), sheet, &question_procedure, 0);
    if (answer <= 0)
        return tell_failure(sheet);
    if (answer != IDC_RESTORE_PAGE && answer != IDC_RESTORE_ALL)
        return;
    const Setting defaults;
    const auto front = reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
    for (size_t i = 0; i < kPageCount; ++i)
        if (answer == IDC_RESTORE_ALL || dialog_state().sheet.pages[i] == front)
            show_defaults(static_cast<PageIndex>(i), defaults);
}

}  // namespace pdf_settings
