// How the host program ends when something goes wrong.
#pragma once

#include <windows.h>

#include <string>

namespace host {

// The program's exit codes; scripts rely on them.
enum class ExitCode {
    kDone = 0,
    kJobFailed = 1,  // the job was refused, cancelled or ended with an error; a setting file has faults
    kUsage = 2,      // wrong arguments, or a file cannot be read
    kInstallation =
        3,          // the printer, the module or a file of the installation is missing or cannot be set up
    kInternal = 4,  // a fault of the program itself
};

// Thrown where a command cannot go on.
struct HostError {
    ExitCode exit_code;
    std::wstring text;
};

// What a cancelled job leaves as last error. The system has no words for it.
inline constexpr DWORD kJobCancelled = 2153;

// Whether a last error says that a job was cancelled: the one above or the system's own.
[[nodiscard]] constexpr bool means_cancelled(DWORD error) noexcept {
    return error == kJobCancelled || error == ERROR_PRINT_CANCELLED;
}

// A Windows error code in words, without a trailing full stop or line break; "error <number>" for a code that
// nobody has words for.
[[nodiscard]] std::wstring error_in_words(DWORD error);

// "<what>: <the error in words> (<number>)".
[[nodiscard]] std::wstring with_reason(const std::wstring& what, DWORD error);

// The same as what ends a program whose installation is at fault.
[[nodiscard]] HostError installation_fault(const std::wstring& what, DWORD error);

}  // namespace host
