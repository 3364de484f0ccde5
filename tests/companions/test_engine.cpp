// Running an engine, with other programs in Ghostscript's place.
#include <gtest/gtest.h>

#include <windows.h>

#include <string>

#include "companions/render/engine.h"
#include "companions/render/scratch_folder.h"
#include "companions/wine_layer.h"
#include "support/installation.h"
#include "support/variable.h"

namespace {

using companions::render::Engine;
using companions::render::ScratchFolder;

class EngineRun : public testing::Test {
protected:
    Engine::End run(const wchar_t* program, const std::vector<std::string>& arguments) {
        output_.clear();
        return Engine(program).run(arguments, scratch_.path(),
                                   [this](std::string_view bytes) { output_ += bytes; });
    }

    const ScratchFolder scratch_;
    std::string output_;
};

TEST_F(EngineRun, EndsAreTold) {
    if (!companions::wine::present())
        GTEST_SKIP() << "needs the Unix system below Wine";
    using End = Engine::End;
    const std::wstring renderer = Installation::built(L"zr_render.exe");
    const struct {
        const char* label;
        const wchar_t* program;
        std::vector<std::string> arguments;
        End end;
        const char* output;
    } rows[] = {
        {"done", L"/bin/sh", {"-c", "echo out; echo error >&2"}, End::kDone, "out\nerror\n"},
        {"arguments as they are",
         L"/bin/sh",
         {"-c", "echo \"$1\"", "x", "a \"b\" $c \xC3\xA9"},
         End::kDone,
         "a \"b\" $c \xC3\xA9\n"},
        {"nothing to read", L"/bin/sh", {"-c", "cat"}, End::kDone, ""},
        {"killed", L"/bin/sh", {"-c", "kill -9 $$"}, End::kStopped, ""},
        {"not a program", L"/etc/passwd", {}, End::kMissing, nullptr},
        {"missing Windows program", L"none.exe", {}, End::kMissing, ""},
        {"Windows program", renderer.c_str(), {"--help"}, End::kDone, nullptr},
        {"failed Windows program", renderer.c_str(), {"--thread", "a \"b\""}, End::kFailed, nullptr},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(run(row.program, row.arguments), row.end) << row.label;
        if (row.output) {
            EXPECT_EQ(output_, row.output) << row.label;
        }
    }
    EXPECT_NE(output_.find("cannot be a \"b\""), std::string::npos)
        << "quoted words arrive whole: " << output_;
}

TEST(ScratchFolders, OfKilledRunsGoWithTheNext) {
    const TempFolder temp;
    const Variable place(L"TMP", temp.path());
    const std::wstring own = L"zr_render_" + std::to_wstring(GetCurrentProcessId()) + L"_7";
    const struct {
        std::wstring folder, file;
        bool stays;
    } rows[] = {{L"zr_render_4294967292_0", L"options.txt", false},  // no process has it
                {L"zr_render_4294967292_1", L"password.txt", false},
                {L"zr_render_4294967292_2", L"another's.txt", true},
                {own, L"options.txt", true}};
    for (const auto& row : rows) {
        CreateDirectoryW(temp.file(row.folder).c_str(), nullptr);
        temp.write(row.folder + L"\\" + row.file, "secret");
    }
    { const ScratchFolder scratch; }
    for (const auto& row : rows)
        EXPECT_EQ(qk::is_folder(temp.file(row.folder)), row.stays) << qk::to_utf8(row.folder);
    EXPECT_EQ(temp.count(), 2u);
}

TEST_F(EngineRun, EndlessEngineIsStopped) {
    if (!companions::wine::present())
        GTEST_SKIP() << "needs the Unix system below Wine";
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
