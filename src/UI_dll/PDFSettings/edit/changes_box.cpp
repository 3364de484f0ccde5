#include "UI_dll/PDFSettings/edit/changes_box.h"

#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/pages/page.h"
#include "common/qk/resource_dll.h"
#include "common/qk/text.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

// What a message box shows on a small screen, too.
constexpr size_t kMostLines = 12;
constexpr size_t kMostUnits = 1200;

std::wstring joined(std::span<const std::wstring> changes) {
    std::wstring list;
    for (const std::wstring& change : changes)
        list += (list.empty() ? L"" : L"\r\n") + change;
    return list;
}

INT_PTR handle(HWND box, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_INITDIALOG:
            SendDlgItemMessageW(box, IDC_CHANGES_ICON, STM_SETICON,
                                reinterpret_cast<WPARAM>(LoadIconW(nullptr, IDI_EXCLAMATION)), 0);
            SetDlgItemTextW(box, IDC_CHANGES, reinterpret_cast<const wchar_t*>(lparam));
            MessageBeep(MB_ICONEXCLAMATION);
            SetFocus(GetDlgItem(box, IDYES));
            return FALSE;
        case WM_COMMAND:
            if (const int button = LOWORD(wparam); button == IDYES || button == IDNO || button == IDCANCEL)
                EndDialog(box, button);
            return TRUE;
        default:
            return FALSE;
    }
}

INT_PTR CALLBACK box_procedure(HWND box, UINT message, WPARAM wparam, LPARAM lparam) {
    return qk::guarded<INT_PTR>(FALSE, [&] { return handle(box, message, wparam, lparam); });
}

}  // namespace

bool confirm_changes(HWND owner, std::span<const std::wstring> changes) {
    if (changes.empty())
        return true;
    const std::wstring list = joined(changes);
    if (changes.size() > kMostLines || list.size() > kMostUnits) {
        const INT_PTR button = DialogBoxParamW(qk::resource_module(), MAKEINTRESOURCEW(IDD_CHANGES), owner,
                                               &box_procedure, reinterpret_cast<LPARAM>(list.c_str()));
        if (button > 0)
            return button == IDYES;
    }
    const std::wstring text = qk::format(dialog_text(IDS_CONFIRM_CHANGES).c_str(), list.c_str());
    return show_message(owner, text, IDS_CONFIRM_CAPTION, MB_YESNO | MB_ICONEXCLAMATION) == IDYES;
}

}  // namespace pdf_settings
