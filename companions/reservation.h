// What the dialog library tells the renderer through the start record.
#pragma once

#include <cstdint>

#include "common/job_records.h"

namespace companions {

// The record's first value when the library has made an empty file at the output path, to keep the name for
// this job. When the job makes no PDF the file goes again.
inline constexpr uint64_t kFileReserved = 1;

// Takes such a file back. One that has meanwhile got contents stays.
void discard_reserved(const ZRTKPrintStartInfoC& start);

}  // namespace companions
