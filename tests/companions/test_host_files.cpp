// Files that the host program reads, copies and replaces.

#include "companions/host/host_error.h"
#include "companions/host/printer_setup.h"
#include "companions/host/renderer.h"
#include "companions/host/setting_choice.h"
#include "companions/host/sheet_host.h"
#include "companions/host/stage_files.h"
#include "companions/host/text_file.h"

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

void set_age(const std::filesystem::path& path, unsigned days) {
    last_write_time(path, std::filesystem::file_time_type::clock::now() - days * std::chrono::hours(24));
}

TEST(HostFiles, TargetsAreBroughtUpToDate) {
    // The target (null: not there) and its days (the source has 5), whether it is kept when it is newer, what
    // is done, the target then.
    const std::tuple<const char*, unsigned, bool, CopyOutcome, const char*> rows[] = {
        {nullptr, 0, false, CopyOutcome::kCopied, "new"}, {"new", 9, false, CopyOutcome::kUpToDate, "new"},
        {"old", 9, false, CopyOutcome::kReplaced, "new"}, {"odd", 1, false, CopyOutcome::kReplaced, "new"},
        {"mine", 1, true, CopyOutcome::kKept, "mine"},    {"old", 9, true, CopyOutcome::kReplaced, "new"}};
    for (const auto& [target, days, keeps, outcome, after] : rows) {
        const TempFolder folder;
        const host::FileCopy copy = {folder.write(L"source", "new"), folder.file(L"deep\\er\\target"), keeps};
        set_age(copy.source, 5);
        if (target) {
            ASSERT_TRUE(ForceDirectories(folder.file(L"deep\\er")));
            set_age(folder.write(L"deep\\er\\target", target), days);
        }
        EXPECT_EQ(host::bring_up_to_date(copy), outcome);
        EXPECT_EQ(TempFolder::read(copy.target), after);
    }
}

// As the loader holds a library, it may be renamed but not overwritten; others may not even be renamed.
TEST(HostFiles, TargetInUseIsMovedAsideOrStays) {
    for (const DWORD share : {DWORD{FILE_SHARE_READ | FILE_SHARE_DELETE}, DWORD{0}}) {
        const TempFolder folder;
        const host::FileCopy copy = {folder.write(L"source", "new"), folder.write(L"target", "old"), false};
        qk::FileObj user = hold(copy.target, share);
        EXPECT_EQ(fault_of([&] { host::bring_up_to_date(copy); }),
                  share ? ExitCode::kDone : ExitCode::kInstallation);
        user.reset();
        EXPECT_EQ(TempFolder::read(copy.target), share ? "new" : "old");
        folder.write(L"target.new4294967292", "half");  // no process has that number
        EXPECT_EQ(host::bring_up_to_date(copy), share ? CopyOutcome::kUpToDate : CopyOutcome::kReplaced);
        EXPECT_EQ(folder.count(), 2u) << "what is left of one installation goes with the next";
    }
}

TEST(HostFiles, SheetHostTakesTheSystemsPlaceAndGivesItBack) {
    const std::string wines = std::string(0x40, 'M') + "Wine builtin DLL";
    const std::tuple<std::string, std::string, bool> rows[] = {
        // the target, what is kept, whether it is taken
        {wines, "", true},
        {"earlier", wines, true},
        {wines, "old", true},
        {"somebody else's", "", false}};
    for (const auto& [found, kept, taken] : rows) {
        const UserRegistry registry;
        const TempFolder folder;
        const std::wstring source = folder.write(L"source.dll", "ours");
        const std::wstring target = folder.write(L"target.dll", found);
        if (!kept.empty())
            folder.write(L"target.dll.wine", kept);
        const auto preference = [] {
            return qk::registry::find_text(HKEY_CURRENT_USER, L"Software\\Wine\\DllOverrides", L"compstui");
        };
        EXPECT_FALSE(host::install_sheet_host(source, target).empty());
        EXPECT_EQ(TempFolder::read(target), taken ? "ours" : found);
        EXPECT_EQ(preference().has_value(), taken);
        EXPECT_EQ(host::remove_sheet_host(target), taken);
        EXPECT_EQ(TempFolder::read(target), taken ? wines : found);
        EXPECT_FALSE(qk::is_file(target + L".wine") || preference());
    }
}

TEST(HostFiles, FormerDefaultPrinterComesBack) {
    // Whether this printer was the default, the default now that it is gone; what is chosen.
    const std::tuple<bool, const wchar_t*, std::wstring> rows[] = {
        {true, L"First,winspool,LPT1:", L"Second"},  // the spooler's own choice
        {false, L"First,winspool,LPT1:", L""},       // the user's
        {false, L"Corvanta Vantrix 8.0,winspool,VANTRIX:", L"Second"}};
    for (const auto& [was_default, now, wanted] : rows) {
        const UserRegistry user;
        user.set_text(L"Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows", L"Device", now);
        user.set_text(Installation::kKey, L"FormerDefaultPrinter", L"Second");
        std::wstring chosen;
        const Intercept<decltype(SetDefaultPrinterW)> choose(
            "SetDefaultPrinterW", [&chosen](auto* name) { return chosen = name, TRUE; });
        EXPECT_EQ(host::restore_default_printer(was_default), wanted);
        EXPECT_EQ(chosen, wanted);
    }
}

TEST(HostFiles, PlanKeepsEditedSettings) {
    const TempFolder folder;
    const auto plan = [&] { return host::plan_copies(folder.path() + L"\\", {L"I\\", L"D\\"}); };
    ASSERT_TRUE(ForceDirectories(folder.file(L"Language")) && ForceDirectories(folder.file(L"Settings")));
    for (const wchar_t* name : {L"ZR_UI80.dll", L"Language\\zrtk_res_en.dll", L"Settings\\standard.ps4",
                                L"Tessalo80.dll", L"zr_render.exe"}) {
        EXPECT_EQ(fault_of(plan), ExitCode::kInstallation) << "without " << name;
        folder.write(name, "x");
    }
    EXPECT_EQ(plan().size(), 6u) << "the language library goes to both places";
    for (const host::FileCopy& copy : plan())
        EXPECT_EQ(copy.keep_newer, copy.target == L"I\\Settings\\standard.ps4");
}

TEST(HostFiles, RendererOfAThreadThatActsForAUserIsTheMachines) {
    const Installation here;
    here.user.set_text(Installation::kKey, L"PdfDllPath", L"C:\\user\\");
    std::wstring started;
    const Intercept<decltype(CreateProcessW)> start(
        "CreateProcessW", [&](auto* program, auto...) { return started = program, FALSE; });
    ImpersonateSelf(SecurityImpersonation);
    EXPECT_EQ(fault_of([] { (void)host::run_renderer({.thread = 1}, {}); }), ExitCode::kInstallation);
    RevertToSelf();
    EXPECT_EQ(started, here.folder.file(L"zr_render.exe"));
}

TEST(HostFiles, WhatCannotBeUsedIsRefused) {
    const TempFolder folder;
    const std::wstring locked = folder.write(L"locked.txt", "x"), large = folder.write(L"large.txt", "");
    const qk::FileObj user = hold(locked);
    qk::FileObj file = hold(large, 0, GENERIC_WRITE);
    SetFilePointer(file.get(), (64 << 20) + 1, nullptr, FILE_BEGIN);
    ASSERT_TRUE(SetEndOfFile(file.get()));
    file.reset();
    for (const std::wstring& path : {folder.path(), locked, large})
        EXPECT_EQ(fault_of([&] { static_cast<void>(host::read_text_file(path)); }), ExitCode::kUsage);
    EXPECT_EQ(host::setting_for_module(std::wstring(511, L'x')), std::wstring(511, L'x'));
    EXPECT_THROW((void)host::setting_for_module(std::wstring(512, L'x')), host::HostError);
}

}  // namespace
