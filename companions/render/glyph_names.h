// The names of glyphs by which Wine's PostScript driver spools text, and a code of a byte for the usual ones.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace companions::render {

// The name in a line that draws one glyph, "/a glyphshow"; empty for every other line.
[[nodiscard]] std::string_view drawn_glyph(std::string_view line) noexcept;

// The code of a glyph's name, that of ASCII where it has one; zero for names that have none.
[[nodiscard]] uint8_t glyph_code(std::string_view name);

// A PostScript array of the 256 names in the order of their codes.
[[nodiscard]] std::string glyph_array();

}  // namespace companions::render
