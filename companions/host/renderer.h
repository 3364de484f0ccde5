// Running the renderer, a process of its own, as the print system would after the last page.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace host {

// Memory of this process that the renderer writes the result record's long texts into. Must live until the
// module has read the record.
class TextArena {
public:
    TextArena();
    ~TextArena();
    TextArena(const TextArena&) = delete;
    TextArena& operator=(const TextArena&) = delete;

    // "<process id>:<address>:<bytes>", as the renderer takes it; empty when there is no memory.
    [[nodiscard]] std::wstring argument() const;

private:
    void* memory_;
};

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

// Runs the renderer of the installation folder to its end. Returns its exit code. Throws HostError
// (installation) when it cannot be started.
[[nodiscard]] DWORD run_renderer(const RenderJob& job, const TextArena& arena);

// Takes back the file that was reserved for a job of this process which ends without a PDF.
void discard_reserved_file(DWORD thread);

}  // namespace host
