#include <gtest/gtest.h>

#include <windows.h>

#include <picojson.h>
#include <winddiui.h>

#include "companions/host/event_player.h"
#include "companions/host/job_report.h"

namespace {

const HANDLE kPrinter = reinterpret_cast<HANDLE>(0x1234);

// A module that subscribes to what the test says and notes what it is told.
struct FakeModule {
    static inline std::vector<DWORD> wanted;
    static inline LONG filter_result = 1;
    static inline std::vector<int> told;
    static inline std::wstring title;
    static inline std::wstring device;

    static void reset(std::vector<DWORD> events, LONG result = 1) {
        wanted = std::move(events);
        filter_result = result;
        told.clear();
        title.clear();
        device.clear();
    }

    static int WINAPI event(HANDLE printer, HDC, int number, ULONG in_size, void* in, ULONG, void* out) {
        EXPECT_EQ(printer, kPrinter);
        EXPECT_EQ(GetLastError(), 0u) << "an older error is not the module's";
        told.push_back(number);
        if (number == DOCUMENTEVENT_QUERYFILTER)
            return answer(static_cast<DOCEVENT_FILTER*>(out));
        if (number == DOCUMENTEVENT_CREATEDCPRE)
            device = static_cast<DOCEVENT_CREATEDCPRE*>(in)->pszDevice;
        if (number != DOCUMENTEVENT_STARTDOCPRE)
            return DOCUMENTEVENT_SUCCESS;
        EXPECT_EQ(in_size, sizeof(DOCINFOW));
        title = static_cast<DOCINFOW*>(in)->lpszDocName;
        SetLastError(2153);
        return DOCUMENTEVENT_FAILURE;
    }

    static LONG answer(DOCEVENT_FILTER* filter) {
        EXPECT_GE(filter->cElementsAllocated, wanted.size());
        filter->cElementsReturned = static_cast<UINT>(wanted.size());
        std::copy(wanted.begin(), wanted.end(), filter->aDocEventCall);
        return filter_result;
    }
};

void play_all(host::EventPlayer& player) {
    DEVMODEW mode = {};
    DOCINFOW document = {};
    document.cbSize = sizeof document;
    document.lpszDocName = L"Title";
    player.query_filter(L"device");
    player.create_dc_pre(L"device", &mode);
    player.create_dc_post(&mode);
    player.start_doc_pre(document);
    player.start_doc_post(1);
    player.start_page(1);
    player.end_page(1);
    player.end_doc_pre();
    player.end_doc_post();
    player.abort_doc();
    player.delete_dc();
}

TEST(HostEvents, FilterIsHonoured) {
    const std::vector<int> all = {14, 1, 2, 5, 13, 6, 7, 8, 12, 9, 10};
    const struct {
        const char* label;
        std::vector<DWORD> wanted;
        LONG result;
        std::vector<int> told;
    } rows[] = {
        {"everything", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}, 1, all},
        {"nothing", {}, 1, {14}},
        {"some", {5, 12}, 1, {14, 5, 12}},
        {"unknown numbers do no harm", {0, 99, 0xFFFFFFFF, 5}, 1, {14, 5}},
        {"refused: everything is sent", {5}, -1, all},
        {"not supported: everything is sent", {5}, 0, all},
    };
    for (const auto& row : rows) {
        FakeModule::reset(row.wanted, row.result);
        host::EventPlayer player(&FakeModule::event, kPrinter);
        SetLastError(5);
        play_all(player);
        EXPECT_EQ(FakeModule::told, row.told) << row.label;
        EXPECT_EQ(player.events().size(), all.size()) << row.label;
    }
}

TEST(HostEvents, AnswersAreKept) {
    FakeModule::reset({1, 5});
    host::EventPlayer player(&FakeModule::event, kPrinter);
    play_all(player);
    EXPECT_EQ(FakeModule::title, L"Title");
    EXPECT_EQ(FakeModule::device, L"device");
    const host::PlayedEvent& refused = player.events()[3];
    EXPECT_EQ(refused.number, DOCUMENTEVENT_STARTDOCPRE);
    EXPECT_EQ(refused.result, -1);
    EXPECT_EQ(refused.error, 2153u);
    EXPECT_TRUE(refused.sent);
    EXPECT_FALSE(player.events()[4].sent);
    EXPECT_EQ(player.events()[4].result, 1);
}

std::vector<host::PlayedEvent> pages(size_t count, size_t odd_one) {
    std::vector<host::PlayedEvent> events = {{14, true, 1, 0, 0}, {5, false, 1, 0, 0}};
    for (size_t page = 1; page <= count; ++page) {
        events.push_back({6, true, 1, 0, page});
        events.push_back({7, true, 1, page == odd_one ? 5u : 0u, page});
    }
    events.push_back({12, true, 1, 0, 0});
    return events;
}

bool holds(const std::vector<std::wstring>& lines, std::wstring_view wanted) {
    return std::ranges::any_of(lines,
                               [wanted](const std::wstring& line) { return line.find(wanted) != line.npos; });
}

TEST(HostEvents, PagesThatGoAlikeAreOneLine) {
    host::JobReport report;
    report.events = pages(1000, 0);
    const std::vector<std::wstring> alike = host::report_lines(report);
    EXPECT_LT(alike.size(), 20u);
    EXPECT_TRUE(holds(alike, L"the same for pages 1 to 1000"));
    EXPECT_TRUE(holds(alike, L"not sent: not subscribed"));
    report.events = pages(1000, 700);
    const std::vector<std::wstring> odd = host::report_lines(report);
    EXPECT_TRUE(holds(odd, L"the same for pages 1 to 699"));
    EXPECT_TRUE(holds(odd, L"ENDPAGE         1, last error 5"));
    EXPECT_TRUE(holds(odd, L"the same for pages 701 to 1000"));
}

TEST(HostEvents, JsonHoldsTheWholeReport) {
    host::JobReport report;
    report.title = L"\u00dcber \"uns\"\\\n\u65e5\U0001F5A8";
    report.events = pages(3, 2);
    report.start_record = host::Fields{{L"resume", L"1", true}, {L"title", L"a"}};
    report.renderer_exit_code = 1;
    report.last_error = 2153;
    report.outcome = host::Outcome::kCancelled;
    picojson::value value;
    ASSERT_EQ(picojson::parse(value, host::report_json(report)), "");
    const auto text = [&](const char* key) { return value.get(key).get<std::string>(); };
    EXPECT_EQ(text("title"),
              "\xC3\x9C"
              "ber \"uns\"\\\n\xE6\x97\xA5\xF0\x9F\x96\xA8");
    EXPECT_EQ(text("outcome"), "cancelled");
    EXPECT_EQ(text("last_error_text"), "The job was cancelled");
    EXPECT_EQ(value.get("events").get<picojson::array>().size(), report.events.size());
    EXPECT_EQ(value.get("events").get(5).get("last_error").get<double>(), 5);
    EXPECT_EQ(value.get("start_record").get("resume").get<double>(), 1);
    EXPECT_EQ(value.get("renderer_exit_code").get<double>(), 1);
    EXPECT_TRUE(value.get("result_record").is<picojson::null>());
}

}  // namespace
