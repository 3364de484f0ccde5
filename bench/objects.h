// What the process holds: counted before and after, it tells what grows.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "bench/measure.h"
#include "tests/support/handle_count.h"

namespace bench {

struct Objects {
    unsigned handles = 0, views = 0;
    uintptr_t gdi = 0, user = 0;
    size_t bytes = 0;  // private ones
};

// The counters of the system are not kept by every Windows layer. Its tables hand out free entries first: of
// so many new objects that these are used up, the highest number tells how many there are.
inline Objects count_objects() {
    constexpr size_t kMany = 2000;
    Objects objects;
    std::vector<HPEN> pens(kMany);
    std::vector<HMENU> menus(kMany);
    for (size_t i = 0; i < kMany; ++i) {
        pens[i] = CreatePen(PS_SOLID, 1, 0);
        menus[i] = CreateMenu();
        objects.gdi = std::max<uintptr_t>(objects.gdi, LOWORD(reinterpret_cast<uintptr_t>(pens[i])));
        objects.user = std::max<uintptr_t>(objects.user, LOWORD(reinterpret_cast<uintptr_t>(menus[i])));
    }
    for (size_t i = 0; i < kMany; ++i) {
        DeleteObject(pens[i]);  // lint: owner
        DestroyMenu(menus[i]);
    }
    objects.handles = handle_count();
    objects.views = view_count();
    objects.bytes = private_bytes();
    return objects;
}

// Whether something has become more than the system may have taken for itself in between.
inline bool has_grown(const Objects& before, const Objects& after) {
    constexpr uintptr_t kFluctuation = 8;
    constexpr size_t kMostBytes = 1 << 20;
    return after.handles > before.handles || after.views > before.views ||
           after.gdi > before.gdi + kFluctuation || after.user > before.user + kFluctuation ||
           after.bytes > before.bytes + kMostBytes;
}

}  // namespace bench
