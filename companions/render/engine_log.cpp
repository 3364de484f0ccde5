#include "companions/render/engine_log.h"

#include <algorithm>

#include "companions/render/console.h"
#include "companions/render/pdfmark.h"

namespace companions::render {

namespace {

constexpr size_t kMostLine = 4096;  // what is longer is no line that matters
constexpr size_t kMostError = 200;
constexpr std::string_view kAborting = "aborting conversion";  // PDF/A or PDF/X cannot be kept

}  // namespace

void EngineLog::feed(std::string_view bytes) {
    while (!bytes.empty()) {
        const size_t end = bytes.find('\n');
        if (rest_.size() < kMostLine)
            rest_ += bytes.substr(0, std::min(end, kMostLine));
        if (end == std::string_view::npos)
            return;
        take_line(rest_);
        rest_.clear();
        bytes.remove_prefix(end + 1);
    }
}

void EngineLog::take_line(std::string_view line) {
    // A document that prints without a line end of its own may stand before the mark.
    for (const std::string_view mark : {kPageMark, kPagesMark})
        if (const size_t at = line.find(mark); at != std::string_view::npos)
            pages_ = std::max(pages_, number_at(line.substr(at + mark.size())));
    const bool names_error = line.find("Error:") != std::string_view::npos || line.find("****") == 0 ||
                             line.find(kAborting) != std::string_view::npos;
    if (!names_error || !error_.empty())
        return;
    while (!line.empty() && (line.back() == '\r' || line.back() == ' '))
        line.remove_suffix(1);
    error_ = line.substr(0, kMostError);
}

ResultCode engine_result(Engine::End end, const EngineLog& log) noexcept {
    if (end == Engine::End::kMissing)
        return ResultCode::kEngineMissing;
    if (end == Engine::End::kDone)  // without a page the engine writes an empty one of its own
        return log.pages() == 0 ? ResultCode::kNoPages : ResultCode::kDone;
    // A full disk makes the engine fail or crash, as it comes.
    const bool unwritten = log.error().find("ioerror") != std::string::npos ||
                           log.error().find("Could not open the file") != std::string::npos;
    if (unwritten)
        return ResultCode::kTargetUnwritable;
    if (log.error().find(kAborting) != std::string::npos)
        return ResultCode::kStandardUnmet;
    return end == Engine::End::kStopped ? ResultCode::kEngineStopped : ResultCode::kSpoolDamaged;
}

}  // namespace companions::render
