// What one program does at a time.
#pragma once

#include <windows.h>

#include "common/qk/handle.h"

namespace host {

// A turn at what `name` stands for, which all programs of the session wait for, but no longer than
// `most_milliseconds`: one that hangs in its turn must not stop all others.
class Turn {
public:
    Turn(const wchar_t* name, DWORD most_milliseconds) : mutex_(CreateMutexW(nullptr, FALSE, name)) {
        const DWORD waited = mutex_ ? WaitForSingleObject(mutex_.get(), most_milliseconds) : WAIT_FAILED;
        came_ = waited == WAIT_OBJECT_0 || waited == WAIT_ABANDONED;
    }
    ~Turn() {
        const qk::LastErrorKeeper keep;
        if (came_)
            ReleaseMutex(mutex_.get());
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    [[nodiscard]] bool came() const noexcept { return came_; }

private:
    qk::HandleObj mutex_;
    bool came_ = false;
};

}  // namespace host
