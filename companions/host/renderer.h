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
    // Returns when the process has ended. Empty: this thread just waits, and the renderer's streams are this
    // program's standard error stream; else the renderer has neither streams nor a window.
    std::function<void(HANDLE process)> wait = {};
};

// Runs the renderer of the installation folder to its end. It writes the result record's long texts into
// `arena`, which must live until the module has read the record. Returns its exit code. Throws HostError
// (installation) when it cannot be started.
[[nodiscard]] DWORD run_renderer(const RenderJob& job, std::span<wchar_t> arena);

// Takes back the file that was reserved for a job of this process which ends without a PDF.
void discard_reserved_file(DWORD thread);

}  // namespace host
