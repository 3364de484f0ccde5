#include <algorithm>
#include <cstdint>

#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/pages/exchange.h"
#include "UI_dll/PDFSettings/pages/page.h"
#include "UI_dll/PDFSettings/pages/page_pdf_version.h"
#include "UI_dll/PDFSettings/pages/page_pdf_version_rules.h"
#include "UI_dll/PDFSettings/pages/page_securities_rules.h"
#include "common/qk/trace.h"
#include "common/qk/wipe.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

using Corvanta::Vantrix::PrintSettings::Security_impl;

constexpr auto kTable = std::tuple{
    Text{IDC_SEC_PASSWORD, &Security_impl::MasterPassword},
    Text{IDC_SEC_OPEN_PASSWORD, &Security_impl::UserPassword},
    CheckBox{IDC_SEC_NO_PRINT, &Security_impl::PDF13_DisallowPrint},
    CheckBox{IDC_SEC_NO_MODIFY, &Security_impl::PDF13_DisallowModify},
    CheckBox{IDC_SEC_NO_COPY, &Security_impl::PDF13_DisallowCopy},
    CheckBox{IDC_SEC_NO_ANNOTATE, &Security_impl::PDF13_DisallowAnnotate},
    CheckBox{IDC_SEC_COPY, &Security_impl::AllowCopyContent},
    CheckBox{IDC_SEC_READER, &Security_impl::AllowAccessFromScreenReader},
    DropList{IDC_SEC_EDIT, &Security_impl::EditPermission},
    DropList{IDC_SEC_PRINT, &Security_impl::PrintPermission},
};

constexpr std::array kLowLevel = {IDC_SEC_NO_MODIFY, IDC_SEC_NO_PRINT, IDC_SEC_NO_COPY, IDC_SEC_NO_ANNOTATE};
constexpr std::array kHighLevel = {IDC_SEC_COPY,  IDC_SEC_READER,     IDC_SEC_EDIT,
                                   IDC_SEC_PRINT, IDC_SEC_EDIT_LABEL, IDC_SEC_PRINT_LABEL};

// A check box that asks for a password, with the password's controls.
struct PasswordControls {
    int use;
    int edit;
    int label;
};
constexpr PasswordControls kOpen = {IDC_SEC_USE_OPEN, IDC_SEC_OPEN_PASSWORD, IDC_SEC_OPEN_LABEL};
constexpr PasswordControls kPermissions = {IDC_SEC_USE_PERMISSIONS, IDC_SEC_PASSWORD, IDC_SEC_PASSWORD_LABEL};

// What is told of a fault, and where it is mended.
struct FaultControls {
    PasswordFault fault;
    int edit;
    UINT text;
    UINT icon = MB_ICONERROR;
};
constexpr FaultControls kFaults[] = {
    {PasswordFault::kSame, IDC_SEC_OPEN_PASSWORD, IDS_SEC_SAME_PASSWORDS},
    {PasswordFault::kNoOpen, IDC_SEC_OPEN_PASSWORD, IDS_SEC_NO_OPEN_PASSWORD, MB_ICONEXCLAMATION},
    {PasswordFault::kNoPermissions, IDC_SEC_PASSWORD, IDS_SEC_NO_PASSWORD, MB_ICONEXCLAMATION},
    {PasswordFault::kPermissionsCharacter, IDC_SEC_PASSWORD, IDS_SEC_BAD_CHARACTER},
    {PasswordFault::kOpenCharacter, IDC_SEC_OPEN_PASSWORD, IDS_SEC_BAD_CHARACTER},
    {PasswordFault::kPermissionsTooLong, IDC_SEC_PASSWORD, IDS_SEC_TOO_LONG},
    {PasswordFault::kOpenTooLong, IDC_SEC_OPEN_PASSWORD, IDS_SEC_TOO_LONG},
};

// The passwords whose check boxes were cleared.
struct SecurityHelper final : PageHelper {
    std::wstring open;
    std::wstring permissions;

    SecurityHelper() = default;
    ~SecurityHelper() override {
        qk::wipe(open);
        qk::wipe(permissions);
    }
    SecurityHelper(const SecurityHelper&) = delete;
    SecurityHelper& operator=(const SecurityHelper&) = delete;
};

// The passwords in clear, or as dots again.
void show_passwords(HWND page) noexcept {
    const WPARAM mark = is_checked(page, IDC_SEC_SHOW) ? 0 : L'\u25CF';
    for (const int edit : {IDC_SEC_OPEN_PASSWORD, IDC_SEC_PASSWORD}) {
        SendDlgItemMessageW(page, edit, EM_SETPASSWORDCHAR, mark, 0);
        InvalidateRect(GetDlgItem(page, edit), nullptr, TRUE);
    }
}

template <size_t Count>
void set_shown(HWND page, const std::array<int, Count>& controls, bool shown) noexcept {
    for (const int control : controls)
        pdf_settings::set_shown(page, control, shown);
}

UINT level_note(uint32_t version) noexcept {
    return is_standard(version)         ? IDS_SEC_NOTE_NONE
           : ps::has_low_level(version) ? IDS_SEC_NOTE_LOW
                                        : IDS_SEC_NOTE_HIGH;
}

void exchangeEncryptLevel(HWND page) {
    TRACE("exchangeEncryptLevel");
    const uint32_t version = read_PDFVersion(page).Version;
    const bool low = ps::has_low_level(version);
    const bool protects = !is_standard(version);
    const bool restricts = protects && is_checked(page, IDC_SEC_USE_PERMISSIONS);
    set_shown(page, kLowLevel, low);
    set_shown(page, kHighLevel, !low);
    enable(page, kLowLevel, restricts);
    enable(page, kHighLevel, restricts);
    enable(page, IDC_SEC_READER, restricts && !is_checked(page, IDC_SEC_COPY));
    for (const auto& password : {kOpen, kPermissions}) {
        enable(page, password.use, protects);
        enable(page, std::array{password.edit, password.label}, protects && is_checked(page, password.use));
    }
    enable(page, IDC_SEC_SHOW,
           protects && (is_checked(page, kOpen.use) || is_checked(page, kPermissions.use)));
    SetDlgItemTextW(page, IDC_SEC_NOTE, dialog_text(level_note(version)).c_str());
}

RECT place_of(HWND page, int control) noexcept {
    return window_place(GetDlgItem(page, control), page);
}

void set_place(HWND page, int control, const RECT& place) noexcept {
    SetWindowPos(GetDlgItem(page, control), nullptr, place.left, place.top, place.right - place.left,
                 place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
}

// The two levels share one place on the page; the template shows them below each other.
void move_low_level(HWND page) noexcept {
    RECT group = place_of(page, IDC_SEC_GROUP);
    group.bottom -= place_of(page, IDC_SEC_NO_ANNOTATE).bottom - place_of(page, IDC_SEC_READER).bottom;
    set_place(page, IDC_SEC_GROUP, group);
    const LONG distance = place_of(page, IDC_SEC_NO_PRINT).top - place_of(page, IDC_SEC_EDIT).top;
    for (const int control : kLowLevel) {
        RECT place = place_of(page, control);
        OffsetRect(&place, 0, -distance);
        set_place(page, control, place);
    }
}

// What stands in an edit is a password of the setting, so it empties with its check box; another click brings
// the password back.
void use_changed(HWND page, const PasswordControls& controls, std::wstring& kept) {
    const bool used = is_checked(page, controls.use);
    std::wstring text = control_text(page, controls.edit);
    const qk::WipedAtEnd wiped(text);
    if (!used) {
        kept.swap(text);
        qk::wipe(text);
    } else if (text.empty()) {
        text = kept;
    }
    SetDlgItemTextW(page, controls.edit, text.c_str());
    exchangeEncryptLevel(page);
    if (used)
        SetFocus(GetDlgItem(page, controls.edit));
}

void show_Securities(HWND page, const Setting& setting) {
    const Security_impl& section = *setting.security();
    load_controls(page, section, kTable);
    set_checked(page, IDC_SEC_USE_OPEN, !section.UserPassword.empty());
    set_checked(page, IDC_SEC_USE_PERMISSIONS, !section.MasterPassword.empty());
    exchangeEncryptLevel(page);
}

void dlg_init_Securities(HWND page) {
    TRACE("dlg_init_Securities");
    // What the page always writes is no change of the user's.
    Security_impl& loaded = *loaded_setting().security();
    loaded.Level = Security_impl::kPageLevel;
    loaded.AllowAccessFromScreenReader |= loaded.AllowCopyContent;  // copying includes reading aloud
    move_low_level(page);
    show_Securities(page, edited_setting());
}

// Who comes back to the page, or brings somebody along, does not find them in clear.
void dlg_setactive_Securities(HWND page) {
    TRACE("dlg_setactive_Securities");
    set_checked(page, IDC_SEC_SHOW, false);
    show_passwords(page);
    exchangeEncryptLevel(page);
}

void dlg_command_Securities(HWND page, int control, int notification) {
    TRACE("dlg_command_Securities");
    if (notification != BN_CLICKED)
        return;
    auto& helper = page_helper<SecurityHelper>(kSecuritiesPage);
    if (control == IDC_SEC_USE_OPEN)
        use_changed(page, kOpen, helper.open);
    else if (control == IDC_SEC_USE_PERMISSIONS)
        use_changed(page, kPermissions, helper.permissions);
    else if (control == IDC_SEC_COPY)
        exchangeEncryptLevel(page);
    else if (control == IDC_SEC_SHOW)
        show_passwords(page);
}

bool dlg_validate_Securities(HWND page) {
    TRACE("dlg_validate_Securities");
    std::wstring open = control_text(page, IDC_SEC_OPEN_PASSWORD);
    std::wstring permissions = control_text(page, IDC_SEC_PASSWORD);
    const qk::WipedAtEnd open_wiped(open), permissions_wiped(permissions);
    const uint32_t version = read_PDFVersion(page).Version;
    const bool is_other_version = version != loaded_setting().pdfVersion()->Version;
    const auto is_new = [&](const PasswordControls& controls) {
        return is_other_version || is_touched(page, std::array{controls.use, controls.edit});
    };
    const bool needs_open = is_checked(page, IDC_SEC_USE_OPEN);
    const bool needs_permissions = is_checked(page, IDC_SEC_USE_PERMISSIONS);
    PasswordChoice choice = {open,          permissions,         needs_open, needs_permissions,
                             is_new(kOpen), is_new(kPermissions)};
    while (const auto fault = find_password_fault(version, choice)) {
        const auto& told = *std::ranges::find(kFaults, *fault, &FaultControls::fault);
        if (!refuse(page, told.edit, told.text, told.icon))
            return false;
        if (*fault == PasswordFault::kSame)
            break;
        // Every fault is asked for: the other password may have one, too.
        (told.edit == kOpen.edit ? choice.is_open_new : choice.is_permissions_new) = false;
    }
    return true;
}

bool dlg_killactive_Securities(HWND page) {
    TRACE("dlg_killactive_Securities");
    return dlg_validate_Securities(page);
}

void dlg_apply_Securities(HWND page) {
    TRACE("dlg_apply_Securities");
    auto read = loaded_setting().security();
    store_controls(page, *read, kTable);
    if (is_touched(page, std::array{IDC_SEC_COPY, IDC_SEC_READER}))
        read->AllowAccessFromScreenReader = read->AllowCopyContent || is_checked(page, IDC_SEC_READER);
    read->Level = Security_impl::kPageLevel;
    edited_setting().security().swap(read);  // what it held goes as a whole, passwords wiped
}

}  // namespace

const PageOperations kSecurities = {.index = kSecuritiesPage,
                                    .template_id = IDD_SECURITIES,
                                    .title_id = IDS_SECURITIES_TAB,
                                    .init = &dlg_init_Securities,
                                    .show = &show_Securities,
                                    .command = &dlg_command_Securities,
                                    .set_active = &dlg_setactive_Securities,
                                    .check = &dlg_killactive_Securities,
                                    .apply = &dlg_apply_Securities};

}  // namespace pdf_settings
