// The names that fonts give to their letters.
#pragma once

#include <string_view>

namespace companions::render {

// The letter beyond ASCII that a glyph is named for: Latin, Greek and Cyrillic ones, by their own names and
// by "uni" with four hexadecimal digits. A zero for another glyph, and for a name that fonts give to more
// than one letter.
[[nodiscard]] wchar_t find_letter(std::string_view name);

}  // namespace companions::render
