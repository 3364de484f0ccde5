// Draws pages of text on a printer's device context through GDI.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "common/qk/gdi_handle.h"
#include "companions/host/page_layout.h"

namespace host {

// Borders of 20 mm, a fixed-pitch font of 10 points, the page number below the text. The device context must
// outlive this object.
class PagePrinter {
public:
    explicit PagePrinter(HDC context);

    // How text is broken into pages for this device. Valid while this object lives.
    [[nodiscard]] PageLayout layout() const;

    // Draws one page, between StartPage and EndPage.
    void draw(const Page& page, size_t number, size_t pages) const;

    // The face that the device gave for the one asked for.
    [[nodiscard]] std::wstring font_face() const;

private:
    void select_font() const;
    [[nodiscard]] size_t fitting_units(std::wstring_view line) const;

    HDC context_;
    qk::Font font_;
    qk::Selected selected_;
    RECT area_ = {};  // of the text, device units
    int line_height_ = 1;
    int footer_top_ = 0;
};

}  // namespace host
