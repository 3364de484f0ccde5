#include "UI_dll/PDFSettings/pages/page.h"

#include "UI_dll/PDFSettings/messages.h"

namespace pdf_settings {

HWND find_sibling_page(HWND page, UINT title_id) {
    const HWND sheet = GetParent(page);
    return sheet ? FindWindowExW(sheet, nullptr, nullptr, dialog_text(title_id).c_str()) : nullptr;
}

}  // namespace pdf_settings
