#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/pages/exchange.h"
#include "UI_dll/PDFSettings/pages/page.h"
#include "UI_dll/PDFSettings/pages/page_general.h"
#include "UI_dll/PDFSettings/pages/page_general_paper.h"
#include "UI_dll/PDFSettings/pages/page_general_rules.h"
#include "UI_dll/PDFSettings/pages/page_pdf_version.h"
#include "UI_dll/PDFSettings/pages/page_pdf_version_rules.h"
#include "UI_dll/PDFSettings/setting_list.h"
#include "common/dialog_library.h"
#include "common/driver_util.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "common/threadprop.h"
#include "job/name_pattern.h"
#include "lib/devmode.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

using Corvanta::Vantrix::PrintSettings::General_impl;

constexpr size_t kFolderUnits = 512;  // also the buffer of "GetBrowsePath"

struct GeneralHelper final : PageHelper {
    std::wstring name;  // of the setting, as the sheet opened
    PaperState paper;
};

constexpr std::tuple kControls = {
    CheckBox{IDC_LINEARIZE, &General_impl::Linearize},
    CheckBox{IDC_OPEN_PDF, &General_impl::OpenPDF},
    Radios{std::array{IDC_OVERWRITE, IDC_ASK, IDC_NUMBER, IDC_REFUSE}, &General_impl::WhenSameName},
    CheckBox{IDC_URL_LINK, &General_impl::URLLink},
    CheckBox{IDC_NO_BLANK_PAGE, &General_impl::NoOutputBlankPage},
    Text{IDC_OUTPUT_FOLDER, &General_impl::OutputFolder},
    Radios{std::array{IDC_PORTRAIT, IDC_LANDSCAPE}, &General_impl::PaperOrientation},
};

constexpr std::array kFolderControls = {IDC_OUTPUT_FOLDER_LABEL, IDC_OUTPUT_FOLDER, IDC_BROWSE};

bool saves_in_folder(HWND page) {
    return selected(page, IDC_SAVE_STYLE) == 1;
}

void enable_folder(HWND page) {
    enable(page, kFolderControls, saves_in_folder(page));
}

// Below the pattern, the name that a document would get now.
void show_name_now(HWND page) {
    ULONG_PTR printer = 0;
    GetThreadProp(threadprop::kPrinterName, printer);
    job::NameValues values{.title = dialog_text(IDS_SAMPLE_TITLE), .user = user_name()};
    if (printer)
        values.printer = *reinterpret_cast<const std::wstring*>(printer);
    GetLocalTime(&values.time);
    const std::wstring name = name_now(control_text(page, IDC_FILE_NAME), values);
    SetDlgItemTextW(page, IDC_FILE_NAME_NOW,
                    qk::format(dialog_text(IDS_FILE_NAME_NOW).c_str(), name.c_str()).c_str());
}

void show_file_name(HWND page, const Setting& setting) {
    const auto& texts = setting.addition()->Str;
    const auto entry = texts.find(job::kFileNameKey);
    set_text(page, IDC_FILE_NAME, entry != texts.end() ? entry->second : std::wstring(), job::kPatternUnits);
    show_name_now(page);
}

// --- Filling the controls ---

void show_resolution(HWND page, int32_t resolution) {
    const auto listed = std::ranges::find(kOfferedResolutions, resolution);
    if (listed != kOfferedResolutions.end())
        select(page, IDC_RESOLUTION, static_cast<int>(listed - kOfferedResolutions.begin()));
    else if (resolution >= ps::field_of(&General_impl::PaperResolution).rule.low)
        SetDlgItemTextW(page, IDC_RESOLUTION, std::to_wstring(resolution).c_str());
}

void show_General(HWND page, const Setting& setting) {
    const General_impl& general = *setting.general();
    load_controls(page, general, kControls);
    select(page, IDC_SAVE_STYLE, general.SaveStyle == General_impl::kAskForPlace ? 0 : 1);
    enable_folder(page);
    show_file_name(page, setting);
    show_resolution(page, general.PaperResolution);
    set_text(page, IDC_SCALE, std::to_wstring(general.Scale), kScaleUnits);
    load_paper(page, general, page_helper<GeneralHelper>(kGeneralPage).paper);
}

void dlg_init_General(HWND page) {
    TRACE("dlg_init_General");
    const Setting& setting = edited_setting();
    auto& helper = page_helper<GeneralHelper>(kGeneralPage);
    helper.name = setting->PSName;
    set_text(page, IDC_NAME, setting->PSName, kMostNameUnits);
    // The first word is what an empty pattern stands for.
    constexpr size_t kMoreWords = std::wstring_view(job::kNameWords).find(L' ') + 1;
    set_cue(page, IDC_FILE_NAME,
            qk::format(dialog_text(IDS_CUE_FILE_NAME).c_str(), job::kNameWords + kMoreWords));
    fill_list(page, IDC_SAVE_STYLE, IDS_SAVE_STYLE_ASK, 2);
    for (const int32_t resolution : kOfferedResolutions)
        add_item(page, IDC_RESOLUTION, std::to_wstring(resolution));
    init_paper(page, helper.paper);
    show_General(page, setting);
    set_shown(page, IDC_UNUSED, false);
    set_checked(page, IDC_UNUSED, false);
}

// --- Commands ---

void browse(HWND page) {
    const qk::DLL library = LoadInstallDll(dialog_library::kFileName);
    const auto ask =
        library ? qk::find_export<dialog_library::GetBrowsePath>(library.get(), "GetBrowsePath") : nullptr;
    if (!ask)
        return;
    std::array<wchar_t, kFolderUnits + 1> folder = {};  // one more, should the library fill it to the brim
    if (ask(folder.data(), control_text(page, IDC_OUTPUT_FOLDER).c_str()))
        SetDlgItemTextW(page, IDC_OUTPUT_FOLDER, folder.data());
}

void command(HWND page, int control, int notification) {
    switch (control) {
        case IDC_PAPER_LIST:
            if (notification == CBN_SELCHANGE)
                show_form_size(page);
            break;
        case IDC_PAPER_FORM:
        case IDC_PAPER_CUSTOM:
            if (notification == BN_CLICKED)
                click_paper_type(page, control, page_helper<GeneralHelper>(kGeneralPage).paper);
            break;
        case IDC_SAVE_STYLE:
            enable_folder(page);
            break;
        case IDC_FILE_NAME:
            if (notification == EN_CHANGE)
                show_name_now(page);
            break;
        case IDC_BROWSE:
            if (notification == BN_CLICKED)
                browse(page);
            break;
        default:
            break;
    }
}

// --- Checking ---

bool check_name(HWND page) {
    const std::wstring name = control_text(page, IDC_NAME);
    if (qk::without_blanks(name).empty())
        return refuse(page, IDC_NAME, IDS_NO_NAME);
    ULONG_PTR is_new = 0;
    GetThreadProp(threadprop::kNewSheet, is_new);
    if (is_name_taken(name, is_new ? std::wstring() : dialog_state().file.path))
        return refuse(page, IDC_NAME, IDS_NAME_TAKEN);
    return true;
}

// A part of a path would be looked for below the folder that each program has by chance.
bool is_full_folder(const std::wstring& path) {
    return qk::is_full_path(path) && qk::is_folder(path);
}

// A folder that the setting has named all along may be missing on this computer only.
bool check_folder(HWND page) {
    return !saves_in_folder(page) || !is_touched(page, std::array{IDC_SAVE_STYLE, IDC_OUTPUT_FOLDER}) ||
           is_full_folder(control_text(page, IDC_OUTPUT_FOLDER)) ||
           refuse(page, IDC_OUTPUT_FOLDER, IDS_NO_OUTPUT_FOLDER);
}

bool check_file_name(HWND page) {
    return !is_touched(page, IDC_FILE_NAME) ||
           job::find_pattern_fault(control_text(page, IDC_FILE_NAME)).empty() ||
           refuse(page, IDC_FILE_NAME, IDS_BAD_FILE_NAME);
}

bool check_resolution(HWND page) {
    return !is_touched(page, IDC_RESOLUTION) || is_good_resolution(control_text(page, IDC_RESOLUTION)) ||
           refuse(page, IDC_RESOLUTION, IDS_BAD_RESOLUTION);
}

bool check_scale(HWND page, int32_t current) {
    if (find_scale(control_text(page, IDC_SCALE)))
        return true;
    SetDlgItemTextW(page, IDC_SCALE, std::to_wstring(current).c_str());
    return refuse(page, IDC_SCALE, IDS_BAD_SCALE);
}

bool check_links(HWND page) {
    if (!is_checked(page, IDC_URL_LINK))
        return true;
    const uint32_t version = read_PDFVersion(page).Version;
    const bool is_new = is_touched(page, IDC_URL_LINK) || version != loaded_setting().pdfVersion()->Version;
    return !is_new || !is_press_standard(version) || refuse(page, IDC_URL_LINK, IDS_NO_LINKS);
}

bool dlg_killactive_General(HWND page) {
    TRACE("dlg_killactive_General");
    const General_impl& general = *edited_setting().general();
    return check_name(page) && check_paper(page, general) && check_folder(page) && check_file_name(page) &&
           check_resolution(page) && check_scale(page, general.Scale) && check_links(page);
}

// --- Reading the controls ---

// A cleared pattern is none. Untouched, the text stays as it was loaded.
void read_file_name(HWND page) {
    auto& texts = edited_setting().addition()->Str;
    const auto& loaded = loaded_setting().addition()->Str;
    const auto before = loaded.find(job::kFileNameKey);
    texts.erase(job::kFileNameKey);
    if (is_touched(page, IDC_FILE_NAME)) {
        if (std::wstring text = control_text(page, IDC_FILE_NAME); !text.empty())
            texts[job::kFileNameKey] = std::move(text);
    } else if (before != loaded.end()) {
        texts.insert(*before);
    }
}

General_impl read_section(HWND page) {
    General_impl read = *loaded_setting().general();
    store_controls(page, read, kControls);
    if (is_touched(page, IDC_SAVE_STYLE))
        read.SaveStyle = saves_in_folder(page) ? General_impl::kFixedFolder : General_impl::kAskForPlace;
    if (is_touched(page, IDC_RESOLUTION))
        read.PaperResolution =
            find_resolution(control_text(page, IDC_RESOLUTION)).value_or(read.PaperResolution);
    if (const auto scale = find_scale(control_text(page, IDC_SCALE)); scale && is_touched(page, IDC_SCALE))
        read.Scale = static_cast<int32_t>(*scale);
    store_paper(page, read);
    return read;
}

void dlg_apply_General(HWND page) {
    TRACE("dlg_apply_General");
    Setting& setting = edited_setting();
    General_impl read = read_section(page);
    store_form_name(page);
    read_file_name(page);
    std::wstring name = is_touched(page, IDC_NAME) ? control_text(page, IDC_NAME)
                                                   : page_helper<GeneralHelper>(kGeneralPage).name;
    *setting.general() = std::move(read);
    setting->PSName = std::move(name);
}

}  // namespace

General_impl read_General() {
    const HWND page = dialog_state().sheet.pages[kGeneralPage];
    return page ? read_section(page) : General_impl(*edited_setting().general());
}

const PageOperations kGeneral = {.index = kGeneralPage,
                                 .template_id = IDD_GENERAL,
                                 .title_id = IDS_GENERAL_TAB,
                                 .init = &dlg_init_General,
                                 .show = &show_General,
                                 .command = &command,
                                 .check = &dlg_killactive_General,
                                 .apply = &dlg_apply_General};

}  // namespace pdf_settings
