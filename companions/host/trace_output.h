// Switches the module's call trace on and catches what it writes to the debug output of this process.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "common/qk/MMF.h"

namespace host {

// Called with each line of debug output, without its line break; on whatever thread writes it.
using DebugLineSeen = std::function<void(const std::wstring& line)>;

// The trace switch exists, with `level` in it, and debug output goes to `seen`, while this object lives. The
// module reads the switch as it is loaded, so make this first. One object at a time in a process.
class TraceOutput {
public:
    TraceOutput(DWORD level, DebugLineSeen seen);
    ~TraceOutput();
    TraceOutput(const TraceOutput&) = delete;
    TraceOutput& operator=(const TraceOutput&) = delete;

private:
    qk::MMF<DWORD> switch_;
    void* handler_;
};

}  // namespace host
