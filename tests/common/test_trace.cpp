#include "common/threadprop.h"
#include "support/trace_switch.h"

TEST(Trace, RecordsNameThreadFileAndLineAndAreCut) {
    const std::wstring thread = L"." + std::to_wstring(GetCurrentThreadId()) + L" ", text(5000, L'x');
    const std::tuple<const char*, unsigned, const wchar_t*> rows[] = {
        {"C:\\a\\b\\file.cpp", 12, L"file.cpp(12)  text\r\n"},
        {"a/b.cpp", 7, L"a/b.cpp(7)  text\r\n"},
        {"C:\\a\\", 0, L"  text\r\n"}};
    for (const auto& [source, line, wanted] : rows) {
        const TraceCapture trace;
        SetLastError(77);
        qk::trace::write("text", source, line);
        qk::trace::write(std::wstring(L"text"), source, line);
        EXPECT_EQ(GetLastError(), 77u);
        EXPECT_EQ(trace.records(), std::vector(2, thread + wanted));
    }
    const TraceCapture trace;
    qk::trace::write(text, "f.cpp", 1);
    TRACE_F(L"%s", text.c_str());
    qk::trace::write(std::string(5000, 'x').c_str(), "f.cpp", 1);
    qk::trace::debug_output(L"%s", text.c_str());
    ASSERT_EQ(trace.records().size(), 4u);
    for (const std::wstring& record : trace.records())
        EXPECT_EQ(record.size(), 999u);
    qk::trace::write(L"short", std::string(400, 's').c_str(), 1);
    EXPECT_TRUE(trace.holds(L"short"));
}

TEST(Trace, LevelDecidesWhatIsWritten) {
    const std::tuple<DWORD, bool, bool> rows[] = {
        {0, false, false}, {1, true, false}, {4, true, false}, {5, true, true}, {UINT32_MAX, true, true}};
    for (const auto& [level, scope, plain] : rows) {
        const TraceCapture trace(level);
        int computed = 0;
        {
            TRACE_SCOPE("Entry");
            TRACE((++computed, "text"));
            TRACE_F(L"n=%d", ++computed + 1);
        }
        EXPECT_EQ(computed, plain ? 2 : 0) << level;
        const auto records = trace.records();
        ASSERT_EQ(records.size(), (scope ? 2u : 0u) + (plain ? 2u : 0u)) << level;
        EXPECT_EQ(trace.holds(L"n=3"), plain) << level;
        EXPECT_EQ(trace.holds(L">>Entry"), scope);
        EXPECT_TRUE(!scope || (records.front().find(L"test_trace.cpp(") != std::wstring::npos &&
                               records.back().find(L"test_trace.cpp  <<Entry") != std::wstring::npos));
    }
}

TEST(Trace, LevelComesFromTheSwitch) {
    TraceSwitch trace_switch;
    const TraceCapture trace(3);
    const auto read = [] {
        SetLastError(66);
        qk::trace::read_level();
        EXPECT_EQ(GetLastError(), 66u);
        return qk::trace::level;
    };
    EXPECT_EQ(read(), 0u);
    for (const DWORD level : {6u, 5u}) {
        trace_switch.set(level, level == 6);
        EXPECT_EQ(read(), level);
    }
    trace_switch.set(7);
    {
        DWORD meanwhile = 0;
        const Intercept<decltype(UnmapViewOfFile)> slow(
            "UnmapViewOfFile", [&](auto) { return meanwhile = qk::trace::level, std::nullopt; });
        EXPECT_EQ(read(), 7u);
        EXPECT_EQ(meanwhile, 5u) << "other threads are not silenced while the level is read";
    }
    trace_switch.set_without_memory();
    EXPECT_EQ(read(), 0u);
}

TEST(Trace, NeedsNoMemory) {
    const TraceCapture trace;
    static wchar_t record[1000];
    static bool asked;
    asked = false;
    const ImportPatch output("OutputDebugStringW", [](const wchar_t* text) { wcscpy(record, text); });
    {
        const ImportPatch memory("malloc", [](size_t) -> void* { return asked = true, nullptr; });
        TRACE_F(L"more than any text %s", L"holds in itself");
    }
    EXPECT_TRUE(!asked && wcsstr(record, L"more than any text holds in itself"));
}

TEST(ThreadProp, EntriesQueueUpPerThreadAndKey) {
    const auto get = [](std::wstring_view key) {
        ULONG_PTR value = 99;
        GetThreadProp(key, value);
        return value;
    };
    EXPECT_EQ(get(L"A") + FreeThreadProp(L"A"), 0u);
    EXPECT_TRUE(SetThreadProp(L"A", 1) == 0 && SetThreadProp(L"A", 2) == 0);
    SetThreadProp(L"a", 3);
    SetThreadProp(L"AB", UINTPTR_MAX);
    companions::Thread([&] {
        EXPECT_EQ(get(L"A") + FreeThreadProp(L"A"), 0u);
        SetThreadProp(L"A", 50);  // outlives the thread
    }).join();
    for (const ULONG_PTR value : {1u, 2u, 0u}) {
        EXPECT_EQ(get(L"A"), value);
        EXPECT_EQ(FreeThreadProp(L"A"), value);
    }
    EXPECT_TRUE(get(L"a") == 3 && get(L"AB") == UINTPTR_MAX);
    for (const bool process_ends : {true, false}) {
        SetThreadProp(L"a", 4);
        FinalizeThreadProp(process_ends);
        EXPECT_EQ(get(L"a"), 0u);
    }
}

TEST(ThreadProp, ThreadsDoNotMeetInTheStore) {
    std::atomic<int> ready = 0;
    const auto work = [&] {
        for (++ready; ready < 4;)
            Sleep(0);
        for (ULONG_PTR i = 1; i <= 10'000; ++i) {
            ULONG_PTR value = 0;
            SetThreadProp(L"A", i);
            GetThreadProp(L"A", value);
            if (value != i || ExchangeThreadProp(L"A", ~i) != i || FreeThreadProp(L"A") != ~i)
                return ADD_FAILURE() << "another's value in round " << i;
        }
    };
    using companions::Thread;
    Thread threads[] = {Thread(work), Thread(work), Thread(work), Thread(work)};
}
