// The product's trace switch. One test of the machine has it at a time.
#pragma once

#include <windows.h>

#include <string>

#include "common/handle.h"

class TraceSwitch {
public:
    TraceSwitch() : turn_(CreateMutexW(nullptr, FALSE, L"Global\\zr_test_trace_switch")) {
        WaitForSingleObject(turn_.get(), INFINITE);
    }
    ~TraceSwitch() {
        block_.reset();
        ReleaseMutex(turn_.get());
    }
    TraceSwitch(const TraceSwitch&) = delete;
    TraceSwitch& operator=(const TraceSwitch&) = delete;

    void set(DWORD level, bool global = false) {
        const std::wstring name =
            (global ? L"Global\\" : L"") + std::wstring(L"zrtk_ods_debug_mmf_3hrpwtf97s");
        block_.reset(
            CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof level, name.c_str()));
        const qk::View view(MapViewOfFile(block_.get(), FILE_MAP_WRITE, 0, 0, 0));
        *static_cast<DWORD*>(view.get()) = level;
    }
    void remove() { block_.reset(); }

private:
    qk::HandleObj turn_, block_;
};
