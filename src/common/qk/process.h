// This process and the system's others.
#pragma once

#include <windows.h>

#include "common/qk/handle.h"

namespace qk {

// Whether no process has that id.
[[nodiscard]] inline bool is_gone(DWORD process) noexcept {
    const HandleObj alive(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, process));
    return !alive && GetLastError() == ERROR_INVALID_PARAMETER;
}

// Whether somebody can see this process's windows and answer them: services and scheduled tasks have a window
// station of their own, on which a message box waits for ever. Also where the system cannot tell.
[[nodiscard]] inline bool has_visible_station() noexcept {
    USEROBJECTFLAGS flags = {};
    DWORD size = 0;
    const HWINSTA station = GetProcessWindowStation();
    return station && (!GetUserObjectInformationW(station, UOI_FLAGS, &flags, sizeof flags, &size) ||
                       (flags.dwFlags & WSF_VISIBLE));
}

}  // namespace qk
