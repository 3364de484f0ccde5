#include <gtest/gtest.h>

#include <algorithm>

#include "common/handle.h"
#include "common/paths.h"
#include "common/registry.h"
#include "companions/host/host_error.h"
#include "companions/host/output_target.h"
#include "companions/host/sheet_host.h"
#include "companions/host/stage_files.h"
#include "companions/host/text_file.h"
#include "support/temp_folder.h"
#include "support/user_registry.h"

namespace {

using host::CopyOutcome;
using host::ExitCode;

template <class Action>
ExitCode fault_of(Action action) {
    try {
        action();
        return ExitCode::kDone;
    } catch (const host::HostError& error) {
        EXPECT_FALSE(error.text.empty());
        return error.exit_code;
    }
}

void set_age(const std::wstring& path, unsigned days) {
    const qk::FileObj file(CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ, nullptr,
                                       OPEN_EXISTING, 0, nullptr));
    constexpr uint64_t kDay = 864'000'000'000;
    constexpr uint64_t kNow = 134'000'000'000'000'000;  // in 2025
    const uint64_t time = kNow - days * kDay;
    const FILETIME written = {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
    ASSERT_TRUE(SetFileTime(file.get(), nullptr, nullptr, &written));
}

TEST(HostFiles, TargetsAreBroughtUpToDate) {
    const struct {
        const char* label;
        const char* target;  // null: not there
        unsigned target_days;
        bool keep_newer;
        CopyOutcome outcome;
        const char* after;
    } rows[] = {
        {"missing", nullptr, 0, false, CopyOutcome::kCopied, "new"},
        {"the same, of any age", "new", 9, false, CopyOutcome::kUpToDate, "new"},
        {"older", "old", 9, false, CopyOutcome::kReplaced, "new"},
        {"as long, newer", "odd", 1, false, CopyOutcome::kReplaced, "new"},
        {"edited", "edited", 1, true, CopyOutcome::kKept, "edited"},
        {"an older setting", "old", 9, true, CopyOutcome::kReplaced, "new"},
    };
    for (const auto& row : rows) {
        const TempFolder folder;
        const host::FileCopy copy = {folder.write(L"source", "new"), folder.file(L"deep\\er\\target"),
                                     row.keep_newer};
        set_age(copy.source, 5);
        if (row.target) {
            ASSERT_TRUE(ForceDirectories(folder.file(L"deep\\er")));
            folder.write(L"deep\\er\\target", row.target);
            set_age(copy.target, row.target_days);
        }
        EXPECT_EQ(host::bring_up_to_date(copy), row.outcome) << row.label;
        EXPECT_EQ(TempFolder::read(copy.target), row.after) << row.label;
    }
}

// As the loader holds a library: it may be renamed, not overwritten.
TEST(HostFiles, TargetInUseIsMovedAside) {
    const TempFolder folder;
    const host::FileCopy copy = {folder.write(L"source", "new"), folder.write(L"target", "old"), false};
    qk::FileObj user(CreateFileW(copy.target.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                 nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(user);
    EXPECT_EQ(host::bring_up_to_date(copy), CopyOutcome::kReplaced);
    EXPECT_EQ(TempFolder::read(copy.target), "new");
    user.reset();
    EXPECT_EQ(host::bring_up_to_date(copy), CopyOutcome::kUpToDate);
    EXPECT_EQ(folder.count(), 2u) << "what was moved aside goes with the next installation";
}

TEST(HostFiles, TargetThatCannotBeReplacedStays) {
    const TempFolder folder;
    const host::FileCopy copy = {folder.write(L"source", "new"), folder.write(L"target", "old"), false};
    qk::FileObj user(CreateFileW(copy.target.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_EQ(fault_of([&] { host::bring_up_to_date(copy); }), ExitCode::kInstallation);
    user.reset();
    EXPECT_EQ(TempFolder::read(copy.target), "old");
    EXPECT_EQ(folder.count(), 2u);
}

TEST(HostFiles, SheetHostTakesTheSystemsPlaceAndGivesItBack) {
    const std::string wines = std::string(0x40, 'M') + "Wine builtin DLL";
    const struct {
        const char* label;
        std::string target, kept;  // empty: not there
        std::string after;
        bool taken_back;
    } rows[] = {
        {"Wine's own", wines, "", "ours", true},
        {"an earlier one of ours", "earlier", wines, "ours", true},
        {"Wine's own, after an update of it", wines, "old", "ours", true},
        {"somebody else's", "another", "", "another", false},
    };
    for (const auto& row : rows) {
        const UserRegistry registry;
        const TempFolder folder;
        const std::wstring source = folder.write(L"source.dll", "ours");
        const std::wstring target = folder.write(L"target.dll", row.target);
        if (!row.kept.empty())
            folder.write(L"target.dll.wine", row.kept);
        const auto preference = [] {
            return qk::registry::find_text(HKEY_CURRENT_USER, L"Software\\Wine\\DllOverrides", L"compstui");
        };
        EXPECT_FALSE(host::install_sheet_host(source, target).empty()) << row.label;
        EXPECT_EQ(TempFolder::read(target), row.after) << row.label;
        EXPECT_EQ(preference().has_value(), row.taken_back) << row.label;
        EXPECT_EQ(host::remove_sheet_host(target), row.taken_back) << row.label;
        EXPECT_EQ(TempFolder::read(target), row.taken_back ? wines : row.target) << row.label;
        EXPECT_FALSE(qk::is_file(target + L".wine")) << row.label;
        EXPECT_FALSE(preference()) << row.label;
    }
}

TEST(HostFiles, PlanNamesWhatIsMissing) {
    const TempFolder folder;
    const std::wstring stage = folder.path() + L"\\";
    ASSERT_TRUE(ForceDirectories(folder.file(L"Language")) &&
                ForceDirectories(folder.file(L"Settings\\legacy")));
    const wchar_t* const needed[] = {L"ZR_UI80.dll", L"Language\\zrtk_res_en.dll", L"Settings\\standard.ps4",
                                     L"Tessalo80.dll", L"zr_render.exe"};
    for (const wchar_t* name : needed) {
        EXPECT_EQ(fault_of([&] {
                      static_cast<void>(host::plan_copies(stage, {L"I\\", L"D\\"}));
                  }),
                  ExitCode::kInstallation)
            << "without " << name;
        folder.write(name, "x");
    }
    folder.write(L"Language\\zrtk_res_ja.dll", "x");
    folder.write(L"Settings\\legacy\\old.printSetting3", "x");
    std::vector<std::wstring> targets;
    for (const host::FileCopy& copy : host::plan_copies(stage, {L"I\\", L"D\\"}))
        targets.push_back(copy.target + (copy.keep_newer ? L" (kept)" : L""));
    std::ranges::sort(targets);
    const std::vector<std::wstring> expected = {L"D\\Language\\zrtk_res_en.dll",
                                                L"D\\Language\\zrtk_res_ja.dll",
                                                L"D\\ZR_UI80.dll",
                                                L"I\\Language\\zrtk_res_en.dll",
                                                L"I\\Language\\zrtk_res_ja.dll",
                                                L"I\\Settings\\legacy\\old.printSetting3 (kept)",
                                                L"I\\Settings\\standard.ps4 (kept)",
                                                L"I\\Tessalo80.dll",
                                                L"I\\zr_render.exe"};
    EXPECT_EQ(targets, expected);
}

std::wstring environment(const wchar_t* name) {
    wchar_t text[MAX_PATH] = {};
    return GetEnvironmentVariableW(name, text, MAX_PATH) ? text : L"";
}

// The variables of the dialog library, as they were before for the tests after this one.
class HostOutput : public testing::Test {
protected:
    ~HostOutput() override {
        for (const auto& [name, text] : kept_)
            SetEnvironmentVariableW(name, text.empty() ? nullptr : text.c_str());
    }

private:
    const std::pair<const wchar_t*, std::wstring> kept_[2] = {
        {L"ZR_UNATTENDED", environment(L"ZR_UNATTENDED")},
        {L"ZR_OUTPUT_FOLDER", environment(L"ZR_OUTPUT_FOLDER")}};
};

TEST_F(HostOutput, FolderTakesTheLibrarysNames) {
    const TempFolder folder;
    const host::OutputTarget target(folder.file(L"new\\folder"));
    EXPECT_TRUE(target.unattended());
    EXPECT_EQ(environment(L"ZR_OUTPUT_FOLDER"), folder.file(L"new\\folder"));
    EXPECT_EQ(environment(L"ZR_UNATTENDED"), L"1");
    EXPECT_TRUE(qk::is_folder(folder.file(L"new\\folder")));
    EXPECT_EQ(target.settle(L"C:\\x\\title.pdf"), L"C:\\x\\title.pdf");
}

TEST_F(HostOutput, FileTakesItsNameAtTheEnd) {
    const TempFolder folder;
    folder.write(L"wanted.PDF", "older");
    {
        const host::OutputTarget target(folder.file(L"wanted.PDF"));
        const std::wstring work = environment(L"ZR_OUTPUT_FOLDER");
        EXPECT_NE(work, folder.path());
        EXPECT_TRUE(qk::is_folder(work));
        host::OutputTarget nobody(L"");
        EXPECT_FALSE(nobody.unattended());
        const std::wstring made =
            folder.write(work.substr(folder.path().size() + 1) + L"\\Title.pdf", "newer");
        EXPECT_EQ(target.settle(made), folder.file(L"wanted.PDF"));
        EXPECT_EQ(fault_of([&] { static_cast<void>(target.settle(made)); }), ExitCode::kJobFailed)
            << "moved already";
    }
    EXPECT_EQ(TempFolder::read(folder.file(L"wanted.PDF")), "newer");
    EXPECT_EQ(folder.count(), 1u) << "the job's own folder is gone";
}

TEST(HostFiles, TextFilesThatCannotBeReadAreNamed) {
    const TempFolder folder;
    EXPECT_EQ(host::read_text_file(folder.write(L"some.txt", "a\0b")), "a");
    EXPECT_EQ(host::read_text_file(folder.write(L"empty.txt", "")), "");
    const std::wstring locked = folder.write(L"locked.txt", "x");
    const qk::FileObj user(CreateFileW(locked.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    const std::wstring large = folder.write(L"large.txt", "");
    {
        const qk::FileObj file(
            CreateFileW(large.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        SetFilePointer(file.get(), static_cast<LONG>(host::kMostTextBytes + 1), nullptr, FILE_BEGIN);
        ASSERT_TRUE(SetEndOfFile(file.get()));
    }
    for (const std::wstring& path :
         {folder.file(L"missing.txt"), folder.path(), locked, large, std::wstring()})
        EXPECT_EQ(fault_of([&] { static_cast<void>(host::read_text_file(path)); }), ExitCode::kUsage);
}

}  // namespace
