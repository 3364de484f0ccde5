// The renderer as a host runs it: a process of its own, the job's records in shared memory, the real engine.

#include "companions/reservation.h"
#include "companions/wine_layer.h"
#include "support/installation.h"
#include "support/render_process.h"

TEST_F(RenderProcess, SpoolBecomesThePdfOfTheRecord) {
    settings_.compression()->HighCompress = true;
    settings_.pdfVersion()->Version = 1;
    spool_ = folder_.write(L"100%d.ps", kTwoPages);
    ASSERT_EQ(run(L"--keep-spool"), kDone);
    EXPECT_EQ(result_.view()->pdf_file_name.find_text(), target_);
    EXPECT_TRUE(pdf().starts_with("%PDF-1.4"));
    settings_.general()->Linearize = true;
    settings_.watermark()->Style = ps::Watermark_impl::kPictureMark;
    settings_.watermark()->PictureFileName = L"C:\\none.png";
    const Variable tool(L"ZR_QPDF", L"/none/qpdf");
    ASSERT_EQ(run(L"--keep-spool"), kDone);
    for (const wchar_t* left : {L"high compression", L"the watermark, whose", L"not linearized, since qpdf"})
        EXPECT_NE(message().find(left), std::wstring::npos) << qk::to_utf8(message());
    EXPECT_TRUE(DeleteFileW(spool_.c_str())) << "it was to be kept";
}

// Old engines leave a hole where a title has characters beyond the first plane, and end early when they
// linearize.
TEST_F(RenderProcess, WhatIsKeptHasBeenOpenedAgain) {
    // The title, the password, whether it is linearized, the PDF version.
    const std::tuple<const wchar_t*, std::wstring, bool, uint32_t> rows[] = {
        {L"A \U0001F600 day", L"", true, 4},
        {L"A \U0001F600 day", L"", false, 4},
        {L"\U0001F600", L"us\u00E9r", true, 1},
        {L"a\xD83D", L"", true, 12},
        {L"(a\\\r\n", L"", true, 0}};
    for (const auto& [title, password, linearized, version] : rows) {
        SCOPED_TRACE(qk::to_utf8(title) + std::to_string(version));
        settings_.summary()->Title = settings_.summary()->Author = title;
        settings_.general()->Linearize = linearized;
        settings_.security()->MasterPassword = password.empty() ? L"" : L"own\" er";
        settings_.security()->UserPassword = password;
        settings_.pdfVersion()->Version = version;
        folder_.write(L"job.ps", kTwoPages);
        EXPECT_EQ(run(), kDone);
        EXPECT_EQ(pdf().find("/Linearized") != std::string::npos, linearized);
        EXPECT_EQ(pdf().find("/Encrypt") == std::string::npos, password.empty());
        EXPECT_EQ(folder_.count(), 2u) << "the PDF and the setting";
    }
}

// An engine that says it is done and leaves something else: nothing of it is kept.
TEST_F(RenderProcess, DamagedPdfIsNoSuccess) {
    const std::wstring old = folder_.write(L"\u65E5\u672C 100%d.pdf", "old");
    const std::string program = companions::wine::find_unix_path(folder_.write(L"gs", "")).value();
    settings_.pdfVersion()->Version = 1;  // its objects lie open in the file
    constexpr char kCut[] = "head -c 700 \"$out\" >\"$out.x\"; mv \"$out.x\" \"$out\"";
    // What becomes of the engine's PDF, in $out; what reads it again, what is said.
    const std::tuple<std::string, const wchar_t*, const wchar_t*> rows[] = {
        {kCut, L"qpdf", L"opening it again"},
        {"sed -i 's/Count 2/Count 3/' \"$out\"", L"qpdf", L"3 pages, not 2"},
        {kCut, L"/none/qpdf", L"end is missing"}};
    for (const auto& [after, qpdf, told] : rows) {
        folder_.write(L"gs",
                      "#!/bin/sh\nfor a; do case $a in -sOutputFile=*) out=${a#*=};; esac; done\n"
                      "out=$(printf %s \"$out\" | sed 's/%%/%/g')\ngs \"$@\" || exit\n" +
                          after + "\n");
        ASSERT_EQ(companions::wine::run_unix_program(std::vector<std::string>{"chmod", "+x", program}), 0);
        const Variable engine(L"ZR_GHOSTSCRIPT", qk::to_wide(program)), tool(L"ZR_QPDF", qpdf);
        folder_.write(L"job.ps", kTwoPages);
        EXPECT_EQ(run(), kFailed);
        EXPECT_EQ(error(), 1012u);
        EXPECT_NE(message().find(told), std::wstring::npos) << qk::to_utf8(message());
        EXPECT_EQ(TempFolder::read(old), "old");
    }
}

TEST_F(RenderProcess, FailuresAreToldAndLeaveTheOldFile) {
    using Job = RenderProcess;
    const struct {
        const char* spool;  // null: missing
        uint32_t error, win32_error;
        const wchar_t* message;
        void (*change)(Job&) = [](Job&) {};
    } rows[] = {
        {nullptr, 1002, ERROR_FILE_NOT_FOUND, L"print data"},
        {"", 1003, ERROR_INVALID_DATA, L"no pages"},
        {"%!PS\nquit\n", 1003, ERROR_INVALID_DATA, L"no pages"},
        {"%!PS\nshowpage bogus", 1004, ERROR_INVALID_DATA, L"/undefined in bogus"},
        {"\x01\x02 rubbish \xFF)", 1004, ERROR_INVALID_DATA, L"damaged"},
        {kTwoPages, 1001, ERROR_FILE_NOT_FOUND, L"C:\\none\\x.ps4",
         [](Job& job) { job.setting_ = L"C:\\none\\x.ps4"; }},
        {kTwoPages, 1008, ERROR_INVALID_PASSWORD, L"password",
         [](Job& job) {
             job.settings_.pdfVersion()->Version = ps::kPDF20;
             job.settings_.security()->UserPassword = std::wstring(128, L'x');
         }},
        {kTwoPages, 1009, ERROR_NOT_SUPPORTED, L"add a document",
         [](Job& job) { job.start_.view()->resume = 1; }},
        {kTwoPages, 1010, ERROR_INVALID_PARAMETER, L"names no PDF", [](Job& job) { job.target_.clear(); }},
        {kTwoPages, 1005, ERROR_PATH_NOT_FOUND, L"none\\x.pdf",
         [](Job& job) { job.target_ = job.folder_.file(L"none\\x.pdf"); }},
        {kTwoPages, 1005, ERROR_ACCESS_DENIED, L"100%d.pdf",
         [](Job& job) { job.lock_ = hold(job.target_, FILE_SHARE_READ); }},
        {kTwoPages, 1006, ERROR_FILE_NOT_FOUND, L"Ghostscript",
         [](Job&) { SetEnvironmentVariableW(L"ZR_GHOSTSCRIPT", L"/none/gs"); }}};
    const std::wstring old = folder_.write(L"\u65E5\u672C 100%d.pdf", "old");
    const std::wstring kept_setting = setting_;
    ASSERT_TRUE(settings_.Save(kept_setting));
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        row.spool ? (void)folder_.write(L"job.ps", row.spool) : (void)DeleteFileW(spool_.c_str());
        settings_ = {};
        target_ = old;
        setting_ = kept_setting;
        *start_.view() = {};
        row.change(*this);
        const size_t files = folder_.count();
        EXPECT_EQ(run(), kFailed);
        lock_.reset();
        SetEnvironmentVariableW(L"ZR_GHOSTSCRIPT", nullptr);
        EXPECT_EQ(std::tuple(error(), result_.view()->win32_error), std::tuple(row.error, row.win32_error));
        EXPECT_NE(message().find(row.message), std::wstring::npos) << qk::to_utf8(message());
        EXPECT_EQ(result_.view()->pdf_file_name.find_text(), target_);
        EXPECT_EQ(result_.view()->caption.find_text(), L"Corvanta Vantrix 8.0");
        EXPECT_EQ(TempFolder::read(old), "old");
        EXPECT_EQ(folder_.count(), files) << "nothing half-written stays";
    }
}

// Those that name a profile of Windows get one that is there everywhere.
TEST_F(RenderProcess, ReadySettingsMakePdfs) {
    const std::tuple<std::wstring, const wchar_t*> rows[] = {
        {L"smallest", nullptr},  {L"everyday", nullptr}, {L"quality", nullptr},
        {L"protected", nullptr}, {L"archive", L"srgb"},  {L"press", L"default_cmyk"}};
    for (const auto& [name, profile] : rows) {
        SCOPED_TRACE(qk::to_utf8(name));
        spool_ = folder_.write(L"job.ps", kTwoPages);
        EXPECT_TRUE(settings_.Load(Installation::built(L"Settings\\" + name + L".ps4")));
        if (profile)
            settings_.pdfVersion()->ICCFileName =
                qk::format(L"Z:\\usr\\share\\color\\icc\\ghostscript\\%s.icc", profile);
        EXPECT_EQ(run(), kDone) << qk::to_utf8(message());
        EXPECT_TRUE(pdf().starts_with("%PDF-"));
        DeleteFileW(target_.c_str());
    }
}

TEST_F(RenderProcess, ReservedNameGoesWithTheJobThatFails) {
    const std::tuple<uint64_t, const char*, bool> rows[] = {
        {companions::kFileReserved, "", false}, {0, "", true}, {companions::kFileReserved, "x", true}};
    for (const auto& [first_value, bytes, stays] : rows)
        for (const bool discards : {false, true}) {
            folder_.write(L"\u65E5\u672C 100%d.pdf", bytes);
            folder_.write(L"job.ps", "");
            start_.view()->first_value = first_value;
            EXPECT_EQ(run(discards ? L"--discard" : L""), discards ? kDone : kFailed);
            EXPECT_EQ(qk::is_file(target_), stays);
        }
}

TEST_F(RenderProcess, WrongCallsTouchNothing) {
    EXPECT_EQ(run_built(kRenderer, L"zr_render --thread " + std::to_wstring(thread_)), 2);
    EXPECT_EQ(run_built(kRenderer, L"zr_render --thread 4294967295 --printer P --spool s"), 3);
    EXPECT_EQ(error(), 0u);
}
