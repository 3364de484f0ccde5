#include "companions/host/page_layout.h"
#include "companions/host/text_file.h"

using host::Encoding;
using namespace std::string_literals;

TEST(HostText, EncodingsAreTold) {
    const std::tuple<const char*, std::string, std::wstring, Encoding> rows[] = {
        {"damaged UTF-8 with mark", "\xEF\xBB\xBFx\xFF", L"x\uFFFD", Encoding::kUtf8},
        {"Windows-1252", "caf\xE9 \x80 \x93q\x94", L"caf\u00e9 \u20ac \u201cq\u201d", Encoding::kWindows1252},
        {"cut UTF-8", "caf\xC3", L"caf\u00c3", Encoding::kWindows1252},
        {"surrogate in UTF-8", "\xED\xA0\x80", L"\u00ed\u00a0\u20ac", Encoding::kWindows1252},
        {"UTF-16 lone halves", "\xFF\xFE\xA8\xDDx\0\x3D\xD8"s, L"\uFFFDx\uFFFD", Encoding::kUtf16Le},
        {"only a mark", "\xFE\xFF", L"", Encoding::kUtf16Be}};
    for (const auto& [label, bytes, text, encoding] : rows) {
        const host::DecodedText decoded = host::decode_text(bytes);
        EXPECT_EQ(decoded.text, text) << label;
        EXPECT_EQ(decoded.encoding, encoding) << label;
    }
}

TEST(HostText, PagesAreFilled) {
    using Pages = std::vector<host::Page>;
    // The width, every unit being one column wide, the text, and its pages of two lines.
    const std::tuple<const char*, size_t, std::wstring, Pages> rows[] = {
        {"CR LF is one end, LF CR are two", 4, L"a\r\nb\n\rc", {{L"a", L"b"}, {L"", L"c"}}},
        {"form feed first", 4, L"\fa", {{}, {L"a"}}},
        {"form feed behind a full page", 4, L"a\nb\fc", {{L"a", L"b"}, {L"c"}}},
        {"a wrapped line goes over the edge", 4, L"a\nbbbbcccc", {{L"a", L"bbbb"}, {L"cccc"}}},
        {"tabs", 20, L"abc\tx\n12345678\tx", {{L"abc     x", L"12345678        x"}}},
        {"zeros and control characters", 20, L"a\0b\x1b\x7f\x85"s + L"c\u00a0d", {{L"a b   c\u00a0d"}}},
        {"the blank hangs over the edge", 7, L"one two three", {{L"one two ", L"three"}}},
        {"an indent alone is no place to break", 6, L"    abcdefgh", {{L"    ab", L"cdefgh"}}},
        {"never inside a pair", 3, L"ab\U0001F5A8x", {{L"ab", L"\U0001F5A8x"}}},
        {"too narrow for a pair", 1, L"\U0001F5A8x", {{L"\U0001F5A8", L"x"}}},
        {"too narrow for anything", 0, L"ab", {{L"a", L"b"}}}};
    for (const auto& [label, width, text, pages] : rows) {
        const host::FittingUnits fits = [columns = width](auto line) {
            return std::min(columns, line.size());
        };
        EXPECT_EQ(host::paginate(text, {2, fits}), pages) << label;
    }
}
