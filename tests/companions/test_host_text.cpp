#include <gtest/gtest.h>

#include <string>

#include "companions/host/page_layout.h"
#include "companions/host/text_file.h"

namespace {

using host::Encoding;
using namespace std::string_literals;

TEST(HostText, EncodingsAreTold) {
    const struct {
        const char* label;
        std::string bytes;
        std::wstring text;
        Encoding encoding;
    } rows[] = {
        {"empty", "", L"", Encoding::kUtf8},
        {"ASCII", "abc\r\n", L"abc\r\n", Encoding::kUtf8},
        {"UTF-8", "Gr\xC3\xBC\xC3\x9F", L"Gr\u00fc\u00df", Encoding::kUtf8},
        {"UTF-8 beyond the first plane", "\xF0\x9F\x96\xA8", L"\U0001F5A8", Encoding::kUtf8},
        {"UTF-8 with mark", "\xEF\xBB\xBFx", L"x", Encoding::kUtf8},
        {"damaged UTF-8 with mark", "\xEF\xBB\xBFx\xFF", L"x\uFFFD", Encoding::kUtf8},
        {"Windows-1252", "caf\xE9 \x80 \x93q\x94", L"caf\u00e9 \u20ac \u201cq\u201d", Encoding::kWindows1252},
        {"cut UTF-8", "caf\xC3", L"caf\u00c3", Encoding::kWindows1252},
        {"surrogate in UTF-8", "\xED\xA0\x80", L"\u00ed\u00a0\u20ac", Encoding::kWindows1252},
        {"UTF-16 little-endian", "\xFF\xFE\xE9\0x\0"s, L"\u00e9x", Encoding::kUtf16Le},
        {"UTF-16 big-endian", "\xFE\xFF\0\xE9\0x"s, L"\u00e9x", Encoding::kUtf16Be},
        {"UTF-16 with half a unit", "\xFF\xFEx\0y"s, L"x\uFFFD", Encoding::kUtf16Le},
        {"UTF-16 pair", "\xFF\xFE\x3D\xD8\xA8\xDD", L"\U0001F5A8", Encoding::kUtf16Le},
        {"UTF-16 lone halves", "\xFF\xFE\xA8\xDDx\0\x3D\xD8"s, L"\uFFFDx\uFFFD", Encoding::kUtf16Le},
        {"only a mark", "\xFE\xFF", L"", Encoding::kUtf16Be},
        {"zeros", "a\0b"s, L"a\0b"s, Encoding::kUtf8},
    };
    for (const auto& row : rows) {
        const host::DecodedText decoded = host::decode_text(row.bytes);
        EXPECT_EQ(decoded.text, row.text) << row.label;
        EXPECT_EQ(decoded.encoding, row.encoding) << row.label;
    }
}

TEST(HostText, LinesAreDrawable) {
    const struct {
        const char* label;
        std::wstring line;
        std::wstring drawn;
    } rows[] = {
        {"plain", L"abc", L"abc"},
        {"tab at the start", L"\tx", L"        x"},
        {"tab to the next column", L"abc\tx", L"abc     x"},
        {"tab on a column", L"12345678\tx", L"12345678        x"},
        {"zeros and control characters", L"a\0b\x1b\x7f\x85"s + L"c", L"a b   c"},
        {"no-break space stays", L"a\u00a0b", L"a\u00a0b"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(host::drawable_line(row.line), row.drawn) << row.label;
}

// Every unit is one column wide.
host::FittingUnits columns(size_t width) {
    return [width](std::wstring_view line) { return std::min(width, line.size()); };
}

TEST(HostText, LongLinesAreWrapped) {
    const struct {
        const char* label;
        size_t width;
        std::wstring line;
        std::vector<std::wstring> pieces;
    } rows[] = {
        {"empty", 5, L"", {L""}},
        {"fits exactly", 5, L"abcde", {L"abcde"}},
        {"behind a blank", 8, L"one two three", {L"one two ", L"three"}},
        {"the blank hangs over the edge", 7, L"one two three", {L"one two ", L"three"}},
        {"no blank", 4, L"abcdefghij", {L"abcd", L"efgh", L"ij"}},
        {"an indent alone is no place to break", 6, L"    abcdefgh", {L"    ab", L"cdefgh"}},
        {"blanks only", 3, L"     ", {L"   ", L"  "}},
        {"never inside a pair", 3, L"ab\U0001F5A8\U0001F5A8", {L"ab", L"\U0001F5A8", L"\U0001F5A8"}},
        {"too narrow for a pair", 1, L"\U0001F5A8x", {L"\U0001F5A8", L"x"}},
        {"too narrow for anything", 0, L"ab", {L"a", L"b"}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(host::wrap_line(row.line, columns(row.width)), row.pieces) << row.label;
}

TEST(HostText, PagesAreFilled) {
    using Pages = std::vector<host::Page>;
    const struct {
        const char* label;
        std::wstring text;
        Pages pages;  // of two lines of four columns
    } rows[] = {
        {"empty text is one empty page", L"", {{}}},
        {"one line", L"a", {{L"a"}}},
        {"line end opens nothing", L"a\n", {{L"a"}}},
        {"a full page opens nothing", L"a\r\nb\r\n", {{L"a", L"b"}}},
        {"third line", L"a\rb\rc", {{L"a", L"b"}, {L"c"}}},
        {"empty lines", L"\n\na", {{L"", L""}, {L"a"}}},
        {"CR LF is one end, LF CR are two", L"a\r\nb\n\rc", {{L"a", L"b"}, {L"", L"c"}}},
        {"form feed", L"a\fb", {{L"a"}, {L"b"}}},
        {"form feed behind a line end", L"a\n\fb", {{L"a"}, {L"b"}}},
        {"form feed at the end", L"a\f", {{L"a"}}},
        {"two form feeds", L"a\f\fb", {{L"a"}, {}, {L"b"}}},
        {"form feed first", L"\fa", {{}, {L"a"}}},
        {"form feed behind a full page", L"a\nb\fc", {{L"a", L"b"}, {L"c"}}},
        {"a wrapped line goes over the edge", L"a\nbbbbcccc", {{L"a", L"bbbb"}, {L"cccc"}}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(host::paginate(row.text, {2, columns(4)}), row.pages) << row.label;
}

}  // namespace
