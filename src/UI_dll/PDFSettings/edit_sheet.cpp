#include "UI_dll/PDFSettings/edit_sheet.h"

#include <algorithm>
#include <array>

#include "UI_dll/PDFSettings/changes_box.h"
#include "UI_dll/PDFSettings/exchange.h"
#include "UI_dll/PDFSettings/page.h"
#include "UI_dll/PDFSettings/page_general_rules.h"
#include "UI_dll/PDFSettings/setting_list.h"
#include "UI_dll/PDFSettings/settings_page.h"
#include "UI_dll/PDFSettings/view_box.h"
#include "UI_dll/plotui.h"
#include "common/text.h"
#include "common/threadprop.h"
#include "common/trace.h"
#include "lib/forms.h"
#include "print_settings/display.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

bool is_new_sheet() {
    ULONG_PTR value = 0;
    GetThreadProp(threadprop::kNewSheet, value);
    return value != 0;
}

// --- The sheet ---

RECT window_place(HWND window, HWND parent) noexcept {
    RECT place = {};
    GetWindowRect(window, &place);
    MapWindowPoints(HWND_DESKTOP, parent, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

void move(HWND sheet, int button, int left, const RECT& place) noexcept {
    SetWindowPos(GetDlgItem(sheet, button), nullptr, left, place.top, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// The sheet hides its Apply button and gives Cancel the place; ours checks the pages. It is shown again,
// twice as wide, and the row of buttons moves left by what it then takes.
void set_up_check_button(HWND sheet) {
    const HWND apply = GetDlgItem(sheet, kApplyButton);
    if (!apply)
        return;
    const RECT ok = window_place(GetDlgItem(sheet, IDOK), sheet);
    const RECT cancel = window_place(GetDlgItem(sheet, IDCANCEL), sheet);
    const RECT place = window_place(apply, sheet);
    const int width = 2 * (place.right - place.left);
    const int left = std::min<int>(place.left, std::max(place.right, cancel.right) - width);
    SetWindowPos(apply, nullptr, left, place.top, width, place.bottom - place.top,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    SetWindowTextW(apply, dialog_text(IDS_CHECK_BUTTON).c_str());
    EnableWindow(apply, TRUE);
    if (const int overlap = cancel.right - left; overlap > 0) {
        const int gap = std::max<int>(0, cancel.left - ok.right);
        move(sheet, IDCANCEL, cancel.left - overlap - gap, cancel);
        move(sheet, IDOK, ok.left - overlap - gap, ok);
    }
    // The sheet greys the button once more before it stands.
    PostMessageW(dialog_state().pages[kGeneralPage], kSheetStands, 0, 0);
}

// PSP_PREMATURE asks for every page at once: OK applies, and pages read, what others show. Where the system
// does not take the flag, turning to each page makes it.
void make_every_page(HWND sheet) {
    DialogState& state = dialog_state();
    state.opening = true;
    bool turned = false;
    for (size_t page = 0; page < kPageCount; ++page)
        if (!state.pages[page])
            turned = SendMessageW(sheet, PSM_SETCURSEL, page, 0) || turned;
    if (turned)
        SendMessageW(sheet, PSM_SETCURSEL, kGeneralPage, 0);
    state.opening = false;
}

int CALLBACK sheet_callback(HWND sheet, UINT message, LPARAM) {
    return ui::guarded<int>(0, [&] {
        if (message != PSCB_INITIALIZED)
            return 0;
        SetWindowLongPtrW(sheet, GWL_EXSTYLE,
                          GetWindowLongPtrW(sheet, GWL_EXSTYLE) & ~static_cast<LONG_PTR>(WS_EX_CONTEXTHELP));
        make_every_page(sheet);
        if (plotui::resource_module())
            set_up_check_button(sheet);
        return 0;
    });
}

std::array<PROPSHEETPAGEW, kPageCount> page_records() {
    std::array<PROPSHEETPAGEW, kPageCount> records = {};
    for (size_t i = 0; i < kPageCount; ++i) {
        const PageRow& row = page_table()[i];
        PROPSHEETPAGEW& record = records[i];
        record.dwSize = sizeof record;
        record.dwFlags = PSP_USETITLE | PSP_USEICONID | PSP_PREMATURE;
        record.hInstance = plotui::resource_module();
        record.pszTemplate = MAKEINTRESOURCEW(row.operations->template_id);
        record.pszTitle = MAKEINTRESOURCEW(row.operations->title_id);
        record.pfnDlgProc = row.procedure;
    }
    return records;
}

// --- The copy ---

// Gives the edited setting a name that no listed setting has.
void name_copy() {
    Setting& edited = edited_setting();
    std::wstring base(base_name(cut(edited->PSName, kNameUnits)));
    if (base.empty())
        base = dialog_text(IDS_SHEET_NEW);
    edited->PSName = free_setting_name(base);
}

// --- Saving ---

std::wstring system_text(DWORD error) {
    wchar_t text[400] = {};
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        error, 0, text, static_cast<DWORD>(std::size(text)), nullptr);
    return length > 0 ? std::wstring(text, length) : qk::format(L"%lu", error);
}

int tell_not_saved(HWND page, const std::wstring& path, DWORD error) {
    const std::wstring what = path.empty() ? dialog_text(IDS_NO_USER_FOLDER) : path;
    show_message(page,
                 qk::format(dialog_text(IDS_NOT_SAVED).c_str(), what.c_str(), system_text(error).c_str()),
                 IDS_REFUSED, MB_OK | MB_ICONERROR);
    return kNotSaved;
}

// As the printer has it.
std::wstring name_of_paper(int32_t number) {
    ULONG_PTR printer = 0;
    GetThreadProp(threadprop::kPrinter, printer);
    FormRecords forms;
    if (!printer || !ZRTK_EnumForms(reinterpret_cast<HANDLE>(printer), nullptr, forms))
        return {};
    const FormRecord* form = find_form(forms.list, number);
    return form ? form->name : std::wstring();
}

int save_existing(HWND page) {
    const std::wstring& path = dialog_state().path;
    const Setting& edited = edited_setting();
    if (edited == loaded_setting())
        return kSaved;
    if (!confirm_changes(page, Changed2Str(loaded_setting(), edited, &name_of_paper)))
        return kSaveDeclined;
    // Takes the old file's place in one step: there is no moment without one of the two.
    return edited.Save(path) ? kSaved : tell_not_saved(page, path, GetLastError());
}

int save_new(HWND page) {
    if (edited_setting()->PSName.empty())
        return kNotSaved;
    std::wstring path = create_setting_file(edited_setting());
    if (path.empty())
        return tell_not_saved(page, path, GetLastError());
    dialog_state().path = std::move(path);
    return kSaved;
}

}  // namespace

std::wstring sheet_caption(const std::wstring& name, bool is_new) {
    constexpr size_t kCaptionUnits = 260;
    std::wstring caption = dialog_text(IDS_SHEET_NEW);
    if (!is_new && !name.empty())
        caption = qk::format(dialog_text(IDS_SHEET_CAPTION).c_str(), name.c_str());
    return std::wstring(cut(caption, kCaptionUnits - 1));
}

bool CheckAllProperties(HWND /*page*/) {
    TRACE("CheckAllProperties");
    for (size_t page = 0; page < kPageCount; ++page)
        if (!check_page(static_cast<PageIndex>(page))) {
            TRACE_F(L"page %d is not valid", static_cast<int>(page));
            return false;
        }
    return true;
}

int save_step(HWND page, bool from_ok) {
    if (!CheckAllProperties(page))
        return kNotSaved;
    if (!from_ok) {
        show_message(page, dialog_text(IDS_CHECKED), IDS_REFUSED, MB_OK | MB_ICONINFORMATION);
        return kNotSaved;
    }
    const bool is_new = is_new_sheet();
    if (is_name_taken(edited_setting()->PSName, is_new ? std::wstring() : dialog_state().path)) {
        show_message(page, dialog_text(IDS_NAME_TAKEN), IDS_NAME_TAKEN_CAPTION, MB_OK | MB_ICONERROR);
        return kSaveRefused;
    }
    return is_new ? save_new(page) : save_existing(page);
}

INT_PTR DoPropertySheet(HWND list_page, bool is_new) {
    TRACE("DoPropertySheet");
    const auto records = page_records();
    const std::wstring caption = sheet_caption(edited_setting()->PSName, is_new);
    (void)loaded_setting();  // from here on
    PROPSHEETHEADERW header = {sizeof header};
    header.dwFlags = PSH_PROPSHEETPAGE | PSH_USEICONID | PSH_NOAPPLYNOW | PSH_USECALLBACK;
    header.hwndParent = list_page;
    header.hInstance = plotui::resource_module();
    header.pszCaption = caption.c_str();
    header.nPages = static_cast<UINT>(records.size());
    header.ppsp = records.data();
    header.pfnCallback = &sheet_callback;

    SetThreadProp(threadprop::kNewSheet, is_new ? 1 : 0);
    dialog_state().cancelled = false;
    forget_controls();
    INT_PTR result = 0;
    {
        const plotui::CommonControls controls;
        const INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_USEREX_CLASSES | ICC_UPDOWN_CLASS};
        InitCommonControlsEx(&classes);
        TRACE("call PropertySheet");
        result = PropertySheetW(&header);
        TRACE("ret PropertySheet");
    }
    if (dialog_state().list_page == list_page) {  // it may have gone, with its state
        for (auto& helper : dialog_state().helpers)
            helper.reset();
        forget_controls();
    }
    TRACE("FreeThreadProp");
    FreeThreadProp(threadprop::kNewSheet);
    return result;
}

void DoEditDialog(HWND list_page, bool is_new) {
    TRACE("DoEditDialog");
    const std::wstring remembered = selected_path(list_page);
    if (!LoadSettingFile(remembered) && !remembered.empty()) {
        const std::wstring text = qk::format(dialog_text(IDS_UNREADABLE).c_str(), remembered.c_str());
        show_message(list_page, text, IDS_REFUSED, MB_OK | MB_ICONINFORMATION);
        is_new = true;
    }
    const bool copies = is_new || !IsCurrentItemEditable(list_page);
    if (copies)
        name_copy();
    SetViewBox(list_page);
    DoPropertySheet(list_page, copies);
    if (!IsWindow(list_page))
        return;
    dlg_init_dpi_PDFSettings(list_page);
    const std::wstring path = dialog_state().path;
    ResetSettingsList(list_page, path.empty() ? remembered : path);
    dlg_init_dpi_PDFSettings(list_page);
    SendMessageW(GetParent(list_page), PSM_CHANGED, reinterpret_cast<WPARAM>(list_page), 0);
}

}  // namespace pdf_settings
