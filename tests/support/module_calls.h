// The calls that a module makes of the system, taken from its import table: counted, and one of them made to
// fail.
#pragma once

#include "support/import_patch.h"

class ModuleCalls {
public:
    struct Failure {
        intptr_t result;
        DWORD error;  // 0: it sets none
    };

    // Stands between the module and what it imports; where the test program imports the same function, what
    // it has in its place counts for the module, too. One at a time.
    explicit ModuleCalls(HMODULE module);
    ~ModuleCalls();

    // From here on this thread's calls of functions that can fail are noted, and the nth one (from 1) fails.
    void start(size_t nth = 0);
    void stop() { thread_ = 0; }

    // The functions called from start() on, in their order.
    [[nodiscard]] const std::vector<const char*>& noted() const { return noted_; }
    // Imports of which nobody has said whether they can fail.
    [[nodiscard]] const std::vector<std::string>& unknown() const { return unknown_; }
    // Blocks of memory that the module has allocated and not freed since this object was made.
    [[nodiscard]] long long blocks() const { return blocks_; }

    // Where a call goes: to what is imported, or to fail_now().
    void* decide(size_t index, const uintptr_t* arguments);
    [[nodiscard]] intptr_t fail_now() const;

private:
    struct Function {
        const char* name;
        BYTE* slot;
        void *before, *target;           // what the slot held, what is called
        std::optional<Failure> failure;  // none: it cannot fail
        char block;                      // see block_kind()
    };

    BYTE* gates_ = nullptr;
    std::vector<Function> functions_;
    std::vector<std::string> unknown_;
    std::vector<const char*> noted_;
    DWORD thread_ = 0;    // whose calls are noted; 0: nobody's
    size_t failing_ = 0;  // which of them fails
    const Function* failed_ = nullptr;
    long long blocks_ = 0;
};
