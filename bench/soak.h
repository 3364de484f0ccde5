// The scenes of the soak: each is played over and over for a while and must leave the process as it was.
#pragma once

#include <windows.h>

#include <atomic>
#include <string>

#include "tests/support/fake_printer.h"
#include "tests/support/import_patch.h"
#include "tests/support/temp_folder.h"
#include "tests/support/user_registry.h"

namespace bench {

// A machine of the soak's own: its registry, a printer, the dialog library that answers at once. Programs
// that the soak starts have one each, with the documents folder of the first.
class World {
public:
    explicit World(const std::wstring& documents = {});
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    MachineRegistry machine;
    UserRegistry user;
    TempFolder folder;
    FakePrinter printer;
    std::wstring documents_folder;  // where programs share files; the error log lies below it

private:
    ImportPatch post_;
};

// Ends the program: there is nothing to play with.
[[noreturn]] void fail(const char* what);

struct Played {
    std::atomic<unsigned long long> done = 0;
    std::atomic<unsigned long long> wrong = 0;
};

// Plays until GetTickCount64() reaches `end`, but once at least.
using Scene = void(const World& world, ULONGLONG end, Played& played);
Scene play_jobs, play_failing_jobs, play_sheets, play_list, play_savers, play_kills;

// So many jobs on each of so many threads, with the dialog library that is delivered and nobody watching:
// what is wrong, and what the process holds before and after, the first thousand jobs apart. The program's
// exit code.
int count_jobs(unsigned threads, unsigned jobs);

// So many failed jobs on each of so many threads of so many programs, all told in one log: what is wrong with
// it. The program's exit code.
int count_log(unsigned programs, unsigned threads, unsigned jobs);

// What a program of the soak's own does; its exit code, 1 when something was wrong.
int save_and_load(const std::wstring& path, ULONGLONG milliseconds);
int fail_jobs(const std::wstring& documents, unsigned threads, unsigned jobs);

}  // namespace bench
