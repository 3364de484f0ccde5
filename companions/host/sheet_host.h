// The stand-in for the common property-sheet host in the system's folder, where that system's own host takes
// no option pages: Wine's, which leaves every program without the printer's sheets.
#pragma once

#include <string>

namespace host {

// The system's library that programs load.
[[nodiscard]] std::wstring sheet_host_path();

// Puts the file `source` in the place of `target` when that is Wine's own, which is kept beside it, or an
// earlier stand-in, and has this user's programs load it. Anything else stays. What was done, in words.
// Throws HostError (installation).
[[nodiscard]] std::wstring install_sheet_host(const std::wstring& source, const std::wstring& target);

// Which of the two lies there, in words.
[[nodiscard]] std::wstring sheet_host_state(const std::wstring& target);

// Takes that back; true when there was something to take back.
bool remove_sheet_host(const std::wstring& target);

}  // namespace host
