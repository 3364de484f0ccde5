// Starting a program of the product as a process whose output somebody reads.
#pragma once

#include <string>
#include <vector>

#include "common/qk/handle.h"

namespace host {

struct Child {
    qk::HandleObj process;
    qk::HandleObj lines;  // a pipe of what it says; empty where there is none
};

// The program is the first of the words, by its path. Both throw HostError (installation) when it cannot be
// started.

// With no window, no console and no stream but the pipe.
[[nodiscard]] Child start_quiet(const std::vector<std::wstring>& words);

// With this program's standard error stream as its only output, and this program's input.
[[nodiscard]] Child start_telling(const std::vector<std::wstring>& words);

}  // namespace host
