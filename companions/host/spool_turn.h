// One job in the print system at a time.
#pragma once

#include <windows.h>

#include "common/qk/handle.h"

namespace host {

// Held from the start of a document to its end. Some print systems name their spool files by a number that
// each process counts for itself, so that jobs of two processes would take each other's file.
class SpoolTurn {
public:
    SpoolTurn() : mutex_(CreateMutexW(nullptr, FALSE, L"zr_print_spool")) {
        constexpr DWORD kMostWait = 600000;  // milliseconds; then the print system may refuse the job itself
        const DWORD waited = mutex_ ? WaitForSingleObject(mutex_.get(), kMostWait) : WAIT_FAILED;
        has_turn_ = waited == WAIT_OBJECT_0 || waited == WAIT_ABANDONED;
    }
    ~SpoolTurn() {
        const qk::LastErrorKeeper keep;
        if (has_turn_)
            ReleaseMutex(mutex_.get());
    }
    SpoolTurn(const SpoolTurn&) = delete;
    SpoolTurn& operator=(const SpoolTurn&) = delete;

private:
    qk::HandleObj mutex_;
    bool has_turn_ = false;
};

}  // namespace host
