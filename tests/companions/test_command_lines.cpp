// The command lines of the host program and the renderer.
#include <picojson.h>

#include "companions/host/options.h"
#include "companions/render/arguments.h"

namespace {

using Words = std::vector<const wchar_t*>;

TEST(CommandLines, OrderIsFreeAndTheLastOfTwoCounts) {
    const Words words = {L"print", L"--trace",     L"1",      L"--trace",
                         L"5",     L"--no-render", L"--json", L"/a \u65e5.txt"};
    const auto [options, fault, help] = host::parse_options(words);
    EXPECT_EQ(fault + help, L"");
    EXPECT_EQ(std::tuple(options.command, options.file, options.trace_level),
              std::tuple(host::Command::kPrint, L"/a \u65e5.txt", 5u));
    EXPECT_TRUE(options.json && !options.render);
    EXPECT_NE(host::parse_options(Words{L"print", L"f", L"--help"}).help.find(L"--abort-after-page"),
              std::wstring::npos);
    EXPECT_EQ(host::parse_options(Words{L"print", L"--json", L"--", L"-5.txt"}).options.file, L".\\-5.txt");
    EXPECT_EQ(host::parse_options(Words{L"check", L"a", L"--json", L"--", L"--b"}).options.setting_files,
              (std::vector<std::wstring>{L"a", L".\\--b"}));
    picojson::value json;
    EXPECT_EQ(picojson::parse(json, qk::to_utf8(host::parse_options(Words{L"help", L"--json"}).help)), "");
}

TEST(CommandLines, WrongWordsAreNamed) {
    // Of the renderer when the first has dashes; what the fault names, and why.
    const std::tuple<Words, const wchar_t*, const wchar_t*> rows[] = {
        {{}, L"command", L"no"},
        {{L"prnt"}, L"\"prnt\"", L"unknown"},
        {{L"print"}, L"FILE", L"required"},
        {{L"print", L"a", L"--trace", L"4294967296"}, L"--trace", L"4294967296"},
        {{L"print", L"a", L"--abort-after-page", L"0"}, L"--abort-after-page", L"above 0"},
        {{L"diff", L"a", L"b", L"c"}, L"FILE", L"2"},
        {{L"--thread", L"7", L"--discard", L"--notify", L"7:65536"}, L"--notify", L"required"},
        {{L"--thread", L"7", L"--notify", L"7:0:64"}, L"--notify", L"above 0"}};
    for (const auto& [words, option, why] : rows) {
        const bool renders = !words.empty() && words[0][0] == L'-';
        const std::wstring told =
            renders ? companions::render::parse_arguments(words).fault : host::parse_options(words).fault;
        EXPECT_NE(told.find(option), std::wstring::npos) << qk::to_utf8(told);
        EXPECT_NE(told.find(why), std::wstring::npos) << qk::to_utf8(told);
    }
    const auto [good, fault, help] = companions::render::parse_arguments(Words{
        L"--thread", L"0x10", L"--printer", L"P", L"--spool", L"/s", L"--notify", L"7:0x10000:9999999"});
    EXPECT_EQ(fault, L"");
    EXPECT_EQ(std::tuple(good.thread, good.arena->address, good.arena->bytes),
              std::tuple(16u, 0x10000u, companions::render::kMostArenaBytes));
}

}  // namespace
