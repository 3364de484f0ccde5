#include "companions/host/options.h"

#include <prsht.h>

#include <CLI/CLI.hpp>
#include <picojson.h>

#include <algorithm>
#include <iterator>

#include "common/ErrorNotify.h"
#include "common/qk/text.h"
#include "companions/command_line.h"

namespace host {

namespace {

using companions::add_text;

// The program's commands, whose words are written into an Options.
class Commands {
public:
    Commands(CLI::App& app, Options& options) : app_(app), to_(options) {
        add_install();
        add(Command::kUninstall, "uninstall", "takes away what install has set up");
        add(Command::kStatus, "status", "tells what is there and what is missing");
        add_print();
        add_properties();
        add_setting_files();
    }

private:
    CLI::App& add(Command command, const char* name, const char* help) {
        CLI::App* added = app_.add_subcommand(name, help);
        added->callback([this, command] { to_.command = command; });
        added->add_flag("--json", to_.json, "the report as one JSON object on the standard output");
        return *added;
    }

    void add_install() {
        CLI::App& install = add(Command::kInstall, "install",
                                "sets up the printer, its driver files and the installation folder, or "
                                "repairs what is outdated");
        add_text(install, "--from", to_.from, "the built tree; usual: the folder of this program");
        install.add_flag("--default", to_.make_default, "makes the printer the user's default");
        add_notify_channels(install);
    }

    void add_print() {
        CLI::App& print = add(Command::kPrint, "print",
                              "prints a text file: UTF-8, UTF-16 with a byte-order mark, or Windows-1252");
        add_text(print, "FILE", to_.file, "the text")->required();
        add_text(print, "--title", to_.title, "title of the document; usual: the file's name");
        add_text(print, "--output", to_.output,
                 "the PDF (a path that ends in .pdf) or the folder for it, with no dialog shown; a PDF of "
                 "that name is replaced; usual: the save dialog asks");
        print.add_option("--abort-after-page", to_.abort_after_page, "gives the job up after so many pages")
            ->check(companions::above_zero);
        print.add_flag_callback(
            "--no-render", [this] { to_.render = false; }, "leaves the spooled PostScript and makes no PDF");
        print.add_flag("--keep-spool", to_.keep_spool, "keeps the spooled PostScript beside making the PDF");
        add_notify_channels(print);
        add_setting_and_trace(print);
    }

    void add_properties() {
        CLI::App& sheet = add(Command::kProperties, "properties", "opens a sheet and tells what came back");
        sheet.add_flag_callback(
            "--document", [this] { to_.printer_sheet = false; },
            "the document's, as programs that print do (usual)");
        sheet.add_flag("--printer", to_.printer_sheet, "the printer's");
        sheet.add_flag("--direct", to_.direct,
                       "the document's, asked of the module itself and not through the print system");
        sheet
            .add_option_function<std::string>(
                "--press",
                [this](const std::string& name) { to_.button = name == "ok" ? PSBTN_OK : PSBTN_CANCEL; },
                "presses the button itself; usual: a user does")
            ->check(CLI::IsMember({"ok", "cancel"}));
        sheet.add_flag("--no-permission", to_.no_permission, "the document's sheet may change nothing");
        add_setting_and_trace(sheet);
    }

    void add_setting_files() {
        const auto add_files = [this](CLI::App& command) {
            const auto take = [this](const std::vector<std::string>& paths) {
                for (const std::string& path : paths)
                    to_.setting_files.push_back(qk::to_wide(path));
            };
            return command
                .add_option_function<std::vector<std::string>>(
                    "FILE", take, "print settings; to check also folders of them")
                ->required()
                ->multi_option_policy(CLI::MultiOptionPolicy::Throw);
        };
        add_files(add(Command::kCheck, "check",
                      "tells what is wrong with print settings (.ps4) and with the administrator's file "
                      "(.ps4a), and what the latter forces"));
        add_files(
            add(Command::kDiff, "diff", "tells in words what the second of two print settings has changed"))
            ->expected(2);
    }

    void add_notify_channels(CLI::App& command) {
        constexpr DWORD kAll = NotifyChannel::kMessageBox | NotifyChannel::kEventLog |
                               NotifyChannel::kDebugOutput | NotifyChannel::kLogFile;
        command
            .add_option("--notify-channels", to_.notify_channels,
                        "how failed jobs are told from now on, later ones and those of other programs too: "
                        "it is kept in the registry. The sum of 1 message box, 2 event log, 4 debug output, "
                        "8 log file (usual: 1)")
            ->check(CLI::Range(DWORD{0}, kAll));
    }
    void add_setting_and_trace(CLI::App& command) {
        add_text(command, "--setting", to_.setting, "print setting, by name or path; usual: the printer's");
        command.add_option("--trace", to_.trace_level,
                           "switches the module's call trace on and shows it: 1 entry points, 5 everything");
    }

    CLI::App& app_;
    Options& to_;
};

picojson::value json_app(const CLI::App& app) {
    picojson::object object;
    object["name"] = picojson::value(app.get_name());
    object["description"] = picojson::value(app.get_description());
    picojson::array options;
    for (const CLI::Option* option : app.get_options()) {
        picojson::object entry;
        entry["name"] = picojson::value(option->get_name(false, true));
        entry["description"] = picojson::value(option->get_description());
        entry["takes_value"] = picojson::value(option->get_items_expected_max() > 0);
        options.emplace_back(entry);
    }
    object["options"] = picojson::value(options);
    picojson::array commands;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        commands.push_back(json_app(*command));
    if (!commands.empty())
        object["commands"] = picojson::value(commands);
    return picojson::value(object);
}

// What stands behind "--" is a file, whatever it begins with.
std::vector<std::wstring> without_mark(std::span<const wchar_t* const> words) {
    std::vector<std::wstring> plain(words.begin(), words.end());
    if (const auto mark = std::ranges::find(plain, L"--"); mark != plain.end())
        for (auto at = plain.erase(mark); at != plain.end(); ++at)
            if (at->starts_with(L'-'))
                at->insert(0, L".\\");
    return plain;
}

}  // namespace

ParsedOptions parse_options(std::span<const wchar_t* const> words) {
    const std::vector<std::wstring> plain = without_mark(words);
    if (plain.empty())
        return {{}, L"no command given", {}};
    ParsedOptions parsed;
    CLI::App app(
        "Prints text files through the printer \"Corvanta Vantrix 8.0\" and plays the print system "
        "around its user-interface module.",
        "zr_print");
    app.footer(
        "exit codes: 0 done; 1 the job was refused, cancelled or failed, or faults or differences "
        "were found; 2 wrong arguments, or a file cannot be read; 3 the installation is incomplete; "
        "4 a fault of this program");
    companions::prepare(app);
    const Commands commands(app, parsed.options);
    std::vector<const wchar_t*> given;
    std::ranges::transform(plain, std::back_inserter(given), &std::wstring::c_str);
    if (std::wstring_view(given[0]) == L"help")
        given[0] = L"--help";
    companions::ReadWords read = companions::read_words(app, given);
    parsed.options.json = std::ranges::find(plain, L"--json") != plain.end();
    if (!read.help.empty() && parsed.options.json) {
        const auto asked = app.get_subcommands();
        read.help = qk::to_wide(json_app(asked.empty() ? app : *asked.front()).serialize(true));
    }
    parsed.help = std::move(read.help);
    parsed.fault = std::move(read.fault);
    if (parsed.help.empty() && app.get_subcommands().empty())
        parsed.fault = L"unknown command \"" + std::wstring(given[0]) + L"\"";
    return parsed;
}

}  // namespace host
