// The interface of the common property-sheet host as the callers know it, and what the tool chain's header
// lacks.
#pragma once

#include <windows.h>
#include <commctrl.h>
#include <prsht.h>
#include <winspool.h>
#include <compstui.h>

static_assert(sizeof(COMPROPSHEETUI) == 128 && sizeof(DLGPAGE) == 40 && sizeof(OPTITEM) == 88);
static_assert(sizeof(OPTTYPE) == 48 && sizeof(OPTPARAM) == 48 && sizeof(PSPINFO) == 32);

namespace compstui {

inline constexpr WORD kReasonBeforeInit = 5;  // PROPSHEETUI_REASON_BEFORE_INIT
inline constexpr DWORD kLargestPage = 104;    // PROPSHEETPAGEW with the header's bitmap
inline constexpr LPARAM kLeftByButton = 1;    // DESTROY's parameter after OK and Cancel; else 0

// What a list-box item needs on a page, by number from OPTTYPE's BegCtrlID on.
enum ListControl { kListFrame, kListTitle, kListBox, kListIcon };

// What callers reach through pfnComPropSheet: answers CPSFUNC_*; 0, or a number below 0 from functions that
// count, when the handle or parameter is wrong or the function is not served (last error 120). Called on the
// sheet's thread.
LONG_PTR CALLBACK com_prop_sheet(HANDLE handle, UINT function, LPARAM first, LPARAM second) noexcept;

// Returns `result` with the thread's last error set.
template <class Result>
[[nodiscard]] Result failed(DWORD error, Result result) noexcept {
    SetLastError(error);
    return result;
}

}  // namespace compstui
