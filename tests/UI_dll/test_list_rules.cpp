#include <set>

#include "UI_dll/PDFSettings/list_rules.h"
#include "support/prelude.h"

namespace {

using namespace pdf_settings;

TEST(ListRules, CopiesGetTheFirstFreeName) {
    const struct {
        const wchar_t* name;
        std::set<std::wstring> taken;
        const wchar_t* copy;
    } rows[] = {{L"Report(12)", {}, L"Report"},
                {L"Report(12)", {L"Report"}, L"Report(1)"},
                {L"Report", {L"Report", L"Report(1)"}, L"Report(2)"},
                {L"Report(1a)", {L"Report(1a)"}, L"Report(1a)(1)"},
                {L"Report(3) x", {}, L"Report(3) x"},
                {L"Report()", {}, L"Report"},
                {L"Report(\xFF11)", {}, L"Report(\xFF11)"},  // a digit, but not 0 to 9
                {L"Report 1)", {}, L"Report 1)"},
                {L"", {}, L""}};
    for (const auto& [name, taken, copy] : rows)
        EXPECT_EQ(free_name(base_name(name), [&taken](const auto& other) { return taken.contains(other); }),
                  copy);
}

TEST(ListRules, RowsSortByKindThenByCodeUnits) {
    std::vector<SettingEntry> rows = {{2, L"", L"a"}, {1, L"", L"A"}, {0, L"", L"z"}, {0, L"", L"a1"},
                                      {0, L"", L"a"}, {0, L"", L"B"}, {1, L"", L""}};
    std::sort(rows.begin(), rows.end(), sorts_before);
    std::wstring order;
    for (const SettingEntry& row : rows)
        order += std::to_wstring(row.kind) + row.name + L' ';
    EXPECT_EQ(order, L"0B 0a 0a1 0z 1 1A 2a ");
    EXPECT_EQ(row_image(0), -2);
    EXPECT_EQ(row_image(1), 0);
    EXPECT_EQ(row_image(2), 1);
    EXPECT_EQ(row_image(-7), 0);
}

TEST(ListRules, SelectionPrefersTheLastRowOfThePath) {
    const std::vector<SettingEntry> rows = {
        {0, L"C:\\s\\a.ps4", L""}, {0, L"C:\\S\\\xC4.ps4", L""}, {1, L"c:\\s\\A.PS4", L""}};
    EXPECT_EQ(row_to_select(rows, L"C:\\S\\A.ps4"), 2u);
    EXPECT_EQ(row_to_select(rows, L"c:\\s\\\xE4.ps4"), 1u);
    EXPECT_EQ(row_to_select(rows, L"C:\\elsewhere.ps4"), 0u);
    EXPECT_EQ(row_after_removal(2, 2), 1);
    EXPECT_EQ(row_after_removal(0, 0), 0);
}

TEST(ListRules, NamesBecomeSafeFileNames) {
    const std::pair<std::wstring, std::wstring> kRows[] = {
        {L"Invoices", L"Invoices"},
        {L"a/b\\c:d*e?f\"g<h>i|j\n", L"a_b_c_d_e_f_g_h_i_j_"},
        {L"CON", L"_CON"},
        {L"com1.txt", L"_com1.txt"},
        {L"LPT\xB2", L"_LPT\xB2"},
        {L"CONOUT$", L"_CONOUT$"},
        {L"aux  .x", L"_aux  .x"},
        {L"COMB", L"COMB"},
        {L"COM10", L"COM10"},
        {L" x . ", L"x"},
        {L"...", L"_"},
        {L"\xD83D\xDE00 \xD83D", L"\xD83D\xDE00 _"},
        {L"\x05D0\x202E"
         L"b",
         L"\x05D0\x202E"
         L"b"},  // right-to-left text stays
        {std::wstring(109, L'n') + L"\xD83D\xDE00", std::wstring(109, L'n')}};
    for (const auto& [name, file] : kRows)
        EXPECT_EQ(file_name_of(name), file);
}

}  // namespace
