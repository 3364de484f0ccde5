#include "print_settings/setting_file.h"

#include <windows.h>

#include <algorithm>

#include "common/handle.h"
#include "common/paths.h"
#include "common/text.h"
#include "common/trace.h"
#include "print_settings/PrintSettings.h"

namespace Corvanta::Vantrix::PrintSettings::setting_file {

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

int open(const std::wstring& path, DWORD share, qk::FileObj& file, LARGE_INTEGER& size) noexcept {
    if (path.empty())
        return kMissing;
    file.reset(CreateFileW(path.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING,
                           FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file)
        return qk::is_file(path) ? kUnreadable : kMissing;
    // Anything but a file of a disk, a pipe for one, could keep the reader waiting for ever.
    return GetFileType(file.get()) == FILE_TYPE_DISK && GetFileSizeEx(file.get(), &size) ? kLoaded
                                                                                         : kUnreadable;
}

int read_up_to(HANDLE file, LONGLONG size, std::string& bytes) {
    bytes.resize(static_cast<size_t>(size));
    DWORD got = 0;
    if (!ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &got, nullptr))
        return kUnreadable;
    bytes.resize(got);
    return kLoaded;
}

bool write_all(HANDLE file, std::string_view bytes) noexcept {
    DWORD written = 0;
    if (!WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr))
        return false;
    if (written == bytes.size())
        return true;
    SetLastError(ERROR_DISK_FULL);
    return false;
}

bool set_size(HANDLE file, LONGLONG size) noexcept {
    LARGE_INTEGER end;
    end.QuadPart = size;
    const LARGE_INTEGER start{};
    return SetFilePointerEx(file, end, nullptr, FILE_BEGIN) && SetEndOfFile(file) &&
           SetFilePointerEx(file, start, nullptr, FILE_BEGIN);
}

// A new file of these bytes in the folder of `path`; empty, with the last error, when there is none. The
// bytes reach the disk before the old file goes, so that a crash leaves one of the two whole.
std::wstring write_temporary(const std::wstring& path, std::string_view bytes) {
    const std::wstring folder = path.substr(0, path.find_last_of(L"\\/:") + 1);
    for (unsigned attempt = 0; attempt < 100; ++attempt) {
        const std::wstring name =
            qk::format(L"%s~ps%lx-%x.tmp", folder.c_str(), GetCurrentThreadId(), attempt);
        qk::FileObj file(
            CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!file && GetLastError() == ERROR_FILE_EXISTS)
            continue;
        if (!file)
            return {};
        if (write_all(file.get(), bytes) && FlushFileBuffers(file.get()))
            return name;
        file.reset();
        const qk::LastErrorKeeper keep;
        DeleteFileW(name.c_str());
        return {};
    }
    return {};
}

bool held_by_another(DWORD error) noexcept {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED ||
           error == ERROR_USER_MAPPED_FILE;
}

// The room is taken before the first old byte goes, so that a full disk leaves the old file as it was.
bool write_in_place(const std::wstring& path, std::string_view bytes) noexcept {
    const qk::FileObj file(
        CreateFileW(path.c_str(), GENERIC_WRITE, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
    LARGE_INTEGER old_size;
    if (!file || !GetFileSizeEx(file.get(), &old_size))
        return false;
    const auto size = static_cast<LONGLONG>(bytes.size());
    if (old_size.QuadPart < size && !set_size(file.get(), size)) {
        const qk::LastErrorKeeper keep;
        set_size(file.get(), old_size.QuadPart);
        return false;
    }
    return write_all(file.get(), bytes) && SetEndOfFile(file.get());
}

}  // namespace

int read(const std::wstring& path, std::string& bytes) {
    qk::FileObj file;
    LARGE_INTEGER size;
    if (const int result = open(path, FILE_SHARE_READ, file, size); result != kLoaded)
        return result;
    return size.QuadPart <= kMostFileBytes ? read_up_to(file.get(), size.QuadPart, bytes) : kUnreadable;
}

int read_start(const std::wstring& path, std::string& bytes) {
    constexpr LONGLONG kTestedBytes = 8;
    qk::FileObj file;
    LARGE_INTEGER size;
    if (const int result = open(path, kShareAll, file, size); result != kLoaded)
        return result;
    return read_up_to(file.get(), std::min(size.QuadPart, kTestedBytes), bytes);
}

bool try_replace(const std::wstring& path, std::string_view bytes) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY)) {
        SetLastError(ERROR_ACCESS_DENIED);  // the folder's rights could let the file be replaced all the same
        return false;
    }
    const std::wstring temporary = write_temporary(path, bytes);
    if (temporary.empty())
        return false;
    if (MoveFileExW(temporary.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING))
        return true;
    bool written = false;
    if (held_by_another(GetLastError())) {
        TRACE("setting file written in place");
        written = write_in_place(path, bytes);
    }
    const qk::LastErrorKeeper keep;
    DeleteFileW(temporary.c_str());
    return written;
}

}  // namespace Corvanta::Vantrix::PrintSettings::setting_file
