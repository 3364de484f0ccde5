// Texts that the system gives, and parts of paths, each empty where the system has none; and those that it
// keeps.
#pragma once

#include <windows.h>

#include <string>

#include "common/qk/text.h"

namespace companions {

// A variable of the environment.
[[nodiscard]] inline std::wstring variable(const wchar_t* name) {
    return qk::grow_until_it_fits(
        [name](wchar_t* buffer, DWORD units) { return GetEnvironmentVariableW(name, buffer, units); });
}

// With its trailing backslash.
[[nodiscard]] inline std::wstring temporary_folder() {
    return qk::grow_until_it_fits([](wchar_t* buffer, DWORD units) { return GetTempPathW(units, buffer); });
}

// Writes a text value of the registry with its terminating zero; the error, 0 when it stands there.
[[nodiscard]] inline DWORD store_text(HKEY key, const wchar_t* value, const std::wstring& text) noexcept {
    return static_cast<DWORD>(RegSetValueExW(key, value, 0, REG_SZ,
                                             reinterpret_cast<const BYTE*>(text.c_str()),
                                             static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))));
}

// The path whatever the current folder is.
[[nodiscard]] inline std::wstring absolute_path(const std::wstring& path) {
    return qk::grow_until_it_fits([&path](wchar_t* buffer, DWORD units) {
        return GetFullPathNameW(path.c_str(), units, buffer, nullptr);
    });
}

// The full path of a program that is named without a folder, on the path: never in the current folder, which
// is the printing program's.
[[nodiscard]] inline std::wstring find_program(const std::wstring& name) {
    const std::wstring folders = variable(L"PATH");
    return qk::grow_until_it_fits([&](wchar_t* buffer, DWORD units) {
        return SearchPathW(folders.c_str(), name.c_str(), L".exe", units, buffer, nullptr);
    });
}

// What stands before the file's name, with its trailing backslash.
[[nodiscard]] inline std::wstring folder_part(const std::wstring& path) {
    return path.substr(0, path.size() - qk::file_part(path).size());
}

}  // namespace companions
