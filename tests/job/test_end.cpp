// The other events and the end of a job.
#include "job/job_fixture.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>

#include "common/qk/module.h"
#include "job/document_event.h"
#include "support/guarded_buffer.h"
#include "support/trace_capture.h"

TEST_F(JobTest, EventsWithoutWorkSucceedAndAreTraced) {
    struct {
        int event;
        const wchar_t* name;
    } const rows[] = {
        {1, L"DOCUMENTEVENT_CREATEDCPRE"},
        {2, L"DOCUMENTEVENT_CREATEDCPOST"},
        {3, L"DOCUMENTEVENT_RESETDCPRE"},
        {4, L"DOCUMENTEVENT_RESETDCPOST"},
        {6, L"DOCUMENTEVENT_STARTPAGE"},
        {7, L"DOCUMENTEVENT_ENDPAGE"},
        {8, L"DOCUMENTEVENT_ENDDOCPRE"},
        {10, L"DOCUMENTEVENT_DELETEDC"},
        {11, L"DOCUMENTEVENT_ESCAPE"},
        {13, L"DOCUMENTEVENT_STARTDOCPOST"},
        {14, L"DOCUMENTEVENT_QUERYFILTER"},
        {0, L"Unknown:0"},
        {15, L"Unknown:15"},
        {-1, L"Unknown:-1"},
        {INT_MAX, L"Unknown:2147483647"},
    };
    start_job(L"in progress");
    const auto record = start_record_bytes();
    for (const auto& row : rows) {
        const TraceCapture trace;
        EXPECT_EQ(send_event(row.event), kGood) << row.event;
        EXPECT_TRUE(trace.holds(L"internal_DrvDocumentEvent") && trace.holds(row.name)) << row.event;
        EXPECT_TRUE(trace.holds(qk::format(L">>%d", row.event))) << row.event;
    }
    EXPECT_EQ(start_record_bytes(), record);
    end_job();
}

TEST(DocumentEvents, FilterIsWrittenOnlyWhereItFits) {
    struct {
        DWORD allocated;
        size_t elements;   // that are there before the guard page
        ULONG given_size;  // 0: left out
        DWORD needed, returned;
    } const rows[] = {
        {0, 0, 0, 13, 0},   {12, 12, 0, 13, 0},        {12, 12, 64, 13, 0},
        {13, 13, 0, 0, 13}, {13, 13, 68, 0, 13},       {20, 20, 96, 0, 13},
        {13, 12, 0, 13, 0}, {UINT32_MAX, 2, 0, 13, 0}, {13, 13, 1, 0, 13},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.allocated) + " of " + std::to_string(row.elements));
        const GuardedBuffer buffer(16 + row.elements * sizeof(DWORD));
        auto* words = buffer.as<DWORD>();
        std::memset(words, 0xCC, buffer.size());
        auto* filter = buffer.as<DOCEVENT_FILTER>();
        filter->cElementsAllocated = row.allocated;
        filter->cElementsNeeded = filter->cElementsReturned = 0;
        EXPECT_EQ(send_event(DOCUMENTEVENT_QUERYFILTER, nullptr, 0, filter, row.given_size), kGood);
        EXPECT_EQ(filter->cElementsNeeded, row.needed);
        EXPECT_EQ(filter->cElementsReturned, row.returned);
        for (DWORD i = 0; i < row.elements; ++i)
            EXPECT_EQ(words[4 + i], row.returned && i < 13 ? i + 1 : 0xCCCCCCCC);
    }
    EXPECT_EQ(send_event(DOCUMENTEVENT_QUERYFILTER, nullptr, 0, nullptr, 100), kGood);
    GuardedBuffer constant(68);
    constant.make_read_only();
    EXPECT_EQ(send_event(DOCUMENTEVENT_QUERYFILTER, nullptr, 0, constant.as<>(), 68), kGood);
    const GuardedBuffer stump(8);
    EXPECT_EQ(send_event(DOCUMENTEVENT_QUERYFILTER, nullptr, 0, stump.as<>(), 8), kGood);
}

TEST_F(JobTest, EndWithoutAJobTellsListenersAllTheSame) {
    const std::wstring value = L"settingfile_for_process_" + here.printer.name;
    for (const int event : {DOCUMENTEVENT_ENDDOCPOST, DOCUMENTEVENT_ABORTDOC}) {
        here.user.set_text(Installation::kKey, value, L"x.ps4");
        here.user.set_text(Installation::kKey, value + L"2", L"other printer");
        Outbox::posted.clear();
        const TraceCapture trace;
        EXPECT_EQ(send_event(event), kGood);
        EXPECT_TRUE(trace.holds(L"404"));
        ASSERT_EQ(Outbox::posted.size(), 1u);
        EXPECT_EQ(Outbox::posted[0].window, HWND_BROADCAST);
        EXPECT_EQ(Outbox::posted[0].message, RegisterWindowMessageW(L"Dunmere Vantrix Stop"));
        EXPECT_EQ(Outbox::posted[0].lparam, 0);
        EXPECT_FALSE(UserRegistry::find(Installation::kKey, value));
        EXPECT_TRUE(UserRegistry::find(Installation::kKey, value + L"2"));
    }
    EXPECT_TRUE(Outbox::boxes.empty());
}

TEST_F(JobTest, ListenersGetTheMessageIdOfTheOverrideFile) {
    struct {
        const char *version, *lines;
        WPARAM id;
    } const rows[] = {{nullptr, nullptr, 11},
                      {"2.5", "", 11},
                      {"2.5", "MessageID=42", 42},
                      {"9.9", "MessageID=43", 43},
                      {"2.5", "MessageID=-1", 0xFFFFFFFF},
                      {"2.5", "MessageID=abc", 0},
                      {"2.5", "MessageID=12x", 12}};
    for (const auto& row : rows) {
        if (row.version)
            here.write_ini(row.lines, row.version);
        Outbox::posted.clear();
        end_job();
        ASSERT_EQ(Outbox::posted.size(), 1u);
        EXPECT_EQ(Outbox::posted[0].wparam, row.id);
    }
}

TEST_F(JobTest, ResultRecordIsReportedAsFarAsItIsTrue) {
    std::wstring text = L"A message of more than seven units", caption = L"A caption of its own";
    const GuardedBuffer four_units(8, L"abcd");
    auto* const nowhere = reinterpret_cast<wchar_t*>(UINTPTR_MAX - 3);
    const uint64_t whole = text.size();
    struct {
        const char* label;
        DWORD code, error;
        wchar_t* message;
        uint64_t length, capacity;
        const wchar_t* shown;  // null: no box
    } const rows[] = {
        {"nothing", 0, 0, nullptr, 0, 0, nullptr},
        {"Windows code only", 0, 5, text.data(), whole, whole, nullptr},
        {"both codes", 9, 112, text.data(), whole, whole, text.c_str()},
        {"zero fields", UINT32_MAX, 0, nullptr, 0, 0, L""},
        {"capacity forgotten", 1, 0, text.data(), whole, 0, text.c_str()},
        {"length above capacity", 1, 0, text.data(), 400, 9, L"A message"},
        {"length without end", 1, 0, text.data(), UINT64_MAX, UINT64_MAX, text.c_str()},
        {"null", 1, 0, nullptr, 30, 30, L""},
        {"nowhere", 1, 0, nowhere, 30, 30, L""},
        {"memory ends", 1, 0, four_units.as<wchar_t>(), 50, 50, L"abcd"},
    };
    const auto end_with = [&](const std::function<void(ZRTKPrintInfo&)>& write) {
        Outbox::boxes.clear();
        EXPECT_EQ(start_job(L"x"), kGood);
        write(*ResultRecord(block_name(kResultBlockName)));
        const Left left = end_job();
        EXPECT_FALSE(has_state());
        return left;
    };
    const auto put = [](qk::MsWString& field, wchar_t* address, uint64_t length, uint64_t capacity) {
        field.address = address;
        field.length = length;
        field.capacity = capacity;
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const Left left = end_with([&](ZRTKPrintInfo& info) {
            info.error_code = row.code;
            info.win32_error = row.error;
            put(info.message, row.message, row.length, row.capacity);
        });
        EXPECT_EQ(left, (Left{DOCUMENTEVENT_SUCCESS, row.error}));
        ASSERT_EQ(Outbox::boxes.size(), row.shown ? 1u : 0u);
        if (row.shown) {
            EXPECT_EQ(Outbox::boxes[0].text, row.shown);
            EXPECT_EQ(Outbox::boxes[0].caption, qk::kProductName);
        }
    }
    end_with([&](ZRTKPrintInfo& info) {
        info.error_code = 1;
        info.message.set_in_place(L"1234567");
        put(info.caption, caption.data(), caption.size(), caption.size());
        put(info.pdf_file_name, nullptr, 40, 40);
    });
    ASSERT_EQ(Outbox::boxes.size(), 1u);
    EXPECT_EQ(Outbox::boxes[0].text, L"1234567");
    EXPECT_EQ(Outbox::boxes[0].caption, caption);
}

TEST_F(JobTest, EndClearsTheStartRecordForThoseWhoHoldIt) {
    for (const int event : {DOCUMENTEVENT_ENDDOCPOST, DOCUMENTEVENT_ABORTDOC}) {
        start_job(L"held");
        const StartRecord held(block_name(kStartBlockName));
        EXPECT_EQ(send_event(event), kGood);
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(&*held), 1608), std::string(1608, '\0'));
    }
}

TEST_F(JobTest, ExternalCallsSetTheStartFolderAndAreListed) {
    const std::wstring program = here.folder.write(L"app.exe", "x");
    const std::wstring missing = L"[DocStart]\r\nApp=C:\\none.exe\r\n",
                       output = L"[Output]\r\nOutputFolder=C:\\start\\\r\n";
    struct {
        const char* label;
        std::wstring ini;
        bool active;
        How how = How::kAssigned;
    } const rows[] = {
        {"programs missing", missing + output, false},
        {"a folder is no program", L"[DocEnd]\r\nApp=" + here.folder.path() + L"\r\n" + output, false},
        {"no folder", L"[DocEnd]\r\nApp=" + program + L"\r\n", false},
        {"document end", L"[DocEnd]\r\nApp=" + program + L"\r\n" + output, true},
        {"page start", L"[PageStart]\r\nApp=" + program + L"\r\n" + output, true, How::kReplaced},
        {"page end", missing + L"[PageEnd]\r\nApp=" + program + L"\r\n" + output, true},
        {"document start", L"[DocStart]\r\nApp=" + program + L"\r\n" + output, true},
        {"cancel is no stage", L"[Cancel]\r\nApp=" + program + L"\r\n" + output, false},
    };
    // What the library frees is not freed again.
    static std::vector<void*> freed;
    static void* heap_free = nullptr;
    const ImportPatch free("HeapFree",
                           reinterpret_cast<void*>(+[](HANDLE heap, DWORD flags, void* memory) -> BOOL {
                               freed.push_back(memory);
                               return reinterpret_cast<decltype(&HeapFree)>(heap_free)(heap, flags, memory);
                           }));
    heap_free = free.original();
    static void* folder = nullptr;
    script->answer = [](dialog_library::WorkingRecord& record, const wchar_t*, void* context) {
        auto& test = *static_cast<JobTest*>(context);
        test.third = record.output_path.find_text().value_or(L"<unreadable>");
        folder = record.output_path.address;
        put(record.output_path, test.path, test.how);
        return 0;
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        here.write_external_calls(qk::to_utf8(row.ini));
        how = row.how;
        freed.clear();
        script->expects_start_folder = row.active;
        ASSERT_EQ(start_job(L"x"), kGood);
        EXPECT_EQ(third, row.active ? L"C:\\start\\" : L"");
        if (row.active) {
            EXPECT_EQ(std::ranges::count(freed, folder), row.how == How::kAssigned ? 1 : 0);
        }
        EXPECT_EQ(StartRecord(block_name(kStartBlockName))->external_record != 0, row.active);
        const OtherSide<pd_tk::TKFileNames> list(pd_tk::file_list_name());
        ASSERT_EQ(static_cast<bool>(list), row.active);
        const auto is_listed = [&] {
            return std::ranges::any_of(list->names, [&](const wchar_t* name) { return path == name; });
        };
        if (row.active) {
            EXPECT_TRUE(is_listed());
        }
        EXPECT_EQ(end_job(), kGood);
        if (row.active) {
            EXPECT_FALSE(is_listed());
        }
    }
}
