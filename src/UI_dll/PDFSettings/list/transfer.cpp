#include "UI_dll/PDFSettings/list/transfer.h"

#include <commctrl.h>
#include <prsht.h>
#include <shellapi.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "UI_dll/PDFSettings/list/import_check.h"
#include "UI_dll/PDFSettings/list/setting_rows.h"
#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/pages/common_dialogs.h"
#include "UI_dll/PDFSettings/setting_list.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

std::wstring filter() {
    using std::string_view_literals::operator""sv;
    return dialog_text(IDS_PS4_FILES) + std::wstring(L" (*.ps4)\0*.ps4\0"sv);
}

std::wstring joined(std::span<const std::wstring> lines) {
    std::wstring text;
    for (const std::wstring& line : lines)
        text += (text.empty() ? L"" : L"\n") + line;
    return text;
}

void tell(HWND page, UINT text_id, const std::wstring& what, UINT icon = MB_ICONERROR) {
    show_message(page, qk::format(dialog_text(text_id).c_str(), what.c_str()), IDS_REFUSED, MB_OK | icon);
}

void tell_error(HWND page, UINT text_id, const std::wstring& path, DWORD error) {
    show_message(page, qk::format(dialog_text(text_id).c_str(), path.c_str(), system_text(error).c_str()),
                 IDS_REFUSED, MB_OK | MB_ICONERROR);
}

void add_line(std::vector<std::wstring>& lines, std::wstring line) {
    if (lines.size() <= kMostTold)
        lines.push_back(lines.size() < kMostTold ? std::move(line) : L"\u2026");
}

// The new file's path; empty when there is none, and then `fault` says why.
std::wstring import_file(const std::wstring& path, std::vector<std::wstring>& corrected,
                         std::wstring& fault) {
    Setting setting;
    ImportCheck check = check_import(path, setting);
    if (!check.fault.empty()) {
        fault = std::move(check.fault);
        return {};
    }
    if (setting->PSName.empty())
        setting->PSName = qk::file_stem(path);
    setting->PSName = free_setting_name(setting->PSName);
    std::wstring made = create_setting_file(setting);
    if (made.empty())
        fault = system_text(GetLastError());
    else
        corrected = std::move(check.corrected);
    return made;
}

}  // namespace

void import_files(HWND list_page, std::span<const std::wstring> paths) {
    TRACE("import_files");
    std::vector<std::wstring> faults, corrected;
    std::wstring last;
    for (const std::wstring& path : paths) {
        const std::wstring file = std::wstring(qk::file_part(path)) + L": ";
        std::vector<std::wstring> values;
        std::wstring fault;
        if (std::wstring made = import_file(path, values, fault); !made.empty())
            last = std::move(made);
        else
            add_line(faults, file + fault);
        for (const std::wstring& value : values)
            add_line(corrected, paths.size() > 1 ? file + value : value);
    }
    if (!last.empty()) {
        ResetSettingsList(list_page, last);
        SendMessageW(GetParent(list_page), PSM_CHANGED, reinterpret_cast<WPARAM>(list_page), 0);
    }
    if (!corrected.empty())
        tell(list_page, IDS_IMPORT_CORRECTED, joined(corrected), MB_ICONINFORMATION);
    if (!faults.empty())
        tell(list_page, IDS_IMPORT_FAILED, joined(faults));
}

void import_asked(HWND list_page) {
    const ChosenFiles chosen = choose_files(list_page, dialog_text(IDS_IMPORT_TITLE), filter());
    if (chosen.too_many)
        show_message(list_page, dialog_text(IDS_IMPORT_TOO_MANY), IDS_REFUSED, MB_OK | MB_ICONERROR);
    import_files(list_page, chosen.paths);
}

void import_dropped(HWND list_page, HDROP files) {
    constexpr UINT kCount = 0xFFFFFFFF;
    std::vector<std::wstring> paths(DragQueryFileW(files, kCount, nullptr, 0));
    for (UINT i = 0; i < paths.size(); ++i) {
        paths[i].resize(DragQueryFileW(files, i, nullptr, 0));
        DragQueryFileW(files, i, paths[i].data(), static_cast<UINT>(paths[i].size()) + 1);
    }
    DragFinish(files);
    import_files(list_page, paths);
}

void export_selected(HWND list_page) {
    const std::wstring path = selected_path(list_page);
    if (path.empty())
        return;
    const auto target = choose_new_file(list_page, dialog_text(IDS_EXPORT_TITLE), filter(), L"ps4",
                                        std::wstring(qk::file_part(path)));
    if (target && !CopyFileW(path.c_str(), target->c_str(), TRUE))
        tell_error(list_page, IDS_EXPORT_FAILED, *target, GetLastError());
}

void begin_rename(HWND list_page) {
    const SettingEntry* entry = selected_entry(list_page);
    const HWND list = find_list(list_page);
    if (!entry || entry->kind != SettingEntry::kOwn || !entry->is_readable)
        return;
    dialog_state().list.may_rename = true;
    const HWND edit = ListView_EditLabel(list, selected_row(list_page));
    dialog_state().list.may_rename = false;
    if (edit) {
        SendMessageW(edit, EM_SETLIMITTEXT, kMostNameUnits, 0);
        SetWindowTextW(edit, entry->name.c_str());  // whole; the row may have it cut
        SendMessageW(edit, EM_SETSEL, 0, -1);
    }
}

void rename_setting(HWND list_page, const std::wstring& path, const std::wstring& name) {
    TRACE("rename_setting");
    if (qk::without_blanks(name).empty()) {
        show_message(list_page, dialog_text(IDS_NO_NAME), IDS_REFUSED, MB_OK | MB_ICONERROR);
        return;
    }
    if (is_name_taken(name, path)) {
        show_message(list_page, dialog_text(IDS_RENAME_TAKEN), IDS_NAME_TAKEN_CAPTION, MB_OK | MB_ICONERROR);
        return;
    }
    Setting setting;
    bool done = setting.Load(path);
    DWORD error = done ? ERROR_SUCCESS : ERROR_FILE_CORRUPT;
    if (done && setting->PSName == name)
        return;
    setting->PSName = name;
    if (done && !(done = setting.Save(path)))
        error = GetLastError();
    if (!done)
        return tell_error(list_page, IDS_NOT_RENAMED, path, error);
    ResetSettingsList(list_page, path);
}

}  // namespace pdf_settings
