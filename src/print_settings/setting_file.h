// Setting files as bytes: read whole, replaced whole.
#pragma once

#include <string>
#include <string_view>

namespace Corvanta::Vantrix::PrintSettings::setting_file {

// Reads a whole file while other writers are denied: kLoaded, kMissing, or kUnreadable when it is locked, has
// more than kMostFileBytes or is no file of a disk.
[[nodiscard]] int read(const std::wstring& path, std::string& bytes);

// Reads the first bytes of a file of any size, those that tell its kind; nobody is denied anything.
[[nodiscard]] int read_start(const std::wstring& path, std::string& bytes);

// Puts a file of these bytes in the place of the one at `path`, made when missing. The bytes go to a
// temporary file beside it that then takes its place at once; where another program holds the old file open
// against that, it is written in place, after the room for it has been taken. On failure false with the last
// error.
[[nodiscard]] bool try_replace(const std::wstring& path, std::string_view bytes);

}  // namespace Corvanta::Vantrix::PrintSettings::setting_file
