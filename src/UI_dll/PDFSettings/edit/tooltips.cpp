#include "UI_dll/PDFSettings/edit/tooltips.h"

#include <commctrl.h>

#include <cstddef>
#include <string>

#include "UI_dll/PDFSettings/dialog_state.h"
#include "UI_dll/PDFSettings/messages.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

// What people ask about; the rest explains itself.
constexpr struct {
    PageIndex page;
    int control;
    UINT text;
} kTips[] = {
    {kGeneralPage, IDC_LINEARIZE, IDS_TIP_LINEARIZE},
    {kGeneralPage, IDC_FILE_NAME, IDS_TIP_FILE_NAME},
    {kGeneralPage, IDC_RESOLUTION, IDS_TIP_RESOLUTION},
    {kPDFVersionPage, IDC_PV_PROFILE, IDS_TIP_PROFILE},
    {kPDFVersionPage, IDC_PV_CONDITION, IDS_TIP_CONDITION},
    {kPDFVersionPage, IDC_PV_CONTINUE, IDS_TIP_CONTINUE},
    {kPDFVersionPage, IDC_PV_USE_TRIM, IDS_TIP_TRIM},
    {kPDFVersionPage, IDC_PV_USE_BLEED, IDS_TIP_BLEED},
    {kColorPage, IDC_GRAY_METHOD, IDS_TIP_GREY_METHOD},
    {kColorPage, IDC_MONO_METHOD, IDS_TIP_MONO_METHOD},
    {kColorPage, IDC_IMAGE_THRESHOLD, IDS_TIP_IMAGE_THRESHOLD},
    {kColorPage, IDC_TEXT_THRESHOLD, IDS_TIP_TEXT_THRESHOLD},
    {kColorPage, IDC_MONO_FILTER, IDS_TIP_FILTER},
    {kColorPage, IDC_BLACK_TO_K, IDS_TIP_BLACK},
    {kCompressPage, IDC_CMP_HIGH, IDS_TIP_HIGH},
    {kCompressPage, IDC_CMP_ASCII, IDS_TIP_ASCII},
    {kCompressPage, IDC_CMP_COLOUR + CMP_METHOD, IDS_TIP_METHOD},
    {kCompressPage, IDC_CMP_COLOUR + CMP_SAMPLING, IDS_TIP_SAMPLING},
    {kCompressPage, IDC_CMP_COLOUR + CMP_THRESHOLD, IDS_TIP_THRESHOLD},
    {kCompressPage, IDC_CMP_GREY + CMP_METHOD, IDS_TIP_METHOD},
    {kCompressPage, IDC_CMP_GREY + CMP_SAMPLING, IDS_TIP_SAMPLING},
    {kCompressPage, IDC_CMP_GREY + CMP_THRESHOLD, IDS_TIP_THRESHOLD},
    {kCompressPage, IDC_CMP_MONO + CMP_SAMPLING, IDS_TIP_SAMPLING},
    {kCompressPage, IDC_CMP_MONO + CMP_THRESHOLD, IDS_TIP_THRESHOLD},
    {kFontPage, IDC_FONT_ALL_BUT, IDS_TIP_ALL_BUT},
    {kFontPage, IDC_FONT_BASE_14, IDS_TIP_BASE_14},
    {kFontPage, IDC_FONT_FAILED, IDS_TIP_EMBED_FAILED},
    {kSecuritiesPage, IDC_SEC_USE_PERMISSIONS, IDS_TIP_PERMISSIONS},
    {kSecuritiesPage, IDC_SEC_READER, IDS_TIP_READER},
    {kWaterMarkPage, IDC_MARK_TRANSPARENCY, IDS_TIP_TRANSPARENCY},
};

constexpr int kWidest = 200;             // dialog units; what is longer gets more lines
constexpr int kReadingTime = 20 * 1000;  // milliseconds

void add(HWND tips, HWND page, HWND control, std::wstring& text) noexcept {
    TTTOOLINFOW tool = {};
    tool.cbSize = offsetof(TTTOOLINFOW, lpReserved);  // every version takes that
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = page;
    tool.uId = reinterpret_cast<UINT_PTR>(control);
    tool.lpszText = text.data();
    SendMessageW(tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

}  // namespace

void add_tooltips(HWND sheet) {
    const auto& pages = dialog_state().sheet.pages;
    const HWND tips = CreateWindowExW(0, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0,
                                      0, 0, 0, sheet, nullptr, nullptr, nullptr);
    if (!tips)
        return;
    RECT widest = {0, 0, kWidest, 0};
    MapDialogRect(pages[kGeneralPage], &widest);
    SendMessageW(tips, TTM_SETMAXTIPWIDTH, 0, widest.right);
    SendMessageW(tips, TTM_SETDELAYTIME, TTDT_AUTOPOP, kReadingTime);
    for (const auto& tip : kTips) {
        std::wstring text = dialog_text(tip.text);
        // The mouse meets a list's own edit box or list, not the list.
        for (HWND control = GetDlgItem(pages[tip.page], tip.control); control;
             control = GetWindow(control, GW_CHILD))
            add(tips, pages[tip.page], control, text);
    }
}

}  // namespace pdf_settings
