#include <gtest/gtest.h>

#include <cstdint>
#include <thread>

#include "common/threadprop.h"
#include "support/trace_capture.h"
#include "support/trace_switch.h"

TEST(Trace, RecordsNameThreadFileAndLine) {
    const std::wstring thread = L"." + std::to_wstring(GetCurrentThreadId()) + L" ";
    struct {
        const char* source;
        unsigned line;
        const wchar_t* wanted;
    } const rows[] = {
        {"C:\\a\\b\\file.cpp", 12, L"file.cpp(12)  text\r\n"},
        {"file.cpp", 12, L"file.cpp(12)  text\r\n"},
        {"C:\\a\\file.cpp", 0, L"file.cpp  text\r\n"},
        {"a/b.cpp", 7, L"a/b.cpp(7)  text\r\n"},
        {"C:\\a\\", 1, L"(1)  text\r\n"},
    };
    const TraceCapture trace;
    for (const auto& row : rows) {
        SetLastError(77);
        qk::trace::plain("text", row.source, row.line);
        qk::trace::plain(L"text", row.source, row.line);
        qk::trace::plain(std::wstring(L"text"), row.source, row.line);
        EXPECT_EQ(GetLastError(), 77u);
    }
    const auto records = TraceCapture::records();
    ASSERT_EQ(records.size(), std::size(rows) * 3);
    for (size_t i = 0; i < records.size(); ++i)
        EXPECT_EQ(records[i], thread + rows[i / 3].wanted);
}

TEST(Trace, OverlongRecordsAreCut) {
    const TraceCapture trace;
    const std::wstring text(5000, L'x');
    const std::string source = "C:\\" + std::string(400, 's');
    qk::trace::plain(text, "f.cpp", 1);
    qk::trace::plain(std::string(5000, 'x').c_str(), "f.cpp", 1);
    qk::trace::plain(L"short", source.c_str(), 1);
    qk::trace::debug_output(L"%s", text.c_str());
    for (const std::wstring& record : TraceCapture::records())
        EXPECT_LT(record.size(), 1000u);
    EXPECT_EQ(TraceCapture::records().size(), 4u);
    EXPECT_EQ(TraceCapture::records()[0].size(), 999u);
}

TEST(Trace, LevelDecidesWhatIsWritten) {
    struct {
        DWORD level;
        bool scope, plain;
    } const rows[] = {
        {0, false, false}, {1, true, false}, {4, true, false}, {5, true, true}, {UINT32_MAX, true, true}};
    for (const auto& row : rows) {
        const TraceCapture trace(row.level);
        {
            TRACE_SCOPE("Entry");
            TRACE("narrow");
            TRACE(L"wide");
            TRACE_F(L"n=%d", 3);
        }
        EXPECT_EQ(trace.records().size(), (row.scope ? 2u : 0u) + (row.plain ? 3u : 0u)) << row.level;
        EXPECT_EQ(trace.holds(L"n=3"), row.plain) << row.level;
        if (row.scope) {
            EXPECT_TRUE(trace.holds(L">>Entry"));
            EXPECT_NE(TraceCapture::records().front().find(L"test_trace.cpp("), std::wstring::npos);
            EXPECT_NE(TraceCapture::records().back().find(L"test_trace.cpp  <<Entry"), std::wstring::npos);
        }
    }
}

TEST(Trace, LevelComesFromTheSwitch) {
    TraceSwitch trace_switch;
    const TraceCapture trace(3);
    qk::trace::read_level();
    EXPECT_EQ(qk::trace::level, 0u);
    for (const bool global : {false, true}) {
        trace_switch.set(5, global);
        qk::trace::read_level();
        EXPECT_EQ(qk::trace::level, 5u) << global;
    }
    trace_switch.set(7);
    const ImportPatch no_view("MapViewOfFile",
                              reinterpret_cast<void*>(+[](HANDLE, DWORD, DWORD, DWORD, SIZE_T) -> void* {
                                  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
                                  return nullptr;
                              }));
    SetLastError(66);
    qk::trace::read_level();
    EXPECT_EQ(GetLastError(), 66u);
    EXPECT_EQ(qk::trace::level, 0u);
    EXPECT_TRUE(trace.holds(L"Error@qk::MMF MapViewOfFile:gle=8"));
}

TEST(ThreadProp, EntriesQueueUpPerThreadAndKey) {
    const auto get = [](std::wstring_view key) {
        ULONG_PTR value = 99;
        GetThreadProp(key, value);
        return value;
    };
    EXPECT_EQ(get(L"A"), 0u);
    EXPECT_EQ(FreeThreadProp(L"A"), 0u);
    EXPECT_EQ(SetThreadProp(L"A", 1), 0u);
    EXPECT_EQ(SetThreadProp(L"A", 2), 0u);
    EXPECT_EQ(SetThreadProp(L"a", 3), 0u);
    EXPECT_EQ(SetThreadProp(L"AB", UINTPTR_MAX), 0u);
    ULONG_PTR elsewhere = 99;
    std::thread([&] {
        elsewhere = get(L"A") + FreeThreadProp(L"A");
        SetThreadProp(L"A", 50);  // outlives the thread
    }).join();
    EXPECT_EQ(elsewhere, 0u);
    EXPECT_EQ(get(L"A"), 1u);
    EXPECT_EQ(FreeThreadProp(L"A"), 1u);
    EXPECT_EQ(get(L"A"), 2u);
    EXPECT_EQ(FreeThreadProp(L"A"), 2u);
    EXPECT_EQ(get(L"A"), 0u);
    EXPECT_EQ(get(L"a"), 3u);
    EXPECT_EQ(get(L"AB"), UINTPTR_MAX);
    for (const bool process_ends : {true, false}) {
        SetThreadProp(L"a", 4);
        FinalizeThreadProp(process_ends);
        EXPECT_EQ(get(L"a"), 0u);
    }
}
