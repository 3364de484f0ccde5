#include "companions/wine_layer.h"

#include <windows.h>

#include <vector>

#include "common/qk/handle.h"

namespace companions::wine {

namespace {

template <class Function>
Function* system_function(const wchar_t* library, const char* name) noexcept {
    const HMODULE module = GetModuleHandleW(library);
    return module ? qk::find_export<Function>(module, name) : nullptr;
}

}  // namespace

bool present() noexcept {
    return system_function<const char* __cdecl()>(L"ntdll.dll", "wine_get_version") != nullptr;
}

std::optional<std::string> find_unix_path(const std::wstring& path) {
    auto* unix_name =
        system_function<char* __cdecl(const wchar_t*)>(L"kernel32.dll", "wine_get_unix_file_name");
    char* name = unix_name ? unix_name(path.c_str()) : nullptr;
    if (!name)
        return std::nullopt;
    std::string copy = name;
    HeapFree(GetProcessHeap(), 0, name);
    return copy;
}

std::optional<int> run_unix_program(std::span<const std::string> arguments) {
    auto* spawn = system_function<LONG __cdecl(const char* const*, int)>(L"ntdll.dll", "__wine_unix_spawnvp");
    if (!spawn || arguments.empty())
        return std::nullopt;
    std::vector<const char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(argument.c_str());
    pointers.push_back(nullptr);
    // What is negative is no exit code but the status of a program that could not be started.
    const LONG result = spawn(pointers.data(), TRUE);
    return result < 0 ? std::nullopt : std::optional<int>(static_cast<int>(result));
}

}  // namespace companions::wine
