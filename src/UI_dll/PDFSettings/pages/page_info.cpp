#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/pages/exchange.h"
#include "UI_dll/PDFSettings/pages/page.h"
#include "common/qk/trace.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

using Section = Corvanta::Vantrix::PrintSettings::Summary_impl;

constexpr UINT kLoadControls = WM_APP + 44;

struct InfoHelper final : PageHelper {
    bool loaded = false;  // the controls hold the section, so they may be written back
};

constexpr std::tuple kTable{
    Text{IDC_INFO_TITLE, &Section::Title},     Text{IDC_INFO_SUBJECT, &Section::Subject},
    Text{IDC_INFO_AUTHOR, &Section::Author},   Text{IDC_INFO_KEYWORDS, &Section::Keywords},
    Text{IDC_INFO_CREATOR, &Section::Creator}, CheckBox{IDC_INFO_SETTING_NAME, &Section::EmbedPSFileName},
};

InfoHelper& helper() {
    return page_helper<InfoHelper>(kInfoPage);
}

// The name as it stands on the General page, applied or not.
void show_name(HWND page) {
    const HWND general = dialog_state().sheet.pages[kGeneralPage];
    const std::wstring name = general ? control_text(general, IDC_NAME) : edited_setting()->PSName;
    SetDlgItemTextW(page, IDC_NAME, name.c_str());
}

void show_Info(HWND page, const Setting& setting) {
    load_controls(page, *setting.summary(), kTable);
}

void dlg_init_Info(HWND page) {
    TRACE("dlg_init_Info");
    helper().loaded = false;
    PostMessageW(page, kLoadControls, 0, 0);
}

INT_PTR on_message(HWND page, UINT message, WPARAM /*wparam*/, LPARAM /*lparam*/) {
    // Only the first counts: a later one, from wherever, must not undo what has been typed.
    if (message != kLoadControls || helper().loaded)
        return FALSE;
    show_Info(page, edited_setting());
    set_cue(page, IDC_INFO_TITLE, dialog_text(IDS_CUE_TITLE));
    for (const int control : {IDC_INFO_SUBJECT, IDC_INFO_AUTHOR, IDC_INFO_KEYWORDS})
        set_cue(page, control, dialog_text(IDS_CUE_LEFT_OUT));
    set_cue(page, IDC_INFO_CREATOR, dialog_text(IDS_CUE_CREATOR));
    show_name(page);
    remember_controls(page);
    helper().loaded = true;
    return TRUE;
}

bool dlg_killactive_Info(HWND /*page*/) {
    TRACE("dlg_killactive_Info");
    return true;  // any text will do
}

void dlg_apply_Info(HWND page) {
    TRACE("dlg_apply_Info");
    if (helper().loaded) {
        Section read = *loaded_setting().summary();
        store_controls(page, read, kTable);
        *edited_setting().summary() = std::move(read);
    }
}

}  // namespace

const PageOperations kInfo = {.index = kInfoPage,
                              .template_id = IDD_INFO,
                              .title_id = IDS_INFO_TAB,
                              .init = &dlg_init_Info,
                              .show = &show_Info,
                              .set_active = &show_name,
                              .check = &dlg_killactive_Info,
                              .apply = &dlg_apply_Info,
                              .other = &on_message};

}  // namespace pdf_settings
