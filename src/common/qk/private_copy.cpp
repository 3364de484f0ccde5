#include "common/qk/private_copy.h"

#include <windows.h>

#include <ntsecapi.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>

#include "common/qk/disk_file.h"
#include "common/qk/paths.h"
#include "common/qk/process.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"

namespace qk {

namespace {

constexpr std::wstring_view kPrefix = L"zrtk_res_";
constexpr std::wstring_view kExtension = L".dll";
constexpr unsigned kMostAttempts = 10000;

// "zrtk_res_<process>.dll", "zrtk_res_<process>(<number>).dll": its process's id keeps the copy from being
// taken for a stale one.
std::wstring name_of(unsigned number) {
    std::wstring name = std::wstring(kPrefix) + std::to_wstring(GetCurrentProcessId());
    if (number)
        name += format(L"(%u)", number);
    return name + std::wstring(kExtension);
}

// The digits at the start of `text`, which are taken off it; nothing when there are none or too many.
std::optional<DWORD> take_number(std::wstring_view& text) {
    constexpr size_t kMostDigits = 10;
    const size_t digits = std::min(text.find_first_not_of(L"0123456789"), text.size());
    if (digits == 0 || digits > kMostDigits)
        return std::nullopt;
    const uint64_t number = std::stoull(std::wstring(text.substr(0, digits)));
    text.remove_prefix(digits);
    return number <= MAXDWORD ? std::optional(static_cast<DWORD>(number)) : std::nullopt;
}

// The process that a copy of this name belongs to.
std::optional<DWORD> find_process(std::wstring_view name) {
    if (!starts_with_no_case(name, kPrefix))
        return std::nullopt;
    name.remove_prefix(kPrefix.size());
    const auto process = take_number(name);
    if (process && name.starts_with(L'(')) {
        name.remove_prefix(1);
        if (!take_number(name) || !name.starts_with(L')'))
            return std::nullopt;
        name.remove_prefix(1);
    }
    return equal_no_case(name, kExtension) ? process : std::nullopt;
}

bool is_plain_folder(DWORD attributes) noexcept {
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) &&
           !(attributes & FILE_ATTRIBUTE_REPARSE_POINT);
}

// Holds a folder so that it cannot be moved away meanwhile; empty for a link to another place and for what is
// no folder.
FileObj hold_folder(const std::wstring& path) {
    if (!is_plain_folder(GetFileAttributesW(path.c_str())))  // some systems tell of a link by its name only
        return {};
    FileObj folder(CreateFileW(path.c_str(), FILE_TRAVERSE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                               OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT,
                               nullptr));
    BY_HANDLE_FILE_INFORMATION information = {};
    if (folder && (!GetFileInformationByHandle(folder.get(), &information) ||
                   !is_plain_folder(information.dwFileAttributes)))
        folder.reset();
    return folder;
}

// A new file under the first free name from `number` on; empty, with the last error, when there can be none.
FileObj create_new(const std::wstring& folder, unsigned number, unsigned attempts, std::wstring& path) {
    for (; attempts > 0; --attempts, ++number) {
        path = folder + L'\\' + name_of(number);
        FileObj file(CreateFileW(path.c_str(), GENERIC_ALL, FILE_SHARE_READ, nullptr, CREATE_NEW,
                                 FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
        if (file || GetLastError() != ERROR_FILE_EXISTS)
            return file;
        DeleteFileW(path.c_str());  // of an earlier process with this id
        SetLastError(ERROR_FILE_EXISTS);
    }
    return {};
}

bool try_read(HANDLE file, std::string& bytes) {
    LARGE_INTEGER size = {};
    DWORD done = 0;
    if (!GetFileSizeEx(file, &size) || size.HighPart != 0)
        return false;
    bytes.resize(size.LowPart);
    return ReadFile(file, bytes.data(), size.LowPart, &done, nullptr) && done == bytes.size();
}

// Whoever maps the copy cannot do so while it is open for writing. So it is opened once more for reading, and
// what was done to it between the two shows.
FileObj hold_as_written(const std::wstring& path, const std::string& bytes) {
    FileObj file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                             FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    std::string found;
    if (file && (!try_read(file.get(), found) || found != bytes))
        file.reset();
    return file;
}

// A copy of these bytes in a folder that is there; with an empty path when there can be none.
PrivateCopy copy_into(const std::wstring& folder, unsigned number, unsigned attempts,
                      const std::string& bytes) {
    const FileObj kept = hold_folder(folder);
    std::wstring path;
    FileObj file = kept ? create_new(folder, number, attempts, path) : FileObj();
    if (!file) {
        trace::debug_output(L"cant open tmp lr:%ul", GetLastError());
        return {};
    }
    DWORD done = 0;
    const bool written =
        WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &done, nullptr) &&
        done == bytes.size();
    file.reset();
    PrivateCopy copy = {path, written ? hold_as_written(path, bytes) : FileObj()};
    if (copy.held)
        return copy;
    trace::debug_output(L"write fail");
    DeleteFileW(path.c_str());
    return {};
}

std::wstring temporary_root() {
    return ZRTK_TempRoot();
}

// Programs of low integrity can write here and hardly anywhere else.
std::wstring low_root() {
    const std::wstring folder = local_low_folder();
    return folder.empty() ? folder : folder + L'\\' + kTempRootName;
}

std::wstring parent_of(const std::wstring& folder) {
    return folder.substr(0, folder.size() - file_part(folder).size());
}

unsigned random_number() noexcept {
    unsigned number = 0;
    return RtlGenRandom(&number, sizeof number) && number ? number : GetTickCount() | 1;
}

PrivateCopy copy_somewhere(const std::string& bytes) {
    constexpr std::wstring (*kRoots[])() = {&temporary_root, &low_root};
    for (const auto root_of : kRoots) {
        const std::wstring root = root_of();
        if (root.empty())
            continue;
        ForceDirectories(root);
        if (PrivateCopy copy = copy_into(root, 0, kMostAttempts, bytes); !copy.path.empty())
            return copy;
    }
    for (const auto root_of : kRoots) {
        const std::wstring root(without_trailing_backslashes(parent_of(root_of())));
        if (PrivateCopy copy = copy_into(root, random_number(), 1, bytes); !copy.path.empty())
            return copy;
    }
    return {};
}

}  // namespace

PrivateCopy make_private_copy(const std::wstring& source) {
    const FileObj file =
        open_disk_file(source, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, FILE_FLAG_SEQUENTIAL_SCAN);
    if (!file) {
        trace::debug_output(L"cant open src lr");
        return {};
    }
    std::string bytes;
    if (!try_read(file.get(), bytes)) {
        trace::debug_output(L"read fail");
        return {};
    }
    PrivateCopy copy = copy_somewhere(bytes);
    if (copy.path.empty())
        copy.path = source;  // held open by this program then, which is less than to refuse it every print
    return copy;
}

void remove_private_copy(PrivateCopy copy) {
    const bool own = static_cast<bool>(copy.held);
    copy.held.reset();
    if (own)
        DeleteFileW(copy.path.c_str());
    const std::wstring root = own ? parent_of(copy.path) : ZRTK_TempRoot();
    if (root.empty())
        return;
    const std::wstring folder = own ? root : root + L'\\';
    WIN32_FIND_DATAW found = {};
    const FileObj kept = hold_folder(std::wstring(without_trailing_backslashes(folder)));
    if (!kept)
        return;
    const FindObj search(
        FindFirstFileW((folder + std::wstring(kPrefix) + L'*' + std::wstring(kExtension)).c_str(), &found));
    if (!search)
        return;
    do {
        const auto process = find_process(found.cFileName);
        if (process && is_gone(*process))
            DeleteFileW((folder + found.cFileName).c_str());
    } while (FindNextFileW(search.get(), &found));
}

}  // namespace qk
