// The document events of a print job, as the print system sends them to DrvDocumentEvent.
#pragma once

#include <windows.h>
#include <winspool.h>
#include <winddiui.h>

#include <memory>

#include "common/job_records.h"
#include "common/qk/MMF.h"
#include "common/teskel_custom_2021.h"

// Answers one event: DOCUMENTEVENT_SUCCESS (1) or DOCUMENTEVENT_FAILURE (-1). The last error is always set:
// 0, or the status of the job. The events of one job arrive on the thread that prints; its state lives in
// that thread's properties from STARTDOCPRE to ENDDOCPOST or ABORTDOC.
int internal_DrvDocumentEvent(HANDLE printer, HDC hdc, int event, ULONG in_size, void* in, ULONG out_size,
                              void* out);

namespace job {

struct Outcome {
    int result = DOCUMENTEVENT_SUCCESS;
    DWORD status = ERROR_SUCCESS;  // becomes the last error
};

// What the thread property "ZRTKPrintStartInfo" points to: the published start record, and the external-call
// record whose address stands in it.
struct StartState {
    qk::MMF<ZRTKPrintStartInfoC> block;
    std::unique_ptr<pd_tk::TeskelCustom2021> external;
};

// What "ZRTKPrintInfo" points to.
using ResultState = qk::MMF<ZRTKPrintInfo>;

// Settles what applies to the job and publishes its records. `in` is the event's DOCINFOW.
[[nodiscard]] Outcome start(HANDLE printer, const void* in, ULONG in_size);

// Reads the result record back, reports a failure, tells listeners and frees the job's state. Succeeds
// whatever fails; the status is the result record's.
[[nodiscard]] Outcome end(HANDLE printer) noexcept;

// Take what a job has left under this thread's properties out; the first releases it too, its record zeroed.
void release_start_state() noexcept;
[[nodiscard]] std::unique_ptr<ResultState> take_result_state() noexcept;

// Fills a DOCEVENT_FILTER; nothing when it is missing or not writable.
void answer_query_filter(void* out);

}  // namespace job
