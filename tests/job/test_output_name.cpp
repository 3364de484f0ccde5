#include <gtest/gtest.h>

#include "job/output_name.h"
#include "support/installation.h"

TEST(OutputName, TitleLosesTheApplicationsPrefix) {
    struct {
        const wchar_t *document, *title;
    } const rows[] = {
        {L"Microsoft Word - Letter.docx", L"Letter.docx"},
        {L"microsoft word - Letter.docx", L"microsoft word - Letter.docx"},
        {L"Microsoft PowerPoint - a", L"a"},
        {L"Visio-a", L"a"},
        {L"Taro13-a", L"a"},
        {L"Taro-a", L"a"},
        {L"Taro12-a", L"Taro12-a"},
        {L"Visio-Taro-a", L"Taro-a"},
        {L"a Visio-b", L"a Visio-b"},
        {L"Microsoft Word -", L"Microsoft Word -"},
        {L"MIW(3)Sheet", L"Sheet"},
        {L"MIW(abc", L"abc"},
        {L"MIW()", L"no_name"},
        {L"MIW(", L"no_name"},
        {L"MIW(a)b)c", L"b)c"},
        {L"miw(3)a", L"miw(3)a"},
        {L"Visio-", L""},
        {L"Visio-MIW(1)a", L"MIW(1)a"},
        {L"MIW(1)Visio-a", L"Visio-a"},
        {L"", L"no_name"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(CleanJobTitle(row.document), row.title);
}

TEST(OutputName, FileNameEndsInPdf) {
    const std::wstring long_name(600, L'x');
    struct {
        std::wstring document, off, on;
    } const rows[] = {
        {L"Report.docx", L"Report.docx.pdf", L"Report.pdf"},
        {L"C:\\docs\\Report.docx", L"C:\\docs\\Report.docx.pdf", L"Report.pdf"},
        {L"a.b.c", L"a.b.c.pdf", L"a.b.pdf"},
        {L"dir.x\\file", L"dir.x\\file.pdf", L"file.pdf"},
        {L"Report.", L"Report..pdf", L"Report..pdf"},
        {L"x", L"x.pdf", L"x.pdf"},
        {L"x.pdf", L"x.pdf.pdf", L"x.pdf"},
        {L".x", L".x.pdf", L".pdf"},
        {L".", L"..pdf", L"..pdf"},
        {L"a\\", L"a\\.pdf", L".pdf"},
        {L"", L"no_name.pdf", L"no_name.pdf"},
        {long_name, long_name + L".pdf", long_name.substr(0, 512) + L".pdf"},
    };
    struct {
        int machine, user;  // -1: not set
        bool on;
    } const switches[] = {{-1, -1, false}, {1, -1, true}, {-1, 7, true}, {0, 1, true}, {1, 0, false}};
    for (const auto& chosen : switches) {
        const Installation here;
        if (chosen.machine >= 0)
            here.set_number(HKEY_LOCAL_MACHINE, L"\\Special", L"Cutoff_by_period",
                            static_cast<DWORD>(chosen.machine));
        if (chosen.user >= 0)
            here.set_number(HKEY_CURRENT_USER, L"\\Special", L"Cutoff_by_period",
                            static_cast<DWORD>(chosen.user));
        EXPECT_EQ(SetPDFname(nullptr), L"no_name.pdf");
        for (const auto& row : rows)
            EXPECT_EQ(SetPDFname(row.document.c_str()), chosen.on ? row.on : row.off);
    }
}
