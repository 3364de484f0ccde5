#include "common/qk/disk_file.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "common/qk/text.h"

namespace qk {

namespace {

constexpr std::wstring_view kSlashes = L"\\/";

constexpr bool is_slash(wchar_t unit) noexcept {
    return kSlashes.find(unit) != std::wstring_view::npos;
}

// "C:\x", which may stand behind the names that bypass the system's reading of names.
bool begins_with_drive(std::wstring_view path) noexcept {
    return path.size() > 3 && path[1] == L':' && is_slash(path[2]);
}

// Behind "\\.\" the way up leads out of the drive, and out of the share: "C:\..\pipe\x".
bool goes_up(std::wstring_view path) noexcept {
    return path.find(L"\\..") != std::wstring_view::npos || path.find(L"/..") != std::wstring_view::npos;
}

// The names that a server keeps for its pipes and mail slots are no shares of files. Several slashes are one.
bool names_servers_device(std::wstring_view path) noexcept {
    const size_t server = std::min(path.find_first_not_of(kSlashes), path.size());
    const size_t slash = std::min(path.find_first_of(kSlashes, server), path.size());
    path.remove_prefix(std::min(path.find_first_not_of(kSlashes, slash), path.size()));
    const std::wstring_view share = path.substr(0, path.find_first_of(kSlashes));
    return equal_no_case(share, L"pipe") || equal_no_case(share, L"mailslot");
}

// "CON", "C:\x\nul.txt" and their like, as this version of Windows has them.
bool is_reserved(const std::wstring& path) noexcept {
    constexpr std::wstring_view kDevices = L"\\\\.\\";
    wchar_t full[32];  // more than the longest of them needs
    const DWORD units = GetFullPathNameW(path.c_str(), static_cast<DWORD>(std::size(full)), full, nullptr);
    return units < std::size(full) && std::wstring_view(full, units).starts_with(kDevices);
}

}  // namespace

bool names_device(const std::wstring& path) noexcept {
    constexpr std::wstring_view kShares = L"UNC\\";
    const std::wstring_view name = path;
    if (name.size() < 3 || !is_slash(name[0]) || !(is_slash(name[1]) || name.starts_with(L"\\??")))
        return is_reserved(path);
    const bool in_devices = name.size() > 3 && (name[2] == L'.' || name[2] == L'?') && is_slash(name[3]);
    if (!in_devices)
        return names_servers_device(name.substr(2));
    const std::wstring_view rest = name.substr(4);
    if (goes_up(rest))
        return true;
    return starts_with_no_case(rest, kShares) ? names_servers_device(rest.substr(kShares.size()))
                                              : !begins_with_drive(rest);
}

FileObj open_disk_file(const std::wstring& path, DWORD access, DWORD share, DWORD flags, DWORD how) noexcept {
    if (names_device(path)) {
        SetLastError(kNoDiskFile);
        return {};
    }
    FileObj file(CreateFileW(path.c_str(), access, share, nullptr, how,
                             flags | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr));
    if (file && GetFileType(file.get()) != FILE_TYPE_DISK) {
        file.reset();
        SetLastError(kNoDiskFile);
    }
    return file;
}

FileObj open_saved_file(const std::wstring& path, DWORD share) noexcept {
    for (int more = 5;; --more) {
        FileObj file = open_disk_file(path, GENERIC_READ, share, FILE_FLAG_SEQUENTIAL_SCAN);
        if (file || more == 0 || GetLastError() != ERROR_SHARING_VIOLATION)
            return file;
        Sleep(10);
    }
}

}  // namespace qk
