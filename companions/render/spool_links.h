// Web addresses in a document as Wine's PostScript driver spools it: a letter a line, by the name of its
// glyph.
#pragma once

#include <functional>
#include <string_view>

namespace companions::render {

// Hands on what follows the document's prolog, in pieces of whole lines, with its addresses marked, so that
// they become links as it is drawn.
void mark_links(std::string_view body, const std::function<void(std::string_view)>& output);

}  // namespace companions::render
