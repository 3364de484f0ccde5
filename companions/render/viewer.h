// How a viewer opens the finished PDF.
#pragma once

#include <string>

#include "print_settings/sections.h"

namespace companions::render {

// PostScript for the end of the document: the first page, its magnification, layout and panel, and what of
// the viewer's window shows. `start_page` is the setting's first page among those that are kept; beyond the
// last one it means the last. `modern`: whether the version of PDF has more than PDF 1.4.
[[nodiscard]] std::string opening(const ps::OpenAction_impl& action, unsigned start_page, bool modern);

}  // namespace companions::render
