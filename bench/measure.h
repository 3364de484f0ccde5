// Timing: the best of many runs, each cost beside the floor that it cannot go below, as a ratio.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace bench {

inline double now_microseconds() {
    static const double frequency = [] {
        LARGE_INTEGER ticks;
        QueryPerformanceFrequency(&ticks);
        return static_cast<double>(ticks.QuadPart) / 1e6;
    }();
    LARGE_INTEGER count;
    QueryPerformanceCounter(&count);
    return static_cast<double>(count.QuadPart) / frequency;
}

// One thing to time: `repeat` calls make one sample.
template <class Call>
double sample(Call& call, int repeat) {
    const double start = now_microseconds();
    for (int i = 0; i < repeat; ++i)
        call();
    return (now_microseconds() - start) / repeat;
}

inline double median(std::vector<double> samples) {
    std::ranges::sort(samples);
    return samples[samples.size() / 2];
}

struct Pair {
    double cost;   // microseconds
    double floor;  // microseconds
    double ratio;
};

// Times `ours` and `floor` in turn, so that both meet the same machine. What else the machine does only ever
// adds to a time, so the best of each counts. The ratio is that of the two bests or the median of the
// neighbours', whichever is smaller: a busy machine spoils the one or the other, seldom both.
template <class Ours, class Floor>
Pair compare(int runs, int repeat, Ours ours, Floor floor) {
    sample(ours, repeat);
    sample(floor, repeat);
    Pair best = {sample(ours, repeat), sample(floor, repeat), 0};
    std::vector<double> ratios = {best.cost / best.floor};
    for (int run = 1; run < runs; ++run) {
        const double cost = sample(ours, repeat);
        const double beside = sample(floor, repeat);
        best.cost = std::min(best.cost, cost);
        best.floor = std::min(best.floor, beside);
        ratios.push_back(cost / beside);
    }
    best.ratio = std::min(best.cost / best.floor, median(ratios));
    return best;
}

// One line of the table. `limit` 0 means that no limit is set. False when the ratio is above the limit.
inline bool report(const char* what, const char* beside, const Pair& pair, double limit) {
    const bool good = limit == 0 || pair.ratio <= limit;
    std::printf("%-44s %12.3f us  %-44s %12.3f us  x%6.2f", what, pair.cost, beside, pair.floor, pair.ratio);
    if (limit != 0)
        std::printf("  limit x%.2f %s", limit, good ? "ok" : "TOO SLOW");
    std::printf("\n");
    std::fflush(stdout);
    return good;
}

// Memory that belongs to this process alone: private regions and pages of images that can be written.
inline size_t private_bytes() {
    constexpr DWORD kWritable =
        PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    size_t bytes = 0;
    MEMORY_BASIC_INFORMATION region = {};
    for (const BYTE* at = nullptr; VirtualQuery(at, &region, sizeof region) == sizeof region;
         at = static_cast<const BYTE*>(region.BaseAddress) + region.RegionSize) {
        const bool own =
            region.Type == MEM_PRIVATE || (region.Type == MEM_IMAGE && (region.Protect & kWritable));
        if (region.State == MEM_COMMIT && own)
            bytes += region.RegionSize;
    }
    return bytes;
}

}  // namespace bench
