#include "UI_dll/PDFSettings/list/edit_dialog.h"

#include <prsht.h>

#include <string>

#include "UI_dll/PDFSettings/dialog_state.h"
#include "UI_dll/PDFSettings/edit/edit_sheet.h"
#include "UI_dll/PDFSettings/list/setting_rows.h"
#include "UI_dll/PDFSettings/list/settings_page.h"
#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/preview/view_box.h"
#include "UI_dll/PDFSettings/setting_list.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

// Gives the edited setting a name that no listed setting has.
void name_copy() {
    Setting& edited = edited_setting();
    std::wstring base(base_name(qk::cut(edited->PSName, kNameUnits)));
    if (base.empty())
        base = dialog_text(IDS_SHEET_NEW);
    edited->PSName = free_setting_name(base);
}

}  // namespace

void DoEditDialog(HWND list_page, bool is_new, bool names_original) {
    TRACE("DoEditDialog");
    const std::wstring remembered = selected_path(list_page);
    const SettingEntry* entry = selected_entry(list_page);
    std::wstring original = names_original && entry && entry->is_readable ? entry->name : std::wstring();
    if (!LoadSettingFile(remembered) && !remembered.empty()) {
        original.clear();
        const std::wstring text = qk::format(dialog_text(IDS_UNREADABLE).c_str(), remembered.c_str());
        show_message(list_page, text, IDS_REFUSED, MB_OK | MB_ICONINFORMATION);
        is_new = true;
    }
    const bool copies = is_new || !IsCurrentItemEditable(list_page);
    if (copies && entry && entry->is_readable)
        edited_setting()->PSName = entry->name;  // of a ready one that is not what its file holds
    if (copies)
        name_copy();
    SetViewBox(list_page);
    DoPropertySheet(list_page, copies, original);
    if (!IsWindow(list_page))
        return;
    dlg_init_dpi_PDFSettings(list_page);
    const std::wstring path = dialog_state().file.path;
    ResetSettingsList(list_page, path.empty() ? remembered : path);
    dlg_init_dpi_PDFSettings(list_page);
    SendMessageW(GetParent(list_page), PSM_CHANGED, reinterpret_cast<WPARAM>(list_page), 0);
}

}  // namespace pdf_settings
