// One run of the renderer: from the start record to the PDF.
#pragma once

#include <cstdint>

#include "common/job_records.h"
#include "companions/render/arguments.h"
#include "companions/render/result_record.h"

namespace companions::render {

struct Rendered {
    Result result;
    unsigned pages = 0;
    uint64_t bytes = 0;  // of the PDF
};

// Turns the spooled PostScript into the PDF of the job, telling its progress on the standard streams.
// Failures are in the result; an old file at the path is then unharmed.
[[nodiscard]] Rendered render(const Arguments& arguments, const ZRTKPrintStartInfoC& start);

}  // namespace companions::render
