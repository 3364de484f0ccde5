// The wish of whoever waits for the PDF that it be given up.
#pragma once

#include <windows.h>

#include <string>

namespace companions::render {

// From now on the job is given up when the named event is set. An empty name, or one of no event: it never
// is. Once, before the job.
void listen_for_cancel(const std::wstring& event) noexcept;

[[nodiscard]] bool cancelled() noexcept;

// Waits for the end of a process, at most so many milliseconds and no longer than the job goes on.
void wait_unless_cancelled(HANDLE process, DWORD milliseconds) noexcept;

}  // namespace companions::render
