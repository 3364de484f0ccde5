#include "job/output_name.h"

TEST(OutputName, TitleLosesTheApplicationsPrefix) {
    const std::pair<const wchar_t*, std::vector<std::wstring>> rows[] = {
        {L"a",
         {L"a", L"Microsoft Word - a", L"Microsoft PowerPoint - a", L"Visio-a", L"Taro13-a", L"Taro-a",
          L"MIW(3)a", L"MIW(a"}},
        {L"b)c", {L"MIW(a)b)c"}},
        {L"MIW(1)a", {L"Visio-MIW(1)a"}},
        {L"", {L"Visio-"}},
        {L"no_name", {L"", L"MIW()", L"MIW("}}};
    for (const auto& [title, documents] : rows)
        for (const std::wstring& document : documents)
            EXPECT_EQ(CleanJobTitle(document), title);
    for (const auto* kept :
         {L"microsoft word - a", L"Taro12-a", L"a Visio-b", L"Microsoft Word -", L"miw(3)a"})
        EXPECT_EQ(CleanJobTitle(kept), kept);
}

TEST(OutputName, FileNameEndsInPdf) {
    const std::wstring long_name(600, L'x');
    const std::tuple<std::wstring, std::wstring, std::wstring> rows[] = {
        {L"C:\\docs\\Report.docx", L"C:\\docs\\Report.docx.pdf", L"Report.pdf"},
        {L"a.b.c", L"a.b.c.pdf", L"a.b.pdf"},
        {L"dir.x\\file", L"dir.x\\file.pdf", L"file.pdf"},
        {L"Report.", L"Report..pdf", L"Report..pdf"},
        {L"x", L"x.pdf", L"x.pdf"},
        {L".x", L".x.pdf", L".pdf"},
        {L"a\\", L"a\\.pdf", L".pdf"},
        {L"", L"no_name.pdf", L"no_name.pdf"},
        {long_name, long_name + L".pdf", long_name.substr(0, 512) + L".pdf"}};
    // Of the machine and the user, -1: not set.
    const std::tuple<int, int, bool> switches[] = {
        {-1, -1, false}, {1, -1, true}, {-1, 7, true}, {0, 1, true}, {1, 0, false}};
    for (const auto& [machine, user, cuts] : switches) {
        const Installation here;
        for (const auto& [hive, number] : {std::pair(HKEY_LOCAL_MACHINE, machine), {HKEY_CURRENT_USER, user}})
            if (number >= 0)
                here.set_number(hive, L"\\Special", L"Cutoff_by_period", static_cast<DWORD>(number));
        EXPECT_EQ(SetPDFname(nullptr), L"no_name.pdf");
        for (const auto& [document, off, on] : rows)
            EXPECT_EQ(SetPDFname(document.c_str()), cuts ? on : off);
    }
}
