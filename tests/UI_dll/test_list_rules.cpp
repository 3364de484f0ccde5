#include "UI_dll/PDFSettings/list_rules.h"

using namespace pdf_settings;

TEST(ListRules, SelectionPrefersTheLastRowOfThePath) {
    const std::vector<SettingEntry> rows = {
        {0, L"C:\\s\\a.ps4", L""}, {0, L"C:\\S\\\xC4.ps4", L""}, {1, L"c:\\s\\A.PS4", L""}};
    EXPECT_EQ(row_to_select(rows, L"C:\\S\\A.ps4"), 2u);
    EXPECT_EQ(row_to_select(rows, L"c:\\s\\\xE4.ps4"), 1u);
    EXPECT_EQ(row_to_select(rows, L"C:\\elsewhere.ps4"), 0u);
    EXPECT_TRUE(row_after_removal(2, 2) == 1 && row_after_removal(0, 0) == 0);
}

TEST(ListRules, NamesBecomeSafeFileNames) {
    // Right-to-left text stays, halves of pairs do not.
    const std::pair<std::wstring, std::wstring> kRows[] = {
        {L"a/b\\c:d*e?f\"g<h>i|j\n", L"a_b_c_d_e_f_g_h_i_j_"},
        {L"CON", L"_CON"},
        {L"com1.txt", L"_com1.txt"},
        {L"LPT\xB2", L"_LPT\xB2"},
        {L"CONOUT$", L"_CONOUT$"},
        {L"aux  .x", L"_aux  .x"},
        {L"COM10", L"COM10"},
        {L" x . ", L"x"},
        {L"...", L"_"},
        {L"\xD83D\xDE00 \xD83D", L"\xD83D\xDE00 _"},
        {L"\x05D0\x202E \x05D1", L"\x05D0\x202E \x05D1"},
        {std::wstring(109, L'n') + L"\xD83D\xDE00", std::wstring(109, L'n')}};
    for (const auto& [name, file] : kRows)
        EXPECT_EQ(file_name_of(name), file);
}
