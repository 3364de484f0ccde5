#include "UI_dll/PDFSettings/list/settings_page.h"

#include <commctrl.h>
#include <prsht.h>
#include <shellapi.h>

#include <optional>
#include <string>
#include <utility>

#include "UI_dll/PDFSettings/controls.h"
#include "UI_dll/PDFSettings/dialog_state.h"
#include "UI_dll/PDFSettings/help.h"
#include "UI_dll/PDFSettings/list/dpi.h"
#include "UI_dll/PDFSettings/list/list_actions.h"
#include "UI_dll/PDFSettings/list/setting_rows.h"
#include "UI_dll/PDFSettings/list/transfer.h"
#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/pages/font_states.h"
#include "UI_dll/PDFSettings/preview/view_box.h"
#include "UI_dll/sheet_thread.h"
#include "common/qk/guard.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "common/rwPDFSet_functions.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

constexpr UINT kBuildFontStates = WM_APP + 32;
constexpr UINT_PTR kMovedTimer = 1234;
constexpr UINT kMovedDelay = 100;  // milliseconds

// --- The sheet around the page ---

// Moving the sheet to another screen may change its DPI; while it moves only the last place counts.
LRESULT on_sheet_message(HWND sheet, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_MOVE || message == WM_DPICHANGED) {
        KillTimer(sheet, kMovedTimer);
        SetTimer(sheet, kMovedTimer, kMovedDelay, nullptr);
    } else if (message == WM_TIMER && wparam == kMovedTimer) {
        KillTimer(sheet, kMovedTimer);
        if (const DialogOfPage dialog(list_page_in(sheet)); dialog)
            dlg_init_dpi_PDFSettings(dialog_state().list.page);
    } else if (message == WM_SYSCOLORCHANGE) {
        pass_on_colours(list_page_in(sheet));
    }
    return call_replaced(sheet, message, wparam, lparam);
}

LRESULT CALLBACK sheet_procedure(HWND sheet, UINT message, WPARAM wparam, LPARAM lparam) {
    return qk::guarded<LRESULT>(0, [&] { return on_sheet_message(sheet, message, wparam, lparam); });
}

void watch_sheet(HWND sheet) noexcept {
    dialog_state().list.sheet = sheet;
    replace_procedure(sheet, &sheet_procedure);
    SetWindowLongPtrW(sheet, GWL_EXSTYLE,
                      GetWindowLongPtrW(sheet, GWL_EXSTYLE) & ~static_cast<LONG_PTR>(WS_EX_CONTEXTHELP));
}

void leave_sheet(HWND sheet) noexcept {
    KillTimer(sheet, kMovedTimer);
    restore_procedure(sheet, &sheet_procedure);
}

// --- Opening and closing ---

void dlg_init_PDFSettings(HWND page) {
    TRACE("dlg_init_PDFSettings");
    ListPageState& state = dialog_state().list;
    watch_sheet(GetParent(page));
    // The number itself, not one of the contexts' pseudo handles: systems that do not know it change nothing.
    state.dpi_context = qk_SetThreadDpiAwarenessContext(reinterpret_cast<HANDLE>(2));
    PostMessageW(page, kBuildFontStates, 0, 0);
    SetWindowTextW(page, dialog_text(IDS_LIST_PAGE).c_str());
    dlg_init_dpi_PDFSettings(page);
    SetLVDummyColumn(page, IDC_SETTINGS_LIST);
    ResetSettingsList(page, std::nullopt);
    set_shown(page, IDC_SETTINGS_HELP, find_chapter(kListChapter).has_value());
}

void close_page(HWND page) {
    forget_rows(page);
    // The list, which goes after its page, would destroy the pictures again, or somebody's that have their
    // place by then.
    if (const HWND list = find_list(page))
        ListView_SetImageList(list, nullptr, LVSIL_SMALL);
    const ListPageState& state = dialog_state().list;
    if (state.dpi_context)
        qk_SetThreadDpiAwarenessContext(state.dpi_context);
    if (IsWindow(state.sheet))
        leave_sheet(state.sheet);
    close_dialog_state(page);
}

// --- The end of the sheet ---

void take_choice(HWND page) {
    TRACE("PSN_APPLY@dlg_notify_PDFSettings");
    const std::wstring path = selected_path(page);
    if (!path.empty()) {  // else the printer keeps the setting it has
        SetSettingFileName(qk::file_part(path), sheet_printer());
        ResetSettingsList(page, path);
    }
    SheetThread::choice_is_stored();
}

void leave_choice(HWND page) {
    const std::wstring printer = sheet_printer();
    if (!is_setting_file_there(printer))
        SetSettingFileName(kDefaultSettingFile, printer);
    ResetSettingsList(page, selected_path(page));
}

bool dlg_notify_PDFSettings(HWND page, const NMHDR& header) {
    if (header.code != NM_CUSTOMDRAW)  // of which there are many
        TRACE("dlg_notify_PDFSettings");
    if (header.idFrom == IDC_SETTINGS_LIST && header.hwndFrom == GetDlgItem(page, IDC_SETTINGS_LIST))
        return on_list_notification(page, header);
    LONG_PTR answer = PSNRET_NOERROR;
    switch (header.code) {
        case PSN_APPLY:
            answer = or_stay_open(page, PSNRET_INVALID_NOCHANGEPAGE, [&] {
                rename_pending(page);
                take_choice(page);
                return LONG_PTR{PSNRET_NOERROR};
            });
            break;
        case PSN_QUERYCANCEL:
            leave_choice(page);
            break;
        default:
            return false;
    }
    SetWindowLongPtrW(page, DWLP_MSGRESULT, answer);
    return true;
}

void take_dropped(HWND page, HDROP files) {
    if (IsWindowEnabled(GetParent(page)))
        import_dropped(page, files);
    else  // a sheet or a question over it works on the list
        DragFinish(files);
}

INT_PTR handle(HWND page, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG)
        open_dialog_state(page);
    const DialogOfPage dialog(page);
    if (!dialog)
        return FALSE;
    switch (message) {
        case WM_INITDIALOG:
            dlg_init_PDFSettings(page);
            return TRUE;
        case WM_COMMAND:
            return on_list_command(page, LOWORD(wparam));
        case WM_NOTIFY:
            return dlg_notify_PDFSettings(page, *reinterpret_cast<const NMHDR*>(lparam));
        case WM_DRAWITEM:
            draw_view_box(*reinterpret_cast<const DRAWITEMSTRUCT*>(lparam));
            return TRUE;
        case WM_ERASEBKGND:
        case WM_CONTEXTMENU:
            return TRUE;  // handled: nothing is drawn, no menu is shown
        case kBuildFontStates:
            build_font_states();
            return TRUE;
        case kRename:
            rename_pending(page);
            return TRUE;
        case WM_HELP:
            show_help(page, kListChapter);
            return TRUE;
        case WM_DROPFILES:
            take_dropped(page, reinterpret_cast<HDROP>(wparam));
            return TRUE;
        case WM_DESTROY:
            close_page(page);
            return FALSE;
        default:
            return FALSE;
    }
}

}  // namespace

void dlg_init_dpi_PDFSettings(HWND page) {
    TRACE("dlg_init_dpi_PDFSettings");
    const HWND list = find_list(page);
    if (!list)
        return;
    // The list lets go of the old pictures before they are destroyed.
    ListView_SetImageList(list, nullptr, LVSIL_SMALL);
    PageIcons& icons = dialog_state().list.icons;
    PageIcons fresh = load_page_icons(qk_GetWindowDPI(page));
    ListView_SetImageList(list, fresh.images.get(), LVSIL_SMALL);
    SendDlgItemMessageW(page, IDC_SETTINGS_ICON, STM_SETIMAGE, IMAGE_ICON,
                        reinterpret_cast<LPARAM>(fresh.page.get()));
    const auto set_icon = [&](int button, const qk::Icon& icon) {
        SendDlgItemMessageW(page, button, BM_SETIMAGE, IMAGE_ICON, reinterpret_cast<LPARAM>(icon.get()));
    };
    set_icon(IDC_SETTINGS_NEW, fresh.make);
    set_icon(IDC_SETTINGS_EDIT, fresh.edit);
    set_icon(IDC_SETTINGS_DELETE, IsCurrentItemEditable(page) ? fresh.remove : fresh.no_remove);
    icons = std::move(fresh);
    ListView_SetColumnWidth(list, 0, 65535);
    size_column(list);
}

}  // namespace pdf_settings

INT_PTR CALLBACK settings_page_proc(HWND page, UINT message, WPARAM wparam, LPARAM lparam) {
    return qk::guarded<INT_PTR>(FALSE, [&] { return pdf_settings::handle(page, message, wparam, lparam); });
}
