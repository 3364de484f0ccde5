// The text of a document as Wine's PostScript driver spools it, a glyph a line: the engine takes a third of
// the time over strings of them.
#pragma once

#include <functional>
#include <string_view>

namespace companions::render {

// Whether Wine's PostScript driver has written the document.
[[nodiscard]] bool has_wine_text(std::string_view document);

// Hands on such a document, piece by piece, that draws the same with its glyphs joined to strings. With
// `links` web addresses in its text become links. It needs no more procedures than stand in it, whatever the
// engine's device.
void change_text(std::string_view document, bool links, const std::function<void(std::string_view)>& output);

}  // namespace companions::render
