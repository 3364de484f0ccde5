// The pages of the edit sheet: what each brings, and the procedure that runs them all.
#pragma once

#include <windows.h>

#include <prsht.h>

#include <array>
#include <string>

#include "UI_dll/PDFSettings/dialog_state.h"
#include "UI_dll/guard.h"

namespace pdf_settings {

// The operations of one page. All are called on the sheet's thread; null: the page does nothing there.
struct PageOperations {
    PageIndex index;
    UINT template_id;  // dialog template
    UINT title_id;     // string resource

    // WM_INITDIALOG: fills the controls from the edited setting.
    void (*init)(HWND page);

    // WM_COMMAND: `control` tells of `notification`.
    void (*command)(HWND page, int control, int notification) = nullptr;

    // PSN_SETACTIVE.
    void (*set_active)(HWND page) = nullptr;

    // Whether the controls are valid; if not, it has said so and put the focus on the offending one.
    // PSN_KILLACTIVE, before `apply`, and with all other pages' when the setting is saved.
    bool (*check)(HWND page) = nullptr;

    // PSN_APPLY, after a check that has passed: writes the controls into the edited setting. The result is
    // PSNRET_NOERROR or why the sheet stays open; `from_ok` tells the OK button from the others.
    LONG (*apply)(HWND page, bool from_ok);

    // Every other message. The dialog procedure's result.
    INT_PTR (*other)(HWND page, UINT message, WPARAM wparam, LPARAM lparam) = nullptr;
};

// The nine pages in their order, each with its dialog procedure.
struct PageRow {
    const PageOperations* operations;
    DLGPROC procedure;
};
[[nodiscard]] const std::array<PageRow, kPageCount>& page_table() noexcept;

inline constexpr int kApplyButton = 12321;  // of every property sheet

// Posted to the first page when all are made: the sheet's own preparations are over when it arrives.
inline constexpr UINT kSheetStands = WM_APP + 45;

// What a page's dialog procedure does with a message.
INT_PTR handle_page_message(const PageOperations& operations, HWND page, UINT message, WPARAM wparam,
                            LPARAM lparam);

template <const PageOperations& operations>
INT_PTR CALLBACK page_procedure(HWND page, UINT message, WPARAM wparam, LPARAM lparam) {
    return ui::guarded<INT_PTR>(
        FALSE, [&] { return handle_page_message(operations, page, message, wparam, lparam); });
}

// The pages, each in a source of its own.
extern const PageOperations kGeneral, kPDFVersion, kColor, kCompress, kFont, kSecurities, kWaterMark,
    kOpenAction, kInfo;

// Whether the page's check passes; a page that is not there or has none is valid.
[[nodiscard]] bool check_page(PageIndex page);

// The sibling with that title (a string resource): null when there is none.
[[nodiscard]] HWND find_sibling_page(HWND page, UINT title_id);

// --- What pages say ---

// A text of the language library, or "(no id{%u})" / "(no string{%u})".
[[nodiscard]] std::wstring dialog_text(UINT id);

// Shows a message box; the result is its button.
int show_message(HWND owner, const std::wstring& text, UINT caption_id, UINT style);

// Says that something failed, out of memory for one, and that the entries are still there. Does what it can.
void tell_failure(HWND owner) noexcept;

// Runs the part of a page in keeping the sheet open or letting it close. Where it fails, says so and answers
// `failure`: what a page does not answer would count as valid and as saved.
template <class Operation>
[[nodiscard]] LONG_PTR or_stay_open(HWND page, LONG_PTR failure, Operation operation) noexcept {
    bool done = false;
    const LONG_PTR result = ui::guarded<LONG_PTR>(failure, [&] {
        const LONG_PTR answer = operation();
        done = true;
        return answer;
    });
    if (!done)
        tell_failure(page);
    return result;
}

// The way a check refuses: the message with the caption IDS_REFUSED, then the focus on the control, whose
// text is selected. Always false.
bool refuse(HWND page, int control, UINT text_id, UINT icon = MB_ICONERROR);
bool refuse(HWND page, int control, const std::wstring& text, UINT icon = MB_ICONERROR);

}  // namespace pdf_settings
