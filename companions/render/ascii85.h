// Bytes in printable characters, as PostScript's ASCII85 filters have them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace companions::render {

// With the end mark "~>", in lines of 80 characters.
[[nodiscard]] std::string to_ascii85(std::span<const uint8_t> bytes);

// Up to the end mark or the first character that is none; blanks and line ends are left out.
[[nodiscard]] std::vector<uint8_t> from_ascii85(std::string_view text);

}  // namespace companions::render
