// Damage as it befalls files and records: bits flipped, the end lost, a length at an extreme, a mark in the
// wrong place, a piece of it once more elsewhere.
#pragma once

#include "support/prelude.h"

// The same engine gives the same damage. Nothing is left of no bytes.
inline std::string damaged(std::string bytes, std::mt19937& engine) {
    static constexpr std::string_view kMarks = "{}[]\",:0e-.\\\xFFtn=\r%/";
    const auto below = [&](size_t limit) { return static_cast<size_t>(engine()) % limit; };
    for (size_t change = below(4) + 1; change > 0 && !bytes.empty(); --change) {
        const uint32_t extremes[] = {0,          1,          3,          0x7FFFFFFF,
                                     0x80000000, 0xFFFFFFF4, 0xFFFFFFFF, static_cast<uint32_t>(bytes.size())};
        const size_t at = below(bytes.size());
        switch (below(8)) {
            case 0:
                bytes.resize(at + 1);
                break;
            case 1: {  // of either order of bytes
                const uint32_t number = extremes[below(8)] + static_cast<uint32_t>(below(3)) - 1;
                const bool big_endian = below(2) == 0;
                for (size_t i = 0; i < 4 && (at & ~size_t{3}) + i < bytes.size(); ++i)
                    bytes[(at & ~size_t{3}) + i] = static_cast<char>(number >> 8 * (big_endian ? 3 - i : i));
                break;
            }
            case 2:
                bytes.insert(at, bytes.substr(below(bytes.size()), below(40)));
                break;
            case 3:
            case 4:
                bytes[at] = kMarks[below(kMarks.size())];
                break;
            default:
                bytes[at] = static_cast<char>(bytes[at] ^ 1 << below(8));
        }
    }
    return bytes;
}
