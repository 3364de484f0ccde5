#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cwctype>
#include <memory>
#include <vector>

#include "common/qk/disk_file.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "print_settings/PrintSettings.h"
#include "print_settings/setting_file.h"

namespace Corvanta::Vantrix::PrintSettings::setting_file {

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::wstring_view kTemporaryStart = L"~ps";
constexpr std::wstring_view kTemporaryEnd = L".tmp";

// What the new file takes over from the one whose place it takes.
struct OldFile {
    bool exists = false;
    bool in_place = false;  // another file could not take over what this one is
    std::wstring path;      // behind a link
    DWORD attributes = 0;
    std::unique_ptr<std::byte[]> protection;  // its access list, as a self-relative SECURITY_DESCRIPTOR
};

std::wstring folder_of(const std::wstring& path) {
    return path.substr(0, path.find_last_of(L"\\/:") + 1);
}

// The path that a link leads to; `path` itself where the system cannot say.
std::wstring final_path(HANDLE file, const std::wstring& path) {
    std::wstring found = qk::grow_until_it_fits([file](wchar_t* buffer, DWORD units) {
        return GetFinalPathNameByHandleW(file, buffer, units, FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
    });
    return found.empty() ? path : found;
}

std::unique_ptr<std::byte[]> protection_of(HANDLE file) {
    return qk::read_sized([&](BYTE* buffer, DWORD bytes, DWORD* needed) {
               return GetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, buffer, bytes, needed);
           })
        .bytes;
}

OldFile look_at(const std::wstring& path) {
    OldFile old{.path = path};
    const qk::FileObj file = qk::open_disk_file(path, FILE_READ_ATTRIBUTES | READ_CONTROL, kShareAll);
    if (!file) {
        const DWORD error = GetLastError();
        const bool is_missing = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
        // A link whose file is missing is there, and stays a link.
        old.exists = old.in_place =
            !is_missing || GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
        return old;
    }
    BY_HANDLE_FILE_INFORMATION information = {};
    const bool told = GetFileInformationByHandle(file.get(), &information);
    old.exists = true;
    old.path = final_path(file.get(), path);
    old.attributes = information.dwFileAttributes;
    old.protection = protection_of(file.get());
    old.in_place = !told || information.nNumberOfLinks > 1 || !old.protection;
    return old;
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

bool held_by_another(DWORD error) noexcept {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED ||
           error == ERROR_USER_MAPPED_FILE;
}

// Calls `attempt` until it succeeds, or fails for another reason than that somebody has the file open. Who
// reads a setting is done within a millisecond; who holds it longer than all pauses together keeps it.
template <class Attempt>
bool with_patience(Attempt attempt) {
    constexpr int kAtOnce = 10;
    constexpr int kAttempts = 25;
    constexpr DWORD kPause = 10;  // milliseconds
    for (int i = 0;; ++i) {
        if (attempt())
            return true;
        const DWORD error = GetLastError();
        if (!held_by_another(error) || i == kAttempts)
            return false;
        Sleep(i < kAtOnce ? 0 : kPause);
        SetLastError(error);
    }
}

// The protection is there before the first byte is, and the bytes reach the disk before the old file goes, so
// that a crash leaves one of the two whole.
bool fill(HANDLE file, const OldFile& old, std::string_view bytes) noexcept {
    auto* protection = old.protection.get();
    return (!old.protection || SetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, protection)) &&
           write_all(file, bytes) && FlushFileBuffers(file);
}

// Whether the file goes as soon as nobody has it open, this program having ended for one.
bool set_vanishing(HANDLE file, bool vanishing) noexcept {
    FILE_DISPOSITION_INFO information = {};
    information.DeleteFile = vanishing;
    return SetFileInformationByHandle(file, FileDispositionInfo, &information, sizeof information);
}

// A file beside the old one, held until it has taken that one's place: passwords may stand in it, and nothing
// of them shall be left by a program that ends before.
class TemporaryFile {
public:
    // False, with the last error, when there can be none of these bytes.
    [[nodiscard]] bool write(const OldFile& old, std::string_view bytes);

    // MoveFileEx opens the file that it replaces on some systems, and a reader at that moment would be
    // refused.
    [[nodiscard]] bool move_over(const std::wstring& to);

    TemporaryFile() = default;
    ~TemporaryFile() {
        const qk::LastErrorKeeper keep;
        held_.reset();
        if (!name_.empty())
            DeleteFileW(name_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

private:
    qk::FileObj create(const OldFile& old);

    std::wstring name_;  // empty: there is no file
    qk::FileObj held_;   // shares everything, so that readers are welcome as soon as the file has its place
    bool vanishing_ = false;
};

qk::FileObj TemporaryFile::create(const OldFile& old) {
    constexpr DWORD kKept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                            FILE_ATTRIBUTE_NOT_CONTENT_INDEXED | FILE_ATTRIBUTE_ENCRYPTED;
    const DWORD access = GENERIC_WRITE | (old.protection ? WRITE_DAC : 0);
    const std::wstring start = folder_of(old.path) + std::wstring(kTemporaryStart);
    for (unsigned attempt = 0; attempt < 100; ++attempt) {
        std::wstring name =
            start + qk::format(L"%lx-%x", GetCurrentThreadId(), attempt) + std::wstring(kTemporaryEnd);
        qk::FileObj file(CreateFileW(name.c_str(), access, FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                                     old.attributes & kKept, nullptr));
        if (!file && GetLastError() == ERROR_FILE_EXISTS)
            continue;
        if (file)
            name_ = std::move(name);
        return file;
    }
    return {};
}

bool TemporaryFile::write(const OldFile& old, std::string_view bytes) {
    const qk::FileObj file = create(old);
    if (!file)
        return false;
    held_.reset(
        CreateFileW(name_.c_str(), DELETE | SYNCHRONIZE, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!held_)
        return false;
    vanishing_ = set_vanishing(held_.get(), true);  // where the system cannot, the next save removes it
    return fill(file.get(), old, bytes);
}

bool TemporaryFile::move_over(const std::wstring& to) {
    const size_t bytes = sizeof(FILE_RENAME_INFO) + to.size() * sizeof(wchar_t);
    const auto memory = std::make_unique<uint64_t[]>(bytes / sizeof(uint64_t) + 1);
    auto* rename = reinterpret_cast<FILE_RENAME_INFO*>(memory.get());
    rename->ReplaceIfExists = TRUE;
    rename->FileNameLength = static_cast<DWORD>(to.size() * sizeof(wchar_t));
    std::ranges::copy(to, rename->FileName);
    if (vanishing_ && !set_vanishing(held_.get(), false))
        return false;
    if (SetFileInformationByHandle(held_.get(), FileRenameInfo, rename, static_cast<DWORD>(bytes))) {
        name_.clear();
        return true;
    }
    const qk::LastErrorKeeper keep;
    vanishing_ = set_vanishing(held_.get(), true);
    return false;
}

// The room is taken before the first old byte goes, so that a full disk leaves the old file as it was.
bool write_in_place(const std::wstring& path, std::string_view bytes) noexcept {
    const qk::FileObj file = qk::open_disk_file(path, GENERIC_WRITE, kShareAll);
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

bool is_temporary(std::wstring_view name) noexcept {
    if (!name.starts_with(kTemporaryStart) || !name.ends_with(kTemporaryEnd) ||
        name.size() < kTemporaryStart.size() + kTemporaryEnd.size())
        return false;
    name = name.substr(kTemporaryStart.size(), name.size() - kTemporaryStart.size() - kTemporaryEnd.size());
    return std::ranges::count(name, L'-') == 1 &&
           std::ranges::all_of(name, [](wchar_t unit) { return unit == L'-' || std::iswxdigit(unit); });
}

// Removes what saves that never ended have left in the folder. A file that somebody holds open stays.
void remove_leftovers(const std::wstring& folder) {
    WIN32_FIND_DATAW found;
    const std::wstring pattern = folder + std::wstring(kTemporaryStart) + L'*' + std::wstring(kTemporaryEnd);
    const qk::FindObj search(FindFirstFileW(pattern.c_str(), &found));
    if (!search)
        return;
    do {
        if (!is_temporary(found.cFileName))
            continue;
        const qk::FileObj closed(
            CreateFileW((folder + found.cFileName).c_str(), DELETE, 0, nullptr, OPEN_EXISTING,
                        FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    } while (FindNextFileW(search.get(), &found));
}

bool put_in_place_of(const OldFile& old, std::string_view bytes) {
    const auto in_place = [&] {
        TRACE("setting file written in place");
        return with_patience([&] { return write_in_place(old.path, bytes); });
    };
    if (old.in_place)
        return in_place();
    TemporaryFile temporary;
    if (!temporary.write(old, bytes))  // perhaps only for the folder, which does not bind the file
        return old.exists && GetLastError() == ERROR_ACCESS_DENIED && in_place();
    return with_patience([&] { return temporary.move_over(old.path); }) ||
           (old.exists && held_by_another(GetLastError()) && in_place());
}

}  // namespace

bool try_replace(const std::wstring& path, std::string_view bytes) {
    if (path.empty() || bytes.size() > kMostFileBytes) {
        SetLastError(path.empty() ? ERROR_PATH_NOT_FOUND : ERROR_FILE_TOO_LARGE);
        return false;
    }
    if (qk::names_device(path)) {
        SetLastError(qk::kNoDiskFile);
        return false;
    }
    const OldFile old = look_at(path);
    if (old.attributes & FILE_ATTRIBUTE_READONLY) {
        SetLastError(ERROR_ACCESS_DENIED);  // the folder's rights could let the file be replaced all the same
        return false;
    }
    remove_leftovers(folder_of(old.path));
    return put_in_place_of(old, bytes);
}

}  // namespace Corvanta::Vantrix::PrintSettings::setting_file
