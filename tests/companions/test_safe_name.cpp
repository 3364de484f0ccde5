#include <gtest/gtest.h>

#include <string>

#include "common/text.h"
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
        {"plain", L"Report", L"Report"},
        {"other extension stays", L"Letter.docx", L"Letter.docx"},
        {"extension not doubled", L"Report.PDF", L"Report"},
        {"extension behind blanks", L"Report.pdf  ", L"Report"},
        {"extension dropped once", L"a.pdf.pdf", L"a.pdf"},
        {"only an extension", L".pdf", L"no_name"},
        {"empty", L"", L"no_name"},
        {"nothing but what goes", L" . .. ", L"no_name"},
        {"separators", L"C:\\docs/x|y", L"C__docs_x_y"},
        {"wildcards and quotes", L"<a>\"b\"?*", L"_a__b___"},
        {"control characters", L"\ta\r\nb\x7f\x85", L"a  b"},
        {"zero inside", std::wstring(L"a\0b", 3), L"a b"},
        {"trailing dots and blanks", L"Report. . ", L"Report"},
        {"leading blanks", L"  Report", L"Report"},
        {"leading dots are names", L"..a", L"..a"},
        {"pair stays", L"\U0001F5A8 x", L"\U0001F5A8 x"},
        {"lone halves", L"\xD83D a \xDDA8", L"_ a _"},
        {"halves in the wrong order", L"\xDDA8\xD83D", L"__"},
        {"device", L"con", L"_con"},
        {"device with extension", L"NUL.txt", L"_NUL.txt"},
        {"device with blanks before its extension", L"aux  .x", L"_aux  .x"},
        {"device behind .pdf", L"PRN.pdf", L"_PRN"},
        {"port", L"COM1", L"_COM1"},
        {"port zero", L"lpt0", L"_lpt0"},
        {"port with a superscript digit", L"LPT\u00B2.x", L"_LPT\u00B2.x"},
        {"console", L"CONOUT$", L"_CONOUT$"},
        {"no device", L"COM10", L"COM10"},
        {"no device either", L"CONSOLE", L"CONSOLE"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(safe_stem(row.title), row.stem) << row.label;
}

TEST(SafeName, LimitsCutTheStemOnly) {
    const std::wstring pairs = [] {
        std::wstring text;
        for (int i = 0; i < 200; ++i)
            text += L"\U0001F5A8";
        return text;
    }();
    const std::wstring kanji(300, L'\u65E5');
    const std::wstring deep = L"C:\\" + std::wstring(240, L'd');
    const struct {
        const char* label;
        std::wstring folder;
        std::wstring title;
        unsigned number;
        NameLimits limits;
        size_t name_units;  // of the file name; 0: no path
    } rows[] = {
        {"longest name", L"C:", std::wstring(251, L'x'), 0, {}, 255},
        {"one too many", L"C:", std::wstring(252, L'x'), 0, {}, 255},
        {"number kept", L"C:", std::wstring(300, L'x'), 9999, {}, 255},
        {"odd room in pairs", L"C:\\", pairs, 0, {}, 254},
        {"UTF-8 bytes of kanji", L"C:", kanji, 0, {255, 255, 259}, 83 + 4},
        {"UTF-8 bytes of pairs", L"C:", pairs, 1, {255, 255, 259}, 2 * 62 + 7},
        {"whole path", deep, L"a long title of thirty letters", 0, {}, 259 - 244},
        {"room for one letter", L"C:\\" + std::wstring(250, L'd'), L"Report", 0, {}, 5},
        {"no room", L"C:\\" + std::wstring(251, L'd'), L"Report", 0, {}, 0},
        {"room too small for a pair", L"C:\\" + std::wstring(250, L'd'), L"\U0001F5A8 x", 0, {}, 5},
    };
    for (const auto& row : rows) {
        const auto path = find_safe_path(row.folder, row.title, row.number, row.limits);
        EXPECT_EQ(path ? qk::file_part(*path).size() : 0, row.name_units) << row.label;
        if (!path)
            continue;
        EXPECT_LE(path->size(), row.limits.path_units) << row.label;
        EXPECT_LE(qk::to_utf8(qk::file_part(*path)).size(), row.limits.name_bytes) << row.label;
        EXPECT_TRUE(path->ends_with(row.number ? qk::format(L"(%u).pdf", row.number) : L".pdf")) << row.label;
        // A pair that was cut in half would not survive the way through UTF-8.
        EXPECT_EQ(qk::to_wide(qk::to_utf8(*path)), *path) << row.label;
    }
}

TEST(SafeName, CuttingUncoversNothingUnsafe) {
    const struct {
        const char* label;
        const wchar_t* title;
        size_t room;
        const wchar_t* name;
    } rows[] = {
        {"a device", L"CONTENTS", 3, L"_CO.pdf"},
        {"a device with room", L"NUL.and more", 7, L"_NUL.an.pdf"},
        {"a full stop", L"Mr. Brown", 3, L"Mr.pdf"},
        {"a blank", L"To whom", 3, L"To.pdf"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(find_safe_path(L"C:\\", row.title, 0, {row.room + 4, SIZE_MAX, 259}),
                  std::wstring(L"C:\\") + row.name)
            << row.label;
}

}  // namespace
