// Plays what a long-lived host does with the module, again and again, and counts what is wrong and what
// grows.
//
//   zr_soak.exe [seconds]            60 by default, shared by the scenes
//   zr_soak.exe --jobs THREADS JOBS  so many jobs on each thread, and nothing else
//
// Exit code 1 when something was wrong or has grown. Its own programs call it with other arguments.
#include "bench/soak.h"

#include <cstdio>
#include <cwchar>

#include "bench/objects.h"
#include "common/qk/handle.h"
#include "companions/thread.h"

namespace bench {

namespace {

struct Row {
    const char* name;
    const char* unit;
    Scene* play;
    unsigned share;  // of the time
    Played played;
    Objects before, after;
};

Row rows[] = {{"jobs of 16 threads", "jobs", &play_jobs, 3},
              {"failing jobs of 4 programs", "log records", &play_failing_jobs, 2},
              {"sheets", "sheets", &play_sheets, 3},
              {"a list of 1,000 settings", "lists", &play_list, 2},
              {"a setting saved by 3 programs", "loads", &play_savers, 2},
              {"kills while saving", "kills", &play_kills, 2}};

// Tells once a second how far it has come, on a line of its own that is written over.
void play_row(const World& world, Row& row, ULONGLONG milliseconds, Played& played) {
    const qk::HandleObj done(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    companions::Thread progress([&] {
        do
            std::printf("\r%-30s %10llu %-12s %llu wrong ", row.name, played.done.load(), row.unit,
                        played.wrong.load());
        while (std::fflush(stdout), WaitForSingleObject(done.get(), 1000) == WAIT_TIMEOUT);
    });
    row.play(world, GetTickCount64() + milliseconds, played);
    SetEvent(done.get());
    progress.join();
}

// A first time, a tenth as long, for what the system keeps from its first use on; its faults count.
void measure(const World& world, Row& row, ULONGLONG milliseconds) {
    Played first;
    play_row(world, row, milliseconds / 10, first);
    row.before = count_objects();
    play_row(world, row, milliseconds, row.played);
    row.after = count_objects();
    row.played.wrong += first.wrong;
}

bool report(const Row& row) {
    const bool grown = has_grown(row.before, row.after);
    const auto kib = [](const Objects& objects) {
        return static_cast<unsigned long long>(objects.bytes / 1024);
    };
    std::printf(
        "%-30s %10llu %-12s%6llu  %5u %5u %7u %5u %8llu %5llu %7llu %5llu %9llu %8llu  %s\n", row.name,
        row.played.done.load(), row.unit, row.played.wrong.load(), row.before.handles, row.after.handles,
        row.before.views, row.after.views, static_cast<unsigned long long>(row.before.gdi),
        static_cast<unsigned long long>(row.after.gdi), static_cast<unsigned long long>(row.before.user),
        static_cast<unsigned long long>(row.after.user), kib(row.before), kib(row.after),
        row.played.wrong != 0 ? "WRONG"
        : grown               ? "GROWS"
                              : "ok");
    return row.played.wrong == 0 && !grown;
}

int soak(unsigned seconds) {
    bool good = true;
    {
        const World world;
        unsigned shares = 0;
        for (const Row& row : rows)
            shares += row.share;
        for (Row& row : rows)
            measure(world, row, seconds * 1000ull * row.share * 10 / (shares * 11));
        std::printf("\r%-30s %10s %-12s%6s  %11s %13s %14s %13s %18s\n", "", "done", "", "wrong", "handles",
                    "mapped views", "GDI objects", "USER objects", "private KiB");
        for (const Row& row : rows)
            good &= report(row);
    }
    std::printf("%s\n", good ? "soak: nothing was wrong and nothing has grown"
                             : "soak: something was wrong or has grown");
    return good ? 0 : 1;
}

}  // namespace

}  // namespace bench

int wmain(int count, wchar_t** words) {
    if (count > 3 && std::wcscmp(words[1], L"--save-and-load") == 0)
        return bench::save_and_load(words[2], std::wcstoul(words[3], nullptr, 10));
    const auto number = [words](int at) { return std::wcstoul(words[at], nullptr, 10); };
    if (count > 4 && std::wcscmp(words[1], L"--fail-jobs") == 0)
        return bench::fail_jobs(words[2], number(3), number(4));
    if (count > 4 && std::wcscmp(words[1], L"--log") == 0)
        return bench::count_log(number(2), number(3), number(4));
    if (count > 3 && std::wcscmp(words[1], L"--jobs") == 0) {
        const unsigned long threads = std::wcstoul(words[2], nullptr, 10);
        const unsigned long jobs = std::wcstoul(words[3], nullptr, 10);
        if (threads == 0 || threads > 64 || jobs == 0)
            bench::fail("--jobs takes 1 to 64 threads and the jobs of each");
        return bench::count_jobs(threads, jobs);
    }
    const unsigned long seconds = count > 1 ? std::wcstoul(words[1], nullptr, 10) : 60;
    return bench::soak(seconds ? seconds : 60);
}
