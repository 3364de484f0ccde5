// Filling the result record of a job.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/job_records.h"
#include "companions/render/arguments.h"
#include "companions/render/result_codes.h"

namespace companions::render {

// What the printing process is told. Texts are UTF-16.
struct Result {
    ResultCode code = ResultCode::kDone;
    uint32_t win32_error = 0;
    std::wstring message;
    std::wstring caption;
    std::wstring pdf_file_name;
};

// A result as the record holds it, and what belongs at the arena's address for it.
struct FilledRecord {
    ZRTKPrintInfo record = {};
    std::vector<wchar_t> texts;
};

// Texts of up to 7 units stand in the record, longer ones in the arena as far as they fit: caption and file
// name whole or not at all, the message cut. Without an arena what does not fit into the record is left out.
[[nodiscard]] FilledRecord fill_record(const Result& result, const std::optional<TextArena>& arena);

// Writes a result where the printing process reads it. False when its memory could not be written, with the
// last error: the record then holds no texts by address.
[[nodiscard]] bool publish(const Result& result, const std::optional<TextArena>& arena,
                           ZRTKPrintInfo& record);

}  // namespace companions::render
