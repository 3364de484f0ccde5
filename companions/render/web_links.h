// Web addresses in the text of a document.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace companions::render {

// An address and where it stands: points from the page's left and top edge.
struct WebLink {
    double left, top, right, bottom;
    std::string address;  // as in WebAddress
};

// An address in a word of ASCII and the letters below: its first letter, the one behind its last, and the
// whole of it with its scheme, as a URI: letters beyond ASCII are the bytes of their UTF-8 behind per cent
// signs.
struct WebAddress {
    size_t first, end;
    std::string uri;
};
[[nodiscard]] std::optional<WebAddress> find_address(const std::wstring& word);

// Whether a character beyond ASCII belongs to an address: a Latin, Greek or Cyrillic letter. Text of other
// scripts often goes on right behind an address, without a blank.
[[nodiscard]] bool is_address_letter(wchar_t character) noexcept;

// The numbers that a text begins with, blanks between them; false when there are fewer than asked for.
[[nodiscard]] bool read_numbers(std::string_view text, std::span<double> numbers);

// Reads what the engine's text device tells of a document in its form 0, in pieces of any size: an element a
// line, a character with its box or the font's size.
class WebLinkReader {
public:
    void feed(std::string_view bytes);

    // The links page by page, complete when the engine has ended.
    [[nodiscard]] std::vector<std::vector<WebLink>> take();

private:
    struct Glyph {
        double left, right;
        wchar_t character;
    };
    void take_line(std::string_view line);
    void take_character(std::string_view line);
    void end_word();

    std::string rest_;
    std::vector<std::vector<WebLink>> pages_;
    std::vector<Glyph> word_;
    double baseline_ = 0;
    double size_ = 10;
};

}  // namespace companions::render
