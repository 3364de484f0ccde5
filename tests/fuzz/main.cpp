// Feeds damaged input to the module's code, one kind after the other, again and again.
//
//   zr_fuzz.exe [--kind NAME] [--seed N] [--rounds N] [--seconds N] [FILE...]
//
// Rounds are those of each kind; usual are ten seconds. The same seed and round make the same input. One that
// faults, gets a wrong answer or takes more than a second is saved as "fuzz-<kind>-<seed>-<round>.bin" in the
// current folder and named; given back as FILE with its kind it is fed as it is. Exit code 1 after any such
// input, for a FILE that cannot be read, or when the damage leaves all or none of many inputs sound.

#include <csignal>
#include <cstdio>
#include <exception>

#include "common/qk/resource_dll.h"
#include "fuzz/kinds.h"
#include "support/damage.h"

namespace {

constexpr ULONGLONG kSliceMs = 100, kSlowMs = 1000, kHangMs = 20'000;

struct Tally {
    unsigned long inputs = 0, sound = 0;
    ULONGLONG slowest = 0;  // milliseconds
};

unsigned seed = 0;
int faults = 0;

// What is being fed.
const char* kind_name = "";
std::string input;
unsigned long round_number = 0;
std::atomic<ULONGLONG> fed_at = 0;  // 0: nothing is

void save(const std::string& why) {
    const std::string name = std::string("fuzz-") + kind_name + "-" + std::to_string(seed) + "-" +
                             std::to_string(round_number) + ".bin";
    std::ofstream(name, std::ios::binary) << input;
    std::printf("FAULT %s: %s (%zu bytes)\n", name.c_str(), why.c_str(), input.size());
    std::fflush(stdout);
    ++faults;
}

// Nothing of the process can be trusted any more.
void give_up(const std::string& why) {
    save(why);
    TerminateProcess(GetCurrentProcess(), 1);
}

LONG WINAPI on_fault(EXCEPTION_POINTERS* fault) {
    const auto& [code, flags, outer, address, count, more] = *fault->ExceptionRecord;
    std::printf("exception %08lX at %p, image at %p\n", code, address,
                static_cast<void*>(GetModuleHandleW(nullptr)));
    give_up("exception");
    return EXCEPTION_EXECUTE_HANDLER;
}

void feed(const fuzz::Kind& kind, std::string bytes, Tally& tally) {
    input = std::move(bytes);
    const ULONGLONG start = GetTickCount64();
    fed_at = start;
    try {
        tally.sound += kind.feed(input);
    } catch (const std::exception& exception) {
        save(exception.what());
    }
    fed_at = 0;
    ++tally.inputs;
    const ULONGLONG spent = GetTickCount64() - start;
    tally.slowest = std::max(tally.slowest, spent);
    if (spent > kSlowMs)
        save("took " + std::to_string(spent) + " ms");
}

// The first rounds feed the seeds themselves, which have to be sound.
void feed_round(const fuzz::Kind& kind, Tally& tally) {
    kind_name = kind.name;
    round_number = tally.inputs;
    std::string bytes = kind.seeds[round_number % kind.seeds.size()];
    const bool is_seed = round_number < kind.seeds.size();
    std::mt19937 engine(seed + static_cast<unsigned>(round_number) * 2'654'435'761u);
    feed(kind, is_seed ? bytes : damaged(std::move(bytes), engine), tally);
    if (is_seed && tally.sound != tally.inputs)
        save("a sound input is refused");
}

void report(const fuzz::Kind& kind, const Tally& tally) {
    std::printf("%-14s %10lu inputs, %10lu of them sound, slowest %llu ms\n", kind.name, tally.inputs,
                tally.sound, tally.slowest);
    constexpr unsigned long kMany = 1000;
    if (tally.inputs < kMany || (tally.sound > kind.seeds.size() && tally.sound < tally.inputs))
        return;
    std::printf("FAULT %s: the damage is none or all\n", kind.name);
    ++faults;
}

}  // namespace

int main(int count, char** words) {
    if (const char* waiting = std::getenv("TEST_PREMATURE_EXIT_FILE"))
        std::ofstream(waiting) << "it has started";
    std::map<std::string, std::string> options;
    std::vector<std::string> files;
    for (int i = 1; i < count; ++i)
        if (std::string(words[i]).starts_with("--") && i + 1 < count)
            options[words[i]] = words[i + 1], ++i;
        else
            files.emplace_back(words[i]);
    const auto number = [&](const char* option, unsigned long usual) {
        return options.contains(option) ? std::strtoul(options[option].c_str(), nullptr, 10) : usual;
    };
    seed = static_cast<unsigned>(number("--seed", static_cast<unsigned long>(GetTickCount64())));
    const unsigned long rounds = number("--rounds", ULONG_MAX);
    const unsigned long seconds = number("--seconds", rounds == ULONG_MAX ? 10 : 1'000'000);
    std::printf("seed %u\n", seed);
    SetUnhandledExceptionFilter(&on_fault);
    const auto on_abort = [](int) { give_up("abort"); };
    std::signal(SIGABRT, on_abort);
    const auto watch = [](void*) -> DWORD {
        for (;; Sleep(500))
            if (const ULONGLONG since = fed_at; since != 0 && GetTickCount64() - since > kHangMs)
                give_up("no answer");
    };
    const qk::HandleObj watcher(CreateThread(nullptr, 0, watch, nullptr, 0, nullptr));

    std::vector<fuzz::Kind> kinds = fuzz::make_kinds();
    if (options.contains("--kind"))
        std::erase_if(kinds, [&](const fuzz::Kind& kind) { return options["--kind"] != kind.name; });
    std::vector<Tally> tallies(kinds.size());
    for (const std::string& file : files) {
        std::ifstream in(file, std::ios::binary);
        faults += !in;
        feed(kinds.at(0), std::string(std::istreambuf_iterator<char>(in), {}), tallies[0]);
    }
    const ULONGLONG end = GetTickCount64() + seconds * 1000ull;
    for (bool more = files.empty(); std::exchange(more, false) && GetTickCount64() < end;)
        for (size_t i = 0; i < kinds.size(); ++i) {
            const ULONGLONG slice = GetTickCount64() + kSliceMs;
            while (tallies[i].inputs < rounds && GetTickCount64() < slice)
                feed_round(kinds[i], tallies[i]);
            more |= tallies[i].inputs < rounds;
        }
    for (size_t i = 0; i < kinds.size(); ++i)
        report(kinds[i], tallies[i]);
    std::printf("%d faults\n", faults);
    qk::finalize_resource_library(false);  // what the module does as it is unloaded
    return faults || kinds.empty() ? 1 : 0;
}
