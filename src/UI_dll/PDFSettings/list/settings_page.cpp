#include "UI_dll/PDFSettings/list/settings_page.h"

#include <commctrl.h>
#include <prsht.h>
#include <shellapi.h>

#include <utility>

#include "UI_dll/PDFSettings/controls.h"
#include "UI_dll/PDFSettings/help.h"
#include "UI_dll/PDFSettings/list/dpi.h"
#include "UI_dll/PDFSettings/list/edit_dialog.h"
#include "UI_dll/PDFSettings/list/setting_rows.h"
#include "UI_dll/PDFSettings/list/transfer.h"
#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/pages/exchange.h"
#include "UI_dll/PDFSettings/pages/font_states.h"
#include "UI_dll/PDFSettings/preview/view_box.h"
#include "UI_dll/sheet_thread.h"
#include "common/qk/guard.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "common/rwPDFSet_functions.h"
#include "common/threadprop.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

constexpr UINT kBuildFontStates = WM_APP + 32;
constexpr UINT kRename = WM_APP + 33;  // a row's text was edited
constexpr UINT_PTR kMovedTimer = 1234;
constexpr UINT kMovedDelay = 100;  // milliseconds

// --- The sheet around the page ---

// The window property of the sheet that holds its own procedure: other state may go before the window does.
constexpr wchar_t kProcedureBefore[] = L"ZR_UI80.SheetProcedure";

// Moving the sheet to another screen may change its DPI; while it moves only the last place counts.
LRESULT on_sheet_message(HWND sheet, UINT message, WPARAM wparam, LPARAM lparam) {
    const auto before = reinterpret_cast<WNDPROC>(GetPropW(sheet, kProcedureBefore));
    if (message == WM_MOVE || message == WM_DPICHANGED) {
        KillTimer(sheet, kMovedTimer);
        SetTimer(sheet, kMovedTimer, kMovedDelay, nullptr);
    } else if (message == WM_TIMER && wparam == kMovedTimer) {
        KillTimer(sheet, kMovedTimer);
        if (const DialogOfPage dialog(list_page_in(sheet)); dialog)
            dlg_init_dpi_PDFSettings(dialog_state().list.page);
    } else if (message == WM_SYSCOLORCHANGE) {
        pass_on_colours(list_page_in(sheet));
    } else if (message == WM_NCDESTROY) {
        RemovePropW(sheet, kProcedureBefore);
    }
    return before ? CallWindowProcW(before, sheet, message, wparam, lparam)
                  : DefWindowProcW(sheet, message, wparam, lparam);
}

LRESULT CALLBACK sheet_procedure(HWND sheet, UINT message, WPARAM wparam, LPARAM lparam) {
    return qk::guarded<LRESULT>(0, [&] { return on_sheet_message(sheet, message, wparam, lparam); });
}

void watch_sheet(HWND sheet) noexcept {
    dialog_state().list.sheet = sheet;
    const LONG_PTR before = GetWindowLongPtrW(sheet, GWLP_WNDPROC);
    if (!GetPropW(sheet, kProcedureBefore) &&
        SetPropW(sheet, kProcedureBefore, reinterpret_cast<HANDLE>(before)))
        SetWindowLongPtrW(sheet, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&sheet_procedure));
    SetWindowLongPtrW(sheet, GWL_EXSTYLE,
                      GetWindowLongPtrW(sheet, GWL_EXSTYLE) & ~static_cast<LONG_PTR>(WS_EX_CONTEXTHELP));
}

// Somebody else may have replaced the procedure since; theirs leads to ours, which then only passes on.
void leave_sheet(HWND sheet) noexcept {
    KillTimer(sheet, kMovedTimer);
    if (GetWindowLongPtrW(sheet, GWLP_WNDPROC) == reinterpret_cast<LONG_PTR>(&sheet_procedure))
        SetWindowLongPtrW(sheet, GWLP_WNDPROC,
                          reinterpret_cast<LONG_PTR>(RemovePropW(sheet, kProcedureBefore)));
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

// --- What the user does ---

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

// A name that was typed last is given before anything else is done with the list: the message that asks for
// it would come in the middle of the next question or sheet.
void rename_pending(HWND page) {
    ListPageState& state = dialog_state().list;
    if (!state.renamed_path.empty())
        rename_setting(page, std::exchange(state.renamed_path, {}), std::exchange(state.new_name, {}));
}

bool on_command(HWND page, int control) {
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

// Keys on the list. The buttons' own rules hold: what a grey one would do is not done.
void on_key(HWND page, WORD key) {
    const bool control = GetKeyState(VK_CONTROL) < 0;
    const bool alt = GetKeyState(VK_MENU) < 0;
    if (alt)
        return;
    if (control) {
        const int button = key == L'N' ? IDC_SETTINGS_NEW : key == L'D' ? IDC_SETTINGS_COPY : 0;
        if (button && IsWindowEnabled(GetDlgItem(page, button)))
            on_command(page, button);
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

bool on_list(HWND page, const NMHDR& header) {
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
        return on_list(page, header);
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
            return on_command(page, LOWORD(wparam));
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
            if (IsWindowEnabled(GetParent(page)))
                import_dropped(page, reinterpret_cast<HDROP>(wparam));
            else  // a sheet or a question over it works on the list
                DragFinish(reinterpret_cast<HDROP>(wparam));
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
