// The save-file dialog library as the module loads it, with nobody watching.
#include <gtest/gtest.h>

#include <windows.h>

#include <string>

#include "common/dialog_library.h"
#include "common/qk/handle.h"
#include "common/qk/paths.h"
#include "common/qk/registry.h"
#include "common/qk/text.h"
#include "companions/tessalo/options.h"
#include "companions/thread.h"
#include "print_settings/PrintSettings.h"
#include "support/installation.h"
#include "support/variable.h"

namespace {

using Corvanta::Vantrix::PrintSettings::PrintSettings;

class Tessalo : public testing::Test {
protected:
    Tessalo() : library_(LoadLibraryW(Installation::built(dialog_library::kFileName).c_str())) {
        get_file_ = qk::find_export<dialog_library::GetFile2>(library_.get(), "GetFile2");
        get_setting_ = qk::find_export<dialog_library::GetSettingFN>(library_.get(), "GetSettingFN");
        record_.title.set_in_place(L"Title");
    }

    void ask_to_start_in(const std::wstring& folder) {
        path_ = folder;
        path_.resize(1024);
        record_.output_path.lend(path_, folder.size());
    }

    std::wstring ask() {
        record_.settings = &settings_;
        EXPECT_EQ(get_file_(&record_, L"Printer"), 0) << "anything else hands the job over";
        return record_.output_path.find_text().value_or(L"<unreadable>");
    }

    const Variable unattended_{L"ZR_UNATTENDED", L"1"};
    const qk::DLL library_;
    dialog_library::GetFile2* get_file_ = nullptr;
    dialog_library::GetSettingFN* get_setting_ = nullptr;
    std::wstring path_;
    dialog_library::WorkingRecord record_ = {};
    PrintSettings settings_;
};

TEST_F(Tessalo, AdministratorsNameTakesTheTitlesPlace) {
    const Installation here;
    const TempFolder folder;
    here.folder.write(L"administrator.ps4a",
                      "\xEF\xBB\xBF{\"Administrator\": {\"PDFFileName\": \"C:\\\\x\\\\Fixed.pdf\"}}");
    ask_to_start_in(folder.path());
    EXPECT_EQ(ask(), folder.file(L"Fixed.pdf"));
}

TEST_F(Tessalo, FolderComesFromTheFirstThatGivesOne) {
    const TempFolder record;
    const TempFolder setting;
    const TempFolder variable;
    const struct {
        const char* label;
        std::wstring record;
        std::wstring setting;
        std::wstring variable;
        std::wstring path;
    } rows[] = {
        {"record", record.path(), setting.path(), variable.path(), record.file(L"Title.pdf")},
        {"setting", L"", setting.path() + L"\\", variable.path(), setting.file(L"Title.pdf")},
        {"variable", L"", L"", variable.path(), variable.file(L"Title.pdf")},
        {"made when missing", setting.file(L"new\\deep"), L"", L"", setting.file(L"new\\deep\\Title.pdf")},
    };
    for (const auto& row : rows) {
        const Variable folder(L"ZR_OUTPUT_FOLDER", row.variable);
        settings_.general()->OutputFolder = row.setting;
        ask_to_start_in(row.record);
        EXPECT_EQ(ask(), row.path) << row.label;
        EXPECT_TRUE(qk::is_folder(row.path.substr(0, row.path.rfind(L'\\')))) << row.label;
    }
}

TEST_F(Tessalo, RefusedNameReadsAsACancel) {
    const TempFolder folder;
    folder.write(L"Title.pdf", "old");
    settings_.general()->WhenSameName = 3;
    ask_to_start_in(folder.path());
    record_.hand_over = 1;
    EXPECT_EQ(ask(), L"");
    EXPECT_EQ(record_.hand_over, 0);
}

TEST_F(Tessalo, PathStandsWhereAStringOfARunTimeLibraryWould) {
    const TempFolder folder;
    settings_.general()->OutputFolder = folder.path();
    settings_.general()->WhenSameName = 0;
    const std::wstring path = folder.file(L"Title.pdf");
    for (const size_t room : {path.size() - 1, path.size()}) {
        std::wstring found(room + 8, L'#');
        record_.output_path.lend({found.data(), room + 1}, 0);
        found[room] = L'\0';
        EXPECT_EQ(ask(), path);
        EXPECT_EQ(record_.output_path.address == found.data(), room == path.size());
        EXPECT_EQ(found.substr(room + 1), L"#######");
    }
    record_.output_path = {};
    EXPECT_EQ(ask(), path);
    const wchar_t* const first = record_.output_path.address;
    companions::Thread([&] {
        dialog_library::WorkingRecord other = {};
        other.title.set_in_place(L"Other");
        other.settings = &settings_;
        EXPECT_EQ(get_file_(&other, L"Printer"), 0);
        EXPECT_EQ(other.output_path.find_text(), folder.file(L"Other.pdf"));
    }).join();
    EXPECT_EQ(first, path) << "another thread's call leaves it alone";
}

TEST_F(Tessalo, NameIsTheDocumentsDefaultOneMadeSafe) {
    struct {
        DWORD cut_off_by_period;
        const wchar_t *title, *file;
    } const rows[] = {
        {0, L"Report.docx", L"Report.docx.pdf"},
        {1, L"Report.docx", L"Report.pdf"},
        {0, L"x.pdf", L"x.pdf.pdf"},
        {1, L"x.pdf", L"x.pdf"},
        {0, L"a:b?", L"a_b_.pdf"},
        {1, L"C:\\docs\\a:b.txt", L"a_b.pdf"},
        {0, L"", L"no_name.pdf"},
    };
    const ImportPatch hive("RegOpenCurrentUser", reinterpret_cast<void*>(&UserRegistry::open_hive),
                           library_.get());
    for (const auto& row : rows) {
        const Installation here;
        here.set_number(HKEY_CURRENT_USER, L"\\Special", L"Cutoff_by_period", row.cut_off_by_period);
        ask_to_start_in(here.folder.path());
        std::wstring title = row.title;
        title.resize(100);
        record_.title.lend(title, wcslen(row.title));
        EXPECT_EQ(ask(), here.folder.file(row.file));
    }
}

TEST_F(Tessalo, SettingOfTheProcessGoesBeforeThePrinters) {
    const MachineRegistry machine;
    const UserRegistry user;
    const ImportPatch hive("RegOpenCurrentUser", reinterpret_cast<void*>(&UserRegistry::open_hive),
                           library_.get());
    const std::wstring key = qk::registry::kRoot;
    user.set_text(key + L"Printer", L"PDFSettingFileName", L"gone.ps4");
    EXPECT_EQ(companions::setting_name_for(L"Printer"), L"standard.ps4");
    user.set_text(key, L"settingfile_for_process_Printer", L"C:\\chosen.ps4");
    user.set_text(key, L"settingfile_for_process_Other", L"");
    EXPECT_EQ(companions::setting_name_for(L"Printer"), L"C:\\chosen.ps4");
    EXPECT_EQ(companions::setting_name_for(L"Other"), L"standard.ps4");
    wchar_t name[32] = {};
    EXPECT_EQ(get_setting_(name, 14, L"Printer", nullptr), 0);
    EXPECT_STREQ(name, L"C:\\chosen.ps4");
    EXPECT_EQ(get_setting_(name, 13, L"Printer", nullptr), 0);
    EXPECT_STREQ(name, L"standard.ps4") << "a choice that has no room leaves the printer's own";
    EXPECT_NE(get_setting_(name, 12, L"Printer", nullptr), 0) << "no room for the terminating zero";
    user.set_text(key, L"settingfile_for_process_Printer", std::wstring(600, L'x'));
    EXPECT_EQ(companions::setting_name_for(L"Printer"), L"standard.ps4");
}

TEST(TessaloOptions, VariableGoesBeforeTheIni) {
    const TempFolder folder;
    const struct {
        const char* label;
        const wchar_t* variable;
        const char* ini;
        bool unattended;
    } rows[] = {
        {"nothing", L"", "", false},
        {"ini", L"", "[Dialog]\r\nUnattended=1\r\n", true},
        {"variable against ini", L"0", "[Dialog]\r\nUnattended=1\r\n", false},
        {"rubbish", L"", "[Dialog]\r\nUnattended=yes\r\n", false},
    };
    int file = 0;  // the profile functions may keep a file in memory
    for (const auto& row : rows) {
        const Variable variable(L"ZR_UNATTENDED", row.variable);
        const std::wstring ini = folder.write(std::to_wstring(++file) + L".ini", row.ini);
        EXPECT_EQ(companions::unattended(ini), row.unattended) << row.label;
    }
}

}  // namespace
