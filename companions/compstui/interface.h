// The interface of the common property-sheet host as the callers know it, and what the tool chain's header
// lacks.
#pragma once

#include <windows.h>
#include <commctrl.h>
#include <prsht.h>
#include <winspool.h>
#include <compstui.h>

#include <exception>
#include <new>

static_assert(sizeof(COMPROPSHEETUI) == 128 && sizeof(DLGPAGE) == 40 && sizeof(OPTITEM) == 88);
static_assert(sizeof(OPTTYPE) == 48 && sizeof(OPTPARAM) == 48 && sizeof(PSPINFO) == 32);

namespace compstui {

inline constexpr WORD kReasonBeforeInit = 5;        // PROPSHEETUI_REASON_BEFORE_INIT
inline constexpr DWORD kLargestPage = 104;          // PROPSHEETPAGEW with the header's bitmap
inline constexpr LPARAM kDestroyedAfterInit = 256;  // DESTROY's parameter; 0 when INIT has failed

// Control ids of an option page. A template may carry the first two; what it lacks is created.
inline constexpr int kOptionTree = 8000;   // a tree view that lists the items
inline constexpr int kOptionFrame = 8001;  // a group box around the chosen item's value
inline constexpr int kOptionLabel = 8002;
inline constexpr int kOptionValue = 8003;  // edit, list, combo, track bar, scroll bar, button or check box
inline constexpr int kOptionArrow = 8004;
inline constexpr int kOptionExtra = 8005;  // the extended check box or push button
inline constexpr int kOptionLow = 8006;    // the texts at the ends of a range
inline constexpr int kOptionHigh = 8007;
inline constexpr int kOptionRadio = 8008;  // and the next ones, one per state

// Calls `inner`; an exception becomes `failure` and last error 14 (no memory) or 31 (anything else).
template <class Result, class Inner>
[[nodiscard]] Result guarded(Result failure, Inner inner) noexcept {
    DWORD error = ERROR_GEN_FAILURE;
    try {
        return inner();
    } catch (const std::bad_alloc&) {
        error = ERROR_OUTOFMEMORY;
    } catch (...) {
        error = ERROR_GEN_FAILURE;
    }
    SetLastError(error);
    return failure;
}

// Returns `result` with the thread's last error set.
template <class Result>
[[nodiscard]] Result failed(DWORD error, Result result) noexcept {
    SetLastError(error);
    return result;
}

}  // namespace compstui
