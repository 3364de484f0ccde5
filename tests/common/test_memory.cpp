// Shared blocks, memory that may go, what a thread keeps, texts in records.
#include "UI_dll/ddi.h"
#include "common/qk/MMF.h"
#include "common/job_records.h"
#include "common/qk/memory_probe.h"
#include "lib/devmode.h"

TEST(SharedBlocks, OnlyNewOnesAreZeroed) {
    const std::wstring name = L"zr_test_block_" + std::to_wstring(GetCurrentProcessId());
    const TraceCapture trace(0);
    qk::MMF<ZRTKPrintInfo> none;
    none.open(name);
    EXPECT_EQ(none.view(), nullptr);
    const unsigned handles = handle_count(), views = view_count();
    {
        const qk::MMF<ZRTKPrintInfo> first(name);
        qk::MMF<ZRTKPrintInfo> second;
        ASSERT_TRUE(first.view() && first.created());
        EXPECT_EQ(std::exchange(first.view()->error_code, 7u), 0u);
        for (int round = 0; round < 2; ++round) {  // the block stays as long as somebody holds it
            second.init(name);
            EXPECT_TRUE(!second.created() && second.view()->error_code == 7);
        }
    }
    EXPECT_EQ(qk::MMF<ZRTKPrintInfo>(name).view()->error_code, 0u);
    const qk::HandleObj event(CreateEventW(nullptr, FALSE, FALSE, (name + L"e").c_str()));
    const qk::HandleObj small(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, name.c_str()));
    const qk::MMF<ZRTK_COMMON_MMF> large(name), taken(name + L"e");  // 4,120 bytes do not fit
    EXPECT_FALSE(large.view() || large.created() || taken.view() || taken.created());
    EXPECT_TRUE(trace.holds(L"failed to create mmf. gle=6") && trace.holds(L"no mmf"));
    EXPECT_TRUE(handle_count() == handles + 2 && view_count() == views);
}

TEST(MemoryProbe, EndsWhereTheMemoryEnds) {
    GuardedBuffer buffer(8192, std::string(8192, 'x').data());
    std::byte *const end = buffer.as<>() + 8192, bytes[8192];
    for (const auto& [from_end, size, there] : std::initializer_list<std::tuple<size_t, size_t, bool>>{
             {5000, 5000, true}, {5000, 5001, false}, {0, 1, false}, {1, SIZE_MAX, false}}) {
        EXPECT_EQ(qk::is_readable(end - from_end, size), there) << from_end;
        EXPECT_EQ(qk::is_writable(end - from_end, size), there) << from_end;
        EXPECT_EQ(qk::try_copy(bytes, end - from_end, std::min(size, sizeof bytes)), there) << from_end;
    }
    EXPECT_FALSE(qk::is_readable(nullptr, 1));
    char letters[] = "abcdef";
    EXPECT_TRUE(qk::try_copy(letters + 1, letters, 4) && qk::try_copy(letters, letters + 2, 4) &&
                std::string_view(letters) == "bcdfdf");
    const auto* text = reinterpret_cast<const wchar_t*>(end - 6000);
    EXPECT_EQ(qk::text_at(text).size(), 3000u);
    EXPECT_EQ(qk::text_at(text, 10).size(), 10u);
    EXPECT_EQ(qk::text_at(nullptr), L"");
    buffer.make_read_only();
    EXPECT_TRUE(qk::is_readable(end - 8, 8) && !qk::is_writable(end - 8, 8));
    DWORD before = 0;
    VirtualProtect(end - 4096, 4096, PAGE_READWRITE | PAGE_GUARD, &before);  // as the end of a stack is
    EXPECT_FALSE(qk::is_readable(end - 8, 8) || qk::is_writable(end - 8, 8));
    VirtualProtect(end - 4096, 4096, PAGE_READWRITE, &before);
    EXPECT_EQ(before, DWORD{PAGE_READWRITE | PAGE_GUARD}) << "a look has used it up";
}

TEST(MemoryProbe, MemoryThatGoesWhileItIsReadIsNoFault) {
    static std::byte bytes[4096];
    static std::atomic<int> rounds;
    auto* page = static_cast<std::byte*>(VirtualAlloc(nullptr, sizeof bytes, MEM_RESERVE, PAGE_READWRITE));
    const auto come_and_go = [](void* memory) -> DWORD {
        for (; rounds < 20'000; ++rounds) {
            VirtualAlloc(memory, sizeof bytes, MEM_COMMIT, PAGE_READWRITE);
            static_cast<DEVMODEW*>(memory)->dmSize = kDevmodeSize;
            VirtualFree(memory, sizeof bytes, MEM_DECOMMIT);
        }
        return 0;
    };
    const qk::HandleObj thread(CreateThread(nullptr, 0, come_and_go, page, 0, nullptr));
    size_t copied = 0, refused = 0;
    DriverDevmode own = default_devmode();
    auto* const devmode = reinterpret_cast<DEVMODEW*>(page);
    while (rounds < 20'000)
        for (const bool done :
             {qk::try_copy(bytes, page, sizeof bytes), qk::try_copy(page, bytes, sizeof bytes),
              ConvertDevmode(devmode, &own.dm) > 0, ConvertDevmode(&own.dm, devmode) > 0})
            ++(done ? copied : refused);
    EXPECT_TRUE(copied > 0 && refused > 0) << copied << ' ' << refused;
    WaitForSingleObject(thread.get(), INFINITE);
    VirtualFree(page, 0, MEM_RELEASE);
}

// The run-time library keeps a record of each thread's exceptions, made at the first of them.
TEST(ThreadStorage, FirstExceptionOfAThreadNeedsNoMemory) {
    static std::atomic<int> caught;
    const auto throw_and_catch = [](void*) -> DWORD {
        thread_local int count = 40;
        try {
            throw std::runtime_error("no memory");
        } catch (const std::exception&) {
            count += 2;
        }
        SetLastError(77);
        count += 0;
        caught += count == 42 && GetLastError() == 77 ? 1 : 0;
        return 0;
    };
    for (int round = 0; round < 20; ++round) {  // the reserve comes back with each thread that ends
        qk::HandleObj threads[10];
        const ImportPatch heap("HeapAlloc", always<static_cast<void*>(nullptr)>());
        for (qk::HandleObj& thread : threads)
            thread.reset(CreateThread(nullptr, 0, throw_and_catch, nullptr, 0, nullptr));
        for (const qk::HandleObj& thread : threads)
            WaitForSingleObject(thread.get(), INFINITE);
    }
    EXPECT_EQ(caught, 200);
}

// The run-time library has set memory aside for exceptions. The module holds itself once, and does not stay
// loaded without a language library.
TEST(ThreadStorage, GoesWithTheModule) {
    const auto held = [] {  // bytes of the process's own, and the first free slot of its threads
        std::pair<size_t, DWORD> all = {0, TlsAlloc()};
        TlsFree(all.second);
        for_each_region([&](const MEMORY_BASIC_INFORMATION& region) {
            all.first += region.State == MEM_COMMIT && region.Type == MEM_PRIVATE ? region.RegionSize : 0;
        });
        return all;
    };
    for (const bool loads : {false, true}) {
        const Installation here;
        ForceDirectories(here.folder.file(L"out\\Language"));
        const std::wstring path = here.copy_built(L"ZR_UI80.dll", L"out\\ZR_UI80.dll");
        if (loads)
            here.copy_built(L"Language\\zrtk_res_en.dll", L"out\\Language\\zrtk_res_en.dll");
        std::pair<size_t, DWORD> before;
        for (int round = 0; round < 60; ++round) {
            const HMODULE module = LoadLibraryW(path.c_str());
            if (module)  // which asks for the printer's DEVMODE, once in a thread
                qk::find_export<decltype(DrvDeviceCapabilities)>(module, "DrvDeviceCapabilities")(
                    FakePrinter::handle(), nullptr, DC_FIELDS, nullptr, nullptr);
            EXPECT_EQ(module && FreeLibrary(module) && FreeLibrary(module), loads);
            EXPECT_EQ(GetModuleHandleW(path.c_str()), nullptr);
            if (round == 19)
                before = held();
        }
        EXPECT_EQ(held().second, before.second);
        EXPECT_LT(held().first, before.first + (1 << 20)) << "72 KiB more each time";
    }
}

TEST(Texts, CopiesAreTerminatedAndPaddedAndKeepPairsWhole) {
    const std::tuple<std::wstring, size_t, std::wstring> rows[] = {
        {L"abc", 1, L""}, {L"a\U0001F5A8", 3, L"a"}, {L"a\U0001F5A8", 4, L"a\U0001F5A8"}, {L"a", 6, L"a"}};
    for (const auto& [text, capacity, kept] : rows) {
        const GuardedBuffer buffer(capacity * sizeof(wchar_t), std::wstring(capacity, L'#').data());
        qk::copy_zero_padded(buffer.as<wchar_t>(), capacity, text);
        const std::wstring rest(capacity - kept.size(), L'\0');
        EXPECT_EQ(std::wstring(buffer.as<wchar_t>(), capacity), kept + rest);
    }
}
