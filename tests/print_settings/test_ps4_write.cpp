#include <gtest/gtest.h>

#include <windows.h>

#include <sddl.h>

#include <atomic>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "common/qk/handle.h"
#include "common/qk/paths.h"
#include "common/rwPDFSet_functions.h"
#include "common/qk/text.h"
#include "companions/thread.h"
#include "print_settings/PrintSettings.h"
#include "support/child_process.h"
#include "support/import_patch.h"
#include "support/installation.h"
#include "support/random_settings.h"
#include "support/temp_folder.h"
#include "support/variable.h"

namespace ps = Corvanta::Vantrix::PrintSettings;

// The shipped file lists every member with its standard value.
TEST(Ps4Write, DefaultsAreThoseOfTheShippedSetting) {
    std::string shipped = TempFolder::read(Installation::built(L"Settings\\standard.ps4"));
    std::erase(shipped, '\r');
    ps::PrintSettings settings;
    ASSERT_TRUE(settings.Load(Installation::built(L"Settings\\standard.ps4")));
    ps::PrintSettings defaults;
    defaults->PSName = settings->PSName;
    EXPECT_EQ(defaults.Serialise(), shipped);
}

TEST(Ps4Write, BytesAreMarkedAndIndented) {
    ps::PrintSettings settings;
    settings->PSComment = {{2, L"\u00e9\""}, {-1, L""}};
    const std::string bytes = settings.Serialise();
    EXPECT_TRUE(bytes.starts_with("\xEF\xBB\xBF{\n  \"Addition\": {\n    \"Bool\": {},\n"));
    EXPECT_NE(bytes.find("  \"PSComment\": [\n    [\n      -1,\n      \"\"\n    ],\n"
                         "    [\n      2,\n      \"\u00e9\\\"\"\n    ]\n  ],\n  \"PSName\": \"\",\n"),
              std::string::npos);
    EXPECT_TRUE(bytes.ends_with("\"ZOrder\": 0\n  }\n}\n"));
    EXPECT_EQ(bytes.find('\r'), std::string::npos);
}

TEST(Ps4Write, WhatIsWrittenReadsBackEqual) {
    const TempFolder folder;
    const std::wstring path = folder.file(L"round.ps4");
    RandomSettings random(6);
    for (int round = 0; round < 200; ++round) {
        ps::PrintSettings settings = round == 0 ? ps::PrintSettings() : random.next();
        ASSERT_TRUE(settings.Save(path));
        ps::PrintSettings read;
        ASSERT_TRUE(read.Load(path));
        settings.notification()->V6->PrintError = settings.notification()->V6->PrintEnd;
        ASSERT_EQ(read, settings) << round << "\n" << settings.Serialise();
        ASSERT_EQ(read.Serialise(), settings.Serialise());
    }
    EXPECT_EQ(folder.count(), 1u);
}

TEST(Ps4Write, LoneSurrogatesBecomeTheReplacementCharacter) {
    ps::PrintSettings settings;
    settings->PSName =
        L"a\xD800"
        L"b\xDC00";
    ps::PrintSettings read;
    ASSERT_EQ(read.LoadPS4(std::string_view(settings.Serialise()).substr(3), false), ps::kLoaded);
    EXPECT_EQ(read->PSName, L"a\uFFFDb\uFFFD");
}

TEST(Ps4Write, ValuesThatAreNotFiniteStopTheSave) {
    const TempFolder folder;
    const std::wstring path = folder.write(L"old.ps4", "old");
    for (const double value :
         {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
        ps::PrintSettings settings;
        settings.addition()->Float_Array[L"x"] = {1, value};
        EXPECT_FALSE(settings.Save(path));
        settings.addition()->Float_Array.clear();
        settings.pdfVersion()->BleedBox.top = static_cast<float>(value);
        EXPECT_FALSE(settings.Save(path));
    }
    EXPECT_EQ(TempFolder::read(path), "old");
    EXPECT_EQ(folder.count(), 1u);
}

TEST(Ps4Write, AFileHeldOpenByAnotherProgramIsWrittenInPlace) {
    const TempFolder folder;
    ps::PrintSettings settings;
    const std::string bytes = settings.Serialise();
    for (const std::string& old : {std::string("short"), std::string(10000, 'x')}) {
        const std::wstring path = folder.write(L"held.ps4", old);
        const HANDLE holder = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                          nullptr, OPEN_EXISTING, 0, nullptr);
        EXPECT_TRUE(settings.Save(path));
        EXPECT_EQ(GetFileSize(holder, nullptr), bytes.size());  // the very file that is held
        CloseHandle(holder);
        EXPECT_EQ(TempFolder::read(path), bytes);
        EXPECT_EQ(folder.count(), 1u);
    }
}

namespace {

using Acl = std::vector<BYTE>;

Acl protection_of(const std::wstring& path) {
    Acl bytes(4096);
    DWORD size = 0;
    bytes.resize(GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, bytes.data(), 4096, &size) ? size
                                                                                                      : 0);
    return bytes;
}

// Administrators, the file's owner and nobody else.
void protect(const std::wstring& path) {
    void* descriptor = nullptr;
    ConvertStringSecurityDescriptorToSecurityDescriptorW(L"D:P(A;;FA;;;BA)(A;;FA;;;OW)", SDDL_REVISION_1,
                                                         &descriptor, nullptr);
    SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, descriptor);
    LocalFree(descriptor);
}

// A folder whose files may be changed but that takes no new one.
decltype(&CreateFileW) create_file;
HANDLE WINAPI create_no_new_file(const wchar_t* name, DWORD access, DWORD share,
                                 SECURITY_ATTRIBUTES* security, DWORD how, DWORD attributes, HANDLE like) {
    if (how != CREATE_NEW)
        return create_file(name, access, share, security, how, attributes, like);
    SetLastError(ERROR_ACCESS_DENIED);
    return INVALID_HANDLE_VALUE;
}

// A link, as the system tells of one: every open file is the one that it leads to.
std::wstring link_target;
DWORD WINAPI answer_link_target(HANDLE, wchar_t* buffer, DWORD units, DWORD) {
    qk::copy_zero_padded(buffer, units, link_target);
    return static_cast<DWORD>(link_target.size());
}

}  // namespace

TEST(Ps4Write, WhatAFileWasItStays) {
    const TempFolder folder;
    const ps::PrintSettings settings;
    const std::wstring path = folder.write(L"mine.ps4", "old");
    protect(path);
    const Acl protection = protection_of(path);
    ASSERT_FALSE(protection.empty());
    ASSERT_NE(protection, protection_of(folder.write(L"another.ps4", "")));
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    EXPECT_TRUE(settings.Save(path));
    EXPECT_EQ(protection_of(path), protection);
    EXPECT_EQ(GetFileAttributesW(path.c_str()) & ~DWORD{FILE_ATTRIBUTE_ARCHIVE},
              DWORD{FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM});

    const std::wstring second_name = folder.file(L"second name.ps4");
    ASSERT_TRUE(
        CreateHardLinkW(second_name.c_str(), folder.write(L"first name.ps4", "old").c_str(), nullptr));
    EXPECT_TRUE(settings.Save(folder.file(L"first name.ps4")));
    EXPECT_TRUE(TempFolder::read(second_name) == settings.Serialise());

    link_target = folder.write(L"target.ps4", "old");
    const std::wstring link = folder.write(L"link.ps4", "link");
    const ImportPatch final_path("GetFinalPathNameByHandleW", reinterpret_cast<void*>(&answer_link_target));
    EXPECT_TRUE(settings.Save(link));
    EXPECT_TRUE(TempFolder::read(link_target) == settings.Serialise());
    EXPECT_EQ(TempFolder::read(link), "link");
    EXPECT_EQ(folder.count(), 6u) << "temporary files stay";
}

TEST(Ps4Write, AFolderThatTakesNoNewFileStillHasItsOldOnesChanged) {
    const TempFolder folder;
    const ps::PrintSettings settings;
    const std::wstring path = folder.write(L"mine.ps4", "old");
    const ImportPatch no_new("CreateFileW", reinterpret_cast<void*>(&create_no_new_file));
    create_file = reinterpret_cast<decltype(&CreateFileW)>(no_new.original());
    EXPECT_TRUE(settings.Save(path));
    EXPECT_TRUE(TempFolder::read(path) == settings.Serialise());
    EXPECT_FALSE(settings.Save(folder.file(L"new.ps4")));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
}

TEST(Ps4Write, WhatCouldNotBeReadAgainIsNotWritten) {
    const TempFolder folder;
    const std::wstring path = folder.write(L"old.ps4", "old");
    ps::PrintSettings settings;
    settings->PSName.assign(ps::kMostFileBytes, L'x');
    EXPECT_FALSE(settings.Save(path));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_TOO_LARGE});
    EXPECT_EQ(TempFolder::read(path).size(), 3u);
    settings->PSName.resize(settings->PSName.size() - settings.Serialise().size() + ps::kMostFileBytes);
    EXPECT_TRUE(settings.Save(path));
    EXPECT_TRUE(settings.Load(path));
}

TEST(Ps4Write, TemporaryFilesThatNobodyHoldsAreRemoved) {
    const TempFolder folder;
    const struct {
        const wchar_t* name;
        bool held, stays;
    } rows[] = {
        {L"~ps1c-0.tmp", false, false}, {L"~psAB-63.tmp", false, false}, {L"~ps1c-2.tmp", true, true},
        {L"~ps1c-0.ps4", false, true},  {L"~psalm-1.tmp", false, true},  {L"~ps1c.tmp", false, true},
        {L"x~ps1c-0.tmp", false, true},
    };
    qk::FileObj holder;
    for (const auto& row : rows) {
        const std::wstring path = folder.write(row.name, "left");
        if (row.held)
            holder.reset(
                CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    }
    EXPECT_TRUE(ps::PrintSettings().Save(folder.file(L"new.ps4")));
    for (const auto& row : rows)
        EXPECT_EQ(qk::is_file(folder.file(row.name)), row.stays) << qk::to_utf8(row.name);
}

namespace {

void end_here() {
    TerminateProcess(GetCurrentProcess(), 77);
}

}  // namespace

// Wherever a save is ended from outside, no file with passwords stays beside the old setting.
TEST(Ps4Write, AKilledSaveLeavesNoPassword) {
    const struct {
        const wchar_t* step;
        bool next_save;  // what it leaves, nothing yet or everything, goes with that only
    } rows[] = {{L"WriteFile", false},
                {L"FlushFileBuffers", false},
                {L"SetFileInformationByHandle", true},
                {L"rename", true}};
    for (const auto& row : rows) {
        const TempFolder folder;
        const std::wstring path = folder.write(L"mine.ps4", "old");
        const Variable file(L"ZR_SAVE_FILE", path), step(L"ZR_SAVE_STEP", row.step);
        EXPECT_EQ(run_built(L"zr_tests.exe",
                            L"zr_tests --gtest_also_run_disabled_tests "
                            L"--gtest_filter=Ps4WriteHelper.DISABLED_EndsWhileSaving"),
                  77);
        EXPECT_EQ(TempFolder::read(path), "old");
        if (row.next_save) {
            EXPECT_TRUE(ps::PrintSettings().Save(path));
        }
        EXPECT_EQ(folder.count(), 1u) << qk::to_utf8(row.step);
    }
}

// Not a test but the program of the one above.
TEST(Ps4WriteHelper, DISABLED_EndsWhileSaving) {
    wchar_t path[MAX_PATH] = {}, step[40] = {};
    GetEnvironmentVariableW(L"ZR_SAVE_FILE", path, MAX_PATH);
    GetEnvironmentVariableW(L"ZR_SAVE_STEP", step, 40);
    static decltype(&SetFileInformationByHandle) set_information;
    const ImportPatch renaming(
        step == std::wstring_view(L"rename") ? "SetFileInformationByHandle" : "no function",
        reinterpret_cast<void*>(
            +[](HANDLE file, FILE_INFO_BY_HANDLE_CLASS kind, void* information, DWORD size) -> BOOL {
                if (kind == FileRenameInfo)
                    end_here();
                return set_information(file, kind, information, size);
            }));
    set_information = reinterpret_cast<decltype(&SetFileInformationByHandle)>(renaming.original());
    const ImportPatch ending(qk::to_utf8(step), reinterpret_cast<void*>(&end_here));
    ps::PrintSettings settings;
    settings.security()->MasterPassword = L"password";
    EXPECT_TRUE(settings.Save(path));
}

// One job after the other finds and loads the setting that a dialog saves all the time.
TEST(Ps4Write, SavesAndLoadsOfOneFileRefuseNeither) {
    const TempFolder folder;
    const std::wstring path = folder.file(L"shared.ps4");
    ASSERT_TRUE(ps::PrintSettings().Save(path));
    std::atomic<bool> done = false;
    unsigned loads = 0, not_found = 0, not_loaded = 0;
    companions::Thread reader([&] {
        for (; !done; ++loads) {
            not_found += ProbeSettingFile(path) != SettingFormat::kJson;
            not_loaded += ps::PrintSettings().Load(path, false) != ps::kLoaded;
        }
    });
    constexpr unsigned kSaves = 100;
    unsigned saved = 0;
    for (unsigned i = 0; i < kSaves; ++i)
        saved += ps::PrintSettings().Save(path);
    done = true;
    reader.join();
    EXPECT_EQ(saved, kSaves);
    EXPECT_EQ(not_found, 0u) << "of " << loads;
    EXPECT_EQ(not_loaded, 0u) << "of " << loads;
    EXPECT_GT(loads, 20u);
}

TEST(Ps4Write, WhereNothingCanBeWrittenNothingChanges) {
    const TempFolder folder;
    const std::wstring read_only = folder.write(L"read only.ps4", "old");
    SetFileAttributesW(read_only.c_str(), FILE_ATTRIBUTE_READONLY);
    const std::wstring locked = folder.write(L"locked.ps4", "old");
    const HANDLE owner =
        CreateFileW(locked.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    const std::wstring paths[] = {L"", folder.path(), folder.file(L"none\\new.ps4"), read_only, locked};
    for (const std::wstring& path : paths) {
        SetLastError(0);
        EXPECT_FALSE(ps::PrintSettings().Save(path));
        EXPECT_NE(GetLastError(), 0u);
    }
    CloseHandle(owner);
    EXPECT_EQ(TempFolder::read(read_only), "old");
    EXPECT_EQ(TempFolder::read(locked), "old");
    EXPECT_EQ(folder.count(), 2u);
}

namespace {

// A disk that is full: nothing is written, nothing grows.
BOOL WINAPI write_to_full_disk(HANDLE, const void*, DWORD, DWORD* written, OVERLAPPED*) {
    *written = 0;
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}
BOOL WINAPI grow_on_full_disk(HANDLE) {
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

}  // namespace

TEST(Ps4Write, AFullDiskCostsNoSetting) {
    const TempFolder folder;
    const std::wstring path = folder.write(L"old.ps4", "old");
    {
        const ImportPatch full("WriteFile", reinterpret_cast<void*>(&write_to_full_disk));
        ASSERT_TRUE(full.found());
        EXPECT_FALSE(ps::PrintSettings().Save(path));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_DISK_FULL});
    }
    {
        const HANDLE holder = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                          nullptr, OPEN_EXISTING, 0, nullptr);
        const ImportPatch full("SetEndOfFile", reinterpret_cast<void*>(&grow_on_full_disk));
        ASSERT_TRUE(full.found());
        EXPECT_FALSE(ps::PrintSettings().Save(path));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_DISK_FULL});
        CloseHandle(holder);
    }
    EXPECT_EQ(TempFolder::read(path), "old");
    EXPECT_EQ(folder.count(), 1u);
}
