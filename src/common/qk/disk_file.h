// Files by names that come from elsewhere: a setting, the registry, another program.
#pragma once

#include <windows.h>

#include <string>

#include "common/qk/handle.h"

namespace qk {

// Whether the system takes the name, by its letters alone, for something else than a file of a disk or a
// share: "NUL", "C:\\folder\\CON", "\\\\.\\pipe\\x", "\\\\server\\pipe\\x". Nothing is opened.
[[nodiscard]] bool names_device(const std::wstring& path) noexcept;

// The last error of a name that leads to no file of a disk.
inline constexpr DWORD kNoDiskFile = ERROR_BAD_FILE_TYPE;

// Opens a file of a disk or a share. Empty, with the last error, when that fails, and for anything else
// (kNoDiskFile): a name of a device is not even opened, a pipe or a device behind the name of a file is
// closed before anything is read. Whoever serves the name learns who asks and cannot act as the user. `flags`
// are attributes and flags of CreateFile.
[[nodiscard]] FileObj open_disk_file(const std::wstring& path, DWORD access, DWORD share, DWORD flags = 0,
                                     DWORD how = OPEN_EXISTING) noexcept;

// Opens a file of a disk for reading it whole, as open_disk_file does. One that a program is just saving is
// waited for, 50 ms at most: a save in place is done in a moment.
[[nodiscard]] FileObj open_saved_file(const std::wstring& path, DWORD share) noexcept;

}  // namespace qk
