#include "companions/render/ascii85.h"

#include <algorithm>
#include <cstddef>

namespace companions::render {

std::string to_ascii85(std::span<const uint8_t> bytes) {
    std::string text;
    text.reserve(bytes.size() * 5 / 4 + bytes.size() / 64 + 8);
    size_t column = 0;
    const auto put = [&](char c) {
        text += c;
        if (++column == 80) {
            text += '\n';
            column = 0;
        }
    };
    for (size_t at = 0; at < bytes.size(); at += 4) {
        const size_t count = std::min<size_t>(4, bytes.size() - at);
        uint32_t word = 0;
        for (size_t i = 0; i < 4; ++i)
            word = word << 8 | (i < count ? bytes[at + i] : 0u);
        if (word == 0 && count == 4) {
            put('z');
            continue;
        }
        char digits[5];
        for (int i = 4; i >= 0; --i, word /= 85)
            digits[i] = static_cast<char>('!' + word % 85);
        for (size_t i = 0; i <= count; ++i)
            put(digits[i]);
    }
    return text + "~>";
}

std::vector<uint8_t> from_ascii85(std::string_view text) {
    std::vector<uint8_t> bytes;
    bytes.reserve(text.size() * 4 / 5);
    uint32_t word = 0;
    size_t digits = 0;
    const auto take = [&](size_t count) {
        for (size_t i = 0; i < count; ++i)
            bytes.push_back(static_cast<uint8_t>(word >> (24 - 8 * i)));
    };
    for (const char c : text) {
        if (c == 'z' && digits == 0) {
            bytes.insert(bytes.end(), 4, 0);
        } else if (c >= '!' && c <= 'u') {
            word = word * 85 + static_cast<uint32_t>(c - '!');
            if (++digits == 5) {
                take(4);
                word = 0;
                digits = 0;
            }
        } else if (c != '\n' && c != '\r' && c != ' ') {
            break;
        }
    }
    if (digits > 1) {
        for (size_t i = digits; i < 5; ++i)
            word = word * 85 + 84;
        take(digits - 1);
    }
    return bytes;
}

}  // namespace companions::render
