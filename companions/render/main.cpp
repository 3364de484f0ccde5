// zr_render.exe: the renderer as a process of its own.
#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <cstdint>
#include <cstdio>
#include <memory>

#include "common/job_records.h"
#include "common/qk/MMF.h"
#include "common/qk/text.h"
#include "companions/render/cancelling.h"
#include "companions/render/console.h"
#include "companions/render/render_job.h"
#include "companions/reservation.h"

namespace companions::render {

namespace {

// The record of a job in progress. A block that had to be made is no job's.
template <class Record>
class JobBlock {
public:
    JobBlock(const wchar_t* name, DWORD thread) : block_(qk::format(name, static_cast<int>(thread))) {}
    [[nodiscard]] bool read(Record& record) const noexcept {
        return !block_.created() && block_.read(record);
    }
    bool write(const Record& record) const noexcept { return !block_.created() && block_.write(record); }

private:
    qk::MMF<Record> block_;
};

int report(const Rendered& rendered, const Arguments& arguments, const JobBlock<ZRTKPrintInfo>& block) {
    const Result& result = rendered.result;
    if (result.code != ResultCode::kDone)
        warn("error " + std::to_string(static_cast<uint32_t>(result.code)) + ": " +
             qk::to_utf8(result.message));
    ZRTKPrintInfo record = {};
    if (!block.read(record))
        warn("the job has no result record");
    else if (!publish(result, arguments.arena, record))
        warn("the printing process's memory could not be written, error " + std::to_string(GetLastError()));
    block.write(record);
    return result.code == ResultCode::kDone ? kExitDone : kExitFailed;
}

int run(std::span<const wchar_t* const> words) {
    const ParsedArguments parsed = parse_arguments(words);
    if (!parsed.help.empty()) {
        std::fputs(qk::to_utf8(parsed.help).c_str(), stdout);
        return kExitDone;
    }
    if (!parsed.fault.empty()) {
        warn(qk::to_utf8(parsed.fault) + " (zr_render --help tells what there is)");
        return kExitUsage;
    }
    const JobBlock<ZRTKPrintStartInfoC> start_block(kStartBlockName, parsed.arguments.thread);
    const auto start = std::make_unique<ZRTKPrintStartInfoC>();  // a copy, which nobody changes under way
    if (!start_block.read(*start)) {
        warn("thread " + std::to_string(parsed.arguments.thread) +
             " has no job: its start record is missing");
        return kExitNoRecord;
    }
    if (parsed.arguments.discard) {
        discard_reserved(*start);
        return kExitDone;
    }
    listen_for_cancel(parsed.arguments.cancel);
    const Rendered rendered = render(parsed.arguments, *start);
    if (rendered.result.code != ResultCode::kDone && cancelled())
        return kExitFailed;  // whoever has cancelled the job is told nothing
    const JobBlock<ZRTKPrintInfo> result_block(kResultBlockName, parsed.arguments.thread);
    return report(rendered, parsed.arguments, result_block);
}

}  // namespace

}  // namespace companions::render

int wmain(int count, wchar_t** words) {
    // UTF-8 with plain line feeds, whatever the console or the file behind the streams.
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
    try {
        return companions::render::run({words + 1, static_cast<size_t>(count > 0 ? count - 1 : 0)});
    } catch (...) {
        std::fputs("zr_render: out of memory\n", stderr);
        return companions::render::kExitFailed;
    }
}
