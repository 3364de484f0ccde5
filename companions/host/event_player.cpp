#include "companions/host/event_player.h"

#include <winddiui.h>

#include <cstddef>

#include "common/qk/text.h"

namespace host {

namespace {

constexpr size_t kFilterRoom = 32;  // elements; more than there are events

constexpr const wchar_t* kNames[] = {nullptr,        L"CREATEDCPRE",  L"CREATEDCPOST", L"RESETDCPRE",
                                     L"RESETDCPOST", L"STARTDOCPRE",  L"STARTPAGE",    L"ENDPAGE",
                                     L"ENDDOCPRE",   L"ABORTDOC",     L"DELETEDC",     L"ESCAPE",
                                     L"ENDDOCPOST",  L"STARTDOCPOST", L"QUERYFILTER"};

// DOCEVENT_FILTER with room for its list.
union Filter {
    DOCEVENT_FILTER header;
    std::byte room[offsetof(DOCEVENT_FILTER, aDocEventCall) + kFilterRoom * sizeof(DWORD)];
};

}  // namespace

std::wstring event_name(int number) {
    if (number > 0 && static_cast<size_t>(number) < std::size(kNames))
        return kNames[number];
    return qk::format(L"event %d", number);
}

LONG EventPlayer::call(int event, const Data& data, size_t page) {
    SetLastError(ERROR_SUCCESS);
    const int result = module_(printer_, context_, event, static_cast<ULONG>(data.in_size),
                               const_cast<void*>(data.in), static_cast<ULONG>(data.out_size), data.out);
    const DWORD error = GetLastError();
    events_.push_back({event, true, result, error, page});
    return result;
}

LONG EventPlayer::send(int event, const Data& data, size_t page) {
    if (subscribed_[static_cast<size_t>(event)])
        return call(event, data, page);
    events_.push_back({event, false, DOCUMENTEVENT_SUCCESS, ERROR_SUCCESS, page});
    return DOCUMENTEVENT_SUCCESS;
}

void EventPlayer::query_filter(const wchar_t* device) {
    DOCEVENT_CREATEDCPRE about = {};
    about.pszDevice = const_cast<wchar_t*>(device);
    const DOCEVENT_CREATEDCPRE* address = &about;  // the event's input is the address of the record's address
    Filter filter = {};
    filter.header.cbSize = sizeof filter;
    filter.header.cElementsAllocated = kFilterRoom;
    constexpr UINT kUnanswered = ~0u;
    filter.header.cElementsReturned = kUnanswered;
    const LONG result =
        call(DOCUMENTEVENT_QUERYFILTER, {&address, sizeof address, &filter, sizeof filter}, 0);
    if (result != DOCUMENTEVENT_SUCCESS || filter.header.cElementsReturned > kFilterRoom)
        return;
    subscribed_.fill(false);
    const auto* list = reinterpret_cast<const DWORD*>(filter.room + offsetof(DOCEVENT_FILTER, aDocEventCall));
    for (size_t at = 0; at < filter.header.cElementsReturned; ++at)
        if (list[at] < kEvents)
            subscribed_[list[at]] = true;
}

LONG EventPlayer::create_dc_pre(const wchar_t* device, DEVMODEW* mode) {
    wchar_t driver[] = L"winspool";
    const DOCEVENT_CREATEDCPRE about = {driver, const_cast<wchar_t*>(device), mode, FALSE};
    DEVMODEW* replacement = nullptr;  // a module may answer with a DEVMODE of its own; this one's does not
    return send(DOCUMENTEVENT_CREATEDCPRE, {&about, sizeof about, &replacement, sizeof replacement}, 0);
}

LONG EventPlayer::create_dc_post(DEVMODEW* mode) {
    return send(DOCUMENTEVENT_CREATEDCPOST, {&mode, sizeof mode}, 0);
}

// The module reads the DOCINFOW right where the input points.
LONG EventPlayer::start_doc_pre(const DOCINFOW& document) {
    return send(DOCUMENTEVENT_STARTDOCPRE, {&document, sizeof document}, 0);
}

LONG EventPlayer::start_doc_post(int job) {
    const LONG id = job;
    return send(DOCUMENTEVENT_STARTDOCPOST, {&id, sizeof id}, 0);
}

LONG EventPlayer::send(int event, size_t page) {
    return send(event, Data{}, page);
}

}  // namespace host
