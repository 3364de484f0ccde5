// The lock of what is shared by the whole module.
#pragma once

#include <windows.h>

namespace qk {

// Holds no handle, needs no construction and cannot fail: a library that is unloaded leaves nothing behind.
// Not recursive. For std::scoped_lock and std::unique_lock.
class Lock {
public:
    Lock() = default;
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    void lock() noexcept { AcquireSRWLockExclusive(&lock_); }
    [[nodiscard]] bool try_lock() noexcept { return TryAcquireSRWLockExclusive(&lock_) != FALSE; }
    void unlock() noexcept { ReleaseSRWLockExclusive(&lock_); }

private:
    SRWLOCK lock_ = SRWLOCK_INIT;
};

}  // namespace qk
