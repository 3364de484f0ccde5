// A thread that is waited for. The compiler's thread model is Windows' own, in whose run-time library
// std::thread is missing before GCC 13.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <system_error>
#include <utility>

#include "common/qk/handle.h"

namespace companions {

// Runs `work` on a thread of its own; an exception there ends the program. Destruction waits for its end.
class Thread {
public:
    explicit Thread(std::function<void()> work)
        : work_(std::make_unique<std::function<void()>>(std::move(work))),
          thread_(CreateThread(nullptr, 0, &run, work_.get(), 0, nullptr)) {
        if (!thread_)
            throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
    }
    ~Thread() { join(); }
    Thread(Thread&&) noexcept = default;
    Thread& operator=(Thread&&) = delete;

    void join() noexcept { (void)ended_within(INFINITE); }

    [[nodiscard]] bool ended_within(DWORD milliseconds) const noexcept {
        return !thread_ || WaitForSingleObject(thread_.get(), milliseconds) == WAIT_OBJECT_0;
    }

private:
    static DWORD WINAPI run(void* work) noexcept {
        (*static_cast<std::function<void()>*>(work))();
        return 0;
    }

    std::unique_ptr<std::function<void()>> work_;
    qk::HandleObj thread_;
};

}  // namespace companions
