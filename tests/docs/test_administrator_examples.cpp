// Every example of docs/for-administrators.md does what its section says.
#include <regex>

#include "UI_dll/cpsui.h"
#include "common/ErrorNotify.h"
#include "common/qk/override_ini.h"
#include "common/rwPDFSet_functions.h"
#include "common/teskel_custom_2021.h"
#include "companions/host/setting_check.h"
#include "job/job_fixture.h"
#include "lib/devmode.h"

namespace {

using namespace std::string_view_literals;

struct Example {
    std::string section, kind, file, text;
};

std::vector<Example> examples_of(std::istringstream document) {
    std::vector<Example> examples;
    std::string section, words;
    bool open = false;
    for (std::string line; std::getline(document, line);)
        if (line.starts_with("```")) {
            if ((open = !open))
                std::istringstream(line.substr(3)) >> examples.emplace_back(section).kind >>
                    examples.back().file;
        } else if (open) {
            examples.back().text += line + "\r\n";
        } else if (line.starts_with("### ")) {
            section = line.substr(4);
        }
    return examples;
}

std::string replaced(std::string text, std::string_view from, std::string_view to) {
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

// Enters the lines of a registration file below the test's own hives.
void enter(const std::string& lines) {
    static const std::regex key_line(R"(\[(HKEY_\w+)\\(.*)\]\s*)"),
        value_line(R"x("(.*)"=(?:dword:(\w+)|"(.*)")\s*)x");
    std::istringstream file(lines);
    HKEY hive = nullptr;
    std::wstring key;
    std::smatch part;
    for (std::string line; std::getline(file, line);)
        if (std::regex_match(line, part, key_line)) {
            hive = part[1] == "HKEY_LOCAL_MACHINE" ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
            key = qk::to_wide(part[2].str());
        } else if (std::regex_match(line, part, value_line)) {
            const std::wstring text = qk::to_wide(replaced(part[3], "\\\\", "\\"));
            const auto number = static_cast<DWORD>(std::strtoul(part[2].str().c_str(), nullptr, 16));
            const bool is_number = part[2].matched;
            UserRegistry::set_below(hive, key, qk::to_wide(part[1].str()), is_number ? REG_DWORD : REG_SZ,
                                    is_number ? static_cast<const void*>(&number) : text.c_str(),
                                    is_number ? sizeof number : text.size() * 2 + 2);
        }
}

class AdministratorExamples : public JobTest {
protected:
    AdministratorExamples() {
        for (const wchar_t* name : {L"Shared", L"PrintLogs", L"Tools", L"Incoming", L"Outgoing"})
            ForceDirectories(drive_ + name);
        use_settings([](Settings& settings) { settings.summary()->Title = L"the user's"; });
        meddle = [this](dialog_library::WorkingRecord& record) {
            job_general = *static_cast<const Settings*>(record.settings)->general();
        };
    }

    // Puts an example where it belongs; its drive D: is a folder of the test's.
    void apply(const Example& example) const {
        const std::string drive = qk::to_utf8(drive_);
        const std::string text = example.kind == "ini"
                                     ? replaced(example.text, "D:\\", drive)
                                     : replaced(example.text, "D:\\\\", replaced(drive, "\\", "\\\\"));
        if (example.kind == "reg")
            return enter(text);
        if (example.kind == "json") {
            const std::wstring file = here.folder.write(qk::to_wide(example.file), "\xEF\xBB\xBF" + text);
            EXPECT_EQ(host::check_setting(file).faults, std::vector<std::wstring>());
        } else if (example.file == "DunmereVantrix.ini") {
            here.folder.write(L"Dunmere\\Vantrix2\\DunmereVantrix.ini", text);
        } else {
            ASSERT_EQ(example.file, "externalCallSetting.ini");
            here.write_external_calls(text);
        }
    }

    [[nodiscard]] ps::PrintSettingsAdmin loaded() const {
        ps::PrintSettingsAdmin settings;
        EXPECT_TRUE(settings.Load(here.folder.file(L"job.ps4")));
        EXPECT_EQ(settings.summary()->Title, L"the user's");
        return settings;
    }

    const std::wstring drive_ = here.folder.file(L"D\\");
    ps::General_impl job_general;
};

}  // namespace

TEST_F(AdministratorExamples, DoWhatTheDocumentSays) {
    using pd_tk::TeskelCustom2021;
    const std::vector<std::pair<std::string_view, std::function<bool()>>> sections = {
        {"The installation folder",
         [] { return qk::install_folder() == L"C:\\Program Files\\Corvanta\\Vantrix\\"; }},
        {"A folder of one's own for a user's settings",
         [&] { return GetAppDataPath(true) == drive_ + L"PrintSettings\\"; }},
        {"A setting for everybody",
         [] {
             Settings settings;
             return settings.Load(ResolveSettingFilePath(L"office")) && settings->PSName == L"Office, grey" &&
                    settings.color()->ColorMode == 1;
         }},
        {"The setting of a printer",
         [] { return GetSettingFileName(L"Corvanta Vantrix 8.0") == L"office.ps4"; }},
        {"The language",
         [&] {
             here.user.set_text(Installation::kKey, L"Language", L"");
             return qk::language_code() == L"ja";
         }},
        {"Only the settings page", &cpsui::only_settings_page},
        {"The common documents folder",
         [&] {
             return qk::OverrideIni().path() == drive_ + L"Shared\\Dunmere\\Vantrix2\\DunmereVantrix.ini";
         }},
        {"Forcing values",
         [&] {
             const auto settings = loaded();
             return settings.watermark()->Style == 1 && settings.watermark()->Text == L"INTERNAL";
         }},
        {"Folder and name of every PDF",
         [&] {
             run_job();
             return loaded().restriction().PDFFileName == L"scan.pdf" &&
                    job_general.OutputFolder == drive_ + L"Outgoing" && job_general.SaveStyle == 1;
         }},
        {"No other pages", &cpsui::only_settings_page},
        {"Steering jobs",
         [&] {
             run_job([] { Outbox::posted.clear(); });
             DriverDevmode caller = default_devmode(), got;
             return MergeDevmode(FakePrinter::handle(), &caller.dm, got) == 0 &&
                    got.dm.dmOrientation == DMORIENT_LANDSCAPE && Outbox::posted.at(0).wparam == 12 &&
                    job_general.OutputFolder == drive_ + L"Incoming\\";
         }},
        {"Event log and log file, no box",
         [&] {
             (void)ZRTK_ErrorNotify(L"", L"C:\\x.pdf", 1, 0, L"failed", L"");
             return Outbox::boxes.empty() && Outbox::events == std::vector<std::wstring>{L"failed"} &&
                    TempFolder::read(drive_ + L"PrintLogs\\Error_7.log").starts_with(raw_bytes(L"[7]"sv));
         }},
        {"A program after each document", [&] {
             here.folder.write(L"D\\Tools\\archive.exe", "");
             return TeskelCustom2021(L"x").HasExe(TeskelCustom2021::kDocEnd);
         }}};
    const auto examples = examples_of(
        std::istringstream(TempFolder::read(Installation::built(L"..\\test_data\\for-administrators.md"))));
    ASSERT_EQ(examples.size(), sections.size()) << "an example that no line here tries, or none";
    for (size_t i = 0; i < examples.size(); ++i) {
        SCOPED_TRACE(examples[i].section);
        ASSERT_EQ(examples[i].section, sections[i].first);
        // What earlier examples have moved and forced.
        for (const auto& [key, value] :
             {std::pair(Installation::kKey, L"PdfDllPath"),
              {L"SOFTWARE\\Dunmere\\Common\\SpecialFolder", L"CSIDL_COMMON_DOCUMENTS"}})
            here.machine.set_text(key, value, here.folder.path() + L"\\");
        here.set_number(HKEY_LOCAL_MACHINE, L"\\Special", L"HideSettingTab", 0);
        DeleteFileW(here.folder.file(L"administrator.ps4a").c_str());
        apply(examples[i]);
        EXPECT_TRUE(sections[i].second());
    }
}
