#include <gtest/gtest.h>

#include <windows.h>

#include <winddiui.h>

#include "companions/host/event_player.h"

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

}  // namespace
