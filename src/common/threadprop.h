// The per-thread property store: values that must survive from one entry point to the next on a thread.
#pragma once

#include <windows.h>

#include <optional>
#include <string_view>

namespace threadprop {

// The keys in use. A job and a property sheet share "hPDFPrinter" and "PrinterName".
inline constexpr std::wstring_view kPrinter = L"hPDFPrinter";
inline constexpr std::wstring_view kSavedPrinter = L"hSavePDFPrinter";
inline constexpr std::wstring_view kPrinterName = L"PrinterName";
inline constexpr std::wstring_view kNewSheet = L"PROPSHEET_NEW";
inline constexpr std::wstring_view kStartRecord = L"ZRTKPrintStartInfo";
inline constexpr std::wstring_view kResultRecord = L"ZRTKPrintInfo";

}  // namespace threadprop

// The store belongs to the whole module; each entry to the thread that set it. Values are not owned: whoever
// puts a pointer in frees what it points to after taking it out. Keys are compared exactly. Any thread.
// A list at its end raises std::length_error.

// Appends an entry. Sets of one key queue up: the first one set is the first one got and freed, so there is
// never a previous value to report and the result is 0.
ULONG_PTR SetThreadProp(std::wstring_view key, ULONG_PTR value);

// Writes the value of this thread's oldest entry under `key`, or 0.
void GetThreadProp(std::wstring_view key, ULONG_PTR& value);

// Puts `value` in the place of what this thread's oldest entry under `key` holds, and returns that; nothing,
// and nothing is changed, when there is no entry. Allocates nothing.
std::optional<ULONG_PTR> ExchangeThreadProp(std::wstring_view key, ULONG_PTR value);

// Removes this thread's oldest entry under `key` and returns its value, or 0 when there is none.
ULONG_PTR FreeThreadProp(std::wstring_view key);

// Removes every entry of every thread (process detach). While the process ends the other threads are gone and
// may have taken the lock with them: `process_ends` gives up then instead of waiting for ever.
void FinalizeThreadProp(bool process_ends = false);
