// Running the renderer, a process of its own, as the print system would after the last page.
#pragma once

#include <windows.h>

#include <functional>
#include <span>
#include <string>

namespace host {

struct RenderJob {
    DWORD thread;  // that prints
    std::wstring printer;
    std::wstring spool;    // path of the spooled PostScript
    std::wstring setting;  // empty: the printer's
    bool keep_spool;
    // Returns when the process has ended; `lines` is a pipe of what it says (companions/render/console.h),
    // null for want of one, and has to be emptied under way. Without a function this thread just waits, and
    // the renderer's streams are this program's standard error stream; with one it has no other streams and
    // no window.
    std::function<void(HANDLE process, HANDLE lines)> wait = {};
    std::wstring cancel = {};  // event that gives the job up when it is set; may be empty
};

// Runs the renderer of the installation folder to its end. It writes the result record's long texts into
// `arena`, which must live until the module has read the record. Returns its exit code, one above 3 when it
// was ended from outside. Throws HostError (installation) when it cannot be started.
[[nodiscard]] DWORD run_renderer(const RenderJob& job, std::span<wchar_t> arena);

// Takes back the file that was reserved for a job of this process which ends without a PDF.
void discard_reserved_file(DWORD thread);

}  // namespace host
