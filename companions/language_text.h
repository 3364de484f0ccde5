// Texts of the language library that the companions show.
#pragma once

#include <windows.h>

#include <string>

namespace companions {

// The text in the user's language, else in English; empty where neither library has it. The library is open
// for the time of the call only. Any thread.
[[nodiscard]] std::wstring language_text(UINT id);

}  // namespace companions
