// What is done to every page as it is drawn: watermark, page boxes, links, blank pages left out.
#pragma once

#include <string>
#include <vector>

#include "companions/render/web_links.h"
#include "print_settings/sections.h"

namespace companions::render {

// What was found in the spooled document before it is drawn. Pages count from 0.
struct PagesFound {
    std::vector<bool> blank;  // to be left out
    std::vector<std::vector<WebLink>> links;
};

// PostScript that draws a watermark, in points from the lower left corner of its own area.
struct MarkDrawing {
    std::string drawing;  // empty: there is no watermark
    double width = 0;     // points
    double height = 0;
    bool fits = false;  // made as large as the page allows
};

// The PostScript of the start of the document which does that work.
[[nodiscard]] std::string page_work(const ps::Watermark_impl& watermark, const ps::PDFVersion_impl& version,
                                    const MarkDrawing& mark, const PagesFound& found);

// Whether a page of that version can be seen through a watermark, and whether a part of it can be for the
// screen or the printer only.
[[nodiscard]] bool allows_transparency(uint32_t version) noexcept;
[[nodiscard]] bool allows_layers(uint32_t version) noexcept;

// The number that a page of the spooled document, from 1, has when the blank ones are left out.
[[nodiscard]] unsigned page_left(unsigned page, const std::vector<bool>& blank) noexcept;

}  // namespace companions::render
