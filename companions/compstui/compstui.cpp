// The exports of the common property-sheet host. Each is a guard around one function of its own.
#include "companions/compstui/interface.h"
#include "companions/compstui/page.h"
#include "companions/compstui/sheet.h"

extern "C" {

LONG APIENTRY CommonPropertySheetUIW(HWND owner, PFNPROPSHEETUI function, LPARAM parameter, DWORD* result) {
    return compstui::show_sheet(owner, function, parameter, result);
}

LONG APIENTRY CommonPropertySheetUIA(HWND, PFNPROPSHEETUI, LPARAM, DWORD*) {
    return compstui::failed<LONG>(ERROR_CALL_NOT_IMPLEMENTED, ERR_CPSUI_FUNCTION_NOT_IMPLEMENTED);
}

ULONG_PTR APIENTRY GetCPSUIUserData(HWND page) {
    return compstui::page_user_data(page);
}

BOOL APIENTRY SetCPSUIUserData(HWND page, ULONG_PTR data) {
    return compstui::try_set_page_user_data(page, data);
}

}  // extern "C"
