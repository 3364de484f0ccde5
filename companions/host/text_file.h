// Reading a text file of whatever encoding.
#pragma once

#include <string>
#include <string_view>

namespace host {

enum class Encoding { kUtf8, kUtf16Le, kUtf16Be, kWindows1252 };

[[nodiscard]] const wchar_t* encoding_name(Encoding encoding) noexcept;

struct DecodedText {
    std::wstring text;  // UTF-16 without a byte-order mark; lone surrogates are U+FFFD
    Encoding encoding;
};

[[nodiscard]] bool is_valid_utf8(std::string_view bytes) noexcept;

// A byte-order mark decides; without one the bytes are UTF-8 when they are valid UTF-8, else Windows-1252,
// in which every byte has a meaning.
[[nodiscard]] DecodedText decode_text(std::string_view bytes);

// Files above this many bytes are refused: they would be tens of thousands of pages.
inline constexpr size_t kMostTextBytes = size_t{64} << 20;

// The bytes of a file. Throws HostError (usage) when it is missing, a folder, too large or cannot be read.
[[nodiscard]] std::string read_text_file(const std::wstring& path);

}  // namespace host
