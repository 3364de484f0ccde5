// The language library, shared blocks, texts in records.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <stdexcept>

#include "UI_dll/plotui.h"
#include "common/qk/MMF.h"
#include "common/job_records.h"
#include "common/qk/memory_probe.h"
#include "common/qk/module.h"
#include "common/qk/resource_dll.h"
#include "common/qk/text.h"
#include "companions/wine_layer.h"
#include "resources/ids.h"
#include "support/guarded_buffer.h"
#include "support/handle_count.h"
#include "support/installation.h"
#include "support/trace_capture.h"
#include "support/variable.h"

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

namespace {

DWORD failing_write;     // the error of every write; 0: they succeed
DWORD failing_creation;  // the same of every new file
unsigned creations;
decltype(&WriteFile) write_file;
decltype(&CreateFileW) create_file;
std::wstring local_low;

BOOL WINAPI on_write(HANDLE file, const void* bytes, DWORD size, DWORD* written, OVERLAPPED* place) {
    if (failing_write)
        size /= 2;
    const BOOL done = write_file(file, bytes, size, written, place);
    SetLastError(failing_write);
    return failing_write ? FALSE : done;
}
HANDLE WINAPI on_create(const wchar_t* name, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                        DWORD how, DWORD flags, HANDLE like) {
    creations += how == CREATE_NEW;
    if (how != CREATE_NEW || !failing_creation)
        return create_file(name, access, share, security, how, flags, like);
    SetLastError(failing_creation);
    return INVALID_HANDLE_VALUE;
}
HRESULT WINAPI on_known_folder(const GUID&, DWORD, HANDLE, wchar_t** folder) {
    const qk::DLL ole(LoadLibraryW(L"ole32.dll"));
    const size_t bytes = (local_low.size() + 1) * sizeof(wchar_t);
    *folder =
        static_cast<wchar_t*>(qk::find_export<void * WINAPI(SIZE_T)>(ole.get(), "CoTaskMemAlloc")(bytes));
    std::memcpy(*folder, local_low.c_str(), bytes);
    return S_OK;
}

// The module in a folder with the English library, the user's temporary folders in that folder too.
class CopyTest : public testing::Test {
protected:
    CopyTest() {
        for (const wchar_t* folder : {L"Language", L"temp", L"low", L"elsewhere"})
            CreateDirectoryW(here.folder.file(folder).c_str(), nullptr);
        CopyFileW(built.c_str(), here.folder.file(kLibrary).c_str(), FALSE);
        local_low = here.folder.file(L"low");
        failing_write = failing_creation = creations = 0;
        write_file = reinterpret_cast<decltype(&WriteFile)>(write.original());
        create_file = reinterpret_cast<decltype(&CreateFileW)>(create.original());
    }

    // The folder of the library in use, below the installation's.
    [[nodiscard]] std::wstring place() const {
        std::wstring path = qk::resource_library_path(true);
        path.resize(path.rfind(L'\\'));
        return path.substr(std::min(path.size(), here.folder.path().size() + 1));
    }

    static constexpr wchar_t kLibrary[] = L"Language\\zrtk_res_en.dll";

    const Installation here;
    const std::wstring built = Installation::built(kLibrary);  // before the module is moved
    const ModuleAt moved{here.folder.path()};
    const Variable temp{L"TMP", here.folder.file(L"temp")};
    const ImportPatch write{"WriteFile", reinterpret_cast<void*>(&on_write)};
    const ImportPatch create{"CreateFileW", reinterpret_cast<void*>(&on_create)};
    const ImportPatch low{"SHGetKnownFolderPath", reinterpret_cast<void*>(&on_known_folder)};
};

}  // namespace

TEST_F(CopyTest, ModuleLoadsWhateverTheTemporaryFolderIs) {
    const auto unix_path = [&](const wchar_t* file) {
        return companions::wine::find_unix_path(here.folder.file(file)).value_or("");
    };
    const auto run = [](std::vector<std::string> words) {
        return companions::wine::run_unix_program(words) == 0;
    };
    const bool can_link = companions::wine::present();
    const struct {
        const char* label;
        std::vector<const wchar_t*> files;  // that have a folder's name
        DWORD write, creation;
        bool link;
        std::wstring place;
        unsigned attempts;
    } rows[] = {
        {"as usual", {}, 0, 0, false, L"temp\\ZRTK80_temp", 1},
        {"a file of its name", {L"temp\\ZRTK80_temp"}, 0, 0, false, L"low\\ZRTK80_temp", 1},
        {"files of its name", {L"temp\\ZRTK80_temp", L"low\\ZRTK80_temp"}, 0, 0, false, L"temp", 1},
        {"a link", {}, 0, 0, can_link, can_link ? L"low\\ZRTK80_temp" : L"temp\\ZRTK80_temp", 1},
        {"read-only", {}, 0, ERROR_ACCESS_DENIED, false, L"Language", 4},
        {"full", {}, ERROR_DISK_FULL, 0, false, L"Language", 4},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const size_t entries = here.folder.count();
        for (const wchar_t* file : row.files)
            here.folder.write(file, "");
        const std::string link = unix_path(L"temp") + "/ZRTK80_temp";
        ASSERT_TRUE(!row.link || run({"/bin/ln", "-s", unix_path(L"elsewhere"), link}));
        failing_write = row.write, failing_creation = row.creation, creations = 0;
        EXPECT_TRUE(plotui::attach_process(qk::module_instance()));
        EXPECT_EQ(place(), row.place);
        EXPECT_EQ(creations, row.attempts);
        EXPECT_NE(qk::load_string(IDS_JOB_FAILED).find(L"PDF"), std::wstring::npos);
        plotui::detach_process(false);
        failing_write = failing_creation = 0;
        EXPECT_TRUE(qk::is_file(here.folder.file(kLibrary)));
        EXPECT_FALSE(RemoveDirectoryW(here.folder.file(L"Language").c_str()));
        EXPECT_TRUE(!row.link || run({"/bin/rm", link}));
        for (const wchar_t* file : row.files)
            DeleteFileW(here.folder.file(file).c_str());
        for (const wchar_t* folder :
             {L"temp\\ZRTK80_temp", L"low\\ZRTK80_temp", L"temp", L"low", L"elsewhere"}) {
            RemoveDirectoryW(here.folder.file(folder).c_str());
            EXPECT_FALSE(qk::is_folder(here.folder.file(folder))) << "something is left in it";
        }
        for (const wchar_t* folder : {L"temp", L"low", L"elsewhere"})
            CreateDirectoryW(here.folder.file(folder).c_str(), nullptr);
        EXPECT_EQ(here.folder.count(), entries);
    }
}

TEST_F(CopyTest, CopyInUseIsNobodyElses) {
    const std::wstring copy = qk::resource_library_path(false);
    const std::wstring other = here.folder.write(L"other.dll", "another library");
    EXPECT_FALSE(DeleteFileW(copy.c_str()));
    EXPECT_FALSE(MoveFileExW(copy.c_str(), (copy + L"_").c_str(), 0));
    EXPECT_FALSE(MoveFileExW(other.c_str(), copy.c_str(), MOVEFILE_REPLACE_EXISTING));
    EXPECT_FALSE(qk::FileObj(
        CreateFileW(copy.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr)));
    EXPECT_NE(qk::load_string(IDS_JOB_FAILED).find(L"PDF"), std::wstring::npos);
    EXPECT_EQ(TempFolder::read(copy), TempFolder::read(built));
}

TEST_F(CopyTest, OnlyCopiesOfDeadProcessesAreRemoved) {
    const std::wstring folder = L"temp\\ZRTK80_temp\\";
    const std::wstring own = L"zrtk_res_" + std::to_wstring(GetCurrentProcessId());
    ForceDirectories(here.folder.file(folder));
    const struct {
        std::wstring name;
        bool stays;
    } rows[] = {
        {L"zrtk_res_4294967292.dll", false},  // no process has it
        {L"zrtk_res_4294967292(7).dll", false},
        {own + L"(5).dll", true},
        {L"zrtk_res_en.dll", true},
        {L"zrtk_res_.dll", true},
        {L"zrtk_res_4294967292x.dll", true},
        {L"zrtk_res_4294967292().dll", true},
        {L"zrtk_res_4294967292(7.dll", true},
        {L"zrtk_res_4294967292(7)(8).dll", true},
        {L"zrtk_res_4294967292.dll.exe", true},
        {L"zrtk_res_99999999999.dll", true},
    };
    for (const auto& row : rows)
        here.folder.write(folder + row.name, "");
    const qk::FileObj in_use(CreateFileW(here.folder.file(folder + own + L".dll").c_str(), GENERIC_WRITE, 0,
                                         nullptr, CREATE_ALWAYS, 0, nullptr));
    EXPECT_EQ(qk::resource_library_path(false), here.folder.file(folder + own + L"(1).dll"));
    qk::finalize_resource_library(false);
    for (const auto& row : rows)
        EXPECT_EQ(qk::is_file(here.folder.file(folder + row.name)), row.stays) << qk::to_utf8(row.name);
    EXPECT_FALSE(qk::is_file(here.folder.file(folder + own + L"(1).dll")));
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

TEST(MemoryProbe, MemoryThatGoesWhileItIsReadIsNoFault) {
    struct Coming {
        std::byte* page;
        std::atomic<bool> done;
    } static coming;
    coming.page = static_cast<std::byte*>(VirtualAlloc(nullptr, 4096, MEM_RESERVE, PAGE_READWRITE));
    const qk::HandleObj thread(CreateThread(
        nullptr, 0,
        [](void*) -> DWORD {
            for (int i = 0; i < 20'000; ++i) {
                VirtualAlloc(coming.page, 4096, MEM_COMMIT, PAGE_READWRITE);
                VirtualFree(coming.page, 4096, MEM_DECOMMIT);
            }
            coming.done = true;
            return 0;
        },
        nullptr, 0, nullptr));
    while (!coming.done) {
        std::byte bytes[4096];
        (void)qk::try_copy(bytes, coming.page, sizeof bytes);
        (void)qk::try_copy(coming.page, bytes, sizeof bytes);
    }
    WaitForSingleObject(thread.get(), INFINITE);
    VirtualFree(coming.page, 0, MEM_RELEASE);
}

// The run-time library keeps a record of each thread's exceptions, made at the first of them.
TEST(ThreadStorage, FirstExceptionOfAThreadNeedsNoMemory) {
    struct Work {
        static DWORD WINAPI throw_and_catch(void* caught) {
            thread_local int count = 40;
            try {
                throw std::runtime_error("no memory");
            } catch (const std::exception&) {
                count += 2;
            }
            SetLastError(77);
            count += 0;
            *static_cast<std::atomic<int>*>(caught) += count == 42 && GetLastError() == 77 ? 1 : 0;
            return 0;
        }
    };
    static bool memory;
    static void* original;
    const ImportPatch heap(
        "HeapAlloc", reinterpret_cast<void*>(+[](HANDLE at, DWORD flags, SIZE_T size) {
            return memory ? reinterpret_cast<decltype(&HeapAlloc)>(original)(at, flags, size) : nullptr;
        }));
    original = heap.original();
    for (const bool there_is : {false, true}) {
        memory = there_is;
        std::atomic<int> caught = 0;
        for (int round = 0; round < 20; ++round) {  // the reserve comes back with each thread that ends
            HANDLE threads[10];
            for (HANDLE& thread : threads)
                thread = CreateThread(nullptr, 0, &Work::throw_and_catch, &caught, 0, nullptr);
            WaitForMultipleObjects(10, threads, TRUE, INFINITE);
            for (const HANDLE thread : threads)
                CloseHandle(thread);
        }
        EXPECT_EQ(caught, 200) << there_is;
        memory = true;
    }
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
