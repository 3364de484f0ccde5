// What the process holds: counted before and after, it tells whether something leaks.
#pragma once

#include "support/prelude.h"

// Open kernel handles. Asked one by one: the system's own counter is not kept by every Windows layer.
[[nodiscard]] inline unsigned handle_count() {
    constexpr uintptr_t kLast = 0x2000;
    unsigned handles = 0;
    for (uintptr_t value = 4; value < kLast; value += 4) {
        DWORD flags = 0;
        handles += GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != FALSE;
    }
    return handles;
}

// Mapped views of memory sections (images do not count).
[[nodiscard]] inline unsigned view_count() {
    unsigned views = 0;
    const void* last = nullptr;
    MEMORY_BASIC_INFORMATION region = {};
    for (const BYTE* at = nullptr; VirtualQuery(at, &region, sizeof region) == sizeof region;
         at = static_cast<const BYTE*>(region.BaseAddress) + region.RegionSize) {
        if (region.State == MEM_COMMIT && region.Type == MEM_MAPPED && region.AllocationBase != last)
            ++views;
        last = region.AllocationBase;
    }
    return views;
}
