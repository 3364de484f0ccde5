// What this process holds open, to see whether jobs leave anything behind.
#pragma once

#include <cstddef>

namespace host {

struct Held {
    size_t handles = 0;  // but for those below; 0: the system does not tell
    size_t lock_events =
        0;  // events and semaphores: a lock makes one when two threads first meet there, and keeps it
    size_t mappings = 0;     // mapped views of files and shared memory
    size_t private_kib = 0;  // memory that no other process shares
};

[[nodiscard]] Held count_held();

}  // namespace host
