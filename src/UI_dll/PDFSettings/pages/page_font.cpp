#include <algorithm>
#include <cstdint>

#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/pages/exchange.h"
#include "UI_dll/PDFSettings/pages/font_states.h"
#include "UI_dll/PDFSettings/pages/page.h"
#include "UI_dll/PDFSettings/pages/page_font_rules.h"
#include "UI_dll/PDFSettings/pages/page_pdf_version.h"
#include "common/qk/guard.h"
#include "common/qk/trace.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

using Section = Corvanta::Vantrix::PrintSettings::Font_impl;

struct FontHelper final : PageHelper {
    std::vector<std::wstring> found;   // the installed fonts that the search leaves
    std::vector<std::wstring> listed;  // as the page shows them
};

constexpr std::tuple kTable{
    Radios{std::array{IDC_FONT_ALL_BUT, IDC_FONT_ONLY}, &Section::EmbedFontStyle},
    CheckBox{IDC_FONT_BASE_14, &Section::EmbedBase14},
    DropList{IDC_FONT_FAILED, &Section::WhenFailedToEmbed},
};

constexpr std::array kChoices = {IDC_FONT_ALL_BUT,      IDC_FONT_ONLY,      IDC_FONT_BASE_14,
                                 IDC_FONT_FAILED_LABEL, IDC_FONT_FAILED,    IDC_FONT_FIND_LABEL,
                                 IDC_FONT_FIND,         IDC_FONT_INSTALLED, IDC_FONT_INSTALLED_LABEL,
                                 IDC_FONT_LISTED_LABEL, IDC_FONT_LISTED};

FontHelper& helper() {
    return page_helper<FontHelper>(kFontPage);
}

bool standard_decides(HWND page) {
    const uint32_t version = read_PDFVersion(page).Version;
    return ps::is_standard(version);
}

// --- The lists ---

std::vector<std::wstring>& names_of(int list) {
    return list == IDC_FONT_LISTED ? helper().listed : helper().found;
}

void add_column(HWND list, int position, UINT text_id, int width) {
    std::wstring text = dialog_text(text_id);
    LVCOLUMNW column = {};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
    column.pszText = text.data();
    column.cx = width;
    column.iSubItem = position;
    SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(position), reinterpret_cast<LPARAM>(&column));
}

// As wide as the longest of their texts and the room around it.
int width_of_states(HWND list) {
    const auto width_of = [list](UINT id) {
        const std::wstring text = dialog_text(id);
        return SendMessageW(list, LVM_GETSTRINGWIDTHW, 0, reinterpret_cast<LPARAM>(text.c_str()));
    };
    LRESULT widest = width_of(IDS_FONT_COLUMN_STATE);
    for (UINT id = IDS_FONT_INSTALLABLE; id <= IDS_FONT_ABSENT; ++id)
        widest = std::max(widest, width_of(id));
    return static_cast<int>(widest) + 3 * GetSystemMetrics(SM_CXEDGE) + GetSystemMetrics(SM_CXVSCROLL) / 2;
}

void set_up_list(HWND page, int control) {
    const HWND list = GetDlgItem(page, control);
    if (!list)
        return;
    ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT | LVS_EX_LABELTIP | LVS_EX_DOUBLEBUFFER);
    RECT room = {};
    GetClientRect(list, &room);
    const int width = room.right - GetSystemMetrics(SM_CXVSCROLL);
    const int state_width = std::min(width_of_states(list), width * 3 / 5);
    add_column(list, 0, IDS_FONT_COLUMN_NAME, width - state_width);
    add_column(list, 1, IDS_FONT_COLUMN_STATE, state_width);
}

std::vector<size_t> selected_rows(HWND page, int control) {
    std::vector<size_t> rows;
    const HWND list = GetDlgItem(page, control);
    for (int row = -1; (row = ListView_GetNextItem(list, row, LVNI_SELECTED)) >= 0;)
        rows.push_back(static_cast<size_t>(row));
    return rows;
}

// A name that no installed font has may be listed all the same, also where it is a part of those that were
// found: the document's computer may have the font.
std::wstring name_to_add(HWND page) {
    const std::wstring typed = control_text(page, IDC_FONT_FIND);
    const std::wstring_view name = qk::without_blanks(typed);
    return std::wstring(find_embedding(name) == Embedding::kNotInstalled ? name : std::wstring_view());
}

// The fonts that are selected; where none is, the name that was typed.
std::vector<std::wstring> names_to_add(HWND page) {
    std::vector<std::wstring> names;
    for (const size_t row : selected_rows(page, IDC_FONT_INSTALLED))
        if (row < helper().found.size())
            names.push_back(helper().found[row]);
    if (std::wstring typed = name_to_add(page); names.empty() && !typed.empty())
        names.push_back(std::move(typed));
    return names;
}

void enable_buttons(HWND page) {
    const bool free = !standard_decides(page);
    enable(page, IDC_FONT_ADD, free && !names_to_add(page).empty());
    enable(page, IDC_FONT_REMOVE, free && !selected_rows(page, IDC_FONT_LISTED).empty());
}

// Shows the names anew. The rows' text is asked for as it is drawn.
void show_list(HWND page, int control) {
    const HWND list = GetDlgItem(page, control);
    ListView_SetItemState(list, -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    ListView_SetItemCountEx(list, static_cast<int>(names_of(control).size()), 0);
    InvalidateRect(list, nullptr, TRUE);
    enable_buttons(page);
}

void search(HWND page) {
    const std::wstring wanted = control_text(page, IDC_FONT_FIND);
    auto& found = helper().found;
    found.clear();
    for (const FontState& font : font_states())
        if (has_in_name(font.name, wanted))
            found.push_back(font.name);
    show_list(page, IDC_FONT_INSTALLED);
}

void add_chosen(HWND page) {
    add_names(helper().listed, names_to_add(page));
    show_list(page, IDC_FONT_LISTED);
}

void remove_selected(HWND page) {
    const auto rows = selected_rows(page, IDC_FONT_LISTED);
    if (rows.empty())
        return;
    auto& listed = helper().listed;
    remove_positions(listed, rows);
    show_list(page, IDC_FONT_LISTED);
    // The button is grey now; the keyboard goes on with the row that took the first one's place.
    const HWND list = GetDlgItem(page, IDC_FONT_LISTED);
    SendMessageW(page, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(list), TRUE);
    const int next = static_cast<int>(std::min(rows.front() + 1, listed.size())) - 1;
    if (next >= 0)
        ListView_SetItemState(list, next, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
}

// --- What the lists ask and tell ---

void give_text(int control, LVITEMW& item) {
    const auto& names = names_of(control);
    if (!(item.mask & LVIF_TEXT) || item.cchTextMax <= 0 || item.iItem < 0 ||
        static_cast<size_t>(item.iItem) >= names.size())
        return;
    std::wstring text = names[static_cast<size_t>(item.iItem)];
    if (item.iSubItem == 1)
        text = dialog_text(IDS_FONT_INSTALLABLE + static_cast<UINT>(find_embedding(text)));
    qk::copy_zero_padded(item.pszText, static_cast<size_t>(item.cchTextMax), text);
}

// The row that typed letters lead to: from `start` on and then from the first; -1: none.
int find_row(int control, const LVFINDINFOW& wanted, int start) {
    const auto& names = names_of(control);
    if (!(wanted.flags & (LVFI_STRING | LVFI_PARTIAL)) || !wanted.psz)
        return -1;
    const size_t first = start < 0 ? 0 : static_cast<size_t>(start);
    for (size_t i = 0; i < names.size(); ++i)
        if (const size_t row = (first + i) % names.size(); qk::starts_with_no_case(names[row], wanted.psz))
            return static_cast<int>(row);
    return -1;
}

INT_PTR on_list(HWND page, int control, NMHDR& header) {
    switch (header.code) {
        case LVN_GETDISPINFOW:
            give_text(control, reinterpret_cast<NMLVDISPINFOW&>(header).item);
            return TRUE;
        case LVN_ODFINDITEMW: {
            const auto& search_for = reinterpret_cast<const NMLVFINDITEMW&>(header);
            SetWindowLongPtrW(page, DWLP_MSGRESULT, find_row(control, search_for.lvfi, search_for.iStart));
            return TRUE;
        }
        case LVN_ITEMCHANGED:
        case LVN_ODSTATECHANGED:
            enable_buttons(page);
            return TRUE;
        case NM_DBLCLK:
            if (control == IDC_FONT_LISTED)
                remove_selected(page);
            else if (!selected_rows(page, control).empty())  // not beside the rows
                add_chosen(page);
            return TRUE;
        case LVN_KEYDOWN:
            if (control == IDC_FONT_LISTED && reinterpret_cast<NMLVKEYDOWN&>(header).wVKey == VK_DELETE)
                remove_selected(page);
            return TRUE;
        default:
            return FALSE;
    }
}

// From what is sought to what is found.
void go_to_found(HWND page) {
    const HWND list = GetDlgItem(page, IDC_FONT_INSTALLED);
    if (helper().found.empty())
        return;
    SendMessageW(page, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(list), TRUE);
    if (ListView_GetNextItem(list, -1, LVNI_SELECTED) < 0)
        ListView_SetItemState(list, 0, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
}

// The key is the field's own while it has the focus: the sheet would take it for OK.
LRESULT CALLBACK find_procedure(HWND edit, UINT message, WPARAM wparam, LPARAM lparam) {
    return qk::guarded<LRESULT>(0, [&]() -> LRESULT {
        if (message == WM_CHAR && wparam == VK_RETURN)
            return 0;
        if (message == WM_KEYDOWN && wparam == VK_RETURN) {
            go_to_found(GetParent(edit));
            return 0;
        }
        const LRESULT result = call_replaced(edit, message, wparam, lparam);
        const auto* key = reinterpret_cast<const MSG*>(lparam);
        const bool is_enter =
            message == WM_GETDLGCODE && key && key->message == WM_KEYDOWN && key->wParam == VK_RETURN;
        return is_enter ? result | DLGC_WANTMESSAGE : result;
    });
}

INT_PTR on_message(HWND page, UINT message, WPARAM /*wparam*/, LPARAM lparam) {
    if (message != WM_NOTIFY)
        return FALSE;
    auto& header = *reinterpret_cast<NMHDR*>(lparam);
    const int control = static_cast<int>(header.idFrom);
    const bool is_list = control == IDC_FONT_INSTALLED || control == IDC_FONT_LISTED;
    return is_list && header.hwndFrom == GetDlgItem(page, control) ? on_list(page, control, header) : FALSE;
}

// --- The page ---

void dlg_setactive_Font(HWND page) {
    TRACE("dlg_setactive_Font");
    const bool decided = standard_decides(page);
    enable(page, kChoices, !decided);
    enable_buttons(page);
    SetDlgItemTextW(page, IDC_FONT_NOTE,
                    dialog_text(decided ? IDS_FONT_STANDARD_HINT : IDS_FONT_HINT).c_str());
}

void show_Font(HWND page, const Setting& setting) {
    const Section& section = *setting.font();
    load_controls(page, section, kTable);
    helper().listed = section.Fonts;
    show_list(page, IDC_FONT_LISTED);
    dlg_setactive_Font(page);
}

void dlg_init_Font(HWND page) {
    TRACE("dlg_init_Font");
    set_up_list(page, IDC_FONT_INSTALLED);
    set_up_list(page, IDC_FONT_LISTED);
    SendDlgItemMessageW(page, IDC_FONT_FIND, EM_SETLIMITTEXT, LF_FACESIZE - 1, 0);
    replace_procedure(GetDlgItem(page, IDC_FONT_FIND), &find_procedure);
    set_cue(page, IDC_FONT_FIND, dialog_text(IDS_CUE_ALL_FONTS));
    search(page);
    show_Font(page, edited_setting());
}

void command(HWND page, int control, int notification) {
    if (control == IDC_FONT_FIND && notification == EN_CHANGE)
        search(page);
    else if (control == IDC_FONT_ADD && notification == BN_CLICKED)
        add_chosen(page);
    else if (control == IDC_FONT_REMOVE && notification == BN_CLICKED)
        remove_selected(page);
}

// A file may embed nothing on purpose; only who chooses it here is asked to list a font.
bool embeds_nothing_anew(HWND page) {
    const Section& loaded = *loaded_setting().font();
    const bool was_so = loaded.EmbedFontStyle == Section::kListedOnly && loaded.Fonts.empty();
    return is_checked(page, IDC_FONT_ONLY) && helper().listed.empty() && !was_so;
}

bool dlg_killactive_Font(HWND page) {
    TRACE("dlg_killactive_Font");
    return standard_decides(page) || !embeds_nothing_anew(page) ||
           refuse(page, IDC_FONT_INSTALLED, IDS_FONT_NONE_LISTED);
}

void dlg_apply_Font(HWND page) {
    TRACE("dlg_apply_Font");
    Section read = *loaded_setting().font();
    store_controls(page, read, kTable);
    read.Fonts = helper().listed;
    *edited_setting().font() = std::move(read);
}

}  // namespace

const PageOperations kFont = {.index = kFontPage,
                              .template_id = IDD_FONT,
                              .title_id = IDS_FONT_TAB,
                              .init = &dlg_init_Font,
                              .show = &show_Font,
                              .command = &command,
                              .set_active = &dlg_setactive_Font,
                              .check = &dlg_killactive_Font,
                              .apply = &dlg_apply_Font,
                              .other = &on_message};

}  // namespace pdf_settings
