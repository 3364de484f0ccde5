#include "UI_dll/PDFSettings/pages/page_pdf_version.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/pages/exchange.h"
#include "UI_dll/PDFSettings/pages/page.h"
#include "UI_dll/PDFSettings/pages/page_pdf_version_boxes.h"
#include "UI_dll/PDFSettings/pages/page_pdf_version_profiles.h"
#include "UI_dll/PDFSettings/pages/page_pdf_version_rules.h"
#include "common/icc_folder.h"
#include "common/icc_profile.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "job/output_intent.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

using Corvanta::Vantrix::PrintSettings::PDFVersion_impl;

constexpr wchar_t kDefaultProfile[] = L"Japan Color 2001 Coated";
constexpr wchar_t kConditionKey[] = L"OutputCondition";

constexpr auto kTable = std::tuple{
    Radios{std::array{IDC_PV_STOP, IDC_PV_CONTINUE}, &PDFVersion_impl::WhenErroredPDFAX},
    CheckBox{IDC_PV_USE_TRIM, &PDFVersion_impl::UseTrimBox},
    CheckBox{IDC_PV_USE_BLEED, &PDFVersion_impl::UseBleedBox},
};

// A profile that is chosen by its file, which may lie outside the profile folder.
struct OwnProfile {
    std::wstring name;  // as a setting names it
    std::wstring description;
};

std::optional<std::wstring> find_condition(const Setting& setting) {
    const auto& texts = setting.addition()->Str;
    const auto entry = texts.find(kConditionKey);
    return entry != texts.end() ? std::optional(entry->second) : std::nullopt;
}

// `stored_`: of the setting that the page was filled from; of the loaded one where it could not be.
struct VersionHelper final : PageHelper {
    std::wstring profile;        // the description that was selected last
    std::wstring first_profile;  // the one that was selected as the setting was shown
    bool chosen = false;         // the user has chosen one, be it the same
    std::wstring stored_name = loaded_setting().pdfVersion()->ICCFileName;
    std::vector<OwnProfile> own;  // that profile, then those that the user has looked up
    std::optional<std::wstring> stored_condition = find_condition(loaded_setting());
};

// --- The version ---

uint32_t selected_version(HWND page) {
    const int position = selected(page, IDC_PV_VERSION, -1);
    return position < 0 ? loaded_setting().pdfVersion()->Version
                        : kVersionOrder[static_cast<size_t>(position)];
}

bool is_other_version(HWND page) {
    return selected_version(page) != loaded_setting().pdfVersion()->Version;
}

void fill_versions(HWND page) {
    for (const uint32_t code : kVersionOrder)
        add_item(page, IDC_PV_VERSION, dialog_text(IDS_PS_VERSION_0 + code));
}

void show_version(HWND page, uint32_t version) {
    const auto position = std::ranges::find(kVersionOrder, version);
    select(page, IDC_PV_VERSION, static_cast<int>(position - kVersionOrder.begin()));
}

UINT version_note(uint32_t version) noexcept {
    if (is_press_standard(version))
        return ps::is_cmyk_only(version) ? IDS_PV_NOTE_PRESS_CMYK : IDS_PV_NOTE_PRESS;
    if (is_standard(version))
        return IDS_PV_NOTE_ARCHIVE;
    return ps::has_low_level(version) ? IDS_PV_NOTE_LOW
           : version == ps::kPDF20    ? IDS_PV_NOTE_NEWEST
                                      : IDS_PV_NOTE_PLAIN;
}

// --- The profile ---

// A setting may name a profile outside the profile folder; it stays a choice.
void add_own_profiles(HWND page, uint32_t version) {
    for (const OwnProfile& own : page_helper<VersionHelper>(kPDFVersionPage).own) {
        if (has_profile(page, own.description))
            continue;
        if (const auto path = icc::find_profile(own.name); path && is_fitting_profile(version, *path))
            add_profile(page, own.description);
    }
}

// Where the setting's profile is not on this computer another is offered, which is not the user's choice yet.
bool is_other_profile(HWND page) {
    const auto& helper = page_helper<VersionHelper>(kPDFVersionPage);
    return helper.chosen || is_other_version(page) || selected_profile(page) != helper.first_profile ||
           helper.stored_name != loaded_setting().pdfVersion()->ICCFileName;
}

// The file name for the selected description. The setting's own stands as it is until another is chosen, for
// the profile that it names, and for none while the version lists none.
std::wstring profile_name(HWND page) {
    const std::wstring description = selected_profile(page);
    const auto& helper = page_helper<VersionHelper>(kPDFVersionPage);
    if (!is_other_profile(page) || (description.empty() && !is_standard(selected_version(page))))
        return helper.stored_name;
    if (description.empty())
        return {};
    const auto own = std::ranges::find(helper.own, description, &OwnProfile::description);
    if (own != helper.own.end())
        return own->name;
    wchar_t name[kFileNameUnits] = {};
    icc_FileNameFromDesc(description, name);
    return name;
}

// --- The output condition ---

std::wstring condition_of(const std::wstring& description) {
    return description.empty() ? std::wstring() : qk::to_wide(icc_ConditionIdFromDesc(description));
}

// A condition that the setting names itself stands; without one it is that of the profile.
void load_condition(HWND page, const Setting& setting) {
    auto& stored = page_helper<VersionHelper>(kPDFVersionPage).stored_condition;
    stored = find_condition(setting);
    SetDlgItemTextW(page, IDC_PV_CONDITION, stored.value_or(condition_of(selected_profile(page))).c_str());
}

bool is_other_condition(HWND page) {
    return is_touched(page, IDC_PV_CONDITION) || is_other_profile(page);
}

// The setting's own texts with the condition, as it was shown first or as it stands now.
std::map<std::wstring, std::wstring> read_texts(HWND page) {
    const auto& stored = page_helper<VersionHelper>(kPDFVersionPage).stored_condition;
    auto texts = edited_setting().addition()->Str;
    texts.erase(kConditionKey);
    if (stored)
        texts[kConditionKey] = *stored;
    const std::wstring text = control_text(page, IDC_PV_CONDITION);
    const bool own = stored || text != condition_of(selected_profile(page));
    if (own && is_other_condition(page) && is_press_standard(selected_version(page)))
        texts[kConditionKey] = text;
    return texts;
}

// --- The page ---

void dlg_enable_PDFVersion(HWND page) {
    TRACE("dlg_enable_PDFVersion");
    const uint32_t version = selected_version(page);
    SetDlgItemTextW(page, IDC_PV_NOTE, dialog_text(version_note(version)).c_str());
    enable(page,
           std::array{IDC_PV_PROFILE_LABEL, IDC_PV_PROFILE, IDC_PV_BROWSE, IDC_PV_ERROR_LABEL, IDC_PV_STOP,
                      IDC_PV_CONTINUE},
           is_standard(version));
    enable(page, std::array{IDC_PV_CONDITION_LABEL, IDC_PV_CONDITION}, is_press_standard(version));
    enable_boxes(page, is_press_standard(version));
}

PDFVersion_impl read_section(HWND page) {
    PDFVersion_impl section = *loaded_setting().pdfVersion();
    store_controls(page, section, kTable);
    store_boxes(page, section);
    section.Version = selected_version(page);
    section.ICCFileName = profile_name(page);
    return section;
}

void show_PDFVersion(HWND page, const Setting& setting) {
    const PDFVersion_impl& section = *setting.pdfVersion();
    show_version(page, section.Version);
    load_controls(page, section, kTable);
    load_boxes(page, section);
    auto& helper = page_helper<VersionHelper>(kPDFVersionPage);
    helper = VersionHelper();
    select(page, IDC_PV_PROFILE, -1);  // else the list would take over what was selected
    helper.stored_name = section.ICCFileName;
    if (const auto path = icc::find_profile(section.ICCFileName))
        helper.profile = icc::find_description(*path).value_or(L"");
    if (!helper.profile.empty())
        helper.own.push_back({helper.stored_name, helper.profile});
    ListupICCFileByName(page, nullptr, section.Version);
    helper.first_profile = selected_profile(page);
    load_condition(page, setting);
    dlg_enable_PDFVersion(page);
}

void dlg_init_PDFVersion(HWND page) {
    TRACE("dlg_init_PDFVersion");
    fill_versions(page);
    widen_profiles(page);
    show_PDFVersion(page, edited_setting());
}

// The condition follows the profile.
void profile_changed(HWND page) {
    const std::wstring description = selected_profile(page);
    if (description.empty())
        return;
    page_helper<VersionHelper>(kPDFVersionPage).profile = description;
    SetDlgItemTextW(page, IDC_PV_CONDITION, condition_of(description).c_str());
}

// Any profile that fits, wherever its file lies and stays.
void browse(HWND page) {
    const auto path = choose_profile(page, profile_name(page));
    if (!path)
        return;
    const std::wstring description = icc::find_description(*path).value_or(L"");
    if (description.empty() || !is_fitting_profile(selected_version(page), *path)) {
        show_message(page, dialog_text(IDS_PV_BAD_PROFILE), IDS_REFUSED, MB_OK | MB_ICONERROR);
        return;
    }
    auto& helper = page_helper<VersionHelper>(kPDFVersionPage);
    std::erase_if(helper.own, [&](const OwnProfile& own) { return own.description == description; });
    helper.own.push_back({stored_profile_name(*path), description});
    helper.chosen = true;
    if (!has_profile(page, description))
        add_profile(page, description);
    select_profile(page, description);
    profile_changed(page);
}

void version_changed(HWND page) {
    TRACE("dlg_callback_PDFVersion.WM_COMMAND.IDC_PV_VERSION");
    const std::wstring before = page_helper<VersionHelper>(kPDFVersionPage).profile;
    ListupICCFileByName(page, nullptr, selected_version(page));
    if (selected_profile(page) != before || control_text(page, IDC_PV_CONDITION).empty())
        profile_changed(page);
    dlg_enable_PDFVersion(page);
}

void dlg_callback_PDFVersion(HWND page, int control, int notification) {
    TRACE("dlg_callback_PDFVersion");
    if (control == IDC_PV_VERSION && notification == CBN_SELCHANGE)
        version_changed(page);
    else if (control == IDC_PV_PROFILE && notification == CBN_SELENDOK)
        page_helper<VersionHelper>(kPDFVersionPage).chosen = true;
    else if (control == IDC_PV_PROFILE && notification == CBN_SELCHANGE)
        profile_changed(page);
    else if (control == IDC_PV_BROWSE && notification == BN_CLICKED)
        browse(page);
    else if ((control == IDC_PV_USE_TRIM || control == IDC_PV_USE_BLEED) && notification == BN_CLICKED)
        dlg_enable_PDFVersion(page);
}

// Refuses what a job with this setting would be refused for. What the file holds already is left alone until
// one of the values that have to go together is another: the rest of the setting can be edited all the same.
bool dlg_killactive_PDFVersion(HWND page) {
    TRACE("dlg_killactive_PDFVersion");
    const PDFVersion_impl section = read_section(page);
    if (!is_standard(section.Version))
        return true;
    const bool press = is_press_standard(section.Version);
    const std::vector<int> bad_margins = press ? find_bad_margins(page) : std::vector<int>();
    for (const int margin : bad_margins)
        if (!refuse(page, margin, IDS_PV_BAD_MARGIN))
            return false;
    if (is_other_profile(page) && !icc::find_profile(section.ICCFileName) &&
        !refuse(page, IDC_PV_PROFILE, IDS_PV_NO_PROFILE))
        return false;
    if (!press)
        return true;
    if (is_other_condition(page) && control_text(page, IDC_PV_CONDITION).empty() &&
        !refuse(page, IDC_PV_CONDITION, IDS_PV_NO_CONDITION))
        return false;
    const PDFVersion_impl& loaded = *loaded_setting().pdfVersion();
    const bool has_other_boxes =
        is_other_version(page) || section.TrimBox != loaded.TrimBox || section.BleedBox != loaded.BleedBox;
    return !bad_margins.empty() || !has_other_boxes || job::is_trim_inside_bleed(section) ||
           refuse(page, box_to_mend(page, section), IDS_PV_BAD_BOXES);
}

void dlg_apply_PDFVersion(HWND page) {
    TRACE("dlg_apply_PDFVersion");
    PDFVersion_impl read = read_section(page);
    auto texts = read_texts(page);
    *edited_setting().pdfVersion() = std::move(read);
    edited_setting().addition()->Str = std::move(texts);
}

}  // namespace

void ListupICCFileByName(HWND page, void* /*ignored*/, uint32_t version) {
    TRACE("ListupICCFileByName");
    auto& helper = page_helper<VersionHelper>(kPDFVersionPage);
    if (const std::wstring current = selected_profile(page); !current.empty())
        helper.profile = current;
    const RedrawOff redraw_off(GetDlgItem(page, IDC_PV_PROFILE));
    SendDlgItemMessageW(page, IDC_PV_PROFILE, CB_RESETCONTENT, 0, 0);
    if (is_standard(version)) {
        for (const icc::Profile& profile : icc::list_profiles())
            if (is_profile_listed(version, profile.colour_space, profile.device_class))
                if (const auto description = icc::find_description(profile.path);
                    description && !description->empty())
                    add_profile(page, *description);
        add_own_profiles(page, version);
    }
    if ((!helper.profile.empty() && select_profile(page, helper.profile)) ||
        select_profile(page, kDefaultProfile))
        return;
    // The only one that fits, where the setting names none.
    const bool is_only =
        helper.stored_name.empty() && SendDlgItemMessageW(page, IDC_PV_PROFILE, CB_GETCOUNT, 0, 0) == 1;
    select(page, IDC_PV_PROFILE, is_only ? 0 : -1);
}

PDFVersion_impl read_PDFVersion(HWND page) {
    const HWND version_page = find_sibling_page(page, IDS_PDF_VERSION_TAB);
    return version_page && GetDlgItem(version_page, IDC_PV_VERSION)
               ? read_section(version_page)
               : PDFVersion_impl(*edited_setting().pdfVersion());
}

const PageOperations kPDFVersion = {.index = kPDFVersionPage,
                                    .template_id = IDD_PDF_VERSION,
                                    .title_id = IDS_PDF_VERSION_TAB,
                                    .init = &dlg_init_PDFVersion,
                                    .show = &show_PDFVersion,
                                    .command = &dlg_callback_PDFVersion,
                                    .check = &dlg_killactive_PDFVersion,
                                    .apply = &dlg_apply_PDFVersion};

}  // namespace pdf_settings
