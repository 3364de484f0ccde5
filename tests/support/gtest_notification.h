// GoogleTest's own version wants std::mutex, which the compiler's Windows thread model lacks before GCC 13.
// Stands before <gtest/gtest.h> wherever that is read.
#pragma once

#include <windows.h>

namespace testing::internal {

class Notification {
public:
    Notification() : event_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
    ~Notification() { CloseHandle(event_); }
    Notification(const Notification&) = delete;
    Notification& operator=(const Notification&) = delete;

    void Notify() { SetEvent(event_); }
    void WaitForNotification() { WaitForSingleObject(event_, INFINITE); }

private:
    HANDLE event_;
};

}  // namespace testing::internal
