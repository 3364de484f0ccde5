// The nine pages of the edit sheet, and the procedure that runs them all.
#pragma once

#include <windows.h>

#include <prsht.h>

#include <array>

#include "UI_dll/PDFSettings/pages/page.h"

namespace pdf_settings {

// The nine pages in their order, each with its dialog procedure and its chapter of the user's guide.
struct PageRow {
    const PageOperations* operations;
    DLGPROC procedure;
    const wchar_t* chapter;
};
[[nodiscard]] const std::array<PageRow, kPageCount>& page_table() noexcept;

inline constexpr int kApplyButton = 12321;  // of every property sheet

// Posted to the first page when all are made: the sheet's own preparations are over when it arrives.
inline constexpr UINT kSheetStands = WM_APP + 45;

// Whether the page's check passes; a page that is not there or has none is valid.
[[nodiscard]] bool check_page(PageIndex page);

}  // namespace pdf_settings
