// The save-file dialog library: names, the choice of a file, and the library as the module loads it, with
// nobody watching.

#include "common/dialog_library.h"
#include "companions/tessalo/options.h"
#include "companions/tessalo/output_choice.h"
#include "job/output_name.h"

namespace {

using namespace companions;

// What becomes of bad characters and devices is seen where settings get their names.
TEST(SafeName, TitlesBecomeFileNames) {
    const wchar_t* const rows[][2] = {{L"Report.PDF", L"Report"}, {L"a.pdf.pdf", L"a.pdf"},
                                      {L" . .. ", L"no_name"},    {L".pdf", L"no_name"},
                                      {L"PRN.pdf", L"_PRN"},      {L"\ta\r\nb\x7f\x85", L"a  b"}};
    for (const auto& [title, stem] : rows)
        EXPECT_EQ(safe_stem(title), stem);
}

TEST(SafeName, LimitsCutTheStemOnly) {
    const auto x = [](size_t times, wchar_t unit = L'x') { return std::wstring(times, unit); };
    std::wstring pairs;
    for (int pair = 0; pair < 200; ++pair)
        pairs += L"\U0001F5A8";
    const std::wstring deep = L"C:\\" + x(240), deeper = deep + x(10);
    const NameLimits units, bytes = {255, 255, 259}, few = {7, SIZE_MAX, 259};
    // The folder, the title, its number, the limits, the name (empty: no path).
    const std::tuple<std::wstring, std::wstring, unsigned, NameLimits, std::wstring> rows[] = {
        {L"C:", x(300), 9999, units, x(245) + L"(9999).pdf"},
        {L"C:", x(300, L'\u65E5'), 0, bytes, x(83, L'\u65E5') + L".pdf"},
        {L"C:", pairs, 1, bytes, pairs.substr(0, 124) + L"(1).pdf"},
        {deep, L"a long title of thirty letters", 0, units, L"a long titl.pdf"},
        {deeper + L"x", L"Report", 0, units, L""},
        {L"C:", L"Mr. Brown", 0, few, L"Mr.pdf"}};
    for (const auto& [folder, title, number, limits, name] : rows)
        EXPECT_EQ(find_safe_path(folder, title, number, limits).value_or(L""),
                  name.empty() ? L"" : folder + L"\\" + name);
}

TEST(OutputChoice, SameNameRulesWithNobodyWatching) {
    const std::tuple<int32_t, bool, const wchar_t*, bool> rows[] = {
        // null: refused
        {0, true, L"a.pdf", false},   {1, true, L"a(1).pdf", true}, {2, false, L"a.pdf", true},
        {2, true, L"a(1).pdf", true}, {3, true, nullptr, false},    {7, true, L"a(1).pdf", true}};
    for (const auto& [code, exists, name, reserved] : rows) {
        SCOPED_TRACE(code);
        const TempFolder folder;
        if (exists)
            folder.write(L"a.pdf", "old");
        const auto file = choose_unattended(folder.path(), L"a", same_name_rule(code), {});
        EXPECT_EQ(file ? file->path : L"", name ? folder.file(name) : L"");
        EXPECT_EQ(file && file->reserved, reserved);
        EXPECT_EQ(TempFolder::read(folder.file(L"a.pdf")), exists ? "old" : "");
        EXPECT_EQ(folder.count(), size_t{exists} + reserved);
    }
}

TEST(OutputChoice, NamesThatCountTakeTheFirstFreeNumber) {
    const auto counted = [](const wchar_t* text) {
        return WantedName{[text](unsigned at) { return text + std::to_wstring(at); }, true};
    };
    const TempFolder folder;
    for (const wchar_t* taken : {L"Scan 1.pdf", L"Scan 3.pdf", L"Scans.pdf"})
        folder.write(taken, "old");
    EXPECT_EQ(find_free_title(folder.path(), counted(L"Scan "), {}), L"Scan 2");
    // The text, the rule, the longest name, the file.
    const std::tuple<const wchar_t*, SameName, NameLimits, const wchar_t*> rows[] = {
        {L"Scan ", SameName::kOverwrite, {}, L"Scan 2.pdf"},
        {L"Scan ", SameName::kRefuse, {}, L"Scan 4.pdf"},
        {L"Scans of May ", SameName::kOverwrite, {9, SIZE_MAX, 259}, L"Sc(1).pdf"}};
    for (const auto& [text, rule, limits, name] : rows) {
        const auto file = choose_unattended(folder.path(), counted(text), rule, limits);
        EXPECT_EQ(file ? file->path : L"", folder.file(name));
        EXPECT_TRUE(file && file->reserved);
    }
}

TEST(OutputChoice, JobsOfOneTitleAtOnceGetNamesOfTheirOwn) {
    const TempFolder folder;
    std::atomic<int> reserved = 0;
    std::vector<Thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] {
            for (int job = 0; job < 25; ++job) {
                const auto file = choose_unattended(folder.path(), L"Same title", SameName::kNumber, {});
                reserved += file && file->reserved;
            }
        });
    threads.clear();  // waits for them
    EXPECT_EQ(reserved, 200);
    EXPECT_TRUE(qk::is_file(folder.file(L"Same title(199).pdf"))) << "no number is left out";
}

// Answers as a user would, and notes what the dialog was asked to do.
class ScriptedDialog final : public SaveDialog {
public:
    std::optional<std::wstring> ask(const std::wstring& in, const std::wstring& name, bool asks) override {
        if (offered.empty())
            offered = in + L'|' + name;
        confirmed = asks;
        return asked == answers.size() ? std::nullopt : std::optional(answers[asked++]);
    }
    void refuse(const std::wstring&, UINT) override { ++refusals; }

    std::vector<std::wstring> answers;
    size_t asked = 0;
    std::wstring offered;
    bool confirmed = false;
    int refusals = 0;
};

TEST(OutputChoice, DialogAnswersFollowTheRule) {
    const std::wstring too_long(250, L'x');
    // The rule, the answers ("old.pdf" and "old.txt.pdf" exist, "held.pdf" is open), the name (empty:
    // cancelled), whether it is reserved, the refusals.
    const std::tuple<SameName, std::vector<std::wstring>, std::wstring, bool, int> rows[] = {
        {SameName::kAsk, {L"new"}, L"new.pdf", true, 0},
        {SameName::kAsk, {L"old.pdf"}, L"old.pdf", false, 0},  // the dialog has asked
        {SameName::kAsk, {L"old.txt"}, L"", false, 1},         // about another name
        {SameName::kNumber, {L"old.PDF"}, L"old(1).pdf", true, 0},
        {SameName::kRefuse, {L"old.pdf", L"old.pdf", L"x.pdf"}, L"x.pdf", true, 2},
        {SameName::kOverwrite, {too_long, L"held.pdf", L"x.pdf"}, L"x.pdf", false, 2},
        {SameName::kNumber, {L"none\\x.pdf", L"x.pdf"}, L"x.pdf", true, 1}};
    for (const auto& [rule, answers, name, reserved, refusals] : rows) {
        SCOPED_TRACE(testing::PrintToString(answers));
        const TempFolder folder;
        folder.write(L"old.pdf", "old");
        folder.write(L"old.txt.pdf", "old");
        const qk::FileObj user = hold(folder.write(L"held.pdf", ""), FILE_SHARE_READ);
        ScriptedDialog dialog;
        for (const std::wstring& answer : answers)
            dialog.answers.push_back(folder.file(answer));
        const auto file = choose_with_dialog(dialog, folder.path(), L"Ti:tle.pdf", rule, {});
        EXPECT_EQ(file ? file->path : L"", name.empty() ? L"" : folder.file(name));
        EXPECT_EQ(std::tuple(file && file->reserved, dialog.refusals, dialog.confirmed),
                  std::tuple(reserved, refusals, rule == SameName::kAsk));
        EXPECT_EQ(dialog.offered, folder.path() + L"|Ti_tle.pdf");
        EXPECT_EQ(TempFolder::read(folder.file(L"old.pdf")), "old");
    }
}

TEST(OutputChoice, AFixedFolderAsksNothingUnlessTheRuleSaysSo) {
    // The rule, the title, the name (empty: no PDF; "new.pdf" is the dialog's answer), whether it is
    // reserved, how often the dialog asks and refuses.
    const std::tuple<SameName, const wchar_t*, std::wstring, bool, size_t, int> rows[] = {
        {SameName::kAsk, L"free", L"free.pdf", true, 0, 0},
        {SameName::kAsk, L"old", L"new.pdf", true, 1, 0},
        {SameName::kOverwrite, L"old", L"old.pdf", false, 0, 0},
        {SameName::kOverwrite, L"held", L"new.pdf", false, 1, 0},
        {SameName::kNumber, L"old", L"old(1).pdf", true, 0, 0},
        {SameName::kRefuse, L"old", L"", false, 0, 1}};
    const TempFolder elsewhere;
    int files = 0;
    for (const auto& [rule, title, name, reserved, asked, refusals] : rows) {
        SCOPED_TRACE(qk::to_utf8(title) + std::to_string(static_cast<int>(rule)));
        const TempFolder folder;
        folder.write(L"old.pdf", "old");
        const qk::FileObj user = hold(folder.write(L"held.pdf", ""), FILE_SHARE_READ);
        ScriptedDialog dialog;
        dialog.answers = {folder.file(L"new.pdf")};
        const WantedName wanted{[text = title](unsigned) { return text; }};
        const auto file = choose_in_folder(dialog, folder.path(), wanted, rule, {});
        EXPECT_EQ(file ? file->path : L"", name.empty() ? L"" : folder.file(name));
        EXPECT_EQ(std::tuple(file && file->reserved, dialog.asked, dialog.refusals),
                  std::tuple(reserved, asked, refusals));
        EXPECT_EQ(TempFolder::read(folder.file(L"old.pdf")), "old");
        dialog.answers = {elsewhere.file(std::to_wstring(++files))};
        const auto other = choose_in_folder(dialog, folder.file(L"none"), wanted, rule, {});
        EXPECT_EQ(other.has_value(), asked == 0) << "where no file can be made the dialog asks";
    }
}

struct Tessalo : testing::Test {
    Tessalo() {
        record_.title.set_in_place(L"Title");
        record_.settings = &settings_;
    }

    std::wstring ask(const std::wstring& folder) {
        std::wstring path = folder;
        path.resize(1024);
        record_.output_path.lend(path, folder.size());
        EXPECT_EQ(get_file_(&record_, L"Printer"), 0) << "anything else hands the job over";
        return record_.output_path.find_text().value_or(L"<unreadable>");
    }

    const Variable unattended_{L"ZR_UNATTENDED", L"1"};
    const qk::DLL library_{LoadLibraryW(Installation::built(dialog_library::kFileName).c_str())};
    const ImportPatch hive_{"RegOpenCurrentUser", &UserRegistry::open_hive, library_.get()};
    dialog_library::GetFile2* const get_file_ =
        qk::find_export<dialog_library::GetFile2>(library_.get(), "GetFile2");
    const Installation here_;
    Corvanta::Vantrix::PrintSettings::PrintSettings settings_;
    dialog_library::WorkingRecord record_ = {};
};

TEST_F(Tessalo, FolderComesFromTheFirstThatGivesOne) {
    const TempFolder record, setting, variable;
    const std::wstring rows[][4] = {
        // of the record, the setting, the variable; the path
        {record.path(), setting.path(), variable.path(), record.file(L"Title.pdf")},
        {L"", setting.path() + L"\\", variable.path(), setting.file(L"Title.pdf")},
        {L"", L"", variable.path(), variable.file(L"Title.pdf")},
        {setting.file(L"new\\deep"), L"", L"", setting.file(L"new\\deep\\Title.pdf")}};
    for (const auto& [asked, set, usual, path] : rows) {
        const Variable folder(L"ZR_OUTPUT_FOLDER", usual);
        settings_.general()->OutputFolder = set;
        EXPECT_EQ(ask(asked), path);
        EXPECT_TRUE(qk::is_folder(path.substr(0, path.rfind(L'\\'))));
    }
    record.write(L"Title.pdf", "old");
    settings_.general()->WhenSameName = 3;
    record_.hand_over = 1;
    EXPECT_EQ(ask(record.path()), L"") << "a refused name reads as a cancel";
    EXPECT_EQ(record_.hand_over, 0);
}

TEST_F(Tessalo, PathStandsWhereAStringOfARunTimeLibraryWould) {
    const TempFolder folder;
    settings_.general()->OutputFolder = folder.path();
    settings_.general()->WhenSameName = 0;
    const std::wstring path = folder.file(L"Title.pdf");
    for (const size_t room : {size_t{0}, path.size() - 1, path.size()}) {
        std::wstring found(room + 8, L'#');
        record_.output_path = {};
        if (room != 0)
            record_.output_path.lend({found.data(), room + 1}, 0);
        found[room] = L'\0';
        EXPECT_EQ(get_file_(&record_, L"Printer"), 0);
        Thread([&, other = record_]() mutable { get_file_(&other, L"Printer"); }).join();
        EXPECT_EQ(record_.output_path.find_text(), path) << "another thread's call leaves it alone";
        EXPECT_EQ(record_.output_path.address == found.data(), room == path.size());
        EXPECT_EQ(found.substr(room + 1), L"#######");
    }
}

TEST_F(Tessalo, NameIsTheDocumentsDefaultOneMadeSafe) {
    const std::tuple<DWORD, std::wstring, const wchar_t*> rows[] = {{0, L"Report.docx", L"Report.docx.pdf"},
                                                                    {0, L"", L"no_name.pdf"},
                                                                    {1, L"C:\\docs\\a:b.txt", L"a_b.pdf"}};
    for (auto [cuts, title, file] : rows) {
        const TempFolder folder;
        here_.set_number(HKEY_CURRENT_USER, L"\\Special", L"Cutoff_by_period", cuts);
        const size_t units = title.size();
        title.resize(100);
        record_.title.lend(title, units);
        EXPECT_EQ(ask(folder.path()), folder.file(file));
    }
    here_.set_number(HKEY_CURRENT_USER, L"\\Special", L"Cutoff_by_period", 0);
    record_.title.set_in_place(L"a:b.txt");
    for (const auto& [pattern, name] : {std::pair(L"{title}, {PRINTER}", L"a_b.txt, Printer.pdf"),
                                        {L"{counter} {x}/", L"1 {x}_.pdf"},
                                        {L"{counter} {x}/", L"2 {x}_.pdf"}}) {
        settings_.addition()->Str[L"FileName"] = pattern;
        EXPECT_EQ(ask(here_.folder.path()), here_.folder.file(name));
    }
    here_.folder.write(
        L"administrator.ps4a",
        "\xEF\xBB\xBF{\"Administrator\": {\"PDFFileName\": \"C:\\\\x\\\\Fixed {title}.pdf\"}}");
    EXPECT_EQ(ask(here_.folder.path()), here_.folder.file(L"Fixed a_b.txt.pdf"));
}

TEST_F(Tessalo, SettingOfTheProcessGoesBeforeThePrinters) {
    const std::wstring key = qk::registry::kRoot;
    const auto setting = [&](int units, const wchar_t* printer = L"Printer") {
        wchar_t name[512] = {};
        const int error = qk::find_export<dialog_library::GetSettingFN>(library_.get(), "GetSettingFN")(
            name, units, printer, nullptr);
        return error ? L"error" : std::wstring(name);
    };
    here_.user.set_text(key + L"Printer", L"PDFSettingFileName", L"gone.ps4");
    EXPECT_EQ(setting(512), L"standard.ps4");
    here_.user.set_text(key, L"settingfile_for_process_Printer", L"C:\\chosen.ps4");
    here_.user.set_text(key, L"settingfile_for_process_Other", L"");
    EXPECT_EQ(setting(14), L"C:\\chosen.ps4");
    EXPECT_EQ(setting(512, L"Other"), L"standard.ps4");
    EXPECT_EQ(setting(13), L"standard.ps4") << "a choice that has no room leaves the printer's own";
    EXPECT_EQ(setting(12), L"error") << "no room for the terminating zero";
}

TEST_F(Tessalo, NobodyIsAskedWhereNoWindowIsSeen) {
    const Variable watched(L"ZR_UNATTENDED", L"0");
    const ImportPatch no_dialog("LoadLibraryExW", always<static_cast<void*>(nullptr)>(), library_.get());
    const HWINSTA own = GetProcessWindowStation();
    const HWINSTA hidden = CreateWindowStationW(L"zr_test_hidden", 0, GENERIC_ALL, nullptr);
    for (const bool seen : {true, false}) {
        ASSERT_TRUE(seen || SetProcessWindowStation(hidden));
        EXPECT_EQ(ask(here_.folder.path()), seen ? L"" : here_.folder.file(L"Title.pdf"));
    }
    SetProcessWindowStation(own);
    CloseWindowStation(hidden);
}

TEST_F(Tessalo, VariableGoesBeforeTheIni) {
    for (const char* code : {"yes", "1"}) {  // a file each: the profile functions keep one in memory
        const std::wstring ini = here_.folder.write(L"ini" + std::to_wstring(*code),
                                                    std::string("[Dialog]\r\nUnattended=") + code);
        const Variable zero(L"ZR_UNATTENDED", L"0");
        EXPECT_FALSE(unattended(ini));
        SetEnvironmentVariableW(L"ZR_UNATTENDED", nullptr);
        EXPECT_EQ(unattended(ini), *code == '1');
    }
}

}  // namespace
