#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>
#include <prsht.h>
#include <shellapi.h>

#include "common/handle.h"
#include "companions/host/options.h"
#include "companions/host/renderer.h"

namespace {

using host::Command;
using host::Options;

host::ParsedOptions parse(std::initializer_list<const wchar_t*> words) {
    return host::parse_options(std::span(words.begin(), words.size()));
}

TEST(HostOptions, CommandsAreUnderstood) {
    const struct {
        const char* label;
        std::initializer_list<const wchar_t*> words;
        bool (*right)(const Options&);
    } rows[] = {
        {"help", {L"--help"}, [](const Options& o) { return o.command == Command::kHelp; }},
        {"help of a command",
         {L"print", L"f", L"--help"},
         [](const Options& o) { return o.command == Command::kHelp; }},
        {"install",
         {L"install", L"--from", L"C:\\tree", L"--notify-channels", L"10"},
         [](const Options& o) {
             return o.command == Command::kInstall && o.from == L"C:\\tree" && o.notify_channels == 10u;
         }},
        {"status",
         {L"status", L"--json"},
         [](const Options& o) { return o.command == Command::kStatus && o.json; }},
        {"print",
         {L"print", L"a b.txt", L"--title", L"T", L"--output", L"o.pdf", L"--setting", L"s"},
         [](const Options& o) {
             return o.command == Command::kPrint && o.file == L"a b.txt" && o.title == L"T" &&
                    o.output == L"o.pdf" && o.setting == L"s" && o.render && !o.keep_spool &&
                    o.threads == 0 && !o.trace_level;
         }},
        {"options before the file, the last of two counts",
         {L"print", L"--trace", L"1", L"--trace", L"5", L"--no-render", L"f"},
         [](const Options& o) { return o.file == L"f" && o.trace_level == 5u && !o.render; }},
        {"abort",
         {L"print", L"f", L"--abort-after-page", L"3"},
         [](const Options& o) { return o.abort_after_page == 3u; }},
        {"sheets",
         {L"properties", L"--press", L"cancel", L"--no-permission", L"--trace", L"5", L"--setting", L"s"},
         [](const Options& o) {
             return o.command == Command::kProperties && o.button == PSBTN_CANCEL && o.no_permission &&
                    o.trace_level == 5u && o.setting == L"s" && !o.printer_sheet;
         }},
        {"check",
         {L"check", L"a.ps4", L"--json", L"b.ps4"},
         [](const Options& o) {
             return o.command == Command::kCheck && o.setting_files.size() == 2 && o.json;
         }},
        {"threads",
         {L"print", L"--threads", L"8", L"--jobs", L"50"},
         [](const Options& o) { return o.threads == 8 && o.jobs == 50; }},
    };
    for (const auto& row : rows) {
        const host::ParsedOptions parsed = parse(row.words);
        EXPECT_EQ(parsed.fault, L"") << row.label;
        EXPECT_TRUE(row.right(parsed.options)) << row.label;
    }
}

TEST(HostOptions, WrongWordsAreNamed) {
    const struct {
        std::initializer_list<const wchar_t*> words;
        const wchar_t* fault;
    } rows[] = {
        {{}, L"no command given"},
        {{L"prnt"}, L"unknown command \"prnt\""},
        {{L"print"}, L"print needs a text file"},
        {{L"print", L"a", L"b"}, L"unexpected \"b\""},
        {{L"status", L"x"}, L"unexpected \"x\""},
        {{L"print", L"a", L"--from", L"x"}, L"unknown option --from"},
        {{L"print", L"a", L"--title"}, L"--title needs a value"},
        {{L"print", L"a", L"--output", L""}, L"--output does not take \"\""},
        {{L"print", L"a", L"--trace", L"-1"}, L"--trace does not take \"-1\""},
        {{L"print", L"a", L"--trace", L"4294967296"}, L"--trace does not take \"4294967296\""},
        {{L"print", L"a", L"--abort-after-page", L"0"}, L"--abort-after-page does not take \"0\""},
        {{L"properties", L"--press", L"help"}, L"--press does not take \"help\""},
        {{L"check"}, L"check needs a setting file"},
        {{L"diff", L"a"}, L"diff needs two setting files"},
        {{L"properties", L"x"}, L"unexpected \"x\""},
        {{L"print", L"--threads", L"8x"}, L"--threads does not take \"8x\""},
        {{L"print", L"--threads", L"65"}, L"--threads does not take \"65\""},
        {{L"print", L"a", L"--jobs", L"5"}, L"--jobs needs --threads"},
        {{L"print", L"a", L"--threads", L"2"}, L"--threads prints no file and takes no --setting"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parse(row.words).fault, row.fault);
}

// What the renderer's run-time library does with the line, done by the system's own function.
TEST(HostOptions, CommandLineIsReadBackWordForWord) {
    const std::vector<std::wstring> words = {L"C:\\Program Files\\x.exe",
                                             L"",
                                             L"a b",
                                             L"C:\\folder\\",
                                             L"say \"hi\"",
                                             L"\\\\\"",
                                             L"tab\there",
                                             L"pl\u00e4in"};
    int count = 0;
    const std::wstring line = host::command_line(words);
    qk::LocalMemory memory(CommandLineToArgvW(line.c_str(), &count));
    auto* const* read = static_cast<wchar_t**>(memory.get());
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(std::vector<std::wstring>(read, read + count), words);
}

}  // namespace
