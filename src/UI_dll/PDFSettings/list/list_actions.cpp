#include "UI_dll/PDFSettings/list/list_actions.h"

#include <commctrl.h>
#include <prsht.h>

#include <string>
#include <utility>

#include "UI_dll/PDFSettings/dialog_state.h"
#include "UI_dll/PDFSettings/help.h"
#include "UI_dll/PDFSettings/list/edit_dialog.h"
#include "UI_dll/PDFSettings/list/setting_rows.h"
#include "UI_dll/PDFSettings/list/transfer.h"
#include "UI_dll/PDFSettings/messages.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

void delete_selected(HWND page) {
    TRACE("IDC_DLG_P_PB_DELETE");
    const std::wstring path = selected_path(page);
    const int row = selected_row(page);
    if (row < 0 || !IsCurrentItemEditable(page) || !qk::is_file(path))
        return;
    auto held = Corvanta::Vantrix::PrintSettings::ReadName(path);
    if (!held || held->empty())
        held = selected_entry(page)->name;  // as its row says
    const std::wstring name(qk::cut(*held, kNameUnits));
    constexpr size_t kQuestionUnits = 519;
    const std::wstring text = qk::format(dialog_text(IDS_CONFIRM_DELETE).c_str(), name.c_str(), path.c_str());
    if (show_message(page, std::wstring(qk::cut(text, kQuestionUnits)), IDS_REFUSED,
                     MB_YESNO | MB_ICONQUESTION) == IDYES &&
        DeleteFileW(path.c_str()))
        remove_row(page, row);
}

void edit_selected(HWND page) {
    (void)selected_path(page);  // where none is selected that is the remembered row, from here on
    const SettingEntry* entry = selected_entry(page);
    DoEditDialog(page, !IsCurrentItemEditable(page) || !entry->is_readable, true);
}

// Keys on the list. The buttons' own rules hold: what a grey one would do is not done.
void on_key(HWND page, WORD key) {
    const bool control = GetKeyState(VK_CONTROL) < 0;
    const bool alt = GetKeyState(VK_MENU) < 0;
    if (alt)
        return;
    if (control) {
        const int button = key == L'N' ? IDC_SETTINGS_NEW : key == L'D' ? IDC_SETTINGS_COPY : 0;
        if (button && IsWindowEnabled(GetDlgItem(page, button)))
            on_list_command(page, button);
    } else if (key == VK_DELETE) {
        delete_selected(page);
    } else if (key == VK_F2) {
        begin_rename(page);
    }
}

LONG_PTR on_label(HWND page, const NMLVDISPINFOW& info) {
    ListPageState& state = dialog_state().list;
    if (info.hdr.code == LVN_BEGINLABELEDITW)  // not by a second click, which is half a double-click
        return state.may_rename ? FALSE : TRUE;
    const SettingEntry* entry = selected_entry(page);
    if (info.item.pszText && entry) {
        // The list may not be filled again before this notification is over.
        state.renamed_path = entry->path;
        state.new_name = info.item.pszText;
        PostMessageW(page, kRename, 0, 0);
    }
    return FALSE;  // the row gets its text with the refill
}

}  // namespace

void rename_pending(HWND page) {
    ListPageState& state = dialog_state().list;
    if (!state.renamed_path.empty())
        rename_setting(page, std::exchange(state.renamed_path, {}), std::exchange(state.new_name, {}));
}

bool on_list_command(HWND page, int control) {
    rename_pending(page);
    switch (control) {
        case IDC_SETTINGS_NEW:
            DoEditDialog(page, true);
            return true;
        case IDC_SETTINGS_EDIT:
            edit_selected(page);
            return true;
        case IDC_SETTINGS_COPY:
            DoEditDialog(page, true, true);
            return true;
        case IDC_SETTINGS_DELETE:
            delete_selected(page);
            return true;
        case IDC_SETTINGS_IMPORT:
            import_asked(page);
            return true;
        case IDC_SETTINGS_EXPORT:
            export_selected(page);
            return true;
        case IDC_SETTINGS_HELP:
            show_help(page, kListChapter);
            return true;
        default:
            return false;
    }
}

bool on_list_notification(HWND page, const NMHDR& header) {
    switch (header.code) {
        case LVN_ITEMCHANGED:
            if (!dialog_state().list.filling &&
                reinterpret_cast<const NMLISTVIEW&>(header).uNewState == (LVIS_SELECTED | LVIS_FOCUSED)) {
                show_selected(page);
                SendMessageW(GetParent(page), PSM_CHANGED, reinterpret_cast<WPARAM>(page), 0);
            }
            return true;
        case NM_DBLCLK:
        case NM_RDBLCLK:
            rename_pending(page);
            edit_selected(page);
            return true;
        case LVN_KEYDOWN:
            on_key(page, reinterpret_cast<const NMLVKEYDOWN&>(header).wVKey);
            return true;
        case LVN_BEGINLABELEDITW:
        case LVN_ENDLABELEDITW:
            SetWindowLongPtrW(page, DWLP_MSGRESULT,
                              on_label(page, reinterpret_cast<const NMLVDISPINFOW&>(header)));
            return true;
        default:
            return false;
    }
}

}  // namespace pdf_settings
