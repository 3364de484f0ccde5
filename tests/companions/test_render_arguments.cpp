// The renderer's pure parts: its command line, what it tells the engine, what it tells the printing process.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
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

TEST(RenderArguments, WrongNumbersAreNamed) {
    const struct {
        const wchar_t *option, *value;
    } rows[] = {{L"--thread", L"0"},       {L"--thread", L"12x"},    {L"--thread", L"4294967296"},
                {L"--notify", L"7:65536"}, {L"--notify", L"7:0:64"}, {L"--notify", L"0:65536:64"}};
    for (const auto& row : rows) {
        const std::vector<const wchar_t*> words = {row.option, row.value};
        EXPECT_EQ(parse_arguments(words).fault, std::wstring(row.option) + L" cannot be " + row.value);
    }
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
        {"archive version", [](PrintSettings& s) { s.pdfVersion()->Version = 5; },
         "-dCompatibilityLevel=1.4"},
        {"target zero", [](PrintSettings& s) { s.compression()->Color->ResolutionTarget = 0; },
         "-dColorImageDownsampleThreshold=10.00"},
        {"mono is never averaged", [](PrintSettings&) {}, "-dMonoImageDownsampleType=/Subsample"},
        {"no downsampling", [](PrintSettings& s) { s.compression()->Color->DownSamplingMethod = 0; },
         "-dDownsampleColorImages=false"},
        {"ASCII crashes where pages are not compressed",
         [](PrintSettings& s) { s.compression()->ASCIIFormat = true; }, "-dCompressPages=true"},
        {"PDF 2.0 by qpdf", [](PrintSettings& s) { s.pdfVersion()->Version = 12; },
         "-dCompatibilityLevel=1.7"},
        {"percent signs are no page numbers", [](PrintSettings&) {}, "-sOutputFile=/100%%/a%%d.pdf"},
    };
    const EngineFiles files{"", "/100%/a%d.pdf", "p.ps", "/100%/s.ps", "e.ps", {}, true};
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
    Corvanta::Vantrix::PrintSettings::Security_impl security;
    const auto bits = [&](bool pdf13) { return static_cast<uint32_t>(permission_bits(security, pdf13)); };
    EXPECT_EQ(bits(true), 0xFFFFFFE0) << "by default notes only";
    EXPECT_EQ(bits(false), 0xFFFFF3C0) << "by default forms and reading aloud";
    security.PDF13_DisallowPrint = false;
    security.PrintPermission = 1;
    security.AllowCopyContent = true;
    security.AllowAccessFromScreenReader = false;
    EXPECT_EQ(bits(true), 0xFFFFFFE4);
    EXPECT_EQ(bits(false), 0xFFFFF3D4) << "copying reads aloud too";
    security.EditPermission = security.PrintPermission = 99;
    EXPECT_EQ(bits(false), 0xFFFFFFFC) << "codes beyond the lists are their last ones";
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
        {End::kFailed, "Error: /ioerror in --showpage--\n", ResultCode::kTargetUnwritable},
        {End::kStopped, "zr:page 1\nError: /ioerror in --showpage--\n", ResultCode::kTargetUnwritable},
        {End::kFailed, "**** Could not open the file /x.tmp .\n", ResultCode::kTargetUnwritable},
        {End::kStopped, "zr:page 1\n", ResultCode::kEngineStopped},
        {End::kFailed, "GS: Movie not permitted in PDF/A, aborting conversion\nError: /unknownerror\n",
         ResultCode::kStandardUnmet},
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
    const std::wstring whole = L"The print data is dam\U0001F5A8ged", caption = L"Caption text",
                       file = L"C:\\out\\file.pdf";
    const struct {
        const char* label;
        size_t units;  // of the arena; 0: none
        std::wstring caption, file, message;
    } rows[] = {
        {"room for all", 100, caption, file, whole},
        {"no arena", 0, L"", L"", L""},
        {"message not cut inside a pair", 13 + 16 + 23, caption, file, whole.substr(0, 21)},
        {"file name does not fit", 13 + 15, caption, L"", whole.substr(0, 14)},
    };
    for (const auto& row : rows) {
        const TextArena arena{1, 0x10000, row.units * sizeof(wchar_t) + 1};
        const auto filled = fill_record({ResultCode::kSpoolDamaged, 13, whole, caption, file},
                                        row.units ? std::optional(arena) : std::nullopt);
        EXPECT_LE(filled.texts.size(), row.units) << row.label;
        EXPECT_EQ(filled.record.error_code, 1004u) << row.label;
        EXPECT_EQ(filled.record.win32_error, 13u) << row.label;
        EXPECT_EQ(text_in(filled.record.caption, filled, arena), row.caption) << row.label;
        EXPECT_EQ(text_in(filled.record.pdf_file_name, filled, arena), row.file) << row.label;
        EXPECT_EQ(text_in(filled.record.message, filled, arena), row.message) << row.label;
    }
}

}  // namespace
