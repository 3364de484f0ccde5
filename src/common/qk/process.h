// The system's other processes.
#pragma once

#include <windows.h>

#include "common/qk/handle.h"

namespace qk {

// Whether no process has that id.
[[nodiscard]] inline bool is_gone(DWORD process) noexcept {
    const HandleObj alive(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, process));
    return !alive && GetLastError() == ERROR_INVALID_PARAMETER;
}

}  // namespace qk
