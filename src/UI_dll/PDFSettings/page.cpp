#include "UI_dll/PDFSettings/page.h"

#include "UI_dll/PDFSettings/exchange.h"
#include "UI_dll/plotui.h"
#include "common/trace.h"
#include "common/text.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

INT_PTR answer(HWND page, LONG_PTR result) noexcept {
    SetWindowLongPtrW(page, DWLP_MSGRESULT, result);
    return TRUE;
}

INT_PTR handle_notification(const PageOperations& operations, HWND page, const PSHNOTIFY& notification) {
    switch (notification.hdr.code) {
        case PSN_SETACTIVE:
            if (operations.set_active)
                operations.set_active(page);
            return answer(page, 0);
        case PSN_KILLACTIVE:
            return answer(page, or_stay_open(page, TRUE, [&] {
                              return !dialog_state().opening && operations.check && !operations.check(page);
                          }));
        case PSN_APPLY:
            return answer(page, or_stay_open(page, PSNRET_INVALID_NOCHANGEPAGE, [&]() -> LONG_PTR {
                              if (operations.check && !operations.check(page))
                                  return PSNRET_INVALID;
                              return operations.apply(page, notification.lParam != FALSE);
                          }));
        case PSN_QUERYCANCEL:
            dialog_state().cancelled = true;
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

}  // namespace

INT_PTR handle_page_message(const PageOperations& operations, HWND page, UINT message, WPARAM wparam,
                            LPARAM lparam) {
    switch (message) {
        case WM_INITDIALOG:
            dialog_state().pages[operations.index] = page;
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
            dialog_state().pages[operations.index] = nullptr;
            pass_on(operations, page, message, wparam, lparam);
            return FALSE;
        default:
            return pass_on(operations, page, message, wparam, lparam);
    }
}

const std::array<PageRow, kPageCount>& page_table() noexcept {
    static constexpr std::array<PageRow, kPageCount> kTable = {{
        {&kGeneral, &page_procedure<kGeneral>},
        {&kPDFVersion, &page_procedure<kPDFVersion>},
        {&kColor, &page_procedure<kColor>},
        {&kCompress, &page_procedure<kCompress>},
        {&kFont, &page_procedure<kFont>},
        {&kSecurities, &page_procedure<kSecurities>},
        {&kWaterMark, &page_procedure<kWaterMark>},
        {&kOpenAction, &page_procedure<kOpenAction>},
        {&kInfo, &page_procedure<kInfo>},
    }};
    return kTable;
}

bool check_page(PageIndex page) {
    const HWND window = dialog_state().pages[page];
    const auto check = page_table()[page].operations->check;
    return !window || !check || check(window);
}

HWND find_sibling_page(HWND page, UINT title_id) {
    const HWND sheet = GetParent(page);
    return sheet ? FindWindowExW(sheet, nullptr, nullptr, dialog_text(title_id).c_str()) : nullptr;
}

std::wstring dialog_text(UINT id) {
    const HMODULE library = plotui::resource_module();
    // Strings lie in blocks of sixteen; an id whose block is there has an empty text, at least.
    if (!library || !FindResourceW(library, MAKEINTRESOURCEW(id / 16 + 1), RT_STRING))
        return qk::format(L"(no id{%u})", id);
    wchar_t text[2000];
    const int length = LoadStringW(library, id, text, static_cast<int>(std::size(text)));
    return length > 0 ? std::wstring(text, static_cast<size_t>(length)) : qk::format(L"(no string{%u})", id);
}

int show_message(HWND owner, const std::wstring& text, UINT caption_id, UINT style) {
    return MessageBoxW(owner, text.c_str(), dialog_text(caption_id).c_str(), style);
}

void tell_failure(HWND owner) noexcept {
    TRACE("err:tell_failure");
    const HMODULE library = plotui::resource_module();
    wchar_t text[600] = {}, caption[100] = {};
    LoadStringW(library, IDS_FAILED, text, static_cast<int>(std::size(text)));
    LoadStringW(library, IDS_REFUSED, caption, static_cast<int>(std::size(caption)));
    MessageBoxW(owner, text, caption, MB_OK | MB_ICONERROR);
}

bool refuse(HWND page, int control, UINT text_id, UINT icon) {
    return refuse(page, control, dialog_text(text_id), icon);
}

bool refuse(HWND page, int control, const std::wstring& text, UINT icon) {
    TRACE_F(L"refused: %d", control);
    show_message(page, text, IDS_REFUSED, MB_OK | icon);
    if (const HWND window = GetDlgItem(page, control)) {
        SetFocus(window);
        SendMessageW(window, EM_SETSEL, 0, -1);
    }
    return false;
}

}  // namespace pdf_settings
