#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "print_settings/PrintSettings.h"
#include "support/import_patch.h"
#include "support/installation.h"
#include "support/random_settings.h"
#include "support/temp_folder.h"

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
