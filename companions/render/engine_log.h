// What the engine prints while it works.
#pragma once

#include <string>
#include <string_view>

#include "companions/render/engine.h"
#include "companions/render/result_codes.h"

namespace companions::render {

// Reads the engine's output as it comes, in pieces of any size.
class EngineLog {
public:
    void feed(std::string_view bytes);

    // Pages done so far.
    [[nodiscard]] unsigned pages() const noexcept { return pages_; }

    // The first line that names an error, cut at 200 bytes; empty when there is none.
    [[nodiscard]] const std::string& error() const noexcept { return error_; }

private:
    void take_line(std::string_view line);

    std::string rest_;  // the line that has no end yet
    std::string error_;
    unsigned pages_ = 0;
};

// What the end of the engine and its output mean for the job.
[[nodiscard]] ResultCode engine_result(Engine::End end, const EngineLog& log) noexcept;

}  // namespace companions::render
