// The watermark as PostScript.
#pragma once

#include <optional>

#include "companions/render/page_work.h"
#include "print_settings/sections.h"

namespace companions::render {

// The watermark's text as outlines of its font, or its picture; `opaque` in lighter colours, for versions
// that know no transparency. An empty drawing when there is no watermark; nothing when its font or its
// picture cannot be read.
[[nodiscard]] std::optional<MarkDrawing> draw_watermark(const ps::Watermark_impl& watermark, bool opaque);

}  // namespace companions::render
