#include <gtest/gtest.h>

#include <string>

#include "companions/tessalo/safe_name.h"

namespace {

using companions::find_safe_path;
using companions::NameLimits;
using companions::safe_stem;

TEST(SafeName, TitlesBecomeFileNames) {
    const struct {
        const char* label;
        std::wstring title;
        std::wstring stem;
    } rows[] = {
        {"extension not doubled", L"Report.PDF", L"Report"},
        {"extension dropped once", L"a.pdf.pdf", L"a.pdf"},
        {"nothing but what goes", L" . .. ", L"no_name"},
        {"separators", L"C:\\docs/x|y", L"C__docs_x_y"},
        {"control characters", L"\ta\r\nb\x7f\x85", L"a  b"},
        {"lone halves", L"\xD83D a \xDDA8", L"_ a _"},
        {"device with blanks before its extension", L"aux  .x", L"_aux  .x"},
        {"device behind .pdf", L"PRN.pdf", L"_PRN"},
        {"port", L"COM1", L"_COM1"},
        {"port with a superscript digit", L"LPT\u00B2.x", L"_LPT\u00B2.x"},
        {"console", L"CONOUT$", L"_CONOUT$"},
        {"no device", L"COM10", L"COM10"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(safe_stem(row.title), row.stem) << row.label;
}

std::wstring repeated(std::wstring_view text, int times) {
    std::wstring all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

TEST(SafeName, LimitsCutTheStemOnly) {
    const std::wstring_view pair = L"\U0001F5A8", kanji = L"\u65E5", x = L"x";
    const std::wstring deep = L"C:\\" + repeated(L"d", 240), deeper = deep + repeated(L"d", 10);
    const NameLimits bytes = {255, 255, 259};
    const struct {
        const char* label;
        std::wstring folder;
        std::wstring title;
        unsigned number;
        NameLimits limits;
        std::wstring name;  // empty: no path
    } rows[] = {
        {"longest name", L"C:", repeated(x, 251), 0, {}, repeated(x, 251) + L".pdf"},
        {"one too many", L"C:", repeated(x, 252), 0, {}, repeated(x, 251) + L".pdf"},
        {"number kept", L"C:", repeated(x, 300), 9999, {}, repeated(x, 245) + L"(9999).pdf"},
        {"odd room in pairs", L"C:", repeated(pair, 200), 0, {}, repeated(pair, 125) + L".pdf"},
        {"UTF-8 bytes of kanji", L"C:", repeated(kanji, 300), 0, bytes, repeated(kanji, 83) + L".pdf"},
        {"UTF-8 bytes of pairs", L"C:", repeated(pair, 200), 1, bytes, repeated(pair, 62) + L"(1).pdf"},
        {"whole path", deep, L"a long title of thirty letters", 0, {}, L"a long titl.pdf"},
        {"room for one letter", deeper, L"Report", 0, {}, L"R.pdf"},
        {"no room", deeper + L"d", L"Report", 0, {}, L""},
        {"room too small for a pair", deeper, L"\U0001F5A8 x", 0, {}, L"n.pdf"},
        {"a device uncovered", L"C:", L"CONTENTS", 0, {7, SIZE_MAX, 259}, L"_CO.pdf"},
        {"a full stop uncovered", L"C:", L"Mr. Brown", 0, {7, SIZE_MAX, 259}, L"Mr.pdf"},
    };
    for (const auto& row : rows) {
        const auto path = find_safe_path(row.folder, row.title, row.number, row.limits);
        ASSERT_EQ(path.has_value(), !row.name.empty()) << row.label;
        if (path) {
            EXPECT_EQ(*path, row.folder + L"\\" + row.name) << row.label;
        }
    }
}

}  // namespace
