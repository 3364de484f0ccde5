// Lets one allocation of the code under test fail, for a walk through all of them.
#pragma once

#include <windows.h>

#include <cstddef>
#include <new>

// While it lives, the allocation of this thread that comes after `good_ones` others throws std::bad_alloc.
class FailingMemory {
public:
    explicit FailingMemory(size_t good_ones) : left_(good_ones) { current_ = this; }
    ~FailingMemory() { current_ = nullptr; }
    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;

    // Whether it has come to that allocation.
    [[nodiscard]] bool failed() const { return failed_; }

    // Called for each allocation of the test program.
    static void count() {
        FailingMemory* const memory = current_;
        if (!memory || memory->thread_ != GetCurrentThreadId() || memory->failed_)
            return;
        if (memory->left_-- > 0)
            return;
        memory->failed_ = true;
        throw std::bad_alloc();
    }

private:
    static inline FailingMemory* current_ = nullptr;

    const DWORD thread_ = GetCurrentThreadId();
    size_t left_;
    bool failed_ = false;
};
