// What is fed with damaged input: one row for each kind of file, record and text that others write.
#pragma once

#include "support/prelude.h"

namespace fuzz {

// An answer that no input may get.
struct WrongAnswer : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Kind {
    const char* name;
    std::vector<std::string> seeds;  // sound ones
    // Hands the bytes to the module's code; whether it took them for sound. Throws WrongAnswer.
    std::function<bool(std::string_view)> feed;
};

// The table. The installation that the kinds lie in stands as long as they do; one table at a time.
[[nodiscard]] std::vector<Kind> make_kinds();

}  // namespace fuzz
