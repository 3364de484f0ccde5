// The lock of what is shared by the whole module.
#pragma once

#include <windows.h>

#include <mutex>

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

// The lock of a module that is being detached, waited for unless the process ends: its other threads are gone
// then and may have taken the lock with them. Whether it is held is the result's to tell.
[[nodiscard]] inline std::unique_lock<Lock> lock_at_detach(Lock& lock, bool process_ends) noexcept {
    if (process_ends)
        return {lock, std::try_to_lock};
    return std::unique_lock(lock);
}

}  // namespace qk
