#include "print_settings/setting_file.h"

#include <windows.h>

#include <algorithm>

#include "common/qk/disk_file.h"
#include "common/qk/paths.h"
#include "print_settings/PrintSettings.h"

namespace Corvanta::Vantrix::PrintSettings::setting_file {

namespace {

LoadResult open(const std::wstring& path, DWORD share, qk::FileObj& file, LARGE_INTEGER& size) noexcept {
    if (path.empty())
        return kMissing;
    file = qk::open_saved_file(path, share);
    if (!file)
        return GetLastError() == qk::kNoDiskFile || qk::is_file(path) ? kUnreadable : kMissing;
    return GetFileSizeEx(file.get(), &size) ? kLoaded : kUnreadable;
}

LoadResult read_up_to(HANDLE file, LONGLONG size, std::string& bytes) {
    bytes.resize(static_cast<size_t>(size));
    DWORD got = 0;
    if (!ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &got, nullptr))
        return kUnreadable;
    bytes.resize(got);
    return kLoaded;
}

}  // namespace

LoadResult read(const std::wstring& path, std::string& bytes) {
    qk::FileObj file;
    LARGE_INTEGER size;
    // Who replaces the file while it is read is not in the way: what is read stays whole.
    if (const LoadResult result = open(path, FILE_SHARE_READ | FILE_SHARE_DELETE, file, size);
        result != kLoaded)
        return result;
    return size.QuadPart <= kMostFileBytes ? read_up_to(file.get(), size.QuadPart, bytes) : kUnreadable;
}

LoadResult read_start(const std::wstring& path, std::string& bytes) {
    constexpr LONGLONG kTestedBytes = 8;
    qk::FileObj file;
    LARGE_INTEGER size;
    if (const LoadResult result =
            open(path, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, file, size);
        result != kLoaded)
        return result;
    return read_up_to(file.get(), std::min(size.QuadPart, kTestedBytes), bytes);
}

}  // namespace Corvanta::Vantrix::PrintSettings::setting_file
