// What people who write setting files by hand are told.

#include "companions/host/host_error.h"
#include "companions/host/setting_check.h"

using Lines = std::vector<std::wstring>;

TEST(SettingCheck, FaultsAreToldWithWhatIsUsed) {
    const Installation here;
    const Lines none;
    const std::wstring kWords =
        L" stands for nothing; there are {title} {date} {time} {user} {printer} {counter}";
    struct {
        const wchar_t* name;
        std::string_view bytes;
        Lines faults, forced = {};
    } const rows[] = {
        {L"bare.ps4",
         "\n{}",
         {L"the byte-order mark EF BB BF is missing; without it no program takes the file for a setting"}},
        {L"text.ps4", "hello", {L"this is no print setting of any kind"}},
        {L"json.ps4", "{\n\"PSComment\" []}", {L"this is no JSON: syntax error in line 2, column 13"}},
        {L"old.printSetting3",
         "\xF0ZRTKS3\xF1",
         {L"this is a binary setting of an older version, and it is damaged"}},
        {L"values.ps4",
         R"({"General": {"Scale": 9, "OpenPDF": 1.50, "Linearize": "no",
            "PaperWidth": 1e5, "Sacle": 1}, "OpenAction": {"StartPage": -1}, "Watermark": {"PictureScale":
            4294967295, "TextColor": 16777216, "Text": 5}, "Security": {"Level": 4294967295},
            "Notification": {"V6": {"ID_Low": -5, "PrintError": "x"}}, "Administrator": {}})",
         {L"PSComment: is missing; the whole file cannot be loaded without it, [] will do",
          L"Administrator: counts in administrator.ps4a only; it is ignored",
          L"General.Linearize: has to be true or false; true is used",
          L"General.OpenPDF: 1.50 is no whole number; 1 is used",
          L"General.PaperWidth: 1e5 is out of its range (25.4 to 3276.7); 3276.7 is used",
          L"General.Sacle: the driver knows no such key; it is ignored",
          L"General.Scale: 9 is out of its range (10 to 400); 10 is used",
          L"Notification.V6.PrintError: \"x\" cannot be taken over; \"\" is used",
          L"Security.Level: 4294967295 is out of its range (0 to 5); 5 is used",
          L"Watermark.Text: has to be a text; \"CONFIDENTIAL\" is used",
          L"Watermark.TextColor: 16777216 is out of its range (0 to 16777215); 0 is used"}},
        {L"kinds.ps4",
         R"({"PSComment": [[1], ["a", "b"]], "General": [], "Font": {"Fonts": ["a", 1]}})",
         {L"PSComment[1][0]: has to be a number; the whole file cannot be loaded",
          L"General: has to be an object; the whole file cannot be loaded",
          L"Font.Fonts[1]: has to be a text; the whole file cannot be loaded",
          L"PSComment: [1] is not kept as it is"}},
        {L"press.ps4",
         R"({"PSComment": [], "PDFVersion": {"Version": 6, "ICCFileName": "x"}, "General": {"URLLink": true},
            "Security": {"UserPassword": "a"}, "Addition": {"Str": {"FileName": "{titel}"}}})",
         {L"Addition.Str.FileName: {titel}" + kWords,
          L"PDFVersion: a job is refused with error 164: Colour profile not found: x",
          L"General.URLLink: a PDF/X file cannot hold links: none are made",
          L"Security.UserPassword: PDF/A and PDF/X allow no passwords: the document is not protected"}},
        {L"twice.ps4",
         "{\"PSComment\": [], \"General\": {\"Scale\": 50, \"Scale\": 60},\n"
         "\"Watermark\": {\"Text\": \"}\\\"\xFF\"}, \"General\": {\"Scale\": 5e1}}\n more",
         {L"General.Scale: is given more than once; the last one counts",
          L"General: is given more than once; the last one counts",
          L"line 3: what stands behind the object is ignored",
          L"line 2 is not UTF-8 throughout; each wrong byte is read as U+FFFD"}},
        {L"lost.ps4",
         R"({"PSComment": [], "General": {"SaveStyle": 1},
            "Watermark": {"Style": 2, "PictureFileName": "Q:\\x.png"},
            "Security": {"MasterPassword": "a", "UserPassword": "a"}})",
         {L"General.SaveStyle: 1 is a fixed folder, but OutputFolder names none",
          L"Watermark.PictureFileName: there is no file Q:\\x.png",
          L"Security.UserPassword: is the same as MasterPassword: whoever opens the document has every "
          L"permission"}},
        {L"new.ps4",
         R"({"PSComment": [], "PDFVersion": {"Version": 12},
            "Security": {"MasterPassword": "a\tb", "UserPassword": "\u65E5 \u0080"}})",
         {L"Security.MasterPassword: has a control character, which no PDF takes: a job fails with error "
          L"1008"}},
        {L"latin.ps4",
         R"({"PSComment": [], "PDFVersion": {"Version": 3},
            "Security": {"MasterPassword": "012345678901234567890123456789012", "UserPassword": "\u0080"}})",
         {L"Security.MasterPassword: is longer than the 32 characters that count in this PDF",
          L"Security.UserPassword: has a character that only PDF 1.7 (4) and 2.0 (12) take: a job fails with "
          L"error 1008"}},
        {L"administrator.ps4a",
         R"({"Administrator": {"PSFile": "Q:\\x.ps4", "NoSettingTabs": 1,
            "PDFFileName": "Q:\\{a}", "OutputFolder": "Q:\\b"}, "Color": {"ColorMode": "grey"}, "Security": {"UserPassword": "secret"},
            "Font": {"Fonts": ["a"]}})",
         {L"Administrator.NoSettingTabs: has to be true or false; false is used",
          L"Administrator.PDFFileName: holds a folder; only the name behind it counts, and OutputFolder "
          L"takes the folder",
          L"Administrator.PDFFileName: {a}" + kWords, L"Administrator.OutputFolder: there is no folder Q:\\b",
          L"Administrator.PSFile: there is no file Q:\\x.ps4",
          L"Color.ColorMode: has to be a number; the user's value stays"},
         {L"Administrator.OutputFolder = \"Q:\\b\"", L"Administrator.PDFFileName = \"Q:\\{a}\"",
          L"Administrator.PSFile = \"Q:\\x.ps4\"", L"Font.Fonts = [\"a\"]", L"Security.UserPassword"}}};
    here.user.set_text(Installation::kKey, L"Language", L"en");
    for (const auto& row : rows) {
        const auto findings = host::check_setting(here.folder.write(
            row.name,
            std::string(row.bytes.find_first_of("{[") == 0 ? "\xEF\xBB\xBF" : "").append(row.bytes)));
        EXPECT_TRUE(findings.readable);
        EXPECT_EQ(findings.faults, row.faults) << qk::to_utf8(row.name);
        EXPECT_EQ(findings.forced, row.forced) << qk::to_utf8(row.name);
    }
    EXPECT_FALSE(host::check_setting(here.folder.file(L"none.ps4")).readable);
    EXPECT_EQ(host::setting_files(here.folder.path()).front(), here.folder.file(L"administrator.ps4a"));
    EXPECT_GT(host::setting_files(here.folder.path() + L"\\").size(), 8u);
    EXPECT_THROW((void)host::setting_files(L"C:\\windows\\fonts"), host::HostError);
    // A file that the driver writes has no fault.
    ASSERT_TRUE(Corvanta::Vantrix::PrintSettings::PrintSettings().Save(here.folder.file(L"own.ps4")));
    EXPECT_EQ(host::check_setting(here.folder.file(L"own.ps4")).faults, none);
}
