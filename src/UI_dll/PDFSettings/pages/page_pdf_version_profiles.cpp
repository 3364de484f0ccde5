#include "UI_dll/PDFSettings/pages/page_pdf_version_profiles.h"

#include <commctrl.h>

#include "UI_dll/PDFSettings/controls.h"
#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/pages/common_dialogs.h"
#include "UI_dll/PDFSettings/pages/page_pdf_version_rules.h"
#include "common/icc_folder.h"
#include "common/qk/text.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

constexpr size_t kProfileUnits = 261;  // a description of 260 and its zero

LRESULT find_item(HWND page, const std::wstring& description) {
    return SendDlgItemMessageW(page, IDC_PV_PROFILE, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                               reinterpret_cast<LPARAM>(description.c_str()));
}

}  // namespace

std::wstring selected_profile(HWND page) {
    wchar_t text[kProfileUnits] = {};
    COMBOBOXEXITEMW item = {CBEIF_TEXT, selected(page, IDC_PV_PROFILE, -1), text, kProfileUnits};
    if (item.iItem < 0 ||
        !SendDlgItemMessageW(page, IDC_PV_PROFILE, CBEM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)))
        return {};
    return item.pszText == text ? std::wstring(text) : std::wstring();
}

void add_profile(HWND page, std::wstring description) {
    const COMBOBOXEXITEMW item = {CBEIF_TEXT, -1, description.data()};
    SendDlgItemMessageW(page, IDC_PV_PROFILE, CBEM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
}

bool has_profile(HWND page, const std::wstring& description) {
    return find_item(page, description) >= 0;
}

bool select_profile(HWND page, const std::wstring& description) {
    const LRESULT position = find_item(page, description);
    if (position >= 0)
        select(page, IDC_PV_PROFILE, static_cast<int>(position));
    return position >= 0;
}

void widen_profiles(HWND page) {
    const LONG left = window_place(GetDlgItem(page, IDC_PV_PROFILE), page).left;
    const LONG right = window_place(GetDlgItem(page, IDC_PV_BROWSE), page).right;
    SendDlgItemMessageW(page, IDC_PV_PROFILE, CB_SETDROPPEDWIDTH, static_cast<WPARAM>(right - left), 0);
}

bool is_fitting_profile(uint32_t version, const std::wstring& path) {
    const auto profile = icc::read_profile(path);
    return profile && is_profile_listed(version, profile->colour_space, profile->device_class);
}

std::optional<std::wstring> choose_profile(HWND page, const std::wstring& current) {
    const wchar_t end = L'\0';
    const std::wstring filter = dialog_text(IDS_PV_BROWSE_PROFILES) + end + L"*.icc;*.icm" + end +
                                dialog_text(IDS_MARK_BROWSE_ALL) + end + L"*.*" + end;
    return choose_file(page, dialog_text(IDS_PV_BROWSE_TITLE), filter,
                       icc::find_profile(current).value_or(L""));
}

std::wstring stored_profile_name(const std::wstring& path) {
    const std::wstring name(qk::file_part(path));
    const auto listed = icc::find_profile(name);
    return listed && qk::equal_no_case(*listed, path) ? name : path;
}

}  // namespace pdf_settings
