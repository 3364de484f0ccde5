#include "common/rwPDFSet_functions.h"

#include <shlobj.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

#include "common/dialog_library.h"
#include "common/qk/disk_file.h"
#include "common/qk/paths.h"
#include "common/qk/registry.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"

using qk::registry::CurrentUser;

namespace {

constexpr wchar_t kSettingValue[] = L"PDFSettingFileName";
constexpr std::array<std::wstring_view, 4> kExtensions = {L"", L".ps4", L".printSetting3", L".printSetting2"};

std::wstring printer_key(const std::wstring& printer_name) {
    return qk::registry::kRoot + printer_name;
}

bool is_usable(const std::wstring& path) {
    return ProbeSettingFile(path) != SettingFormat::kNone;
}

// The folders that are searched, in their order: what is installed wins over what the user saved. One that is
// not known is left out, since a name alone would be looked for in the host program's current folder.
std::vector<std::wstring> setting_folders() {
    std::vector<std::wstring> folders;
    if (const std::wstring root = qk::install_folder(); !root.empty())
        folders = {root + L"Settings\\", root + L"Settings\\legacy\\", root + L"CustomSettings\\"};
    if (std::wstring own = GetAppDataPath(false); !own.empty())
        folders.push_back(own.back() == L'\\' ? std::move(own) : own + L'\\');
    return folders;
}

std::wstring find_setting_file(const std::wstring& name) {
    const auto folders = setting_folders();
    for (const std::wstring_view extension : kExtensions) {
        if (qk::is_full_path(name) && is_usable(name))
            return name;
        for (const std::wstring& folder : folders)
            if (std::wstring path = folder + name + std::wstring(extension); is_usable(path))
                return path;
    }
    return {};
}

SettingFormat format_of(const BYTE (&start)[8], DWORD size) noexcept {
    constexpr BYTE kByteOrderMark[] = {0xEF, 0xBB, 0xBF};
    constexpr BYTE kChunked[] = {0xF0, 0x5A, 0x52, 0x54, 0x4B, 0x53, 0x33, 0xF1};  // "?ZRTKS3?"
    if (size < 4)
        return SettingFormat::kNone;
    if (std::memcmp(start, kByteOrderMark, sizeof kByteOrderMark) == 0)
        return SettingFormat::kJson;
    if (size == sizeof start && std::memcmp(start, kChunked, sizeof kChunked) == 0)
        return SettingFormat::kBinary3;
    DWORD number = 0;
    std::memcpy(&number, start, sizeof number);
    switch (const auto format = static_cast<SettingFormat>(number)) {
        case SettingFormat::kBinary2_1:
        case SettingFormat::kBinary2_2:
        case SettingFormat::kBinary2_3:
        case SettingFormat::kBinary2_4:
        case SettingFormat::kBinary2_5:
        case SettingFormat::kBinary2_9:
            return format;
        default:
            return SettingFormat::kNone;
    }
}

}  // namespace

std::wstring GetSettingFileName(const std::wstring& printer_name) {
    TRACE_F(L">GetSettingFileName pn=%s", printer_name.c_str());
    const std::wstring stored = ReadDriverRegString(kSettingValue, printer_name.c_str());
    TRACE_F(L" read ps=%s", stored.c_str());
    for (const std::wstring& candidate : {stored, std::wstring(kDefaultSettingFile)}) {
        TRACE_F(L" ps=%s", candidate.c_str());
        if (!qk::is_file(ResolveSettingFilePath(candidate)))
            continue;
        if (candidate != stored) {
            TRACE("!=");
            TRACE_F(L" s=%s", stored.c_str());
            TRACE_F(L"ps=%s", candidate.c_str());
        }
        TRACE_F(L" [found] ps=%s", candidate.c_str());
        return candidate;
    }
    TRACE_F(L" [not found] ps=%s", kDefaultSettingFile);
    return kDefaultSettingFile;
}

void SetSettingFileName(std::wstring_view file_path, const std::wstring& printer_name) {
    TRACE("SetSettingFileName");
    const std::wstring installed = qk::install_folder() + L"Settings\\";
    const std::wstring stored(qk::starts_with_no_case(file_path, installed) ? qk::file_part(file_path)
                                                                            : file_path);
    const qk::RegKey key = qk::registry::create(CurrentUser().get(), printer_key(printer_name), KEY_WRITE);
    if (!key)
        return;  // traced where it was opened
    // Without its terminating zero, as the value has always been written; readers cope with it.
    const LSTATUS status =
        RegSetValueExW(key.get(), kSettingValue, 0, REG_SZ, reinterpret_cast<const BYTE*>(stored.data()),
                       static_cast<DWORD>(stored.size() * sizeof(wchar_t)));
    if (status != ERROR_SUCCESS)
        TRACE_F(L"err:SetSettingFileName %ld", status);
}

int FindSettingFile(wchar_t* name, size_t capacity) {
    TRACE("FindSettingFile");
    if (!name || capacity == 0)
        return 0;
    const std::wstring path = find_setting_file(std::wstring(name, wcsnlen(name, capacity)));
    if (path.empty())
        return 0;
    qk::copy_zero_padded(name, capacity, path);
    return 1;
}

std::wstring ResolveSettingFilePath(std::wstring_view name) {
    TRACE("ResolveSettingFilePath");
    if (name.size() >= kSettingNameUnits)  // cut, it could be another file's
        return {};
    wchar_t path[kSettingNameUnits];
    qk::copy_zero_padded(path, kSettingNameUnits, name);
    return FindSettingFile(path, kSettingNameUnits) ? std::wstring(path) : std::wstring();
}

SettingFormat ProbeSettingFile(const std::wstring& path) {
    TRACE("ProbeSettingFile");
    if (path.empty())
        return SettingFormat::kNone;
    // Who just replaces the file is not in the way.
    const qk::FileObj file = qk::open_disk_file(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                                FILE_FLAG_SEQUENTIAL_SCAN);
    if (!file) {
        const DWORD error = GetLastError();
        if (error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND && qk::is_file(path)) {
            TRACE("open error");
            TRACE(path);
        }
        return SettingFormat::kNone;
    }
    BYTE start[8] = {};
    DWORD size = 0;
    if (!ReadFile(file.get(), start, sizeof start, &size, nullptr))
        return SettingFormat::kNone;
    return format_of(start, size);
}

std::wstring GetAppDataPath(bool create) {
    TRACE("GetAppDataPath");
    std::wstring folder =
        qk::registry::find_text(CurrentUser().get(), qk::registry::kDebug, L"AppDataPath").value_or(L"");
    if (!folder.empty()) {
        if (create && !qk::is_folder(folder))
            ForceDirectories(folder);
        return folder;
    }
    wchar_t roaming[MAX_PATH + 1] = {};
    if (SHGetSpecialFolderPathW(nullptr, roaming, CSIDL_APPDATA, FALSE) && *roaming)
        folder = qk::format(L"%s\\%s\\%s\\%s\\CustomSettings", roaming, L"Corvanta", L"Vantrix", L"8.0");
    if (!folder.empty() && (qk::is_folder(folder) || (create && ForceDirectories(folder))))
        return folder + L'\\';
    TRACE("err:GetAppDataPath. nodir");
    return {};
}

std::wstring GetSettingFileNameFromFD(const std::wstring& printer_name, size_t units) {
    TRACE("GetSettingFileNameFromFD");
    const qk::DLL library = LoadInstallDll(dialog_library::kFileName);
    if (!library) {
        TRACE("dll not found: Tessalo80.dll");
        return {};
    }
    return GetSettingFileNameFromFD(library.get(), printer_name, units);
}

std::wstring GetSettingFileNameFromFD(HMODULE library, const std::wstring& printer_name, size_t units) {
    auto* get_setting = qk::find_export<dialog_library::GetSettingFN>(library, "GetSettingFN");
    if (!get_setting) {
        TRACE("no func");
        return {};
    }
    wchar_t name[kSettingNameUnits] = {};
    alignas(16) std::byte scratch[dialog_library::kScratchBytes] = {};
    TRACE("call GetSettingFN@Tessalo");
    if (get_setting(name, static_cast<int>(units), printer_name.c_str(), scratch) != 0) {
        TRACE("func error");
        return {};
    }
    name[units - 1] = L'\0';
    return name;
}

std::wstring SettingPathOf(const std::wstring& name) {
    return qk::is_full_path(name) ? name : ResolveSettingFilePath(name);
}
