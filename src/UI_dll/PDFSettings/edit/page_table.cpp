#include "UI_dll/PDFSettings/edit/page_table.h"

#include "UI_dll/PDFSettings/controls.h"
#include "UI_dll/PDFSettings/edit/edit_sheet.h"
#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/pages/exchange.h"
#include "common/qk/guard.h"

namespace pdf_settings {

namespace {

INT_PTR answer(HWND page, LONG_PTR result) noexcept {
    SetWindowLongPtrW(page, DWLP_MSGRESULT, result);
    return TRUE;
}

// PSN_APPLY. The pages get it in their order, so all have written their controls when the last one has.
LONG_PTR apply(const PageOperations& operations, HWND page, bool from_ok) {
    if (operations.check && !operations.check(page))
        return PSNRET_INVALID;
    operations.apply(page);
    if (operations.index != kPageCount - 1)
        return PSNRET_NOERROR;
    if (save_step(page, from_ok) != kSaved)
        return PSNRET_INVALID_NOCHANGEPAGE;
    // It is saved, whatever becomes of this.
    return qk::guarded<LONG_PTR>(PSNRET_NOERROR, [&] {
        operations.set_active(page);  // shows the name that was saved
        return PSNRET_NOERROR;
    });
}

INT_PTR handle_notification(const PageOperations& operations, HWND page, const PSHNOTIFY& notification) {
    switch (notification.hdr.code) {
        case PSN_SETACTIVE:
            if (operations.set_active)
                operations.set_active(page);
            return answer(page, 0);
        case PSN_KILLACTIVE:
            return answer(page, or_stay_open(page, TRUE, [&] {
                              return !dialog_state().sheet.opening && operations.check &&
                                     !operations.check(page);
                          }));
        case PSN_APPLY:
            return answer(page, or_stay_open(page, PSNRET_INVALID_NOCHANGEPAGE, [&] {
                              return apply(operations, page, notification.lParam != FALSE);
                          }));
        case PSN_QUERYCANCEL:
            dialog_state().list.edit_cancelled = true;
            return answer(page, FALSE);
        default:
            return FALSE;
    }
}

// A page that cannot be filled would show values that are not the setting's; it has said so then.
bool fill(const PageOperations& operations, HWND page) noexcept {
    return or_stay_open(page, FALSE, [&] {
        operations.init(page);
        remember_controls(page);
        return LONG_PTR{TRUE};
    });
}

// Notifications of the sheet itself, not of a control on the page.
bool is_of_sheet(HWND page, const NMHDR& header) noexcept {
    return header.hwndFrom == GetParent(page);
}

INT_PTR pass_on(const PageOperations& operations, HWND page, UINT message, WPARAM wparam, LPARAM lparam) {
    return operations.other ? operations.other(page, message, wparam, lparam) : FALSE;
}

INT_PTR handle_page_message(const PageOperations& operations, HWND page, UINT message, WPARAM wparam,
                            LPARAM lparam) {
    switch (message) {
        case WM_INITDIALOG:
            dialog_state().sheet.pages[operations.index] = page;
            if (!fill(operations, page))
                PostMessageW(GetParent(page), PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
            return FALSE;  // the sheet settles the focus
        case WM_COMMAND:
            if (operations.command)
                operations.command(page, LOWORD(wparam), HIWORD(wparam));
            return FALSE;
        case WM_NOTIFY: {
            const auto& header = *reinterpret_cast<const NMHDR*>(lparam);
            if (!is_of_sheet(page, header))
                return pass_on(operations, page, message, wparam, lparam);
            return handle_notification(operations, page, reinterpret_cast<const PSHNOTIFY&>(header));
        }
        case kSheetStands:
            enable(GetParent(page), kApplyButton, true);
            return TRUE;
        case WM_DESTROY:
            dialog_state().sheet.pages[operations.index] = nullptr;
            pass_on(operations, page, message, wparam, lparam);
            return FALSE;
        default:
            return pass_on(operations, page, message, wparam, lparam);
    }
}

template <const PageOperations& operations>
INT_PTR CALLBACK page_procedure(HWND page, UINT message, WPARAM wparam, LPARAM lparam) {
    return qk::guarded<INT_PTR>(
        FALSE, [&] { return handle_page_message(operations, page, message, wparam, lparam); });
}

}  // namespace

const std::array<PageRow, kPageCount>& page_table() noexcept {
    static constexpr std::array<PageRow, kPageCount> kTable = {{
        {&kGeneral, &page_procedure<kGeneral>, L"general"},
        {&kPDFVersion, &page_procedure<kPDFVersion>, L"pdf-version"},
        {&kColor, &page_procedure<kColor>, L"colour"},
        {&kCompress, &page_procedure<kCompress>, L"compression"},
        {&kFont, &page_procedure<kFont>, L"fonts"},
        {&kSecurities, &page_procedure<kSecurities>, L"security"},
        {&kWaterMark, &page_procedure<kWaterMark>, L"watermark"},
        {&kOpenAction, &page_procedure<kOpenAction>, L"opening"},
        {&kInfo, &page_procedure<kInfo>, L"document"},
    }};
    return kTable;
}

bool check_page(PageIndex page) {
    const HWND window = dialog_state().sheet.pages[page];
    const auto check = page_table()[page].operations->check;
    return !window || !check || check(window);
}

}  // namespace pdf_settings
