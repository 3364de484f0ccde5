// Files, folders and libraries of the installation, the user and the thread. UTF-16 paths.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "common/qk/handle.h"

namespace qk {

// Whether there is such a file, or such a folder. A name of a device is neither and is not asked for.
[[nodiscard]] bool is_file(const std::wstring& path) noexcept;
[[nodiscard]] bool is_folder(const std::wstring& path) noexcept;

// The full path of a loaded module (null: the running program).
[[nodiscard]] std::wstring module_path(HMODULE module);

// Loads a library of the system's folder by its full path, whatever of that name the program has loaded or
// lies beside it; empty, with the last error of the attempt, when it cannot be loaded.
[[nodiscard]] DLL load_system_library(std::wstring_view file_name);

// Whether a path leads to the same file whatever the host's current folder is.
[[nodiscard]] bool is_full_path(std::wstring_view path) noexcept;

// The installation folder with its trailing backslash, from the registry value "PdfDllPath", the user's
// before the machine's; empty when it is not set, is no full path or names a device.
[[nodiscard]] std::wstring install_folder();

// The one that code and the administrator's file are taken from. A thread that acts for another user believes
// the machine alone: that user could name a folder of his own.
[[nodiscard]] std::wstring trusted_install_folder();

// What the machine's part of the registry says of it.
[[nodiscard]] std::wstring machine_install_folder();

// The common documents folder without a trailing backslash: the registry value "CSIDL_COMMON_DOCUMENTS" of
// the vendor's special folders where there is one, else the shell's. Empty when there is none.
[[nodiscard]] std::wstring common_documents_folder();

// The user's roaming application data without a trailing backslash; empty when there is none.
[[nodiscard]] std::wstring roaming_folder();

// The same as it is before the user moves it.
[[nodiscard]] std::wstring default_roaming_folder();

// The user's folder for programs of low integrity, without a trailing backslash; empty when there is none.
[[nodiscard]] std::wstring local_low_folder();

// "<common documents>\Dunmere\Vantrix2"; empty when there are no common documents.
[[nodiscard]] std::wstring shared_documents_folder();

}  // namespace qk

// Makes the folder and every missing parent. True when the folder is there afterwards.
bool ForceDirectories(const std::wstring& path);

// The scratch folder of the calling thread, "<temp>\ZRTK80_temp\<thread id>", made when missing; empty on
// failure. The module removes it, when empty, as the thread ends.
[[nodiscard]] std::wstring ZRTK_TempPath();

// The name of the parent of the scratch folders.
inline constexpr wchar_t kTempRootName[] = L"ZRTK80_temp";

// The parent of the scratch folders, made or not, with no trailing backslash; empty when the system tells of
// no temporary folder.
[[nodiscard]] std::wstring ZRTK_TempRoot();

// The folder `ZRTK_TempPath` uses for this thread, without making it.
[[nodiscard]] std::wstring thread_temp_folder(const std::wstring& root);

// Loads a library of the trusted installation folder so that its own dependencies are found there too; empty,
// with the last error of the attempt, when it cannot be loaded.
[[nodiscard]] qk::DLL LoadInstallDll(std::wstring_view file_name);
[[nodiscard]] qk::DLL LoadInstallDll(std::wstring_view file_name, const std::wstring& install_folder);
