#include "companions/host/options.h"

#include <prsht.h>

#include <charconv>

#include "common/qk/text.h"

namespace host {

const wchar_t kUsageText[] =
    L"zr_print: prints text files through the printer \"Corvanta Vantrix 8.0\" and plays the print system\n"
    L"around its user-interface module.\n"
    L"\n"
    L"usage: zr_print install [--from DIR] [--notify-channels N] [--default] [--json]\n"
    L"       zr_print uninstall [--json]\n"
    L"       zr_print status [--json]\n"
    L"       zr_print print FILE [options] [--json]\n"
    L"       zr_print print --threads N [--jobs M] [--output DIR] [--json]\n"
    L"       zr_print properties [--document | --printer] [options] [--json]\n"
    L"       zr_print check FILE... [--json]\n"
    L"       zr_print diff FILE FILE [--json]\n"
    L"       zr_print help\n"
    L"\n"
    L"install   sets up the printer, its driver files and the installation folder, or repairs what is "
    L"outdated\n"
    L"  --from DIR           the built tree; usual: the folder of this program\n"
    L"  --notify-channels N  how failed jobs are told, kept in the registry; the sum of 1 message box,\n"
    L"                       2 event log, 4 debug output, 8 log file (usual: 1)\n"
    L"  --default            makes the printer the user's default\n"
    L"print     prints a text file: UTF-8, UTF-16 with a byte-order mark, or Windows-1252\n"
    L"  --title TEXT         title of the document; usual: the file's name\n"
    L"  --output PATH        the PDF (PATH ends in .pdf) or the folder for it, with no dialog shown; a PDF "
    L"of\n"
    L"                       that name is replaced; usual: the save dialog asks\n"
    L"  --setting NAME|PATH  print setting of this job; usual: the printer's\n"
    L"  --trace LEVEL        switches the module's call trace on and shows it: 1 entry points, 5 everything\n"
    L"  --abort-after-page N gives the job up after N pages\n"
    L"  --no-render          leaves the spooled PostScript and makes no PDF\n"
    L"  --keep-spool         keeps the spooled PostScript beside making the PDF\n"
    L"  --notify-channels N  as for install\n"
    L"  --threads N          no pages: N threads each start and end --jobs M jobs, and what the module has\n"
    L"                       published is checked (usual: 1 job)\n"
    L"properties  opens a sheet and tells what came back\n"
    L"  --document           the document's, as programs that print do (usual)\n"
    L"  --printer            the printer's\n"
    L"  --direct             the document's, asked of the module itself and not through the print system\n"
    L"  --press ok|cancel    presses the button itself; usual: a user does\n"
    L"  --no-permission      the document's sheet may change nothing\n"
    L"  --setting NAME|PATH  the print setting in force while it is open\n"
    L"  --trace LEVEL        as for print\n"
    L"check     tells what is wrong with print settings (.ps4) and with the administrator's file (.ps4a), "
    L"and\n"
    L"          what the latter forces\n"
    L"diff      tells in words what the second of two print settings has changed\n"
    L"--json                 the report as one JSON object on the standard output\n"
    L"\n"
    L"exit codes: 0 done; 1 the job was refused, cancelled or failed, or faults or differences were found;\n"
    L"2 wrong arguments, or a file cannot be read; 3 the installation is incomplete; 4 a fault of this "
    L"program\n";

namespace {

struct CommandName {
    std::wstring_view word;
    Command command;
};
constexpr CommandName kCommands[] = {
    {L"help", Command::kHelp},       {L"--help", Command::kHelp},           {L"-h", Command::kHelp},
    {L"install", Command::kInstall}, {L"uninstall", Command::kUninstall},   {L"status", Command::kStatus},
    {L"print", Command::kPrint},     {L"properties", Command::kProperties}, {L"check", Command::kCheck},
    {L"diff", Command::kDiff}};

std::optional<size_t> find_count(std::wstring_view text, size_t most) {
    const std::string digits = qk::to_utf8(text);
    size_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size() || digits.empty() || number > most)
        return std::nullopt;
    return number;
}

// Each setter writes what follows the option; false for a text that the option does not take.
using Setter = bool (*)(Options&, const std::wstring&);

bool set_number(std::optional<DWORD>& target, const std::wstring& text) {
    const auto number = find_count(text, 0xFFFFFFFF);
    if (number)
        target = static_cast<DWORD>(*number);
    return number.has_value();
}

bool set_from_one(size_t& target, const std::wstring& text, size_t most) {
    const auto number = find_count(text, most);
    if (!number || *number == 0)
        return false;
    target = *number;
    return true;
}

bool set_text(std::wstring& target, const std::wstring& text) {
    target = text;
    return !text.empty();
}

bool set_button(std::optional<int>& target, std::wstring_view text) {
    if (text != L"ok" && text != L"cancel")
        return false;
    target = text == L"ok" ? PSBTN_OK : PSBTN_CANCEL;
    return true;
}

struct OptionName {
    std::wstring_view word;
    Command command;
    Setter set;  // null: the option takes nothing
    void (*flag)(Options&);
};

constexpr size_t kMostThreads = 64;
constexpr size_t kMostJobs = 100000;

constexpr OptionName kOptions[] = {
    {L"--from", Command::kInstall, [](Options& o, const std::wstring& t) { return set_text(o.from, t); },
     nullptr},
    {L"--notify-channels", Command::kInstall,
     [](Options& o, const std::wstring& t) { return set_number(o.notify_channels, t); }, nullptr},
    {L"--notify-channels", Command::kPrint,
     [](Options& o, const std::wstring& t) { return set_number(o.notify_channels, t); }, nullptr},
    {L"--title", Command::kPrint, [](Options& o, const std::wstring& t) { return set_text(o.title, t); },
     nullptr},
    {L"--output", Command::kPrint, [](Options& o, const std::wstring& t) { return set_text(o.output, t); },
     nullptr},
    {L"--setting", Command::kPrint, [](Options& o, const std::wstring& t) { return set_text(o.setting, t); },
     nullptr},
    {L"--trace", Command::kPrint,
     [](Options& o, const std::wstring& t) { return set_number(o.trace_level, t); }, nullptr},
    {L"--abort-after-page", Command::kPrint,
     [](Options& o, const std::wstring& t) {
         return set_from_one(o.abort_after_page.emplace(0), t, SIZE_MAX);
     },
     nullptr},
    {L"--threads", Command::kPrint,
     [](Options& o, const std::wstring& t) { return set_from_one(o.threads, t, kMostThreads); }, nullptr},
    {L"--jobs", Command::kPrint,
     [](Options& o, const std::wstring& t) { return set_from_one(o.jobs, t, kMostJobs); }, nullptr},
    {L"--setting", Command::kProperties,
     [](Options& o, const std::wstring& t) { return set_text(o.setting, t); }, nullptr},
    {L"--trace", Command::kProperties,
     [](Options& o, const std::wstring& t) { return set_number(o.trace_level, t); }, nullptr},
    {L"--press", Command::kProperties,
     [](Options& o, const std::wstring& t) { return set_button(o.button, t); }, nullptr},
    {L"--document", Command::kProperties, nullptr, [](Options& o) { o.printer_sheet = false; }},
    {L"--printer", Command::kProperties, nullptr, [](Options& o) { o.printer_sheet = true; }},
    {L"--direct", Command::kProperties, nullptr, [](Options& o) { o.direct = true; }},
    {L"--no-permission", Command::kProperties, nullptr, [](Options& o) { o.no_permission = true; }},
    {L"--default", Command::kInstall, nullptr, [](Options& o) { o.make_default = true; }},
    {L"--no-render", Command::kPrint, nullptr, [](Options& o) { o.render = false; }},
    {L"--keep-spool", Command::kPrint, nullptr, [](Options& o) { o.keep_spool = true; }},
};

const OptionName* find_option(std::wstring_view word, Command command) noexcept {
    for (const OptionName& option : kOptions)
        if (option.word == word && option.command == command)
            return &option;
    return nullptr;
}

std::wstring check_print(const Options& options) {
    if (options.threads == 0 && options.file.empty())
        return L"print needs a text file";
    if (options.threads == 0 && options.jobs != 1)
        return L"--jobs needs --threads";
    if (options.threads != 0 && !(options.file + options.setting).empty())
        return L"--threads prints no file and takes no --setting";
    return {};
}

std::wstring check_settings(const Options& options) {
    if (options.command == Command::kCheck && options.setting_files.empty())
        return L"check needs a setting file";
    if (options.command == Command::kDiff && options.setting_files.size() != 2)
        return L"diff needs two setting files";
    return {};
}

// Reads the words behind the command.
class Parser {
public:
    explicit Parser(std::span<const wchar_t* const> words) : words_(words) {}

    ParsedOptions parse(Command command) {
        parsed_.options.command = command;
        while (at_ < words_.size() && parsed_.fault.empty())
            take(words_[at_++]);
        if (parsed_.fault.empty() && command == Command::kPrint)
            parsed_.fault = check_print(parsed_.options);
        else if (parsed_.fault.empty())
            parsed_.fault = check_settings(parsed_.options);
        return std::move(parsed_);
    }

private:
    void take(const std::wstring& word) {
        if (word == L"--help" || word == L"-h")
            parsed_.options.command = Command::kHelp;
        else if (word == L"--json")
            parsed_.options.json = true;
        else if (word.starts_with(L"--"))
            take_option(word);
        else if (parsed_.options.command == Command::kPrint && parsed_.options.file.empty())
            parsed_.options.file = word;
        else if (takes_setting_files())
            parsed_.options.setting_files.push_back(word);
        else
            parsed_.fault = L"unexpected \"" + word + L"\"";
    }

    [[nodiscard]] bool takes_setting_files() const noexcept {
        return parsed_.options.command == Command::kCheck || parsed_.options.command == Command::kDiff;
    }

    void take_option(const std::wstring& word) {
        const OptionName* option = find_option(word, parsed_.options.command);
        if (!option)
            parsed_.fault = L"unknown option " + word;
        else if (option->flag)
            option->flag(parsed_.options);
        else if (at_ == words_.size())
            parsed_.fault = word + L" needs a value";
        else if (const std::wstring value = words_[at_++]; !option->set(parsed_.options, value))
            parsed_.fault = word + L" does not take \"" + value + L"\"";
    }

    std::span<const wchar_t* const> words_;
    size_t at_ = 0;
    ParsedOptions parsed_;
};

}  // namespace

ParsedOptions parse_options(std::span<const wchar_t* const> words) {
    if (words.empty())
        return {{}, L"no command given"};
    for (const CommandName& name : kCommands)
        if (name.word == words[0])
            return Parser(words.subspan(1)).parse(name.command);
    return {{}, L"unknown command \"" + std::wstring(words[0]) + L"\""};
}

}  // namespace host
