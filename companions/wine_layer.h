// Wine, where this Windows is one: the Unix system below it is reached through functions that are looked up
// at run time, so that the same programs start on a Windows that has none of them.
#pragma once

#include <optional>
#include <span>
#include <string>

namespace companions::wine {

[[nodiscard]] bool present() noexcept;

// The Unix path, in the bytes of the Unix system, of a Windows path whose folder exists; nothing where there
// is none, which is always so without Wine.
[[nodiscard]] std::optional<std::string> find_unix_path(const std::wstring& path);

// Runs a Unix program (looked up on the Unix PATH when its name has no slash) and waits for its end: its exit
// code, 255 when a signal ended it. Nothing when it could not be started. The program inherits the Unix
// environment and streams of this process. Any thread; not to be interrupted.
[[nodiscard]] std::optional<int> run_unix_program(std::span<const std::string> arguments);

}  // namespace companions::wine
