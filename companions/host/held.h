// What this process holds open, to see whether jobs leave anything behind.
#pragma once

#include <cstddef>

namespace host {

struct Held {
    size_t handles = 0;   // 0: the system does not tell
    size_t mappings = 0;  // mapped views of files and shared memory
};

[[nodiscard]] Held count_held();

}  // namespace host
