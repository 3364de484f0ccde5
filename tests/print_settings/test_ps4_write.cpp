#include <sddl.h>

#include "common/rwPDFSet_functions.h"
#include "support/random_settings.h"

namespace {

std::string protection_of(const std::wstring& path) {
    std::string bytes(4096, '\0');
    DWORD size = 0;
    GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, bytes.data(), 4096, &size);
    return bytes.substr(0, size);
}

// Administrators, the file's owner and nobody else.
void protect(const std::wstring& path) {
    void* descriptor = nullptr;
    ConvertStringSecurityDescriptorToSecurityDescriptorW(L"D:P(A;;FA;;;BA)(A;;FA;;;OW)", SDDL_REVISION_1,
                                                         &descriptor, nullptr);
    SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, descriptor);
    LocalFree(descriptor);
}

// A folder with a setting file "mine.ps4" that holds "old", and a setting to save there.
class Ps4Write : public testing::Test {
protected:
    ~Ps4Write() override { EXPECT_EQ(folder_.count(), files_) << "temporary files stay"; }

    // Whether the setting is saved and stands there.
    [[nodiscard]] bool saves(const std::wstring& path) const {
        return settings_.Save(path) && TempFolder::read(path) == settings_.Serialise();
    }
    // Whether it is not, for that reason, and what was there stays.
    [[nodiscard]] bool refuses(DWORD error) const {
        SetLastError(0);
        const bool saved = settings_.Save(path_);
        EXPECT_EQ(GetLastError(), error);
        return !saved && TempFolder::read(path_) == "old";
    }

    TempFolder folder_;
    size_t files_ = 1;  // in the folder, at the end
    std::wstring path_ = folder_.write(L"mine.ps4", "old");
    ps::PrintSettings settings_;
};

}  // namespace

// The shipped file lists every member with its standard value.
TEST_F(Ps4Write, DefaultsAreThoseOfTheShippedSetting) {
    const std::wstring standard = Installation::built(L"Settings\\standard.ps4");
    std::string shipped = TempFolder::read(standard);
    std::erase(shipped, '\r');
    settings_->PSName = ps::ReadName(standard).value_or(L"");
    EXPECT_EQ(settings_.Serialise(), shipped);
}

TEST_F(Ps4Write, HalfPairsAreReplaced) {
    settings_->PSName = {L'a', 0xD800, L'b', 0xDC00};
    EXPECT_NE(settings_.Serialise().find("\n  \"PSName\": \"a\uFFFDb\uFFFD\",\n"), std::string::npos);
}

TEST_F(Ps4Write, WhatIsWrittenReadsBackEqual) {
    RandomSettings random(6);
    for (int round = 0; round < 200; ++round) {
        ASSERT_TRUE(saves(path_));
        ps::PrintSettings read;
        ASSERT_TRUE(read.Load(path_));
        settings_.notification()->V6->PrintError = settings_.notification()->V6->PrintEnd;
        ASSERT_EQ(read, settings_) << round << "\n" << settings_.Serialise();
        settings_ = random.next();
    }
}

TEST_F(Ps4Write, WhatCouldNotBeReadAgainIsNotWritten) {
    settings_.addition()->Float_Array[L"x"] = {1, std::numeric_limits<double>::infinity()};
    EXPECT_TRUE(refuses(ERROR_INVALID_DATA));
    settings_.addition()->Float_Array.clear();
    settings_.pdfVersion()->BleedBox.top = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(refuses(ERROR_INVALID_DATA));
    settings_.pdfVersion()->BleedBox.top = 0;
    settings_->PSName.assign(ps::kMostFileBytes, L'x');
    EXPECT_TRUE(refuses(ERROR_FILE_TOO_LARGE));
    settings_->PSName.resize(settings_->PSName.size() - settings_.Serialise().size() + ps::kMostFileBytes);
    EXPECT_TRUE(saves(path_) && settings_.Load(path_));
}

TEST_F(Ps4Write, AFileHeldOpenByAnotherProgramIsWrittenInPlace) {
    for (const std::string& old : {std::string("short"), std::string(10000, 'x')}) {
        folder_.write(L"mine.ps4", old);
        const qk::FileObj holder = hold(path_, FILE_SHARE_READ | FILE_SHARE_WRITE);
        EXPECT_TRUE(settings_.Save(path_));
        EXPECT_EQ(GetFileSize(holder.get(), nullptr), settings_.Serialise().size());  // the very file
    }
    EXPECT_EQ(TempFolder::read(path_), settings_.Serialise());
}

TEST_F(Ps4Write, WhatAFileWasItStays) {
    constexpr DWORD kAttributes = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
    protect(path_);
    const auto protection = protection_of(path_);
    ASSERT_NE(protection, protection_of(folder_.write(L"another.ps4", "")));
    SetFileAttributesW(path_.c_str(), kAttributes);
    EXPECT_TRUE(saves(path_) && protection_of(path_) == protection);
    EXPECT_EQ(GetFileAttributesW(path_.c_str()) & ~DWORD{FILE_ATTRIBUTE_ARCHIVE}, kAttributes);

    const std::wstring first = folder_.write(L"first name.ps4", "old"),
                       second = folder_.file(L"second name.ps4");
    ASSERT_TRUE(CreateHardLinkW(second.c_str(), first.c_str(), nullptr));
    EXPECT_TRUE(saves(first) && TempFolder::read(second) == settings_.Serialise());

    // A link, as the system tells of one: every open file is the one that it leads to.
    const std::wstring target = folder_.write(L"target.ps4", "old"),
                       link = folder_.write(L"link.ps4", "link");
    const Intercept<decltype(GetFinalPathNameByHandleW)> final_path(
        "GetFinalPathNameByHandleW", [&](HANDLE, auto* buffer, DWORD units, DWORD) {
            qk::copy_zero_padded(buffer, units, target);
            return static_cast<DWORD>(target.size());
        });
    EXPECT_TRUE(settings_.Save(link) && TempFolder::read(target) == settings_.Serialise());
    EXPECT_EQ(TempFolder::read(link), "link");
    files_ = 6;
}

TEST_F(Ps4Write, AFolderThatTakesNoNewFileStillHasItsOldOnesChanged) {
    const Intercept<decltype(CreateFileW)> no_new(
        "CreateFileW", [](auto, auto, auto, auto, DWORD how, auto...) {
            SetLastError(ERROR_ACCESS_DENIED);
            return how == CREATE_NEW ? std::optional(INVALID_HANDLE_VALUE) : std::nullopt;
        });
    EXPECT_TRUE(saves(path_));
    EXPECT_FALSE(settings_.Save(folder_.file(L"new.ps4")));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
}

TEST_F(Ps4Write, TemporaryFilesThatNobodyHoldsAreRemoved) {
    const qk::FileObj holder = hold(folder_.write(L"~ps1c-2.tmp", "held"), FILE_SHARE_READ);
    for (const wchar_t* name : {L"~ps1c-0.tmp", L"~psAB-63.tmp",  // and what stays
                                L"~ps1c-0.ps4", L"~psalm-1.tmp", L"~ps1c.tmp", L"x~ps1c-0.tmp"})
        folder_.write(name, "left");
    EXPECT_TRUE(saves(path_));
    EXPECT_FALSE(qk::is_file(folder_.file(L"~ps1c-0.tmp")) || qk::is_file(folder_.file(L"~psAB-63.tmp")));
    files_ = 6;
}

// Wherever a save is ended from outside, no file with passwords stays beside the old setting.
TEST_F(Ps4Write, AKilledSaveLeavesNoPassword) {
    for (const std::wstring step :
         {L"WriteFile", L"FlushFileBuffers", L"SetFileInformationByHandle", L"rename"}) {
        SCOPED_TRACE(qk::to_utf8(step));
        folder_.write(L"mine.ps4", "old");
        const Variable file(L"ZR_SAVE_FILE", path_), at(L"ZR_SAVE_STEP", step);
        EXPECT_EQ(run_helper(L"Ps4WriteHelper.DISABLED_EndsWhileSaving"), 77);
        EXPECT_EQ(TempFolder::read(path_), "old");
        // What the last two leave, nothing yet or everything, goes with the next save only.
        EXPECT_TRUE(step == L"WriteFile" || step == L"FlushFileBuffers" || saves(path_));
        EXPECT_EQ(folder_.count(), 1u);
    }
}

// Not a test but the program of the one above.
TEST(Ps4WriteHelper, DISABLED_EndsWhileSaving) {
    wchar_t path[MAX_PATH] = {}, step[40] = {};
    GetEnvironmentVariableW(L"ZR_SAVE_FILE", path, MAX_PATH);
    GetEnvironmentVariableW(L"ZR_SAVE_STEP", step, 40);
    const auto end_here = [] { TerminateProcess(GetCurrentProcess(), 77); };
    const bool renames = step == std::wstring_view(L"rename");
    const Intercept<decltype(SetFileInformationByHandle)> renaming(
        "SetFileInformationByHandle", [&](HANDLE, FILE_INFO_BY_HANDLE_CLASS kind, auto...) {
            return renames && kind == FileRenameInfo ? end_here() : void(), std::nullopt;
        });
    std::optional<ImportPatch> ending;
    if (!renames)
        ending.emplace(qk::to_utf8(step), end_here);
    ps::PrintSettings settings;
    settings.security()->MasterPassword = L"password";
    EXPECT_TRUE(settings.Save(path));
}

// One job after the other finds and loads the setting that a dialog saves all the time.
TEST_F(Ps4Write, SavesAndLoadsOfOneFileRefuseNeither) {
    ASSERT_TRUE(saves(path_));
    std::atomic<bool> done = false;
    unsigned loads = 0, refused = 0;
    companions::Thread reader([&] {
        for (; !done; ++loads)
            refused += ProbeSettingFile(path_) != SettingFormat::kJson ||
                       ps::PrintSettings().Load(path_, false) != ps::kLoaded;
    });
    for (unsigned i = 0; i < 100; ++i)
        EXPECT_TRUE(settings_.Save(path_));
    done = true;
    reader.join();
    EXPECT_EQ(refused, 0u) << "of " << loads;
    EXPECT_GT(loads, 20u);
}

TEST_F(Ps4Write, WhereNothingCanBeWrittenNothingChanges) {
    EXPECT_FALSE(settings_.Save(L"") || settings_.Save(folder_.path()));
    SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(refuses(ERROR_ACCESS_DENIED));
    SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_NORMAL);
    qk::FileObj holder = hold(path_, FILE_SHARE_READ);
    EXPECT_TRUE(refuses(ERROR_SHARING_VIOLATION));
    holder.reset();
    {
        const Intercept<decltype(WriteFile)> full("WriteFile", [](auto, auto, auto, DWORD* written, auto) {
            SetLastError(ERROR_DISK_FULL);
            return *written = 0, FALSE;
        });
        EXPECT_TRUE(refuses(ERROR_DISK_FULL));
    }
    {
        // A link whose file is missing, as the system tells of one: it is there and cannot be opened.
        const Intercept<decltype(CreateFileW)> link("CreateFileW", [](auto* name, auto...) {
            SetLastError(ERROR_FILE_NOT_FOUND);
            return std::wstring_view(name).ends_with(L"mine.ps4") ? std::optional(INVALID_HANDLE_VALUE)
                                                                  : std::nullopt;
        });
        EXPECT_TRUE(refuses(ERROR_FILE_NOT_FOUND));
    }
    holder = hold(path_, FILE_SHARE_READ | FILE_SHARE_WRITE);
    const ImportPatch full("SetEndOfFile", always<FALSE, ERROR_DISK_FULL>());  // nothing grows
    EXPECT_TRUE(refuses(ERROR_DISK_FULL));
}
