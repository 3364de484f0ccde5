// How setting files begin.
#pragma once

#include <string_view>

inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";  // JSON
inline constexpr std::string_view kChunkedSignature("\xF0\x5A\x52\x54\x4B\x53\x33", 7);
inline constexpr char kChunkedEnd = '\xF1';  // follows it
