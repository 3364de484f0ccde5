#include "common/icc_folder.h"

#include <icm.h>
#include <winspool.h>

#include <functional>

#include "common/icc_profile.h"
#include "common/qk/disk_file.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"

namespace icc {

namespace {

constexpr const wchar_t* kExtensions[] = {L".icc", L".icm"};

// The colour management library. Every printing program loads this module and hardly any asks for a profile,
// so the library is loaded for as long as it is needed.
class ColourManagement {
public:
    ColourManagement() noexcept
        : library_(LoadLibraryExW(L"mscms.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32)) {
        if (!library_)
            return;
        open_ = qk::find_export<Open>(library_.get(), "OpenColorProfileW");
        read_ = qk::find_export<Read>(library_.get(), "GetColorProfileHeader");
        close_ = qk::find_export<Close>(library_.get(), "CloseColorProfile");
    }

    // Nothing when the file is no profile or cannot be opened.
    [[nodiscard]] std::optional<PROFILEHEADER> find_header(std::wstring path) const noexcept {
        if (!open_ || !read_ || !close_)
            return std::nullopt;
        // The library opens whatever has the name; nobody puts something else in its place meanwhile.
        const qk::FileObj held = qk::open_disk_file(path, GENERIC_READ, FILE_SHARE_READ);
        if (!held)
            return std::nullopt;
        PROFILE source = {PROFILE_FILENAME, path.data(),
                          static_cast<DWORD>((path.size() + 1) * sizeof(wchar_t))};
        const HPROFILE profile = open_(&source, PROFILE_READ, FILE_SHARE_READ, OPEN_EXISTING);
        if (!profile)
            return std::nullopt;
        PROFILEHEADER header = {};
        const BOOL done = read_(profile, &header);
        close_(profile);
        return done ? std::optional(header) : std::nullopt;
    }

private:
    using Open = HPROFILE WINAPI(PROFILE*, DWORD, DWORD, DWORD);
    using Read = BOOL WINAPI(HPROFILE, PROFILEHEADER*);
    using Close = BOOL WINAPI(HPROFILE);

    qk::DLL library_;
    Open* open_ = nullptr;
    Read* read_ = nullptr;
    Close* close_ = nullptr;
};

std::wstring driver_folder() {
    const auto answer = qk::read_sized([](BYTE* buffer, DWORD bytes, DWORD* needed) {
        return GetPrinterDriverDirectoryW(nullptr, nullptr, 1, buffer, bytes, needed);
    });
    const auto* folder = reinterpret_cast<const wchar_t*>(answer.bytes.get());
    return {folder, wcsnlen(folder, answer.size / sizeof(wchar_t))};
}

// Calls `visit` with folder and name of every file of the profile folder that has a profile's extension, the
// ".icc" ones first, until it returns true.
void visit_files(const std::function<bool(const std::wstring& folder, const wchar_t* name)>& visit) {
    const std::wstring folder = profile_folder();
    for (const wchar_t* extension : kExtensions) {
        WIN32_FIND_DATAW found = {};
        const qk::FindObj search(
            folder.empty() ? INVALID_HANDLE_VALUE
                           : FindFirstFileW(qk::format(L"%s*%s", folder.c_str(), extension).c_str(), &found));
        if (!search) {
            TRACE("no icc/icm file");
            continue;
        }
        do {
            if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) && visit(folder, found.cFileName))
                return;
        } while (FindNextFileW(search.get(), &found));
    }
}

}  // namespace

std::wstring profile_folder() {
    const std::wstring folder = driver_folder();
    if (folder.size() < 2)
        return {};
    const size_t slash = folder.rfind(L'\\', folder.size() - 2);  // a trailing backslash is no component
    return slash == std::wstring::npos ? std::wstring() : folder.substr(0, slash) + L"\\color\\";
}

std::optional<std::wstring> find_profile(std::wstring_view stored_name) {
    std::wstring path(stored_name);
    if (qk::is_full_path(path) && qk::is_file(path))
        return path;
    const std::wstring folder = profile_folder();
    const std::wstring_view name = qk::file_part(stored_name);
    if (folder.empty() || name.empty())
        return std::nullopt;
    path = folder + std::wstring(name);
    if (!qk::is_file(path))
        return std::nullopt;
    return path;
}

std::vector<Profile> list_profiles() {
    std::vector<Profile> profiles;
    const ColourManagement library;
    visit_files([&](const std::wstring& folder, const wchar_t* name) {
        if (const auto header = library.find_header(folder + name))
            profiles.push_back({folder + name, header->phDataColorSpace, header->phClass});
        return false;
    });
    return profiles;
}

std::optional<Profile> read_profile(const std::wstring& path) {
    const auto header = ColourManagement().find_header(path);
    return header ? std::optional<Profile>({path, header->phDataColorSpace, header->phClass}) : std::nullopt;
}

bool is_cmyk_profile(std::wstring_view stored_name) {
    const auto path = find_profile(stored_name);
    const auto profile = path ? read_profile(*path) : std::nullopt;
    return profile && profile->colour_space == kCMYK;
}

}  // namespace icc

int icc_FileNameFromDesc(const std::wstring& description, wchar_t* file_name) {
    TRACE("icc_FileNameFromDesc");
    if (!file_name)
        return 1;
    if (description.empty()) {
        *file_name = L'\0';
        return 1;
    }
    icc::visit_files([&](const std::wstring& folder, const wchar_t* name) {
        if (icc::find_description(folder + name) != description)
            return false;
        qk::copy_zero_padded(file_name, kFileNameUnits, name);
        return true;
    });
    return 0;
}
