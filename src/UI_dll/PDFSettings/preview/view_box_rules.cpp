#include "UI_dll/PDFSettings/preview/view_box_rules.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace pdf_settings {

namespace {

using namespace Corvanta::Vantrix::PrintSettings;

constexpr double kMarkMargin = 0.05;  // of the page's shorter side
constexpr int kShadow = 3;            // pixels
constexpr double kMostPixels = 30000;

double usable_side(double side) noexcept {
    constexpr double kLeast = 1;
    constexpr double kMost = 10000;
    return side >= kLeast ? std::min(side, kMost) : kLeast;
}

// `position` 0 is at the start, 1 in the middle, 2 at the end of the side.
double middle_of(uint32_t position, double side, double margin, double length) noexcept {
    if (position == 0)
        return margin + length / 2;
    return position == 1 ? side / 2 : side - margin - length / 2;
}

}  // namespace

int to_pixels(double value) noexcept {
    if (std::isnan(value))
        return 0;
    return static_cast<int>(std::lround(std::clamp(value, -kMostPixels, kMostPixels)));
}

Extent page_extent(const General_impl& general, std::optional<Extent> form) {
    Extent page{general.PaperWidth, general.PaperHeight};
    if (general.PaperType != General_impl::kCustomSize) {
        page = form.value_or(page);
        // A custom size carries its own width and height; a form is turned.
        if (general.PaperOrientation == General_impl::kLandscape)
            std::swap(page.width, page.height);
    }
    return {usable_side(page.width), usable_side(page.height)};
}

RECT fit_page(const Extent& page, int width, int height) noexcept {
    const double scale = std::min((width - 2 * kShadow) / page.width, (height - 2 * kShadow) / page.height);
    const int page_width = std::max(1, to_pixels(page.width * scale));
    const int page_height = std::max(1, to_pixels(page.height * scale));
    const int left = (width - page_width) / 2;
    const int top = (height - page_height) / 2;
    return {left, top, left + page_width, top + page_height};
}

PlacedMark place_mark(const Extent& mark, const Extent& page, const Watermark_impl& watermark,
                      bool fits) noexcept {
    PlacedMark placed;
    if (watermark.Style == Watermark_impl::kTextMark && watermark.DiagonalText)
        placed.angle = std::atan2(page.height, page.width);
    // The upright rectangle around the turned watermark.
    const double sine = std::sin(placed.angle);
    const double cosine = std::cos(placed.angle);
    const Extent around{mark.width * cosine + mark.height * sine, mark.width * sine + mark.height * cosine};

    const double margin = kMarkMargin * std::min(page.width, page.height);
    if (fits && around.width > 0 && around.height > 0)
        placed.scale =
            std::min((page.width - 2 * margin) / around.width, (page.height - 2 * margin) / around.height);
    placed.x = middle_of(watermark.HorizontalPosition, page.width, margin, around.width * placed.scale);
    placed.y = middle_of(watermark.VerticalPosition, page.height, margin, around.height * placed.scale);
    return placed;
}

std::optional<RECT> box_on_page(const Box& margins, const RECT& page, double pixels_per_mm) noexcept {
    const auto pixels = [&](float margin) { return to_pixels(static_cast<double>(margin) * pixels_per_mm); };
    const RECT box = {page.left + pixels(margins.left), page.top + pixels(margins.top),
                      page.right - pixels(margins.right), page.bottom - pixels(margins.bottom)};
    if (box.left >= box.right || box.top >= box.bottom)
        return std::nullopt;
    return box;
}

}  // namespace pdf_settings
