// The parts of a page's drawing.
#pragma once

#include <windows.h>

#include "UI_dll/PDFSettings/preview/picture_file.h"
#include "UI_dll/PDFSettings/preview/view_box_rules.h"
#include "common/qk/gdi_handle.h"

namespace pdf_settings {

// A drawing surface in memory, compatible with a device context.
class Surface {
public:
    Surface(HDC like, int width, int height) noexcept;
    ~Surface();
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;

    [[nodiscard]] HDC get() const noexcept { return dc_.get(); }
    explicit operator bool() const noexcept { return before_ != nullptr; }

private:
    qk::DeviceContext dc_;
    qk::Bitmap bitmap_;
    HGDIOBJ before_ = nullptr;
};

// The page on a surface.
struct PagePlace {
    RECT pixels;  // where it lies
    Extent size;  // millimetres

    [[nodiscard]] double pixels_per_mm() const noexcept { return (pixels.right - pixels.left) / size.width; }
};

void draw_paper(HDC dc, const PagePlace& page);

// Some paragraphs, as large as `percent` makes them.
void draw_contents(HDC dc, const PagePlace& page, int percent);

void draw_box(HDC dc, const PagePlace& page, const Corvanta::Vantrix::PrintSettings::Box& margins,
              COLORREF colour);

// The watermark with its transparency. `picture` is that of the watermark's file, empty if it has none.
void draw_mark(HDC dc, const PagePlace& page,
               const Corvanta::Vantrix::PrintSettings::Watermark_impl& watermark, const Picture& picture);

}  // namespace pdf_settings
