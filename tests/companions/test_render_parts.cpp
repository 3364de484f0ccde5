// The renderer's pure parts: what it tells the engine, what it reads there, what it tells the printing
// process.

#include "companions/render/engine.h"
#include "companions/render/engine_arguments.h"
#include "companions/render/engine_log.h"
#include "companions/render/letter_names.h"
#include "companions/render/result_record.h"
#include "companions/render/scratch_folder.h"
#include "companions/render/spool_text.h"

namespace {

using namespace companions::render;

TEST(RenderRules, PasswordsGoIntoTheOptionsOnly) {
    // The version, both passwords, the options; empty: none wanted; null: cannot be used.
    const std::tuple<uint32_t, std::wstring, const wchar_t*, const char*> rows[] = {
        {4, L"", L"", ""},
        {5, L"own", L"usr", ""},  // archives take none
        {4, L"a\"b", L"\u00E9", "-dOwnerPassword=<612262>\n-dUserPassword=<E9>\n-dEncryptionR=3"},
        {0, L"x", L"", "-dOwnerPassword=<78>\n-dEncryptionR=2\n-dKeyLength=40"},
        {4, std::wstring(40, L'1'), L"",  // 32 count
         "-dOwnerPassword=<3131313131313131313131313131313131313131313131313131313131313131>\n-d"},
        {4, L"x", L"a\n-dNOSAFER", nullptr}};
    for (const auto& [version, master, user, wanted] : rows) {
        SCOPED_TRACE(qk::to_utf8(master + L"|" + user));
        Corvanta::Vantrix::PrintSettings::PrintSettings settings;
        settings.pdfVersion()->Version = version;
        settings.security()->MasterPassword = master;
        settings.security()->UserPassword = user;
        EXPECT_EQ(wants_password(settings), !wanted || *wanted);
        const auto options = wants_password(settings) ? find_password_options(settings) : "";
        EXPECT_EQ(options.has_value(), wanted != nullptr);
        EXPECT_TRUE(!options || options->starts_with(wanted)) << *options;
        for (const std::string& argument : engine_arguments(settings, {}))
            EXPECT_EQ(argument.find("Password"), std::string::npos);
    }
}

// Letters one after another, or each ('^') or some ('|', far away) with a place of their own.
TEST(RenderRules, SpooledTextIsJoinedAndItsAddressesMarked) {
    const auto changed = [](const std::string& text, bool links) {
        const std::map<char, std::string> names = {
            {'.', "period"},    {' ', "space"},      {'/', "slash"},
            {'(', "parenleft"}, {')', "parenright"}, {'_', "underscore"},
            {'E', "eacute"},    {'~', "germandbls"}, {'J', "uni65E5"}};
        std::string lines, result;
        int x = 0;
        for (const char letter : text)
            if (letter == '^' || letter == '|')
                lines += std::to_string(x += letter == '^' ? 7 : 90) + " 700 moveto\n";
            else
                lines += '/' + (names.contains(letter) ? names.at(letter) : std::string(1, letter)) +
                         " glyphshow\n";
        change_text(
            "%!PS\n%%EndProlog\n /Encoding 256 array 0 1 255{1 index exch /.notdef put} for\n def\n"
            "[10 0 0 -10 0 0]\n" +
                lines + "pgsave restore\n",
            links, [&](std::string_view piece) { result += piece; });
        return result;
    };
    const struct {
        std::string text, first, second;  // pieces of the lines
        bool marked = true;
    } rows[] = {
        {"~www.a~.deJx~", "ZRshow\n0 ZRat\n(www.a\xDF.de) ZRshow\n1 ZRat\n/uni65E5 glyphshow\n",
         "(http://www.a%C3%9F.de) 0 0.00 -10.00 ZRlinked\npgsave"},
        {"x (www.a.de/b_(c)). y", "0]\n(x \\() ZRshow\n0 ZRat\n(www.", "c\\)) ZRshow\n1 ZRat\n(\\). y) ZR"},
        {"^w^w^w|^.^a^.^d^e", "700 moveto\n(w) ZRshow\n14 700 moveto\n(w) ZRshow\n21", "", false},
        {"www.a.de|www.b.de", "e) ZRshow\n1 ZRat\n90 700", "(http://www.b.de) 2 0.00"},
        {"aEJb", "\n /Encoding ZRcodes\n def\n", "]\n(a\xE9) ZRshow\n/uni65E5 glyphshow\n(b) ZRshow\npg",
         false}};
    for (const auto& row : rows) {
        const std::string marked = changed(row.text, true);
        EXPECT_NE(marked.find(row.first), std::string::npos) << marked;
        EXPECT_NE(marked.find(row.second), std::string::npos) << marked;
        EXPECT_EQ(marked.find("ZRshow\n1 ZRat") != std::string::npos, row.marked) << marked;
        EXPECT_EQ(changed(row.text, false).find("ZRat"), std::string::npos);
    }
    EXPECT_TRUE(has_wine_text("%!PS\n%%Creator: Wine PostScript Driver\n%%EndComments\n%%EndProlog\n"));
    EXPECT_FALSE(has_wine_text("%!PS\n%%EndComments\n%%EndProlog\n/w glyphshow\n")) << "another program's";
}

TEST(RenderRules, GlyphsAreNamedForTheirLetters) {
    const std::wstring letters = L"\u00C0\u00FF\u017E\u0386\u03CE\u0401\u0410\u044F\u1E9E";
    size_t at = 0;
    for (const char* name : {"Agrave", "ydieresis", "zcaron", "Alphatonos", "omegatonos", "afii10023",
                             "afii10017", "afii10097", "uni1E9E",  // these have one
                             "afii10050", "multiply", "uni65E5", "tcommaaccent", "unicode", "-", ""})
        EXPECT_EQ(find_letter(name), letters.c_str()[std::min(at++, letters.size())]) << name;
}

TEST(RenderRules, EnginesOutputIsReadInPiecesOfAnySize) {
    constexpr std::string_view kLog =
        "note\nzr:page 1\ntyped by the document zr:page 2\r\nError: /undefined in bogus  \n"
        "Error: later\nzr:pages 3\nzr:page 2\nzr:page 9";
    for (const size_t piece : {size_t{1}, size_t{7}, kLog.size()}) {
        EngineLog log;
        log.feed(std::string(9'999'999, 'x') + '\n');
        for (size_t at = 0; at < kLog.size(); at += piece)
            log.feed(kLog.substr(at, piece));
        EXPECT_EQ(log.pages(), 3u) << "a line counts when it is complete";
        EXPECT_EQ(log.error(), "Error: /undefined in bogus");
    }
}

// The other ends are met with the real engine.
TEST(RenderRules, EndsOfTheEngineAreNotAllTheDocumentsFault) {
    using End = Engine::End;
    const std::tuple<End, const char*, ResultCode> rows[] = {
        {End::kDone, "zr:page 1\nError: printed by the document\n", ResultCode::kDone},
        {End::kStopped, "zr:page 1\nError: /ioerror in --showpage--\n", ResultCode::kTargetUnwritable},
        {End::kFailed, "**** Could not open the file /x.tmp .\n", ResultCode::kTargetUnwritable},
        {End::kStopped, "zr:page 1\n", ResultCode::kEngineStopped}};
    for (const auto& [end, output, code] : rows) {
        EngineLog log;
        log.feed(output);
        EXPECT_EQ(engine_result(end, log), code) << output;
    }
}

std::wstring text_in(const qk::MsWString& field, const FilledRecord& filled) {
    if (field.capacity <= qk::MsWString::kInPlace)
        return {field.text, field.length};
    const auto at = (reinterpret_cast<uint64_t>(field.address) - 0x10000) / sizeof(wchar_t);
    EXPECT_LE(at + field.length, filled.texts.size());
    return {filled.texts.data() + at, field.length};
}

TEST(RenderRules, TextsOfTheResultGoWhereTheyFit) {
    const std::wstring whole = L"The print data is dam\U0001F5A8ged", caption = L"Caption text",
                       file = L"C:\\out\\file.pdf";
    // The arena's units, 0 for none; the caption, the file, the message.
    const std::tuple<size_t, std::wstring, std::wstring, std::wstring> rows[] = {
        {100, caption, file, whole},
        {0, L"", L"", L""},
        {13 + 16 + 23, caption, file, whole.substr(0, 21)},  // not cut inside a pair
        {13 + 15, caption, L"", whole.substr(0, 14)}};
    for (const auto& [units, wanted_caption, wanted_file, message] : rows) {
        const TextArena arena{1, 0x10000, units * sizeof(wchar_t) + 1};
        const auto filled = fill_record({ResultCode::kSpoolDamaged, 13, whole, caption, file},
                                        units ? std::optional(arena) : std::nullopt);
        EXPECT_LE(filled.texts.size(), units);
        EXPECT_EQ(text_in(filled.record.caption, filled), wanted_caption) << units;
        EXPECT_EQ(text_in(filled.record.pdf_file_name, filled), wanted_file) << units;
        EXPECT_EQ(text_in(filled.record.message, filled), message) << units;
    }
}

struct EngineRun : testing::Test {
    Engine::End run(const wchar_t* program, const std::vector<std::string>& arguments) {
        output_.clear();
        return Engine(program).run(arguments, scratch_.path(), [this](auto bytes) { output_ += bytes; });
    }

    const ScratchFolder scratch_;
    std::string output_;
};

TEST_F(EngineRun, EndsAreTold) {
    const std::wstring renderer = Installation::built(L"zr_render.exe");
    const std::tuple<const wchar_t*, std::vector<std::string>, Engine::End, const char*> rows[] = {
        {L"/bin/sh", {"-c", "echo \"$1\" >&2", "x", "a \"b\" $c"}, Engine::End::kDone, "a \"b\" $c\n"},
        {L"/bin/sh", {"-c", "cat"}, Engine::End::kDone, ""},
        {L"/bin/sh", {"-c", "kill -9 $$"}, Engine::End::kStopped, ""},
        {L"/etc/passwd", {}, Engine::End::kMissing, nullptr},
        {renderer.c_str(), {"--help"}, Engine::End::kDone, nullptr},
        {renderer.c_str(), {"--thread", "a\\\"b\" c\\", "--discard"}, Engine::End::kFailed, nullptr}};
    for (const auto& [program, arguments, end, output] : rows) {
        EXPECT_EQ(run(program, arguments), end) << program;
        EXPECT_EQ(output_, output ? output : output_) << program;
    }
    EXPECT_NE(output_.find("a\\\"b\" c\\"), std::string::npos) << "words arrive whole: " << output_;
}

TEST(ScratchFolders, OfKilledRunsGoWithTheNext) {
    const TempFolder temp;
    const Variable place(L"TMP", temp.path());
    const std::tuple<std::wstring, std::wstring, bool> rows[] = {
        {L"zr_render_4294967292_0", L"password.txt", false},  // no process has it
        {L"zr_render_4294967292_1", L"gs_a1B2c3", false},
        {L"zr_render_4294967292_2", L"another's.txt", true},
        {L"zr_render_" + std::to_wstring(GetCurrentProcessId()) + L"_7", L"options.txt", true}};
    for (const auto& [name, file, stays] : rows) {
        CreateDirectoryW(temp.file(name).c_str(), nullptr);
        temp.write(name + L"\\" + file, "secret");
    }
    { const ScratchFolder scratch; }
    for (const auto& [name, file, stays] : rows)
        EXPECT_EQ(qk::is_folder(temp.file(name)), stays) << qk::to_utf8(name);
    EXPECT_EQ(temp.count(), 2u);
}

TEST_F(EngineRun, EndlessEngineIsStopped) {
    const Variable seconds(L"ZR_RENDER_SECONDS", L"1");
    EXPECT_EQ(run(L"/bin/sh", {"-c", "while :; do :; done"}), Engine::End::kStopped);
    EXPECT_EQ(run(qk::module_path(nullptr).c_str(),
                  {"--gtest_also_run_disabled_tests", "--gtest_filter=EngineHelper.DISABLED_NeverEnds"}),
              Engine::End::kStopped);
}

// Not a test but the program that the one above runs.
TEST(EngineHelper, DISABLED_NeverEnds) {
    Sleep(INFINITE);
}

}  // namespace
