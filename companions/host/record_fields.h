// The records that the module publishes about a job, field by field.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "common/job_records.h"

namespace host {

// A named value of a report.
struct Field {
    std::wstring name;
    std::wstring value;
    bool is_number = false;  // small enough to be a JSON number
};

using Fields = std::vector<Field>;

// A copy of the job's record, read from its block by the printing thread's id as the renderer does. Nothing
// when there is no such block or it is smaller than the record.
[[nodiscard]] std::optional<ZRTKPrintStartInfoC> find_start_record(DWORD thread);
[[nodiscard]] std::optional<ZRTKPrintInfo> find_result_record(DWORD thread);

[[nodiscard]] Fields fields_of(const ZRTKPrintStartInfoC& record);

// Texts held by address are read from this process's memory, as far as they can be read.
[[nodiscard]] Fields fields_of(const ZRTKPrintInfo& record);

}  // namespace host
