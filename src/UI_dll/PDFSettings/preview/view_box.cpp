#include "UI_dll/PDFSettings/preview/view_box.h"

#include <cstdint>
#include <memory>

#include "UI_dll/PDFSettings/dialog_state.h"
#include "UI_dll/PDFSettings/preview/page_drawing.h"
#include "common/qk/trace.h"
#include "common/threadprop.h"
#include "lib/forms.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

using Corvanta::Vantrix::PrintSettings::Watermark_impl;

constexpr COLORREF kTrimColour = RGB(0, 112, 192);
constexpr COLORREF kBleedColour = RGB(192, 0, 0);

// What would take too long to find anew for every drawing.
struct ViewBox final : PageHelper {
    int paper = 0;  // the form that `form` is the size of
    std::optional<Extent> form;
    std::wstring picture_path;
    Picture picture;
};

ViewBox& view_box() {
    auto& slot = dialog_state().list.view_box;
    if (!slot)
        slot = std::make_unique<ViewBox>();
    return static_cast<ViewBox&>(*slot);
}

std::optional<Extent> find_form_size(int paper) {
    ULONG_PTR printer = 0;
    GetThreadProp(threadprop::kPrinter, printer);
    FormRecords forms;
    if (!printer || !ZRTK_EnumForms(reinterpret_cast<HANDLE>(printer), nullptr, forms))
        return std::nullopt;
    const FormRecord* form = find_form(forms.list, paper);
    if (!form)
        return std::nullopt;
    return Extent{form->size.cx / 1000.0, form->size.cy / 1000.0};
}

Extent page_size(const Setting& setting) {
    ViewBox& box = view_box();
    const int paper = setting.general()->PaperName;
    if (box.paper != paper) {
        box.form = find_form_size(paper);
        box.paper = paper;
    }
    return page_extent(*setting.general(), box.form);
}

const Picture& picture_of(const Watermark_impl& watermark) {
    ViewBox& box = view_box();
    const std::wstring wanted =
        watermark.Style == Watermark_impl::kPictureMark ? watermark.PictureFileName : std::wstring();
    if (box.picture_path != wanted) {
        box.picture = load_picture(wanted);
        box.picture_path = wanted;
    }
    return box.picture;
}

void draw_parts(HDC dc, const PagePlace& page, const Setting& setting) {
    const Watermark_impl& watermark = *setting.watermark();
    draw_paper(dc, page);
    const Picture& picture = picture_of(watermark);
    if (watermark.ZOrder == Watermark_impl::kUnderThePage)
        draw_mark(dc, page, watermark, picture);
    draw_contents(dc, page, setting.general()->Scale);
    if (watermark.ZOrder != Watermark_impl::kUnderThePage)
        draw_mark(dc, page, watermark, picture);
    const auto& version = setting.pdfVersion();
    if (version->UseBleedBox)
        draw_box(dc, page, version->BleedBox, kBleedColour);
    if (version->UseTrimBox)
        draw_box(dc, page, version->TrimBox, kTrimColour);
}

}  // namespace

void draw_page(HDC dc, const RECT& area, HBRUSH around, const Setting& setting) {
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    const Surface surface(dc, width, height);
    if (!surface)
        return;
    const RECT all = {0, 0, width, height};
    FillRect(surface.get(), &all, around);
    const Extent size = page_size(setting);
    draw_parts(surface.get(), {fit_page(size, width, height), size}, setting);
    BitBlt(dc, area.left, area.top, width, height, surface.get(), 0, 0, SRCCOPY);
}

void draw_page(const DRAWITEMSTRUCT& item, const Setting& setting) {
    const auto around = reinterpret_cast<HBRUSH>(SendMessageW(GetParent(item.hwndItem), WM_CTLCOLORSTATIC,
                                                              reinterpret_cast<WPARAM>(item.hDC),
                                                              reinterpret_cast<LPARAM>(item.hwndItem)));
    draw_page(item.hDC, item.rcItem, around ? around : GetSysColorBrush(COLOR_BTNFACE), setting);
}

void SetViewBox(HWND list_page) {
    TRACE("SetViewBox");
    if (const HWND preview = GetDlgItem(list_page, IDC_SETTINGS_PREVIEW))
        InvalidateRect(preview, nullptr, FALSE);
}

void draw_view_box(const DRAWITEMSTRUCT& item) {
    if (item.CtlID == IDC_SETTINGS_PREVIEW)
        draw_page(item, edited_setting());
}

}  // namespace pdf_settings
