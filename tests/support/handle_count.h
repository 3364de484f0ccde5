// What the process holds: counted before and after, it tells whether something leaks.
#pragma once

#include "support/prelude.h"

// Open kernel handles. Asked one by one: the system's own counter is not kept by every Windows layer.
[[nodiscard]] inline unsigned handle_count() {
    unsigned handles = 0;
    DWORD flags = 0;
    for (uintptr_t value = 4; value < 0x2000; value += 4)
        handles += GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != FALSE;
    return handles;
}

// Shows each region of the process's memory to `visit`.
template <class Visit>
void for_each_region(Visit visit) {
    MEMORY_BASIC_INFORMATION region = {};
    for (const BYTE* at = nullptr; VirtualQuery(at, &region, sizeof region) == sizeof region;
         at = static_cast<const BYTE*>(region.BaseAddress) + region.RegionSize)
        visit(std::as_const(region));
}

// Mapped views of memory sections (images do not count).
[[nodiscard]] inline unsigned view_count() {
    unsigned views = 0;
    const void* last = nullptr;
    for_each_region([&](const MEMORY_BASIC_INFORMATION& region) {
        views += region.State == MEM_COMMIT && region.Type == MEM_MAPPED && region.AllocationBase != last;
        last = region.AllocationBase;
    });
    return views;
}
