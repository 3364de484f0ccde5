// The language library, shared blocks, texts in records.
#include <gtest/gtest.h>

#include <cstddef>

#include "common/MMF.h"
#include "common/job_records.h"
#include "common/memory_probe.h"
#include "common/resource_dll.h"
#include "common/text.h"
#include "resources/ids.h"
#include "support/guarded_buffer.h"
#include "support/handle_count.h"
#include "support/installation.h"
#include "support/trace_capture.h"

namespace {

// The module as if it lay in a test's folder, with private copies made afresh.
class ModuleAt {
public:
    explicit ModuleAt(const std::wstring& folder)
        : patch_("GetModuleFileNameW", reinterpret_cast<void*>(&answer)) {
        qk::finalize_resource_library(false);
        path_ = folder + L"\\program.exe";
    }
    ~ModuleAt() { qk::finalize_resource_library(false); }

private:
    static DWORD WINAPI answer(HMODULE, wchar_t* buffer, DWORD units) {
        qk::copy_zero_padded(buffer, units, path_);
        return static_cast<DWORD>(path_.size());
    }
    static inline std::wstring path_;
    ImportPatch patch_;
};

}  // namespace

TEST(Resources, LanguageIsTheUsersChoiceBeforeTheSystems) {
    struct {
        const wchar_t *machine, *user;
        const wchar_t* code;
    } const rows[] = {{L"ja", L"kr", L"kr"},
                      {L"ja", nullptr, L"ja"},
                      {nullptr, L"cht", L"cht"},
                      {L"ja", L"", L"ja"},
                      {L"", L"", L"en"},
                      {L"ja", L"fr", L"ja"},
                      {nullptr, L"..\\..\\x", L"en"},
                      {nullptr, L"CHS", L"chs"}};
    for (const auto& row : rows) {
        const Installation here;
        if (row.machine)
            here.machine.set_text(Installation::kKey, L"Language", row.machine);
        if (row.user)
            here.user.set_text(Installation::kKey, L"Language", row.user);
        EXPECT_EQ(qk::language_code(), row.code);
    }
    struct {
        LANGID language;
        const wchar_t* code;
    } const languages[] = {{0x0004, L"chs"}, {0x0411, L"ja"}, {0x0412, L"kr"}, {0x0C04, L"chs"},
                           {0x7C04, L"cht"}, {0x0409, L"en"}, {0x0804, L"en"}, {0x0404, L"en"},
                           {0x0011, L"en"},  {0, L"en"}};
    for (const auto& row : languages)
        EXPECT_STREQ(qk::language_code_of(row.language), row.code) << row.language;
}

TEST(Resources, MissingLanguageFallsBackAndTheCopyIsPrivate) {
    const Installation here;
    here.user.set_text(Installation::kKey, L"Language", L"kr");
    const std::wstring module = here.folder.file(L"module");
    ForceDirectories(module + L"\\Language");
    ForceDirectories(here.folder.file(L"Language"));
    const ModuleAt moved(module);
    const TraceCapture trace;
    here.folder.write(L"Language\\zrtk_res_kr.dll", "not to be found");
    {
        const CurrentFolder in(here.folder.path());
        here.machine.set_text(Installation::kKey, L"PdfDllPath", L"");
        EXPECT_EQ(qk::resource_library_path(false), L"");
        const ImportPatch no_module(
            "GetModuleFileNameW",
            reinterpret_cast<void*>(+[](HMODULE, wchar_t*, DWORD) -> DWORD { return 0; }));
        EXPECT_EQ(qk::resource_library_path(false), L"");
        EXPECT_EQ(trace.count(L"cant open src lr"), 2u);
        here.machine.set_text(Installation::kKey, L"PdfDllPath", here.folder.path() + L"\\");
    }
    DeleteFileW(here.folder.file(L"Language\\zrtk_res_kr.dll").c_str());
    EXPECT_EQ(qk::resource_library_path(false), L"");
    EXPECT_EQ(qk::load_string(IDS_JOB_FAILED), L"ERROR! no resource dll.");
    EXPECT_EQ(qk::ResourceDLL().load_string(1), L"(no resource dll)");
    // From the last to be chosen to the first.
    ForceDirectories(module + L"\\Language\\zrtk_res_kr.dll");
    const wchar_t* const files[] = {L"Language\\zrtk_res_ja.dll", L"module\\Language\\zrtk_res_ja.dll",
                                    L"Language\\zrtk_res_en.dll", L"module\\Language\\zrtk_res_en.dll",
                                    L"Language\\zrtk_res_kr.dll", L"module\\Language\\zrtk_res_kr.dll"};
    for (const wchar_t* file : files) {
        RemoveDirectoryW(here.folder.file(file).c_str());
        const std::wstring installed = here.folder.write(file, qk::to_utf8(file));
        const std::wstring copy = qk::resource_library_path(false);
        EXPECT_EQ(TempFolder::read(copy), qk::to_utf8(file));
        EXPECT_EQ(qk::resource_library_path(true), copy);
        EXPECT_TRUE(trace.holds(copy) && trace.holds(L"resouece_dll is"));
        EXPECT_TRUE(MoveFileExW(installed.c_str(), (installed + L"_").c_str(), 0))
            << "the installed file is held open";
        MoveFileExW((installed + L"_").c_str(), installed.c_str(), 0);
        qk::finalize_resource_library(false);
        EXPECT_FALSE(qk::is_file(copy));
        EXPECT_EQ(qk::resource_library_path(true), L"");
    }
}

TEST(Resources, StaleCopiesAreReplacedAndOrphansRemoved) {
    const Installation here;
    const ModuleAt moved(here.folder.path());
    here.folder.write(L"Language", "");
    DeleteFileW(here.folder.file(L"Language").c_str());
    ForceDirectories(here.folder.file(L"Language"));
    here.folder.write(L"Language\\zrtk_res_en.dll", "library");
    const std::wstring copy = qk::resource_library_path(false);
    ASSERT_TRUE(qk::is_file(copy));
    const std::wstring orphan =
        copy.substr(0, copy.rfind(L'\\')) + L"\\zrtk_res_4294967292.dll";  // no process has it
    CopyFileW(copy.c_str(), orphan.c_str(), FALSE);
    qk::finalize_resource_library(false);
    EXPECT_FALSE(qk::is_file(orphan));

    const qk::FileObj stale(CreateFileW(copy.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    const std::wstring next = qk::resource_library_path(false);  // another name, as that one is in use
    EXPECT_NE(next, copy);
    EXPECT_EQ(TempFolder::read(next), "library");
}

TEST(Resources, MissingStringsSayWhichTheyAre) {
    const TraceCapture trace(0);
    EXPECT_NE(qk::load_string(IDS_JOB_FAILED).find(L"PDF"), std::wstring::npos);
    EXPECT_LE(qk::load_string(IDS_JOB_FAILED).capacity(), 2 * qk::load_string(IDS_JOB_FAILED).size())
        << "more than the text is kept";
    EXPECT_EQ(qk::load_string(12345), L"ERROR! no resource string id=12345d");
    EXPECT_TRUE(trace.holds(L"ERROR! no resource string id=12345d"));
    qk::ResourceDLL library(8);
    EXPECT_EQ(library.load_string(12345), L"(no resource string:ID=12345)");
    EXPECT_EQ(library.load_string(IDS_JOB_FAILED), qk::load_string(IDS_JOB_FAILED).substr(0, 7));
    EXPECT_EQ(qk::ResourceDLL().load_string(IDS_JOB_FAILED), qk::load_string(IDS_JOB_FAILED));
    qk::finalize_resource_library(false);
}

TEST(SharedBlocks, OnlyNewOnesAreZeroed) {
    const std::wstring name = L"zr_test_block_" + std::to_wstring(GetCurrentProcessId());
    qk::MMF<ZRTKPrintInfo> none;
    none.open(name);
    EXPECT_EQ(none.view(), nullptr);
    const unsigned handles = handle_count(), views = view_count();
    {
        const qk::MMF<ZRTKPrintInfo> first(name);
        ASSERT_TRUE(first.view());
        EXPECT_TRUE(first.created());
        EXPECT_EQ(first.view()->pdf_file_name.capacity, 0u);
        first.view()->error_code = 7;
        qk::MMF<ZRTKPrintInfo> second(name);
        EXPECT_FALSE(second.created());
        EXPECT_EQ(second.view()->error_code, 7u);
        second.init(name);  // the block stays as long as somebody holds it
        EXPECT_EQ(second.view()->error_code, 7u);
    }
    EXPECT_EQ(qk::MMF<ZRTKPrintInfo>(name).view()->error_code, 0u);

    const TraceCapture trace(0);
    {
        const qk::HandleObj event(CreateEventW(nullptr, FALSE, FALSE, name.c_str()));
        const qk::MMF<ZRTKPrintInfo> taken(name);  // the name is another kind of object's
        EXPECT_EQ(taken.view(), nullptr);
        EXPECT_FALSE(taken.created());
        EXPECT_TRUE(trace.holds(L"failed to create mmf. gle=6") && trace.holds(L"no mmf"));
    }
    {
        const qk::HandleObj small(
            CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, name.c_str()));
        const qk::MMF<ZRTK_COMMON_MMF> large(name);  // 4,120 bytes do not fit
        EXPECT_EQ(large.view(), nullptr);
        EXPECT_FALSE(large.created());
    }
    EXPECT_EQ(handle_count(), handles);
    EXPECT_EQ(view_count(), views);
}

TEST(MemoryProbe, EndsWhereTheMemoryEnds) {
    GuardedBuffer buffer(8192, std::string(8192, 'x').data());
    std::byte* end = buffer.as<>() + 8192;
    EXPECT_TRUE(qk::is_readable(end - 5000, 5000) && qk::is_writable(end - 5000, 5000));
    EXPECT_FALSE(qk::is_readable(end - 5000, 5001));
    EXPECT_FALSE(qk::is_readable(end, 1) || qk::is_readable(nullptr, 1) ||
                 qk::is_readable(end - 1, SIZE_MAX));
    std::byte bytes[16];
    EXPECT_TRUE(qk::try_copy(bytes, end - 16, 16));
    EXPECT_FALSE(qk::try_copy(bytes, end - 8, 16));
    EXPECT_EQ(qk::text_at(reinterpret_cast<const wchar_t*>(end - 6000)).size(), 3000u);
    EXPECT_EQ(qk::text_at(reinterpret_cast<const wchar_t*>(end - 6000), 10).size(), 10u);
    EXPECT_EQ(qk::text_at(nullptr), L"");
    buffer.make_read_only();
    EXPECT_TRUE(qk::is_readable(end - 8, 8));
    EXPECT_FALSE(qk::is_writable(end - 8, 8));
    DWORD before = 0;
    VirtualProtect(end - 4096, 4096, PAGE_READWRITE | PAGE_GUARD, &before);  // as the end of a stack is
    EXPECT_FALSE(qk::is_readable(end - 8, 8));
    EXPECT_FALSE(qk::is_writable(end - 8, 8));
    VirtualProtect(end - 4096, 4096, PAGE_READWRITE, &before);
    EXPECT_EQ(before, DWORD{PAGE_READWRITE | PAGE_GUARD}) << "a look has used it up";
}

TEST(Texts, CopiesAreTerminatedAndPaddedAndKeepPairsWhole) {
    struct {
        std::wstring text;
        size_t capacity;
        std::wstring kept;
    } const rows[] = {{L"", 1, L""},      {L"abc", 1, L""},          {L"abc", 4, L"abc"},
                      {L"abc", 3, L"ab"}, {L"a\U0001F5A8", 3, L"a"}, {L"a\U0001F5A8", 4, L"a\U0001F5A8"},
                      {L"a", 6, L"a"}};
    for (const auto& row : rows) {
        const GuardedBuffer buffer(row.capacity * sizeof(wchar_t), std::wstring(row.capacity, L'#').data());
        qk::copy_zero_padded(buffer.as<wchar_t>(), row.capacity, row.text);
        std::wstring wanted = row.kept;
        wanted.resize(row.capacity);
        EXPECT_EQ(std::wstring(buffer.as<wchar_t>(), row.capacity), wanted);
    }
    struct {
        const wchar_t* text;
        std::optional<double> number;
    } const numbers[] = {{L"2.5", 2.5}, {L" \t3", 3}, {L"2,5", 2},  {L"2.5x", 2.5}, {L"", {}},
                         {L"x2", {}},   {L"nan", {}}, {L"inf", {}}, {L"1e999", {}}, {L"-0.5e1", -5}};
    for (const auto& row : numbers)
        EXPECT_EQ(qk::find_number(row.text), row.number) << qk::to_utf8(row.text);
}
