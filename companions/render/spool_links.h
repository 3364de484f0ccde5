// Web addresses in a document as Wine's PostScript driver spools it: a letter a line, by the name of its
// glyph.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace companions::render {

// The document with its addresses marked, so that they become links as it is drawn; nothing when another
// program has written it. It needs no more procedures than stand in it, whatever the engine's device.
[[nodiscard]] std::optional<std::string> mark_links(std::string_view document);

}  // namespace companions::render
