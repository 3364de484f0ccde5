#include "UI_dll/PDFSettings/preview/page_drawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "common/qk/text.h"

namespace pdf_settings {

namespace {

using Corvanta::Vantrix::PrintSettings::Box;
using Corvanta::Vantrix::PrintSettings::Watermark_impl;

constexpr double kMmPerPoint = 25.4 / 72;
constexpr size_t kMostText = 1000;  // what is beyond would be too small to be seen
constexpr COLORREF kInk = RGB(176, 180, 186);

void fill(HDC dc, const RECT& area, COLORREF colour) noexcept {
    const qk::Brush brush(CreateSolidBrush(colour));
    FillRect(dc, &area, brush.get());
}

// Keeps what is drawn inside the page.
class ClippedToPage {
public:
    ClippedToPage(HDC dc, const RECT& page) noexcept : dc_(dc), saved_(SaveDC(dc)) {
        IntersectClipRect(dc, page.left, page.top, page.right, page.bottom);
    }
    ~ClippedToPage() { RestoreDC(dc_, saved_); }
    ClippedToPage(const ClippedToPage&) = delete;
    ClippedToPage& operator=(const ClippedToPage&) = delete;

private:
    HDC dc_;
    int saved_;
};

// --- A text ---

qk::Font make_font(const std::wstring& name, int height, double angle) noexcept {
    LOGFONTW font = {};
    font.lfHeight = -height;
    font.lfEscapement = font.lfOrientation =
        to_pixels(angle * 1800 / std::numbers::pi);  // tenths of a degree
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfOutPrecision = OUT_TT_PRECIS;  // only outlines can be turned
    font.lfQuality = ANTIALIASED_QUALITY;
    qk::copy_zero_padded(font.lfFaceName, std::size(font.lfFaceName), name);
    return qk::Font(CreateFontIndirectW(&font));
}

Extent text_extent(HDC dc, const std::wstring& text, HFONT font) noexcept {
    const qk::Selected selected(dc, font);
    SIZE size = {};
    GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
    return {static_cast<double>(size.cx), static_cast<double>(size.cy)};
}

void draw_text(HDC dc, const PagePlace& page, const Watermark_impl& mark) {
    const std::wstring text = mark.Text.substr(0, kMostText);
    const double unit = page.pixels_per_mm();
    const bool fits = mark.FontSize == 0;
    constexpr int kTrialHeight = 100;
    const int height = fits ? kTrialHeight : std::max(1, to_pixels(mark.FontSize * kMmPerPoint * unit));
    const Extent trial = text_extent(dc, text, make_font(mark.FontName, height, 0).get());
    const PlacedMark place = place_mark({trial.width / unit, trial.height / unit}, page.size, mark, fits);

    const qk::Font font = make_font(mark.FontName, std::max(1, to_pixels(height * place.scale)), place.angle);
    const qk::Selected selected(dc, font.get());
    SetTextColor(dc, static_cast<COLORREF>(mark.TextColor) & 0xFFFFFF);
    SetBkMode(dc, TRANSPARENT);
    SetTextAlign(dc, TA_LEFT | TA_TOP);
    // From the middle half a line back and half a line up, both in the text's own direction.
    const double back = trial.width * place.scale / 2;
    const double up = trial.height * place.scale / 2;
    const double sine = std::sin(place.angle);
    const double cosine = std::cos(place.angle);
    TextOutW(dc, page.pixels.left + to_pixels(place.x * unit - back * cosine - up * sine),
             page.pixels.top + to_pixels(place.y * unit + back * sine - up * cosine), text.c_str(),
             static_cast<int>(text.size()));
}

// --- A picture ---

void draw_missing_picture(HDC dc, const RECT& area) noexcept {
    FillRect(dc, &area, GetSysColorBrush(COLOR_BTNFACE));
    const qk::Pen pen(CreatePen(PS_SOLID, 1, GetSysColor(COLOR_GRAYTEXT)));
    const qk::Selected selected(dc, pen.get());
    MoveToEx(dc, area.left, area.top, nullptr);
    LineTo(dc, area.right, area.bottom);
    MoveToEx(dc, area.left, area.bottom - 1, nullptr);
    LineTo(dc, area.right, area.top - 1);
}

// Only what lies inside `page` is stretched: a picture at a large scale may be far larger.
void draw_bitmap(HDC dc, const RECT& page, const RECT& area, const Picture& picture) noexcept {
    const qk::DeviceContext source(CreateCompatibleDC(dc));
    RECT seen = {};
    if (!source || !IntersectRect(&seen, &page, &area))
        return;
    const auto in_bitmap = [](LONG distance, LONG side, LONG pixels) {
        return MulDiv(distance, pixels, side);
    };
    const LONG width = area.right - area.left;
    const LONG height = area.bottom - area.top;
    const int left = in_bitmap(seen.left - area.left, width, picture.pixels.cx);
    const int top = in_bitmap(seen.top - area.top, height, picture.pixels.cy);
    const int right = in_bitmap(seen.right - area.left, width, picture.pixels.cx);
    const int bottom = in_bitmap(seen.bottom - area.top, height, picture.pixels.cy);
    const qk::Selected selected(source.get(), picture.bitmap.get());
    GdiAlphaBlend(dc, seen.left, seen.top, seen.right - seen.left, seen.bottom - seen.top, source.get(),
                  std::min<int>(left, picture.pixels.cx - 1), std::min<int>(top, picture.pixels.cy - 1),
                  std::max(1, right - left), std::max(1, bottom - top), {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA});
}

void draw_picture(HDC dc, const PagePlace& page, const Watermark_impl& mark, const Picture& picture) {
    constexpr Extent kMissing{80, 60};
    const Extent own = picture.bitmap ? Extent{picture.width_mm, picture.height_mm} : kMissing;
    const bool fits = mark.PictureScale == Watermark_impl::kNoPictureScale;
    const double percent = fits ? 100 : mark.PictureScale;
    const Extent asked{own.width * percent / 100, own.height * percent / 100};
    const PlacedMark place = place_mark(asked, page.size, mark, fits);
    const double unit = page.pixels_per_mm();
    const double width = asked.width * place.scale;
    const double height = asked.height * place.scale;
    const RECT area = {page.pixels.left + to_pixels((place.x - width / 2) * unit),
                       page.pixels.top + to_pixels((place.y - height / 2) * unit),
                       page.pixels.left + to_pixels((place.x + width / 2) * unit),
                       page.pixels.top + to_pixels((place.y + height / 2) * unit)};
    if (picture.bitmap)
        draw_bitmap(dc, page.pixels, area, picture);
    else
        draw_missing_picture(dc, area);
}

}  // namespace

Surface::Surface(HDC like, int width, int height) noexcept
    : dc_(CreateCompatibleDC(like)), bitmap_(CreateCompatibleBitmap(like, width, height)) {
    if (dc_ && bitmap_)
        before_ = SelectObject(dc_.get(), bitmap_.get());
}

Surface::~Surface() {
    if (before_)
        SelectObject(dc_.get(), before_);
}

// The paper is white in every scheme of colours; what parts it from the dialog goes with the scheme.
void draw_paper(HDC dc, const PagePlace& page) {
    const HBRUSH edge = GetSysColorBrush(COLOR_BTNSHADOW);
    RECT shadow = page.pixels;
    OffsetRect(&shadow, 2, 2);
    FillRect(dc, &shadow, edge);
    fill(dc, page.pixels, RGB(255, 255, 255));
    FrameRect(dc, &page.pixels, edge);
}

void draw_contents(HDC dc, const PagePlace& page, int percent) {
    constexpr std::array kLengths = {0.6, 1.0, 1.0, 0.9, 0.4};  // a paragraph's lines, the first its heading
    constexpr int kLines = 30;
    const double width = (page.pixels.right - page.pixels.left) * percent / 100.0;
    const double height = (page.pixels.bottom - page.pixels.top) * percent / 100.0;
    const double margin = 0.1 * std::min(width, height);
    const double pitch = (height - 2 * margin) / kLines;
    const ClippedToPage clipped(dc, page.pixels);
    for (int line = 0; line < kLines; ++line) {
        const size_t in_paragraph = static_cast<size_t>(line) % (kLengths.size() + 1);
        if (in_paragraph == kLengths.size())
            continue;  // the gap between two
        const int left = page.pixels.left + to_pixels(margin);
        const int top = page.pixels.top + to_pixels(margin + line * pitch);
        const int thickness = std::max(1, to_pixels(pitch * (in_paragraph == 0 ? 0.7 : 0.4)));
        fill(dc,
             {left, top, left + to_pixels((width - 2 * margin) * kLengths[in_paragraph]), top + thickness},
             kInk);
    }
}

void draw_box(HDC dc, const PagePlace& page, const Box& margins, COLORREF colour) {
    const auto box = box_on_page(margins, page.pixels, page.pixels_per_mm());
    if (!box)
        return;
    const qk::Pen pen(CreatePen(PS_DOT, 1, colour));
    const qk::Selected selected_pen(dc, pen.get());
    const qk::Selected selected_brush(dc, GetStockObject(NULL_BRUSH));
    SetBkMode(dc, TRANSPARENT);
    Rectangle(dc, box->left, box->top, box->right, box->bottom);
}

void draw_mark(HDC dc, const PagePlace& page, const Watermark_impl& watermark, const Picture& picture) {
    const bool is_seen = watermark.VisibleInPrint || watermark.VisibleInDisplay;
    if (!is_seen ||
        (watermark.Style != Watermark_impl::kTextMark && watermark.Style != Watermark_impl::kPictureMark))
        return;
    // Drawn opaque on a copy of the page, which is then laid over it.
    const RECT& area = page.pixels;
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    const Surface copy(dc, width, height);
    if (!copy)
        return;
    BitBlt(copy.get(), 0, 0, width, height, dc, area.left, area.top, SRCCOPY);
    const PagePlace on_copy{{0, 0, width, height}, page.size};
    if (watermark.Style == Watermark_impl::kTextMark)
        draw_text(copy.get(), on_copy, watermark);
    else
        draw_picture(copy.get(), on_copy, watermark, picture);
    const auto opaque = static_cast<BYTE>(255 * (100 - std::min(watermark.Transparency, 100u)) / 100);
    GdiAlphaBlend(dc, area.left, area.top, width, height, copy.get(), 0, 0, width, height,
                  {AC_SRC_OVER, 0, opaque, 0});
}

}  // namespace pdf_settings
