// What the parts of the installation say to the spooler alike.
#pragma once

#include <windows.h>

#include <string>

namespace host {

// The system that drivers and print processors are for, as the spooler calls it.
inline constexpr wchar_t kEnvironment[] = L"Windows x64";

// What the registry of the machine holds for that system.
inline std::wstring environment_key() {
    return std::wstring(L"SYSTEM\\CurrentControlSet\\Control\\Print\\Environments\\") + kEnvironment;
}

// The interfaces of the spooler take texts that they do not change through pointers to writable ones.
inline wchar_t* writable(const wchar_t* text) noexcept {
    return const_cast<wchar_t*>(text);
}

}  // namespace host
