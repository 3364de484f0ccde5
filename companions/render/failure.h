// How a run of the renderer ends before its PDF is there.
#pragma once

#include <cstdint>
#include <string>

#include "companions/render/result_codes.h"

namespace companions::render {

// Thrown within the renderer; becomes the job's result record.
struct Failure {
    ResultCode code;
    uint32_t win32_error;
    std::wstring detail;  // a path, or what a program said; may be empty
};

}  // namespace companions::render
