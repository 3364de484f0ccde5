// Damage as it befalls files: bytes flipped, the end lost, a length at an extreme.
#pragma once

#include <bit>
#include <cstdint>
#include <random>
#include <string>

// The same engine gives the same damage. `order` is that of the numbers in the bytes, which are not empty.
inline std::string damaged(std::string bytes, std::mt19937& engine, std::endian order) {
    const uint32_t extremes[] = {0,          1,          3,          0x7FFFFFFF,
                                 0x80000000, 0xFFFFFFF4, 0xFFFFFFFF, static_cast<uint32_t>(bytes.size())};
    for (unsigned change = engine() % 4 + 1; change > 0; --change) {
        const size_t at = engine() % bytes.size();
        switch (engine() % 4) {
            case 0:
                bytes.resize(at + 1);
                break;
            case 1: {
                const uint32_t number = extremes[engine() % 8] + engine() % 3 - 1;
                for (size_t i = 0; i < 4 && (at & ~3u) + i < bytes.size(); ++i)
                    bytes[(at & ~3u) + i] =
                        static_cast<char>(number >> 8 * (order == std::endian::big ? 3 - i : i));
                break;
            }
            default:
                bytes[at] = static_cast<char>(bytes[at] ^ 1 << engine() % 8);
        }
    }
    return bytes;
}
