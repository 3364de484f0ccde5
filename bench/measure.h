// Timing: medians of many runs, each cost beside the floor that it cannot go below, as a ratio.
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
    double ratio;  // median of the pairs' ratios, which a busy machine disturbs less than each median
};

// Times `ours` and `floor` in turn, so that both meet the same machine.
template <class Ours, class Floor>
Pair compare(int runs, int repeat, Ours ours, Floor floor) {
    sample(ours, repeat);
    sample(floor, repeat);
    std::vector<double> costs;
    std::vector<double> floors;
    std::vector<double> ratios;
    for (int run = 0; run < runs; ++run) {
        costs.push_back(sample(ours, repeat));
        floors.push_back(sample(floor, repeat));
        ratios.push_back(costs.back() / floors.back());
    }
    return {median(costs), median(floors), median(ratios)};
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

}  // namespace bench
