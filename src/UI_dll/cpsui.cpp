#include "UI_dll/cpsui.h"

#include <prsht.h>

#include "UI_dll/PDFSettings/list/settings_page.h"
#include "common/qk/handle.h"
#include "common/qk/memory_probe.h"
#include "common/qk/paths.h"
#include "common/qk/registry.h"
#include "common/qk/resource_dll.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "print_settings/PSAdmin.h"
#include "resources/ids.h"

namespace cpsui {

namespace {

constexpr LONG kFailure = -1;

// PROPSHEETPAGEW as later systems have it, with the header's bitmap.
struct PropertyPage {
    PROPSHEETPAGEW page;
    HANDLE header_bitmap;
};
static_assert(sizeof(PROPSHEETPAGEW) == 96 && sizeof(PropertyPage) == 104);

wchar_t* resource(UINT id) noexcept {
    return MAKEINTRESOURCEW(id);
}

LONG_PTR ask(const PROPSHEETUI_INFO& info, UINT function, const void* what) {
    return info.pfnComPropSheet
               ? info.pfnComPropSheet(info.hComPropSheet, function, reinterpret_cast<LPARAM>(what), 0)
               : 0;
}

// The page comes second, but it is the one that the sheet opens on, where the service lets it choose.
void add_settings_page_beside(const PROPSHEETUI_INFO& info) {
    PropertyPage page = {};
    page.page.dwSize = sizeof page;
    page.page.dwFlags = PSP_USETITLE | PSP_USEICONID;
    page.page.hInstance = qk::resource_module();
    page.page.pszTemplate = resource(IDD_SETTINGS);
    page.page.pszIcon = resource(IDI_SETTINGS);
    page.page.pszTitle = resource(IDS_SETTINGS_TAB);
    page.page.pfnDlgProc = &settings_page_proc;
    if (const LONG_PTR added = ask(info, CPSFUNC_ADD_PROPSHEETPAGEW, &page))
        ask(info, CPSFUNC_SET_HSTARTPAGE, reinterpret_cast<const void*>(added));
}

LONG add_common_sheet(PROPSHEETUI_INFO& info, SheetInformation& information) {
    COMPROPSHEETUI& sheet = information.sheet;
    sheet.cbSize = sizeof sheet;
    sheet.hInstCaller = qk::resource_module();
    sheet.pCallerName = information.thread->name().data();
    sheet.UserData = reinterpret_cast<ULONG_PTR>(&information);
    sheet.pOptItem = information.option ? information.option->get() : nullptr;
    sheet.cOptItem = information.option ? 1 : 0;
    sheet.pHelpFile = resource(IDI_SHEET);  // a library without a text of that number has no help
    sheet.IconID = IDI_SHEET;
    if (information.may_update)
        sheet.Flags |= CPSUIF_UPDATE_PERMISSION;
    information.added = ask(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &sheet);
    information.thread->set_group(info, information.added);
    return information.added != 0 ? 1 : kFailure;
}

LONG initialise(PROPSHEETUI_INFO& info, SheetInformation& information, const wchar_t* title,
                bool add_settings_page) {
    info.UserData = reinterpret_cast<ULONG_PTR>(&information);
    info.Result = CPSUI_CANCEL;
    LONG result = kFailure;
    if (title)
        result = add_common_sheet(info, information);
    if (add_settings_page)
        add_settings_page_beside(info);
    return result;
}

LONG fill_header(PROPSHEETUI_INFO_HEADER* header, const SheetInformation& information) {
    if (!qk::is_writable(header, sizeof *header))
        return kFailure;
    header->Flags = PSUIHDRF_NOAPPLYNOW | PSUIHDRF_PROPTITLE;
    header->pTitle = const_cast<wchar_t*>(information.title.c_str());
    header->hInst = qk::resource_module();
    header->IconID = information.sheet.IconID;
    return 1;
}

LONG take_result(PROPSHEETUI_INFO& info, const SETRESULT_INFO* result, const SheetInformation& information) {
    if (!qk::is_readable(result, sizeof *result))
        return kFailure;
    TRACE_F(L"pPI->hCPSUI=%llu", static_cast<unsigned long long>(information.added));
    TRACE_F(L"(PSETRESULT_INFO)lParam )->hSetResult=%llu",
            reinterpret_cast<unsigned long long>(result->hSetResult));
    if (reinterpret_cast<LONG_PTR>(result->hSetResult) != information.added)
        return kFailure;
    info.Result = static_cast<ULONG_PTR>(result->Result);
    return 1;
}

INT_PTR CALLBACK option_page_proc(HWND, UINT, WPARAM, LPARAM) {
    return FALSE;
}

}  // namespace

std::optional<DWORD> run_sheet(HWND window, PFNPROPSHEETUI sheet, void* header) {
    using Show = LONG APIENTRY(HWND, PFNPROPSHEETUI, LPARAM, DWORD*);
    const qk::DLL library = qk::load_system_library(L"compstui.dll");
    auto* show_sheet = library ? qk::find_export<Show>(library.get(), "CommonPropertySheetUIW") : nullptr;
    if (!show_sheet) {
        TRACE("no compstui.dll");
        return std::nullopt;
    }
    DWORD result = CPSUI_CANCEL;
    if (show_sheet(window, sheet, reinterpret_cast<LPARAM>(header), &result) < 0) {
        TRACE("CommonPropertySheetUIW failed");
        return std::nullopt;
    }
    return result;
}

bool only_settings_page() {
    constexpr wchar_t kValue[] = L"HideSettingTab";
    Corvanta::Vantrix::Administrator::Restriction restriction;
    const bool restricted =
        Corvanta::Vantrix::Administrator::load_restriction(restriction) && restriction.NoSettingTabs;
    // Unlike other values, the machine's replaces the user's.
    const auto user =
        qk::registry::find_number(qk::registry::CurrentUser().get(), qk::registry::kSpecial, kValue);
    const auto machine = qk::registry::find_number(HKEY_LOCAL_MACHINE, qk::registry::kSpecial, kValue);
    if (!restricted && machine.value_or(user.value_or(0)) == 0)
        return false;
    TRACE("NoSettingTab");
    return true;
}

void set_up_page(SheetInformation& information, bool settings_page_only) {
    DLGPAGE& page = information.page;
    page = {};
    page.cbSize = sizeof page;
    page.DlgProc = settings_page_only ? &settings_page_proc : &option_page_proc;
    page.pTabName = resource(settings_page_only ? IDS_SETTINGS_TAB : IDS_OPTION_TAB);
    page.IconID = settings_page_only ? IDI_SETTINGS : 0;
    page.DlgTemplateID = settings_page_only ? IDD_SETTINGS : IDD_OPTIONS;
    information.sheet.pDlgPage = &page;
    information.sheet.cDlgPage = 1;
}

LONG open_sheet(PROPSHEETUI_INFO& info, LPARAM parameter, std::unique_ptr<SheetInformation> information,
                bool add_settings_page) {
    information->title = information->thread->name();
    if (information->title.empty())
        information->title = qk::load_string(IDS_SETTINGS_TAB);
    SheetInformation* kept = information.release();
    info.UserData = reinterpret_cast<ULONG_PTR>(kept);
    return DefCommonUIFunc(info, parameter, kept, kept->title.c_str(), add_settings_page);
}

LONG DefCommonUIFunc(PROPSHEETUI_INFO& info, LPARAM parameter, SheetInformation* information,
                     const wchar_t* title, bool add_settings_page) {
    TRACE("DefCommonUIFunc");
    if (!information)
        return kFailure;
    switch (info.Reason) {
        case PROPSHEETUI_REASON_INIT:
            return initialise(info, *information, title, add_settings_page);
        case PROPSHEETUI_REASON_GET_INFO_HEADER:
            return fill_header(reinterpret_cast<PROPSHEETUI_INFO_HEADER*>(parameter), *information);
        case PROPSHEETUI_REASON_SET_RESULT:
            return take_result(info, reinterpret_cast<const SETRESULT_INFO*>(parameter), *information);
        case PROPSHEETUI_REASON_DESTROY:
            delete information;
            info.UserData = 0;
            return 1;
        default:
            return kFailure;
    }
}

}  // namespace cpsui

LONG APIENTRY NSETCallBack(CPSUICBPARAM* /*parameter*/) noexcept {
    TRACE("NSETCallBack");
    return CPSUICB_ACTION_NONE;
}
