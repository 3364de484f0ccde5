// Settings that come from elsewhere, are told in words and called otherwise.
#include <array>

#include "UI_dll/PDFSettings/setting_list.h"
#include "UI_dll/settings_page_fixture.h"
#include "companions/host/setting_check.h"
#include "support/profile_folder.h"

namespace {

using namespace pdf_settings;
using ps::ReadName;

TEST_F(SettingsPage, SettingsOfOlderVersionsComeInOnceTheNewestFirst) {
    const std::array<const wchar_t*, 3> old[] = {
        {L"7", L"zeta", L"from old"},  // one of that file is there already
        {L"7", L"fresh", L"from old"},
        {L"6", L"fresh", L"from older"},
        {L"7", L"Standard", L"old standard"},  // a job would find the installed one under that name
        {L"7", L"standard(1)", L"older"}};
    for (const auto& [version, file, name] : old) {
        const auto folder = L"Roaming\\Corvanta\\Vantrix\\" + std::wstring(version) + L".0\\CustomSettings\\";
        ForceDirectories(here.folder.file(folder));
        add(folder + file + L".ps4", name);
    }
    EXPECT_EQ(rows(), L"alpha from old old standard older zeta Office [Standard]");
    close();
    EXPECT_EQ(ReadName(own(L"Standard(2)")), L"old standard");
    EXPECT_FALSE(qk::is_file(own(L"standard")));
    for (const wchar_t* name : {L"fresh", L"Standard(2)", L"standard(1)"})
        DeleteFileW(own(name).c_str());
    EXPECT_EQ(rows(), L"alpha zeta Office [Standard]");
}

TEST_F(SettingsPage, SelectedSettingIsToldInWords) {
    const std::string mark = "\xEF\xBB\xBF";
    write_own(L"told", (mark + R"({"PSComment": [], "PSName": "told", "Security": {"UserPassword": "secret"},
        "General": {"PaperType": 1, "PaperWidth": 100, "PaperHeight": 50, "SaveStyle": 1,
                    "OutputFolder": "C:\\here"}, "Watermark": {"Style": 1, "Text": "DRAFT"}})")
                           .c_str());
    here.folder.write(L"Settings\\broken.ps4", "{");
    const std::tuple<int, std::vector<std::wstring>, bool> rows[] = {
        // the row, what is told, whether it can be copied
        {1,
         {L"Paper: Custom size, 100 \u00D7 50 mm\n", L"PDF version: PDF 1.7\n",
          L"Security: password to open\n", L"C:\\here\n", L"Watermark: DRAFT"},
         true},
        {3, {L"Security: none\n", L"asked for each time\n", dialog_text(IDS_SUM_ADMINISTRATOR)}, true},
        {5, {dialog_text(IDS_SUM_UNREADABLE)}, false}};
    for (const auto& [row, parts, can_copy] : rows) {
        select(row);
        const std::wstring text = control_text(window(), IDC_SETTINGS_SUMMARY);
        for (const std::wstring& part : parts)
            EXPECT_NE(text.find(part), std::wstring::npos)
                << qk::to_utf8(part) << " in " << qk::to_utf8(text);
        EXPECT_EQ(text.find(L"secret"), std::wstring::npos);
        EXPECT_EQ(can_press(IDC_SETTINGS_COPY), can_copy);
    }
}

TEST_F(SettingsPage, FilesAreImportedOrRefusedInWords) {
    const std::string mark = "\xEF\xBB\xBF";
    add(L"zeta.ps4", L"zeta");  // of a name and a file that are there
    here.folder.write(L"low.ps4", mark + R"({"PSName":"low","PSComment":[],"General":{"Scale":5},
        "Color":{"ColorMode":9,"MonoImageFilter":9},
        "Watermark":{"Style":9,"ZOrder":9,"FontSize":999,"Transparency":999,"PictureScale":9999},
        "OpenAction":{"PageLayout":9,"Binding":9,"PageAdjust":9,"PageMode":9,"StartPage":9999999}})");
    here.folder.write(L"torn.ps4", mark + "{\n\"a\":");
    here.folder.write(L"bare.ps4", "{}");
    here.folder.write(L"list.ps4", mark + R"({"PSComment":[],"General":[]})");
    here.folder.write(L"old.ps4", std::string("\x09\x00\x02\x00", 4));
    const std::string before = TempFolder::read(own(L"zeta"));
    std::wstring files;
    for (const wchar_t* name : {L"torn", L"bare", L"list", L"old", L"gone", L"zeta", L"low"})
        files += here.folder.file(name) + L".ps4" + L'\0';
    const HGLOBAL memory = GlobalAlloc(GHND, sizeof(DROPFILES) + (files.size() + 1) * sizeof(wchar_t));
    auto* drop = static_cast<DROPFILES*>(GlobalLock(memory));
    *drop = {.pFiles = sizeof *drop, .fWide = TRUE};
    std::memcpy(drop + 1, files.data(), files.size() * sizeof(wchar_t));
    GlobalUnlock(memory);
    SendMessageW(window(), WM_DROPFILES, reinterpret_cast<WPARAM>(memory), 0);
    EXPECT_EQ(rows(), L"alpha [low] zeta zeta(1) Office Standard");
    EXPECT_EQ(TempFolder::read(own(L"zeta")), before);
    ASSERT_EQ(Outbox::boxes.size(), 2u);
    for (const wchar_t* told :
         {L"low.ps4: General \u2013 Scaling (%): 5 \u2192 10\n",
          L"low.ps4: Colour \u2013 Colours of the PDF: 9 \u2192 Black and white\n", L"\n\u2026"})
        EXPECT_NE(Outbox::boxes[0].text.find(told), std::wstring::npos) << qk::to_utf8(Outbox::boxes[0].text);
    for (const std::wstring& fault :
         {L"torn.ps4: " + qk::format(dialog_text(IDS_IMPORT_DAMAGED).c_str(), 2),
          L"bare.ps4: " + dialog_text(IDS_IMPORT_NO_SETTING),
          L"list.ps4: " + qk::format(dialog_text(IDS_IMPORT_WRONG_KIND).c_str(), L"General"),
          L"old.ps4: " + dialog_text(IDS_IMPORT_LEGACY), L"gone.ps4: " + dialog_text(IDS_IMPORT_UNREADABLE)})
        EXPECT_NE(Outbox::boxes[1].text.find(fault), std::wstring::npos)
            << qk::to_utf8(Outbox::boxes[1].text);
}

TEST_F(SettingsPage, FilesOfTheDialogAreImportedTogether) {
    const FileDialog dialog;
    const std::wstring folder = here.folder.file(L"in"), spaced = L"one two.ps4", other = L"\u540D.ps4";
    ForceDirectories(folder);
    add(L"in\\" + spaced, L"one");
    add(L"in\\" + other, L"two");
    const std::tuple<std::wstring, const wchar_t*, size_t> cases[] = {
        // the answer, the rows then, the messages
        {folder + L'\\' + spaced, L"alpha [one] zeta Office Standard", 0},
        {folder + L'\0' + spaced + L'\0' + other, L"alpha one one(1) [two] zeta Office Standard", 0},
        {L"", L"alpha one one(1) [two] zeta Office Standard", 1}};
    for (const auto& [chosen, after, messages] : cases) {
        FileDialog::answer = chosen;
        press(IDC_SETTINGS_IMPORT);
        EXPECT_EQ(rows(), after);
        ASSERT_EQ(Outbox::boxes.size(), messages);
    }
    EXPECT_EQ(Outbox::boxes[0].text, dialog_text(IDS_IMPORT_TOO_MANY));
}

// Key by key, as the list tells them.
void press_key(HWND page, WORD key) {
    NMLVKEYDOWN down = {{GetDlgItem(page, IDC_SETTINGS_LIST), IDC_SETTINGS_LIST, LVN_KEYDOWN}, key, 0};
    SendMessageW(page, WM_NOTIFY, IDC_SETTINGS_LIST, reinterpret_cast<LPARAM>(&down));
}

TEST_F(SettingsPage, KeysRenameAndDelete) {
    const std::tuple<int, const wchar_t*, UINT, const wchar_t*> cases[] = {
        // the row, what is typed (null: it cannot be), the message, the rows then
        {0, L"gamma", 0, L"[gamma] zeta Office Standard"},
        {0, L" \u3000", IDS_NO_NAME, L"[gamma] zeta Office Standard"},
        {0, L"Office", IDS_RENAME_TAKEN, L"[gamma] zeta Office Standard"},
        {2, nullptr, 0, L"gamma zeta [Office] Standard"}};
    for (const auto& [row, typed, box, after] : cases) {
        Outbox::boxes.clear();
        select(row);
        press_key(window(), VK_F2);
        const HWND edit = ListView_GetEditControl(list());
        ASSERT_EQ(edit != nullptr, typed != nullptr);
        if (edit) {
            SetWindowTextW(edit, typed);
            SendMessageW(edit, WM_KEYDOWN, VK_RETURN, 0);
        }
        for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);)
            DispatchMessageW(&message);
        EXPECT_EQ(rows(), after);
        ASSERT_EQ(Outbox::boxes.size(), box ? 1u : 0u);
        EXPECT_TRUE(!box || Outbox::boxes[0].text == dialog_text(box));
    }
    EXPECT_EQ(ReadName(own(L"alpha")), L"gamma") << "the printers' choice goes by the file";
    ListView_EditLabel(list(), 0);
    EXPECT_FALSE(ListView_GetEditControl(list())) << "by the key only: a second click may be half of two";
    Outbox::answer = IDYES;
    select(0);
    press_key(window(), VK_F2);
    SetWindowTextW(ListView_GetEditControl(list()), L"zz");
    SendMessageW(ListView_GetEditControl(list()), WM_KEYDOWN, VK_RETURN, 0);
    SendMessageW(window(), WM_COMMAND, IDC_SETTINGS_DELETE, 0);  // the new name is not given yet
    std::wstring left = rows();
    std::erase_if(left, [](wchar_t unit) { return unit == L'[' || unit == L']'; });
    EXPECT_EQ(left, L"zeta Office Standard");
    select(0);
    press_key(window(), VK_DELETE);
    EXPECT_EQ(rows(), L"[Office] Standard");
}

// Those beside the standard one: sound, printable, and called what the dialog's language calls them.
TEST_F(SettingsPage, ReadySettingsComeWithTheProduct) {
    const ProfileFolder profiles;
    profiles.add(L"sRGB Color Space Profile.icm", "RGB ", "mntr", "sRGB");
    profiles.add(L"RSWOP.icm", "CMYK", "prtr", "SWOP");
    const std::tuple<std::wstring, UINT, uint32_t, bool> rows[] = {
        // the file, its name, the PDF version, whether it is protected
        {L"smallest", IDS_READY_SMALLEST, 4, false}, {L"everyday", IDS_READY_EVERYDAY, 4, false},
        {L"quality", IDS_READY_QUALITY, 4, false},   {L"archive", IDS_READY_ARCHIVE, 11, false},
        {L"press", IDS_READY_PRESS, 10, false},      {L"protected", IDS_READY_PROTECTED, 4, true}};
    for (const auto& [name, shown, version, is_protected] : rows) {
        SCOPED_TRACE(qk::to_utf8(name));
        const std::wstring file = L"Settings\\" + name + L".ps4", path = here.folder.file(file);
        EXPECT_TRUE(CopyFileW(Installation::built(file).c_str(), path.c_str(), TRUE));
        EXPECT_EQ(host::check_setting(path).faults, std::vector<std::wstring>());
        Setting setting;
        EXPECT_TRUE(setting.Load(path));
        EXPECT_EQ(setting.pdfVersion()->Version, version);
        EXPECT_EQ(!setting.security()->MasterPassword.empty(), is_protected);
        EXPECT_EQ(shown_setting_name(path), dialog_text(shown));
        EXPECT_EQ(setting->PSName, dialog_text(shown)) << "in English it is the file's own";
        setting->PSName = L"Ours";
        EXPECT_TRUE(setting.Save(path));
        EXPECT_EQ(shown_setting_name(path), L"Ours") << "an administrator's of the same file name";
    }
}

}  // namespace
