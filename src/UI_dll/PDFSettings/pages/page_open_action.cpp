#include <cstdint>

#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/pages/exchange.h"
#include "UI_dll/PDFSettings/pages/page.h"
#include "UI_dll/PDFSettings/pages/whole_number.h"
#include "common/qk/trace.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

using Section = Corvanta::Vantrix::PrintSettings::OpenAction_impl;

constexpr int kMostPage = static_cast<int>(ps::field_of(&Section::StartPage).rule.high);

constexpr std::tuple kTable{
    DropList{IDC_OPEN_LAYOUT, &Section::PageLayout},
    DropList{IDC_OPEN_BINDING, &Section::Binding},
    DropList{IDC_OPEN_ADJUST, &Section::PageAdjust},
    DropList{IDC_OPEN_MODE, &Section::PageMode},
    CheckBox{IDC_OPEN_FULL_SCREEN, &Section::FullScreen},
    CheckBox{IDC_OPEN_SHOW_TITLE, &Section::ShowDocumentTitle},
    CheckBox{IDC_OPEN_FIT_WINDOW, &Section::FitToPage},
    CheckBox{IDC_OPEN_CENTER, &Section::CenterWindow},
    CheckBox{IDC_OPEN_HIDE_MENU, &Section::HideMenu},
    CheckBox{IDC_OPEN_HIDE_TOOL_BAR, &Section::HideToolBar},
    CheckBox{IDC_OPEN_HIDE_CONTROLS, &Section::HideWindowControl},
};

std::optional<uint32_t> start_page(HWND page) {
    if (!is_touched(page, std::array{IDC_OPEN_AT_PAGE, IDC_OPEN_PAGE}))
        return loaded_setting().openAction()->StartPage;
    if (!is_checked(page, IDC_OPEN_AT_PAGE))
        return Section::kNoStartPage;
    return whole_number(control_text(page, IDC_OPEN_PAGE), 1, kMostPage);
}

void enable_controls(HWND page) {
    const int layout = selected(page, IDC_OPEN_LAYOUT);
    const bool pages_meet = layout != int{Section::kSinglePage} && layout != int{Section::kOneColumn};
    enable(page, std::array{IDC_OPEN_BINDING_LABEL, IDC_OPEN_BINDING}, pages_meet);
    enable(page, std::array{IDC_OPEN_PAGE_LABEL, IDC_OPEN_PAGE, IDC_OPEN_PAGE_SPIN},
           is_checked(page, IDC_OPEN_AT_PAGE));
}

void show_OpenAction(HWND page, const Setting& setting) {
    const Section& section = *setting.openAction();
    load_controls(page, section, kTable);

    const bool at_page = section.StartPage != Section::kNoStartPage;
    set_checked(page, IDC_OPEN_AT_PAGE, at_page);
    load_number(page, IDC_OPEN_PAGE, IDC_OPEN_PAGE_SPIN, 1, kMostPage,
                at_page ? static_cast<int>(section.StartPage) : 1);
    enable_controls(page);
}

void dlg_init_OpenAction(HWND page) {
    TRACE("dlg_init_OpenAction");
    show_OpenAction(page, edited_setting());
}

void command(HWND page, int control, int notification) {
    if ((control == IDC_OPEN_AT_PAGE && notification == BN_CLICKED) ||
        (control == IDC_OPEN_LAYOUT && notification == CBN_SELCHANGE))
        enable_controls(page);
}

bool dlg_killactive_OpenAction(HWND page) {
    TRACE("dlg_killactive_OpenAction");
    return start_page(page) || refuse(page, IDC_OPEN_PAGE, IDS_OPEN_BAD_PAGE);
}

void dlg_apply_OpenAction(HWND page) {
    TRACE("dlg_apply_OpenAction");
    Section read = *loaded_setting().openAction();
    read.StartPage = start_page(page).value_or(read.StartPage);
    store_controls(page, read, kTable);
    *edited_setting().openAction() = read;
}

}  // namespace

const PageOperations kOpenAction = {.index = kOpenActionPage,
                                    .template_id = IDD_OPEN_ACTION,
                                    .title_id = IDS_OPEN_ACTION_TAB,
                                    .init = &dlg_init_OpenAction,
                                    .show = &show_OpenAction,
                                    .command = &command,
                                    .check = &dlg_killactive_OpenAction,
                                    .apply = &dlg_apply_OpenAction};

}  // namespace pdf_settings
