#include "job/document_event.h"

#include <array>
#include <cstddef>

#include "common/qk/memory_probe.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"

namespace {

constexpr std::array kEventNames = {
    "DOCUMENTEVENT_CREATEDCPRE",  "DOCUMENTEVENT_CREATEDCPOST", "DOCUMENTEVENT_RESETDCPRE",
    "DOCUMENTEVENT_RESETDCPOST",  "DOCUMENTEVENT_STARTDOCPRE",  "DOCUMENTEVENT_STARTPAGE",
    "DOCUMENTEVENT_ENDPAGE",      "DOCUMENTEVENT_ENDDOCPRE",    "DOCUMENTEVENT_ABORTDOC",
    "DOCUMENTEVENT_DELETEDC",     "DOCUMENTEVENT_ESCAPE",       "DOCUMENTEVENT_ENDDOCPOST",
    "DOCUMENTEVENT_STARTDOCPOST", "DOCUMENTEVENT_QUERYFILTER"};

void trace_event(int event) {
    TRACE("internal_DrvDocumentEvent");
    if (event >= 1 && static_cast<size_t>(event) <= kEventNames.size())
        TRACE(kEventNames[static_cast<size_t>(event) - 1]);
    else
        TRACE_F(L"Unknown:%d", event);
}

}  // namespace

namespace job {

void answer_query_filter(void* out) {
    constexpr DWORD kEvents = 13;  // all of them but the query itself
    constexpr size_t kFixedPart = offsetof(DOCEVENT_FILTER, aDocEventCall);
    auto* filter = static_cast<DOCEVENT_FILTER*>(out);
    if (!qk::is_writable(filter, kFixedPart))
        return;
    // The count of elements decides, not the size of the output, which callers give in ways of their own. A
    // count that is not true, with no memory behind it, is one that does not suffice.
    if (filter->cElementsAllocated < kEvents ||
        !qk::is_writable(filter, kFixedPart + kEvents * sizeof(DWORD))) {
        filter->cElementsNeeded = kEvents;
        return;
    }
    filter->cElementsReturned = kEvents;
    for (DWORD event = 1; event <= kEvents; ++event)
        filter->aDocEventCall[event - 1] = event;
}

}  // namespace job

int internal_DrvDocumentEvent(HANDLE printer, HDC /*hdc*/, int event, ULONG in_size, void* in,
                              ULONG /*out_size*/, void* out) {
    trace_event(event);
    job::Outcome outcome;
    switch (event) {
        case DOCUMENTEVENT_QUERYFILTER:
            job::answer_query_filter(out);
            break;
        case DOCUMENTEVENT_STARTDOCPRE:
            outcome = job::start(printer, in, in_size);
            break;
        case DOCUMENTEVENT_ABORTDOC:
        case DOCUMENTEVENT_ENDDOCPOST:
            outcome = job::end(printer);
            break;
        default:
            break;
    }
    SetLastError(outcome.status);
    return outcome.result;
}
