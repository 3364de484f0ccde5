#include "companions/host/stage_files.h"

#include <windows.h>

#include <string_view>

#include "common/qk/handle.h"
#include "common/qk/paths.h"
#include "common/qk/process.h"
#include "common/qk/text.h"
#include "companions/host/host_error.h"
#include "companions/leftovers.h"
#include "companions/print_processor/names.h"
#include "companions/system_texts.h"

namespace host {

namespace {

constexpr wchar_t kModule[] = L"ZR_UI80.dll";
// Before the number of the process that has moved a file aside, or writes it.
constexpr wchar_t kAside[] = L".old";
constexpr wchar_t kFresh[] = L".new";
constexpr const wchar_t* kInstalledFiles[] = {L"Tessalo80.dll", L"zr_render.exe"};

void demand(const std::wstring& path) {
    if (!qk::is_file(path))
        throw HostError{ExitCode::kInstallation,
                        path + L" is missing; build the project first (scripts/build)"};
}

ULONGLONG write_time(const std::wstring& path) noexcept {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data))
        return 0;
    return ULONGLONG{data.ftLastWriteTime.dwHighDateTime} << 32 | data.ftLastWriteTime.dwLowDateTime;
}

// A program that has loaded the file keeps it from being replaced, but not from being renamed.
void move_aside(const std::wstring& target) {
    const std::wstring aside = target + kAside + std::to_wstring(GetCurrentProcessId());
    if (MoveFileExW(target.c_str(), aside.c_str(), MOVEFILE_REPLACE_EXISTING) && !DeleteFileW(aside.c_str()))
        MoveFileExW(aside.c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
}

// Under a name of its own first, so that nobody ever sees half a file.
void put_in_place(const FileCopy& copy) {
    const std::wstring fresh = copy.target + kFresh + std::to_wstring(GetCurrentProcessId());
    ForceDirectories(companions::folder_part(copy.target));
    if (!CopyFileW(copy.source.c_str(), fresh.c_str(), FALSE)) {
        const DWORD error = GetLastError();
        DeleteFileW(fresh.c_str());  // what a full disk has taken of it
        throw installation_fault(L"cannot write " + copy.target, error);
    }
    if (MoveFileExW(fresh.c_str(), copy.target.c_str(), MOVEFILE_REPLACE_EXISTING))
        return;
    move_aside(copy.target);
    if (MoveFileExW(fresh.c_str(), copy.target.c_str(), MOVEFILE_REPLACE_EXISTING))
        return;
    const DWORD error = GetLastError();
    DeleteFileW(fresh.c_str());
    throw installation_fault(L"cannot replace " + copy.target, error);
}

}  // namespace

const wchar_t* outcome_name(CopyOutcome outcome) noexcept {
    static constexpr const wchar_t* kNames[] = {L"copied", L"replaced", L"up to date", L"kept (edited)"};
    return kNames[static_cast<size_t>(outcome)];
}

void delete_leftovers_of(const std::wstring& target) {
    const std::wstring name(qk::file_part(target));
    companions::delete_leftovers(target + kAside + L'*', [&name](std::wstring_view found) {
        return companions::find_process(found, name + kAside).has_value();  // somebody's own "x.old" is none
    });
    companions::delete_leftovers(target + kFresh + L'*', [&name](std::wstring_view found) {
        const auto process = companions::find_process(found, name + kFresh);
        return process && qk::is_gone(*process);
    });
}

std::vector<std::wstring> files_below(const std::wstring& folder, const std::wstring& relative) {
    std::vector<std::wstring> files;
    WIN32_FIND_DATAW found = {};
    const qk::FindObj search(FindFirstFileW((folder + relative + L"*").c_str(), &found));
    for (bool more = static_cast<bool>(search); more; more = FindNextFileW(search.get(), &found) != FALSE) {
        const std::wstring name = relative + found.cFileName;
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
            files.push_back(name);
        } else if (std::wstring_view(found.cFileName) != L"." &&
                   std::wstring_view(found.cFileName) != L"..") {
            for (std::wstring& inner : files_below(folder, name + L"\\"))
                files.push_back(std::move(inner));
        }
    }
    return files;
}

std::vector<FileCopy> plan_copies(const std::wstring& stage, const InstallPlaces& places) {
    std::vector<FileCopy> copies;
    const auto add = [&](const std::wstring& name, const std::wstring& place, bool keep_newer = false) {
        copies.push_back({stage + name, place + name, keep_newer});
    };
    for (const wchar_t* name : {kModule, L"Language\\zrtk_res_en.dll", L"Settings\\standard.ps4"})
        demand(stage + name);
    add(kModule, places.drivers);
    if (!places.processors.empty()) {
        demand(stage + processor::kLibrary);
        add(processor::kLibrary, places.processors);
    }
    for (const std::wstring& name : files_below(stage + L"Language\\"))
        for (const std::wstring& place : {places.drivers, places.installation})
            add(L"Language\\" + name, place);
    for (const wchar_t* name : kInstalledFiles) {
        demand(stage + name);
        add(name, places.installation);
    }
    for (const std::wstring& name : files_below(stage + kHelpFolder))
        add(kHelpFolder + name, places.installation);
    for (const wchar_t* folder : {L"Settings\\", L"CustomSettings\\"})
        for (const std::wstring& name : files_below(stage + folder))
            add(folder + name, places.installation, true);
    return copies;
}

std::optional<std::string> find_bytes(const std::wstring& path) {
    const qk::FileObj file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                       nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    LARGE_INTEGER size = {};
    if (!file || !GetFileSizeEx(file.get(), &size))
        return std::nullopt;
    std::string bytes(static_cast<size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    const bool whole = ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr) &&
                       read == bytes.size();
    return whole ? std::optional(std::move(bytes)) : std::nullopt;
}

CopyOutcome bring_up_to_date(const FileCopy& copy) {
    delete_leftovers_of(copy.target);
    const bool there = qk::is_file(copy.target);
    const auto source = find_bytes(copy.source);
    if (there && source && source == find_bytes(copy.target))
        return CopyOutcome::kUpToDate;
    if (there && copy.keep_newer && write_time(copy.target) > write_time(copy.source))
        return CopyOutcome::kKept;
    put_in_place(copy);
    return there ? CopyOutcome::kReplaced : CopyOutcome::kCopied;
}

}  // namespace host
