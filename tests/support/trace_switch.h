// The product's trace switch. One test of the machine has it at a time.
#pragma once

#include "common/qk/handle.h"
#include "support/prelude.h"

class TraceSwitch {
public:
    TraceSwitch() : turn_(CreateMutexW(nullptr, FALSE, L"Global\\zr_test_trace_switch")) {
        WaitForSingleObject(turn_.get(), INFINITE);
    }
    ~TraceSwitch() {
        block_.reset();
        ReleaseMutex(turn_.get());
    }
    TraceSwitch(TraceSwitch&&) = delete;

    void set(DWORD level, bool global = false) {
        make((global ? L"Global\\" : L"") + std::wstring(kName), SEC_COMMIT);
        const qk::View view(MapViewOfFile(block_.get(), FILE_MAP_WRITE, 0, 0, 0));
        *static_cast<DWORD*>(view.get()) = level;
    }
    // A block of the name whose pages are only reserved.
    void set_without_memory() { make(kName, SEC_RESERVE); }
    void remove() { block_.reset(); }

private:
    static constexpr wchar_t kName[] = L"zrtk_ods_debug_mmf_3hrpwtf97s";

    void make(const std::wstring& name, DWORD kind) {
        block_.reset();
        block_.reset(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE | kind, 0,
                                        sizeof(DWORD), name.c_str()));
    }

    qk::HandleObj turn_, block_;
};
