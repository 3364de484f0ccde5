#include "UI_dll/PDFSettings/edit/edit_sheet.h"

#include <commctrl.h>

#include <array>
#include <utility>

#include "UI_dll/PDFSettings/controls.h"
#include "UI_dll/PDFSettings/edit/changes_box.h"
#include "UI_dll/PDFSettings/edit/check_settings.h"
#include "UI_dll/PDFSettings/edit/page_table.h"
#include "UI_dll/PDFSettings/edit/restore_defaults.h"
#include "UI_dll/PDFSettings/edit/sheet_frame.h"
#include "UI_dll/PDFSettings/edit/tooltips.h"
#include "UI_dll/PDFSettings/help.h"
#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/pages/exchange.h"
#include "UI_dll/PDFSettings/pages/page_general_rules.h"
#include "UI_dll/PDFSettings/setting_list.h"
#include "common/qk/activation_context.h"
#include "common/qk/resource_dll.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "common/rwPDFSet_functions.h"
#include "common/threadprop.h"
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

// --- Buttons of ours ---

void show_help_on_page(HWND sheet) {
    const auto front = reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
    const auto& pages = dialog_state().sheet.pages;
    for (size_t page = 0; page < kPageCount; ++page)
        if (front && pages[page] == front)
            show_help(sheet, page_table()[page].chapter);
}

// What a button of ours does; null: it is another one.
using Operation = void(HWND);
Operation* operation_of(WORD button) noexcept {
    switch (button) {
        case kApplyButton:
            return &check_settings;
        case IDC_RESTORE:
            return &restore_defaults;
        case IDC_SHEET_HELP:
            return &show_help_on_page;
        default:
            return nullptr;
    }
}

// Of a click on the check button the system would apply the pages one by one, and stop at the first that is
// not valid.
LRESULT CALLBACK sheet_procedure(HWND sheet, UINT message, WPARAM wparam, LPARAM lparam) {
    return qk::guarded<LRESULT>(0, [&]() -> LRESULT {
        auto operation =
            message == WM_COMMAND && HIWORD(wparam) == BN_CLICKED ? operation_of(LOWORD(wparam)) : nullptr;
        if (message == WM_HELP)  // F1 comes up here from every control
            operation = &show_help_on_page;
        if (operation) {
            (void)or_stay_open(sheet, 0, [&] {
                operation(sheet);
                return LONG_PTR{0};
            });
            return message == WM_HELP;
        }
        if (message == WM_SYSCOLORCHANGE)
            pass_on_colours(sheet);
        return call_replaced(sheet, message, wparam, lparam);
    });
}

// PSP_PREMATURE asks for every page at once: OK applies, and pages read, what others show. Where the system
// does not take the flag, turning to each page makes it.
void make_every_page(HWND sheet) {
    OpenSheet& state = dialog_state().sheet;
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
    return qk::guarded<int>(0, [&] {
        if (message != PSCB_INITIALIZED)
            return 0;
        SetWindowLongPtrW(sheet, GWL_EXSTYLE,
                          GetWindowLongPtrW(sheet, GWL_EXSTYLE) & ~static_cast<LONG_PTR>(WS_EX_CONTEXTHELP));
        make_every_page(sheet);
        fit_to_pages(sheet);
        if (qk::resource_module()) {
            set_up_check_button(sheet);
            add_buttons(sheet);
        }
        replace_procedure(sheet, &sheet_procedure);
        add_tooltips(sheet);
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
        record.hInstance = qk::resource_module();
        record.pszTemplate = MAKEINTRESOURCEW(row.operations->template_id);
        record.pszTitle = MAKEINTRESOURCEW(row.operations->title_id);
        record.pfnDlgProc = row.procedure;
    }
    return records;
}

// --- Saving ---

int tell_not_saved(HWND page, const std::wstring& path, DWORD error) {
    std::wstring what = path.empty() ? GetAppDataPath(false) : path;
    if (what.empty())
        what = dialog_text(IDS_NO_USER_FOLDER);
    show_message(page,
                 qk::format(dialog_text(IDS_NOT_SAVED).c_str(), what.c_str(), system_text(error).c_str()),
                 IDS_REFUSED, MB_OK | MB_ICONERROR);
    return kNotSaved;
}

int save_new(HWND page) {
    if (edited_setting()->PSName.empty())
        return kNotSaved;
    std::wstring path = create_setting_file(edited_setting());
    if (path.empty())
        return tell_not_saved(page, path, GetLastError());
    dialog_state().file.path = std::move(path);
    return kSaved;
}

// Somebody else has written the file since it was loaded: theirs stays.
int save_beside(HWND page, const std::wstring& path) {
    const std::wstring text = qk::format(dialog_text(IDS_FILE_CHANGED).c_str(), path.c_str());
    if (show_message(page, text, IDS_REFUSED, MB_YESNO | MB_ICONEXCLAMATION) != IDYES)
        return kSaveDeclined;
    edited_setting()->PSName = free_setting_name(edited_setting()->PSName);
    return save_new(page);
}

int save_existing(HWND page) {
    const std::wstring& path = dialog_state().file.path;
    const Setting& edited = edited_setting();
    if (edited == loaded_setting())
        return kSaved;
    if (!confirm_changes(page, Changed2Str(loaded_setting(), edited, &name_of_paper)))
        return kSaveDeclined;
    if (dialog_state().file.mark && dialog_state().file.mark != file_mark(path))
        return save_beside(page, path);
    // Takes the old file's place in one step: there is no moment without one of the two.
    return edited.Save(path) ? kSaved : tell_not_saved(page, path, GetLastError());
}

}  // namespace

std::wstring name_of_paper(int32_t number) {
    ULONG_PTR printer = 0;
    GetThreadProp(threadprop::kPrinter, printer);
    FormRecords forms;
    if (!printer || !ZRTK_EnumForms(reinterpret_cast<HANDLE>(printer), nullptr, forms))
        return {};
    const FormRecord* form = find_form(forms.list, number);
    return form ? form->name : std::wstring();
}

std::wstring sheet_caption(const std::wstring& name, bool is_new, const std::wstring& copied) {
    constexpr size_t kCaptionUnits = 260;
    std::wstring caption = dialog_text(IDS_SHEET_NEW);
    if (!is_new && !name.empty())
        caption = qk::format(dialog_text(IDS_SHEET_CAPTION).c_str(), name.c_str());
    else if (is_new && !copied.empty())
        caption = qk::format(dialog_text(IDS_SHEET_COPY).c_str(), caption.c_str(), copied.c_str());
    return std::wstring(qk::cut(caption, kCaptionUnits - 1));
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
    if (is_name_taken(edited_setting()->PSName, is_new ? std::wstring() : dialog_state().file.path)) {
        show_message(page, dialog_text(IDS_NAME_TAKEN), IDS_NAME_TAKEN_CAPTION, MB_OK | MB_ICONERROR);
        return kSaveRefused;
    }
    return is_new ? save_new(page) : save_existing(page);
}

INT_PTR DoPropertySheet(HWND list_page, bool is_new, const std::wstring& copied) {
    TRACE("DoPropertySheet");
    const auto records = page_records();
    const std::wstring caption = sheet_caption(edited_setting()->PSName, is_new, copied);
    (void)loaded_setting();  // from here on
    PROPSHEETHEADERW header = {sizeof header};
    header.dwFlags = PSH_PROPSHEETPAGE | PSH_USEICONID | PSH_NOAPPLYNOW | PSH_USECALLBACK;
    header.hwndParent = list_page;
    header.hInstance = qk::resource_module();
    header.pszCaption = caption.c_str();
    header.nPages = static_cast<UINT>(records.size());
    header.ppsp = records.data();
    header.pfnCallback = &sheet_callback;

    SetThreadProp(threadprop::kNewSheet, is_new ? 1 : 0);
    dialog_state().sheet = {};
    dialog_state().list.edit_cancelled = false;
    INT_PTR result = 0;
    {
        const qk::CommonControls controls;
        const INITCOMMONCONTROLSEX classes = {sizeof classes,
                                              ICC_USEREX_CLASSES | ICC_UPDOWN_CLASS | ICC_BAR_CLASSES};
        InitCommonControlsEx(&classes);
        TRACE("call PropertySheet");
        result = PropertySheetW(&header);
        TRACE("ret PropertySheet");
    }
    if (dialog_state().list.page == list_page)  // it may have gone, with its state
        dialog_state().sheet = {};
    TRACE("FreeThreadProp");
    FreeThreadProp(threadprop::kNewSheet);
    return result;
}

}  // namespace pdf_settings
