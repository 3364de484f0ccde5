// Where things lie on the page of a print setting; pure. Lengths are millimetres unless said otherwise,
// angles radians anticlockwise.
#pragma once

#include <windows.h>

#include <optional>

#include "print_settings/sections.h"

namespace pdf_settings {

struct Extent {
    double width = 0;
    double height = 0;
};

// The page that the setting makes. `form`: the size of the form that it names, where that is known.
[[nodiscard]] Extent page_extent(const Corvanta::Vantrix::PrintSettings::General_impl& general,
                                 std::optional<Extent> form);

// The page's place in an area of `width` x `height` pixels: as large as it can be, in the middle, with room
// for its shadow. Never empty.
[[nodiscard]] RECT fit_page(const Extent& page, int width, int height) noexcept;

// A watermark on the page: how many times its own size, turned by the angle about its middle, which lies at
// x, y from the page's top left corner.
struct PlacedMark {
    double scale = 1;
    double angle = 0;
    double x = 0;
    double y = 0;
};

// Places a watermark of size `mark`. One that `fits` is made as large as the page allows.
[[nodiscard]] PlacedMark place_mark(const Extent& mark, const Extent& page,
                                    const Corvanta::Vantrix::PrintSettings::Watermark_impl& watermark,
                                    bool fits) noexcept;

// What the margins leave of `page`, in its pixels; nothing when they leave nothing.
[[nodiscard]] std::optional<RECT> box_on_page(const Corvanta::Vantrix::PrintSettings::Box& margins,
                                              const RECT& page, double pixels_per_mm) noexcept;

// To whole pixels. What no screen has, and what is no number, comes out as something harmless.
[[nodiscard]] int to_pixels(double value) noexcept;

}  // namespace pdf_settings
