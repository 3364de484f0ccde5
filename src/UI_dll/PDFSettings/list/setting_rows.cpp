#include "UI_dll/PDFSettings/list/setting_rows.h"

#include <commctrl.h>
#include <prsht.h>

#include <algorithm>
#include <memory>

#include "UI_dll/PDFSettings/list/summary.h"
#include "UI_dll/PDFSettings/pages/exchange.h"
#include "UI_dll/PDFSettings/preview/view_box.h"
#include "UI_dll/PDFSettings/setting_list.h"
#include "common/qk/paths.h"
#include "common/qk/registry.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "common/rwPDFSet_functions.h"
#include "common/threadprop.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

// The row's own copy of its entry.
SettingEntry* entry_at(HWND list, int row) {
    LVITEMW item = {};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    return row >= 0 && ListView_GetItem(list, &item) ? reinterpret_cast<SettingEntry*>(item.lParam) : nullptr;
}

void PSFilesToListView(HWND list, const std::vector<SettingEntry>& entries) {
    TRACE("PSFilesToListView");
    for (const SettingEntry& entry : entries) {
        std::wstring text(qk::cut(entry.name, kRowUnits));
        auto copy = std::make_unique<SettingEntry>(entry);
        LVITEMW item = {};
        item.mask = LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM;
        item.iItem = ListView_GetItemCount(list);
        item.pszText = text.data();
        item.iImage = row_image(entry.kind);
        item.lParam = reinterpret_cast<LPARAM>(copy.get());
        if (ListView_InsertItem(list, &item) >= 0)
            (void)copy.release();  // the row's
    }
}

// Selects and focuses the row, and remembers it. Of an empty list nothing is selected.
void select_row(HWND list, int row) {
    if (ListView_GetItemCount(list) == 0)
        return dialog_state().list.last_row.reset();
    ListView_SetItemState(list, row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    ListView_EnsureVisible(list, row, FALSE);
    dialog_state().list.last_row = row;
}

void update_delete_button(HWND page) {
    const HWND owner = GetDlgItem(page, IDC_SETTINGS_DELETE) ? page : GetParent(page);
    const bool editable = IsCurrentItemEditable(page);
    // A greyed button would keep the focus, and the keys with it.
    if (!editable && GetFocus() == GetDlgItem(owner, IDC_SETTINGS_DELETE))
        SendMessageW(owner, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(find_list(page)), TRUE);
    enable(owner, IDC_SETTINGS_DELETE, editable);
    const PageIcons& icons = dialog_state().list.icons;
    SendDlgItemMessageW(owner, IDC_SETTINGS_DELETE, BM_SETIMAGE, IMAGE_ICON,
                        reinterpret_cast<LPARAM>((editable ? icons.remove : icons.no_remove).get()));
}

// The time of a refill: the list does not draw, and what it tells is not the user's doing.
class Filling {
public:
    explicit Filling(HWND list) noexcept : redraw_off_(list) { dialog_state().list.filling = true; }
    ~Filling() { dialog_state().list.filling = false; }
    Filling(const Filling&) = delete;
    Filling& operator=(const Filling&) = delete;

private:
    RedrawOff redraw_off_;
};

// What is left of the list beside a scroll bar.
int column_width(HWND list) noexcept {
    RECT client = {};
    GetClientRect(list, &client);
    return client.right - GetSystemMetrics(SM_CXVSCROLL) - 2;
}

}  // namespace

HWND find_list(HWND page) {
    if (const HWND list = GetDlgItem(page, IDC_SETTINGS_LIST))
        return list;
    TRACE("no list");
    const HWND parent = GetParent(page);
    if (const HWND list = parent ? GetDlgItem(parent, IDC_SETTINGS_LIST) : nullptr)
        return list;
    TRACE("no list2");
    return nullptr;
}

void size_column(HWND list) {
    ListView_SetColumnWidth(list, 0, column_width(list));
}

void SetLVDummyColumn(HWND page, int list_id) {
    TRACE("SetLVDummyColumn");
    const HWND list = GetDlgItem(page, list_id) ? GetDlgItem(page, list_id) : find_list(page);
    LVCOLUMNW column = {};
    column.mask = LVCF_WIDTH;
    if (!list || (ListView_GetColumn(list, 0, &column) && column.cx != 0))
        return;
    TRACE("no column");
    column.mask = LVCF_FMT | LVCF_WIDTH;
    column.fmt = LVCFMT_LEFT;
    column.cx = column_width(list);
    ListView_InsertColumn(list, 0, &column);
}

int selected_row(HWND page) {
    const HWND list = find_list(page);
    return list ? ListView_GetNextItem(list, -1, LVNI_SELECTED) : -1;
}

const SettingEntry* selected_entry(HWND page) {
    const HWND list = find_list(page);
    return list ? entry_at(list, selected_row(page)) : nullptr;
}

bool IsCurrentItemEditable(HWND page) {
    TRACE("IsCurrentItemEditable");
    const SettingEntry* entry = selected_entry(page);
    return entry && entry->kind == SettingEntry::kOwn;
}

std::wstring selected_path(HWND page) {
    const HWND list = find_list(page);
    if (!list || ListView_GetItemCount(list) == 0)
        return {};
    int row = selected_row(page);
    if (row < 0) {
        row = dialog_state().list.last_row.value_or(0);
        if (row < 0 || row >= ListView_GetItemCount(list))
            row = 0;
        select_row(list, row);
        SendMessageW(GetParent(page), PSM_CHANGED, reinterpret_cast<WPARAM>(page), 0);
    }
    dialog_state().list.last_row = row;
    const SettingEntry* entry = entry_at(list, row);
    return entry ? entry->path : std::wstring();
}

void show_summary(HWND page) {
    const HWND owner = GetDlgItem(page, IDC_SETTINGS_SUMMARY) ? page : GetParent(page);
    const SettingEntry* entry = selected_entry(page);
    SetDlgItemTextW(owner, IDC_SETTINGS_SUMMARY, entry ? summary_of(edited_setting(), *entry).c_str() : L"");
    enable(owner, IDC_SETTINGS_COPY, entry && entry->is_readable);
    enable(owner, IDC_SETTINGS_EXPORT, entry != nullptr);
}

void show_selected(HWND page) {
    LoadSettingFile(selected_path(page));
    update_delete_button(page);
    show_summary(page);
    SetViewBox(page);
}

void forget_rows(HWND page) {
    const HWND list = find_list(page);
    if (!list)
        return;
    for (int row = ListView_GetItemCount(list); row-- > 0;)
        delete entry_at(list, row);
    ListView_DeleteAllItems(list);
}

void remove_row(HWND page, int row) {
    const HWND list = find_list(page);
    if (!list)
        return;
    delete entry_at(list, row);
    ListView_DeleteItem(list, row);
    select_row(list, row_after_removal(row, ListView_GetItemCount(list)));
    show_selected(page);
}

void ResetSettingsList(HWND page, const std::optional<std::wstring>& path) {
    TRACE("ResetSettingsList");
    const HWND list = find_list(page);
    if (!list)
        return;
    {
        const Filling filling(list);
        forget_rows(page);
        ListView_SetView(list, LV_VIEW_DETAILS);
        ListView_SetImageList(list, dialog_state().list.icons.images.get(), LVSIL_SMALL);
        std::vector<SettingEntry> entries = ListUpPSFiles();
        std::stable_sort(entries.begin(), entries.end(), sorts_before);
        PSFilesToListView(list, entries);
        select_row(list, static_cast<int>(row_to_select(
                             entries, path ? *path : SettingPathOf(GetSettingFileName(sheet_printer())))));
        size_column(list);
    }
    // A list that does not draw does not scroll either.
    if (const int row = selected_row(page); row >= 0)
        ListView_EnsureVisible(list, row, FALSE);
    show_selected(page);
}

std::wstring sheet_printer() {
    ULONG_PTR name = 0;
    GetThreadProp(threadprop::kPrinterName, name);
    return name ? *reinterpret_cast<const std::wstring*>(name) : std::wstring();
}

bool is_setting_file_there(const std::wstring& printer) {
    const std::wstring chosen = ReadDriverRegString(L"PDFSettingFileName", printer.c_str());
    if (chosen.empty())
        return true;
    const std::wstring path = SettingPathOf(chosen);
    return qk::is_full_path(path) && qk::is_file(path);  // else of the host's folder
}

}  // namespace pdf_settings
