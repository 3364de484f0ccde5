// Windows command lines.
#pragma once

#include <string>
#include <vector>

namespace companions {

// Words as one command line, each quoted so that a C run-time library reads it back as it is.
[[nodiscard]] std::wstring command_line(const std::vector<std::wstring>& words);

}  // namespace companions
