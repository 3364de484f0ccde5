#include <gtest/gtest.h>

#include <windows.h>

#include <shellapi.h>

#include "common/qk/handle.h"
#include "companions/command_line.h"
#include "companions/host/options.h"

namespace {
using host::Command;

host::ParsedOptions parse(std::initializer_list<const wchar_t*> words) {
    return host::parse_options(std::span(words.begin(), words.size()));
}

TEST(HostOptions, OrderIsFreeAndTheLastOfTwoCounts) {
    const auto parsed = parse({L"print", L"--trace", L"1", L"--trace", L"5", L"--no-render", L"a b.txt"});
    EXPECT_EQ(parsed.fault, L"");
    EXPECT_EQ(parsed.options.command, Command::kPrint);
    EXPECT_EQ(parsed.options.file, L"a b.txt");
    EXPECT_EQ(parsed.options.trace_level, 5u);
    EXPECT_FALSE(parsed.options.render);
    EXPECT_EQ(parse({L"print", L"f", L"--help"}).options.command, Command::kHelp);
}

TEST(HostOptions, WrongWordsAreNamed) {
    const struct {
        std::initializer_list<const wchar_t*> words;
        const wchar_t* fault;
    } rows[] = {
        {{}, L"no command given"},
        {{L"print"}, L"print needs a text file"},
        {{L"print", L"a", L"b"}, L"unexpected \"b\""},
        {{L"print", L"a", L"--from", L"x"}, L"unknown option --from"},
        {{L"print", L"a", L"--title"}, L"--title needs a value"},
        {{L"print", L"a", L"--trace", L"4294967296"}, L"--trace does not take \"4294967296\""},
        {{L"print", L"a", L"--abort-after-page", L"0"}, L"--abort-after-page does not take \"0\""},
        {{L"diff", L"a"}, L"diff needs two setting files"},
        {{L"print", L"--threads", L"65"}, L"--threads does not take \"65\""},
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
    const std::wstring line = companions::command_line(words);
    qk::LocalMemory memory(CommandLineToArgvW(line.c_str(), &count));
    auto* const* read = static_cast<wchar_t**>(memory.get());
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(std::vector<std::wstring>(read, read + count), words);
}

}  // namespace
