// Setting files as bytes: read whole, replaced whole.
#pragma once

#include <string>
#include <string_view>

#include "print_settings/PrintSettings.h"

namespace Corvanta::Vantrix::PrintSettings::setting_file {

// Reads a whole file while other writers are denied: kLoaded, kMissing, or kUnreadable when it is no file of
// a disk, has more than kMostFileBytes or stays locked; one that is just being written is waited for, a
// moment.
[[nodiscard]] LoadResult read(const std::wstring& path, std::string& bytes);

// Reads the first bytes of a file of any size, those that tell its kind; nobody is denied anything.
[[nodiscard]] LoadResult read_start(const std::wstring& path, std::string& bytes);

// Puts a file of these bytes (at most kMostFileBytes) in the place of the one at `path`, made when missing;
// attributes, protection and links to it stay. The bytes go to a temporary file beside it that then takes its
// place at once. In place, after the room has been taken, is written only what has several names, lies in a
// folder that takes no new file, or is kept open by another program. On failure false with the last error.
[[nodiscard]] bool try_replace(const std::wstring& path, std::string_view bytes);

}  // namespace Corvanta::Vantrix::PrintSettings::setting_file
