// What is wrong with a file that is to become a print setting, in the dialog's language.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "UI_dll/PDFSettings/dialog_state.h"

namespace pdf_settings {

// The most lines that a message box holds; behind them it says only that there are more.
inline constexpr size_t kMostTold = 12;

struct ImportCheck {
    std::wstring fault;  // why it is no setting; empty: it is one, and is loaded
    // "General - Scaling (%): 5 -> 10": what it gives and what is used instead, in the words of the pages;
    // one more than a message box holds, at most.
    std::vector<std::wstring> corrected;
};

// Loads the file as a job would. What the file gives and the loader does not take as it is, is told; secrets
// without their text.
[[nodiscard]] ImportCheck check_import(const std::wstring& path, Setting& setting);

}  // namespace pdf_settings
