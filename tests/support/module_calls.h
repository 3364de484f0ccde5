// The calls that a module makes of the system, taken from its import table: told apart by the place that they
// are made from, and one of them made to fail.
#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/import_patch.h"

class ModuleCalls {
public:
    // A function that can fail, called from one place: the innermost addresses of the module on the stack.
    struct Place {
        size_t function;
        std::vector<uintptr_t> frames;  // from the module's base
        unsigned calls = 0;             // from there
    };

    // Stands between the module and what it imports; where the test program imports the same function, what
    // it has in its place counts for the module, too. One at a time.
    explicit ModuleCalls(HMODULE module);
    ~ModuleCalls();
    ModuleCalls(const ModuleCalls&) = delete;
    ModuleCalls& operator=(const ModuleCalls&) = delete;

    // From here on this thread's calls are noted, or the nth one from a place fails.
    void note();
    void fail(const Place& place, unsigned nth);
    // Ends either; whether a call has failed since.
    bool stop();

    // What was noted, and the function and the frames of one in words.
    [[nodiscard]] std::vector<Place> places() const;
    [[nodiscard]] std::string describe(const Place& place) const;
    // Imports of which nobody has said whether they can fail.
    [[nodiscard]] const std::vector<std::string>& unknown() const { return unknown_; }
    // Blocks of memory that the module has allocated and not freed since this object was made.
    [[nodiscard]] long long blocks() const { return blocks_; }

    // Where a call goes: to what is imported, or to fail_now().
    void* decide(size_t function, const uintptr_t* arguments);
    [[nodiscard]] intptr_t fail_now() const;

private:
    struct Function {
        const char* name;
        BYTE* slot;
        void *before, *target;  // what the slot held, what is called
        intptr_t result;        // of a failure
        DWORD error;            // its last error; 0: it has none
        bool can_fail;
        char block;  // see block_kind()
    };

    [[nodiscard]] std::vector<uintptr_t> frames_here() const;

    HMODULE module_;
    uintptr_t module_bytes_ = 0;
    BYTE* gates_ = nullptr;
    std::vector<Function> functions_;
    std::vector<std::string> unknown_;
    std::map<std::pair<size_t, std::vector<uintptr_t>>, Place> noted_;
    DWORD thread_ = 0;  // whose calls are noted or fail; 0: nobody's
    Place failing_ = {};
    unsigned calls_left_ = 0;  // until one fails; 0: they are noted
    bool failed_ = false;
    long long blocks_ = 0;
};
