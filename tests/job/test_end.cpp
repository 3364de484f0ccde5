// The other events and the end of a job.
#include "job/job_fixture.h"

#include "common/qk/module.h"
#include "common/teskel_custom_2021.h"

TEST_F(JobTest, EventsWithoutWorkSucceedAndAreTraced) {
    const std::map<int, std::wstring> told = {
        {1, L"DOCUMENTEVENT_CREATEDCPRE"}, {14, L"DOCUMENTEVENT_QUERYFILTER"}, {15, L"Unknown:15"}};
    ASSERT_EQ(start_job(L"in progress"), kGood);
    const auto record = start_record_bytes();
    for (const int event : {0, 1, 2, 3, 4, 6, 7, 8, 10, 11, 13, 14, 15, -1, INT_MAX}) {
        const TraceCapture trace;
        EXPECT_EQ(send_event(event), kGood) << event;
        EXPECT_TRUE(trace.holds(qk::format(L">>%d", event))) << event;
        EXPECT_TRUE(!told.contains(event) || trace.holds(told.at(event))) << event;
    }
    EXPECT_EQ(start_record_bytes(), record);
    end_job();
}

TEST(DocumentEvents, FilterIsWrittenOnlyWhereItFits) {
    // The elements that are said to be there, those before the guard page, the size that is given (0: left
    // out), and the answer.
    const std::tuple<DWORD, size_t, ULONG, DWORD, DWORD> rows[] = {
        {0, 0, 0, 13, 0},    {12, 12, 64, 13, 0}, {13, 13, 0, 0, 13},        {13, 13, 68, 0, 13},
        {20, 20, 96, 0, 13}, {13, 12, 0, 13, 0},  {UINT32_MAX, 2, 0, 13, 0}, {13, 13, 1, 0, 13}};
    for (const auto& [allocated, elements, given_size, needed, returned] : rows) {
        SCOPED_TRACE(std::to_string(allocated) + " of " + std::to_string(elements));
        const GuardedBuffer buffer(16 + elements * sizeof(DWORD));
        auto* words = buffer.as<DWORD>();
        std::memset(words, 0xCC, buffer.size());
        auto* filter = buffer.as<DOCEVENT_FILTER>();
        filter->cElementsAllocated = allocated;
        filter->cElementsNeeded = filter->cElementsReturned = 0;
        EXPECT_EQ(send_event(DOCUMENTEVENT_QUERYFILTER, nullptr, 0, filter, given_size), kGood);
        EXPECT_TRUE(filter->cElementsNeeded == needed && filter->cElementsReturned == returned);
        for (DWORD i = 0; i < elements; ++i)
            EXPECT_EQ(words[4 + i], returned && i < 13 ? i + 1 : 0xCCCCCCCC);
    }
    GuardedBuffer constant(68), stump(8);
    constant.make_read_only();
    for (void* out : {static_cast<void*>(nullptr), constant.as<void>(), stump.as<void>()})
        EXPECT_EQ(send_event(DOCUMENTEVENT_QUERYFILTER, nullptr, 0, out, 68), kGood);
}

TEST_F(JobTest, EndTellsListenersWithAJobAndWithout) {
    const std::tuple<const char*, const char*, WPARAM> rows[] = {
        // the override file, null: none; the id
        {nullptr, nullptr, 11},       {"2.5", "", 11},
        {"9.9", "MessageID=43", 43},  {"2.5", "MessageID=abc", 0},
        {"2.5", "MessageID=12x", 12}, {"2.5", "MessageID=-1", 0xFFFFFFFF}};
    const std::wstring value = L"settingfile_for_process_" + here.printer.name, other = value + L"2";
    for (const auto& [version, lines, id] : rows)
        for (const int event : {DOCUMENTEVENT_ENDDOCPOST, DOCUMENTEVENT_ABORTDOC}) {
            if (version)
                here.write_ini(lines, version);
            for (const std::wstring& name : {value, other})
                here.user.set_text(Installation::kKey, name, L"x.ps4");
            here.machine.set_text(Installation::kKey, value, L"x.ps4");
            Outbox::posted.clear();
            EXPECT_EQ(send_event(event), kGood);
            ASSERT_EQ(Outbox::posted.size(), 1u);
            const auto [window, message, wparam, lparam] = Outbox::posted[0];
            EXPECT_TRUE(window == HWND_BROADCAST && lparam == 0 &&
                        message == RegisterWindowMessageW(L"Dunmere Vantrix Stop"));
            EXPECT_EQ(wparam, id);
            EXPECT_FALSE(UserRegistry::find(Installation::kKey, value));
            EXPECT_TRUE(UserRegistry::find(Installation::kKey, other));
            EXPECT_TRUE(qk::registry::find_text(HKEY_LOCAL_MACHINE, Installation::kKey, value.c_str()));

            start_job(L"held");
            const StartRecord held(block_name(kStartBlockName));
            EXPECT_EQ(send_event(event), kGood);
            EXPECT_EQ(raw_bytes(*held), std::string(1608, '\0'));
        }
    EXPECT_TRUE(Outbox::boxes.empty());
}

TEST_F(JobTest, ResultRecordIsReportedAsFarAsItIsTrue) {
    std::wstring text = L"A message of more than seven units", caption = L"A caption of its own";
    const GuardedBuffer four_units(8, L"abcd");
    auto* const nowhere = reinterpret_cast<wchar_t*>(UINTPTR_MAX - 3);
    const uint64_t whole = text.size();
    const auto put = [](qk::MsWString& field, wchar_t* address, uint64_t length, uint64_t capacity) {
        field.address = address, field.length = length, field.capacity = capacity;
    };
    const wchar_t in_field[] = L"1234567";
    wchar_t* const at = text.data();
    // Both codes, the message's address, length and capacity, what is shown (null: no box): the text in the
    // field itself goes with a caption of its own.
    const std::tuple<DWORD, DWORD, wchar_t*, uint64_t, uint64_t, const wchar_t*> rows[] = {
        {0, 0, nullptr, 0, 0, nullptr},   {0, 5, at, whole, whole, nullptr},
        {1, 0, nullptr, 0, 0, in_field},  {9, 112, at, whole, whole, at},
        {1, 0, at, whole, 0, at},         {UINT32_MAX, 0, nullptr, 0, 0, L""},
        {1, 0, at, 400, 9, L"A message"}, {1, 0, at, UINT64_MAX, UINT64_MAX, at},
        {1, 0, nullptr, 30, 30, L""},     {1, 0, four_units.as<wchar_t>(), 50, 50, L"abcd"},
        {1, 0, nowhere, 30, 30, L""}};
    for (const auto& [code, error, message, length, capacity, shown] : rows) {
        SCOPED_TRACE(testing::Message() << "code " << code << ", " << length << " of " << capacity);
        const bool in_place = shown == in_field;
        Outbox::boxes.clear();
        EXPECT_EQ(start_job(L"x"), kGood);
        {
            const ResultRecord info(block_name(kResultBlockName));
            info->error_code = code, info->win32_error = error;
            put(info->message, message, length, capacity);
            if (in_place) {
                info->message.set_in_place(shown);
                put(info->caption, caption.data(), caption.size(), caption.size());
                put(info->pdf_file_name, nullptr, 40, 40);
            }
        }
        EXPECT_EQ(end_job(), (Left{DOCUMENTEVENT_SUCCESS, error}));
        EXPECT_FALSE(has_state());
        ASSERT_EQ(Outbox::boxes.size(), shown ? 1u : 0u);
        EXPECT_TRUE(!shown || (Outbox::boxes[0].text == shown &&
                               Outbox::boxes[0].caption == (in_place ? caption : qk::kProductName)));
    }
}

TEST_F(JobTest, ExternalCallsSetTheStartFolderAndAreListed) {
    const std::wstring program = here.folder.write(L"app.exe", "x");
    // The stage, the program, whether a folder is given, whether all that counts, how the path is answered.
    const std::tuple<const char*, std::wstring, bool, bool, How> rows[] = {
        {"DocEnd", here.folder.path(), true, false, How::kAssigned},  // a folder is no program
        {"DocEnd", program, false, false, How::kAssigned},
        {"DocEnd", program, true, true, How::kAssigned},
        {"PageStart", program, true, true, How::kReplaced},
        {"DocStart", program, true, true, How::kAssigned}};
    // What the library frees is not freed again.
    std::vector<void*> freed;
    const Intercept<decltype(HeapFree)> free("HeapFree", [&](HANDLE, DWORD, void* memory) {
        freed.push_back(memory);
        return std::nullopt;
    });
    static void *folder = nullptr, *title = nullptr;
    static std::wstring own_title = L"The library's";
    script->answer = [](dialog_library::WorkingRecord& record, const wchar_t*, void* context) {
        auto& test = *static_cast<JobTest*>(context);
        test.third = record.output_path.find_text().value_or(L"<unreadable>");
        folder = record.output_path.address, title = record.title.address;
        put(record.output_path, test.path, test.how);
        put(record.title, own_title, test.how);
        return 0;
    };
    for (const auto& [stage, called, with_folder, active, answered] : rows) {
        SCOPED_TRACE(stage);
        call_program(stage, called, with_folder);
        how = answered;
        freed.clear();
        script->expects_start_folder = active;
        ASSERT_EQ(start_job(L"The document's name"), kGood);
        EXPECT_EQ(third, active ? L"C:\\start\\" : L"");
        EXPECT_EQ(std::ranges::count(freed, folder), active && answered == How::kAssigned ? 1 : 0);
        EXPECT_EQ(std::ranges::count(freed, title), answered == How::kAssigned ? 1 : 0);
        const StartRecord record(block_name(kStartBlockName));
        EXPECT_EQ(record->external_record != 0, active);
        EXPECT_EQ(record->title, own_title);
        const OtherSide<pd_tk::TKFileNames> list(pd_tk::file_list_name());
        ASSERT_EQ(static_cast<bool>(list), active);
        const auto is_listed = [&] {
            return list && std::ranges::count_if(list->names, [&](auto& name) { return name == path; }) == 1;
        };
        EXPECT_EQ(is_listed(), active);
        EXPECT_EQ(end_job(), kGood);
        EXPECT_FALSE(is_listed());
    }
}
