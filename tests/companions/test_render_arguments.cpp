// The renderer's pure parts: its command line, what it tells the engine, what it tells the printing process.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "companions/render/arguments.h"
#include "companions/render/engine_arguments.h"
#include "companions/render/engine_log.h"
#include "companions/render/pdfmark.h"
#include "companions/render/render_job.h"
#include "companions/render/result_record.h"

namespace {

using namespace companions::render;
using Corvanta::Vantrix::PrintSettings::PrintSettings;

TEST(RenderArguments, CommandLines) {
    using Words = std::vector<const wchar_t*>;
    const struct {
        const char* label;
        Words words;
        const wchar_t* fault;
    } rows[] = {
        {"all",
         {L"--thread", L"0x1F", L"--printer", L"P", L"--spool", L"s", L"--notify", L"7:0x10000:64"},
         L""},
        {"discard needs no spool", {L"--thread", L"9", L"--discard"}, L""},
        {"nothing", {}, L"--thread is missing"},
        {"no printer", {L"--thread", L"9", L"--spool", L"s"}, L"--printer is missing"},
        {"no spool", {L"--thread", L"9", L"--printer", L"P"}, L"--spool is missing"},
        {"thread zero", {L"--thread", L"0"}, L"--thread cannot be 0"},
        {"thread with a tail", {L"--thread", L"12x"}, L"--thread cannot be 12x"},
        {"thread too large", {L"--thread", L"4294967296"}, L"--thread cannot be 4294967296"},
        {"negative thread", {L"--thread", L"-1"}, L"--thread cannot be -1"},
        {"no value", {L"--thread"}, L"--thread needs a value"},
        {"empty value", {L"--spool", L""}, L"--spool cannot be empty"},
        {"arena without size", {L"--notify", L"7:65536"}, L"--notify cannot be 7:65536"},
        {"arena at null", {L"--notify", L"7:0:64"}, L"--notify cannot be 7:0:64"},
        {"unknown", {L"--thread", L"9", L"--fast"}, L"unknown argument --fast"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parse_arguments(row.words).fault, row.fault) << row.label;
    const auto all = parse_arguments(rows[0].words).arguments;
    EXPECT_EQ(all.thread, 0x1Fu);
    ASSERT_TRUE(all.arena);
    EXPECT_EQ(all.arena->process, 7u);
    EXPECT_EQ(all.arena->address, 0x10000u);
    EXPECT_EQ(all.arena->bytes, 64u);
}

TEST(RenderPdfmark, TextsOfEveryLanguageBecomeUtf16) {
    const struct {
        std::wstring text;
        const char* hex;
    } rows[] = {
        {L"", "<FEFF>"},
        {L"A)\\", "<FEFF00410029005C>"},
        {L"\u65E5\u00E9", "<FEFF65E500E9>"},
        {L"\U0001F5A8", "<FEFFD83DDDA8>"},
        {L"\xD83D!", "<FEFFFFFD0021>"},
        {L"\xDDA8", "<FEFFFFFD>"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(postscript_text(row.text), row.hex);
}

bool has(const std::vector<std::string>& arguments, const char* argument) {
    return std::ranges::find(arguments, argument) != arguments.end();
}

TEST(RenderEngineArguments, SettingsReadAsArguments) {
    const struct {
        const char* label;
        void (*change)(PrintSettings&);
        const char* argument;
    } rows[] = {
        {"default version", [](PrintSettings&) {}, "-dCompatibilityLevel=1.7"},
        {"oldest version", [](PrintSettings& s) { s.pdfVersion()->Version = 0; }, "-dCompatibilityLevel=1.3"},
        {"archive version", [](PrintSettings& s) { s.pdfVersion()->Version = 5; },
         "-dCompatibilityLevel=1.4"},
        {"unknown version", [](PrintSettings& s) { s.pdfVersion()->Version = 99; },
         "-dCompatibilityLevel=1.7"},
        {"plain", [](PrintSettings& s) { s.general()->Linearize = false; }, "-dFastWebView=false"},
        {"threshold below target", [](PrintSettings& s) { s.compression()->Gray->ResolutionThreshold = 10; },
         "-dGrayImageDownsampleThreshold=1.00"},
        {"target zero", [](PrintSettings& s) { s.compression()->Color->ResolutionTarget = 0; },
         "-dColorImageDownsampleThreshold=10.00"},
        {"mono is never averaged", [](PrintSettings&) {}, "-dMonoImageDownsampleType=/Subsample"},
        {"no downsampling", [](PrintSettings& s) { s.compression()->Color->DownSamplingMethod = 0; },
         "-dDownsampleColorImages=false"},
        {"grey", [](PrintSettings& s) { s.color()->ColorMode = 1; }, "-sColorConversionStrategy=Gray"},
        {"percent signs are no page numbers", [](PrintSettings&) {}, "-sOutputFile=/100%%/a%%d.pdf"},
    };
    const EngineFiles files{"", "/100%/a%d.pdf", "p.ps", "/100%/s.ps", "e.ps"};
    for (const auto& row : rows) {
        PrintSettings settings;
        row.change(settings);
        const auto arguments = engine_arguments(settings, files);
        EXPECT_TRUE(has(arguments, row.argument)) << row.label;
        EXPECT_EQ(std::vector<std::string>(arguments.end() - 3, arguments.end()),
                  (std::vector<std::string>{"p.ps", "/100%/s.ps", "e.ps"}))
            << row.label;
    }
    const auto with_options = engine_arguments(PrintSettings(), {"o.txt", "a.pdf", "p.ps", "s.ps", "e.ps"});
    EXPECT_TRUE(has(with_options, "@o.txt"));
    EXPECT_TRUE(has(with_options, "-dFastWebView=false")) << "the engine cannot linearize what it encrypts";
}

TEST(RenderEngineArguments, PasswordsGoIntoTheOptionsOnly) {
    const struct {
        const char* label;
        uint32_t version;
        std::wstring master;
        std::wstring user;
        bool wanted;
        const char* options;  // null: cannot be used
    } rows[] = {
        {"none", 4, L"", L"", false, ""},
        {"archive versions take none", 5, L"own", L"usr", false, ""},
        {"both", 4, L"a\"b", L"\u00E9", true,
         "-dOwnerPassword=<612262>\n-dUserPassword=<E9>\n-dEncryptionR=3"},
        {"master only", 12, L"x", L"", true, "-dOwnerPassword=<78>\n-dEncryptionR=3"},
        {"user only", 4, L"", L"x", true, "-dOwnerPassword=<78>\n-dUserPassword=<78>\n-dEncryptionR=3"},
        {"40 bits", 0, L"x", L"", true, "-dOwnerPassword=<78>\n-dEncryptionR=2\n-dKeyLength=40"},
        {"32 characters count", 4, std::wstring(40, L'1'), L"", true,
         "-dOwnerPassword=<3131313131313131313131313131313131313131313131313131313131313131>\n-d"},
        {"not in Latin-1", 12, L"\u65E5", L"", true, nullptr},
        {"control character", 4, L"x", L"a\n-dNOSAFER", true, nullptr},
    };
    for (const auto& row : rows) {
        PrintSettings settings;
        settings.pdfVersion()->Version = row.version;
        settings.security()->MasterPassword = row.master;
        settings.security()->UserPassword = row.user;
        EXPECT_EQ(wants_password(settings), row.wanted) << row.label;
        const auto options = find_password_options(settings);
        if (row.wanted) {
            EXPECT_EQ(
                options ? options->substr(0, row.options ? std::string(row.options).size() : 0) : "<none>",
                row.options ? row.options : "<none>")
                << row.label;
        }
        for (const std::string& argument : engine_arguments(settings, {}))
            EXPECT_EQ(argument.find("Password"), std::string::npos) << row.label;
    }
}

TEST(RenderEngineArguments, PermissionsOfBothEncryptions) {
    const struct {
        const char* label;
        bool pdf13;
        void (*change)(Corvanta::Vantrix::PrintSettings::Security_impl&);
        uint32_t bits;
    } rows[] = {
        {"40 bits by default: notes only", true, [](auto&) {}, 0xFFFFFFE0},
        {"40 bits, print", true, [](auto& s) { s.PDF13_DisallowPrint = false; }, 0xFFFFFFE4},
        {"128 bits by default: forms and reading aloud", false, [](auto&) {}, 0xFFFFF3C0},
        {"coarse print", false, [](auto& s) { s.PrintPermission = 1; }, 0xFFFFF3C4},
        {"fine print", false, [](auto& s) { s.PrintPermission = 2; }, 0xFFFFFBC4},
        {"copying reads aloud too", false,
         [](auto& s) {
             s.AllowCopyContent = true;
             s.AllowAccessFromScreenReader = false;
         },
         0xFFFFF3D0},
        {"all editing", false, [](auto& s) { s.EditPermission = 5; }, 0xFFFFF7E8},
        {"codes beyond the lists", false, [](auto& s) { s.EditPermission = s.PrintPermission = 99; },
         0xFFFFFFEC},
    };
    for (const auto& row : rows) {
        Corvanta::Vantrix::PrintSettings::Security_impl security;
        row.change(security);
        EXPECT_EQ(static_cast<uint32_t>(permission_bits(security, row.pdf13)), row.bits) << row.label;
    }
}

TEST(RenderEngineArguments, OnlyWishesThatAreNotDoneAreNamed) {
    PrintSettings settings;
    EXPECT_TRUE(unsupported_wishes(settings).empty());
    settings.watermark()->Text = L"not shown";
    settings.color()->ColorMode = 1;
    settings.compression()->Color->ResolutionTarget = 72;
    EXPECT_TRUE(unsupported_wishes(settings).empty());
    settings.watermark()->Style = 1;
    settings.color()->ColorMode = 2;
    settings.compression()->Gray->JpegQuality = 10;
    settings.openAction()->HideMenu = true;
    EXPECT_EQ(unsupported_wishes(settings).size(), 4u);
}

TEST(RenderEngineLog, PiecesOfAnySize) {
    constexpr std::string_view kLog =
        "note\nzr:page 1\ntyped by the document zr:page 2\r\nError: /undefined in bogus  \n"
        "Error: later\nzr:pages 3\nzr:page 2\nzr:page 9";
    for (const size_t piece : {size_t{1}, size_t{7}, kLog.size()}) {
        EngineLog log;
        for (size_t at = 0; at < kLog.size(); at += piece)
            log.feed(kLog.substr(at, piece));
        EXPECT_EQ(log.pages(), 3u) << "a line counts when it is complete";
        EXPECT_EQ(log.error(), "Error: /undefined in bogus");
    }
    EngineLog endless;
    for (int i = 0; i < 1000; ++i)
        endless.feed(std::string(10000, 'x'));
    endless.feed("\nzr:page 5\n");
    EXPECT_EQ(endless.pages(), 5u);
}

TEST(RenderEngineLog, EndsAreNotAllTheDocumentsFault) {
    using End = Engine::End;
    const struct {
        End end;
        const char* output;
        ResultCode code;
    } rows[] = {
        {End::kDone, "zr:page 1\nError: printed by the document\n", ResultCode::kDone},
        {End::kDone, "", ResultCode::kNoPages},
        {End::kMissing, "", ResultCode::kEngineMissing},
        {End::kFailed, "zr:page 1\nError: /undefined in x\n", ResultCode::kSpoolDamaged},
        {End::kFailed, "Error: /ioerror in --showpage--\n", ResultCode::kTargetUnwritable},
        {End::kStopped, "zr:page 1\nError: /ioerror in --showpage--\n", ResultCode::kTargetUnwritable},
        {End::kFailed, "**** Could not open the file /x.tmp .\n", ResultCode::kTargetUnwritable},
        {End::kStopped, "zr:page 1\n", ResultCode::kEngineStopped},
    };
    for (const auto& row : rows) {
        EngineLog log;
        log.feed(row.output);
        EXPECT_EQ(engine_result(row.end, log), row.code) << row.output;
    }
}

std::wstring text_in(const qk::MsWString& field, const FilledRecord& filled, const TextArena& arena) {
    if (field.capacity <= qk::MsWString::kInPlace)
        return {field.text, field.length};
    const auto at = (reinterpret_cast<uint64_t>(field.address) - arena.address) / sizeof(wchar_t);
    EXPECT_LE(at + field.length, filled.texts.size());
    return {filled.texts.data() + at, field.length};
}

TEST(RenderResultRecord, TextsGoWhereTheyFit) {
    const std::wstring message = L"The print data is dam\U0001F5A8ged";
    const struct {
        const char* label;
        size_t units;  // of the arena; 0: none
        std::wstring caption;
        std::wstring file;
        std::wstring message;
    } rows[] = {
        {"room for all", 100, L"Caption text", L"C:\\out\\file.pdf", message},
        {"short texts stand in the record", 0, L"Short", L"a.pdf", L"Failed"},
        {"no arena", 0, L"Caption text", L"C:\\out\\file.pdf", message},
        {"message cut", 13 + 16 + 20, L"Caption text", L"C:\\out\\file.pdf", message.substr(0, 19)},
        {"message not cut inside a pair", 13 + 16 + 23, L"Caption text", L"C:\\out\\file.pdf",
         message.substr(0, 21)},
        {"file name does not fit", 13 + 15, L"Caption text", L"C:\\out\\file.pdf", message.substr(0, 14)},
        {"hardly any room", 3, L"Caption text", L"C:\\out\\file.pdf", message},
    };
    for (const auto& row : rows) {
        const bool in_record = row.caption.size() <= 7;
        Result result{ResultCode::kSpoolDamaged, 13, in_record ? row.message : message, row.caption,
                      row.file};
        const TextArena arena{1, 0x10000, row.units * sizeof(wchar_t) + 1};
        const auto filled = fill_record(result, row.units ? std::optional(arena) : std::nullopt);
        EXPECT_LE(filled.texts.size(), row.units) << row.label;
        EXPECT_EQ(filled.record.error_code, 1004u) << row.label;
        EXPECT_EQ(filled.record.win32_error, 13u) << row.label;
        const bool any = row.units > 13 || in_record;
        EXPECT_EQ(text_in(filled.record.caption, filled, arena), any ? row.caption : L"") << row.label;
        const bool file_fits = row.units >= 13 + 16 || in_record;
        EXPECT_EQ(text_in(filled.record.pdf_file_name, filled, arena), file_fits ? row.file : L"")
            << row.label;
        EXPECT_EQ(text_in(filled.record.message, filled, arena), any ? row.message : L"") << row.label;
    }
}

}  // namespace
