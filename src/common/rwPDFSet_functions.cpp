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
#include "common/setting_signatures.h"

using qk::registry::CurrentUser;

namespace {

constexpr wchar_t kSettingValue[] = L"PDFSettingFileName";

std::wstring printer_key(const std::wstring& printer_name) {
    return qk::registry::kRoot + printer_name;
}

bool is_usable(const std::wstring& path) {
    return ProbeSettingFile(path) != SettingFormat::kNone;
}

std::wstring find_setting_file(const std::wstring& name) {
    if (name.empty())  // an extension alone is no setting's name
        return {};
    if (qk::is_full_path(name) && is_usable(name))
        return name;
    const auto folders = setting_folders(qk::install_folder());
    const auto find_with = [&](std::wstring_view extension) -> std::wstring {
        for (const SettingFolder& folder : folders)
            if (std::wstring path = folder.path + name + std::wstring(extension); is_usable(path))
                return path;
        return {};
    };
    std::wstring path = find_with(L"");
    for (auto extension = kSettingExtensions.begin(); path.empty() && extension != kSettingExtensions.end();
         ++extension)
        path = find_with(*extension);
    return path;
}

SettingFormat format_of(const BYTE (&start)[8], DWORD size) noexcept {
    const std::string_view bytes(reinterpret_cast<const char*>(start), size);
    if (size < 4)
        return SettingFormat::kNone;
    if (bytes.starts_with(kByteOrderMark))
        return SettingFormat::kJson;
    if (bytes.starts_with(kChunkedSignature) && size == sizeof start && bytes.back() == kChunkedEnd)
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

std::vector<SettingFolder> setting_folders(const std::wstring& install_folder) {
    std::vector<SettingFolder> folders;
    if (!install_folder.empty())
        folders = {{SettingFolder::kInstallation, install_folder + L"Settings\\"},
                   {SettingFolder::kInstallation, install_folder + L"Settings\\legacy\\"},
                   {SettingFolder::kAdministrator, install_folder + L"CustomSettings\\"}};
    if (std::wstring own = GetAppDataPath(false); !own.empty())
        folders.push_back({SettingFolder::kUser, own.back() == L'\\' ? std::move(own) : own + L'\\'});
    return folders;
}

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
    const qk::FileObj file = qk::open_saved_file(path, FILE_SHARE_READ | FILE_SHARE_DELETE);
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
    if (qk::is_full_path(folder) && !qk::names_device(folder)) {  // never below the host's current folder
        if (create && !qk::is_folder(folder))
            ForceDirectories(folder);
        return folder;
    }
    folder.clear();
    wchar_t roaming[MAX_PATH + 1] = {};
    if (SHGetSpecialFolderPathW(nullptr, roaming, CSIDL_APPDATA, FALSE) && *roaming)
        folder = qk::format(L"%s\\%s\\%s\\%s\\CustomSettings", roaming, L"Corvanta", L"Vantrix", L"8.0");
    if (!folder.empty() && (qk::is_folder(folder) || (create && ForceDirectories(folder))))
        return folder + L'\\';
    TRACE("err:GetAppDataPath. nodir");
    return {};
}

namespace {

std::wstring ask_library(HMODULE library, const std::wstring& printer_name, size_t units) {
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

}  // namespace

std::wstring GetSettingFileNameFromFD(const std::wstring& printer_name, size_t units) {
    TRACE("GetSettingFileNameFromFD");
    const qk::DLL library = LoadInstallDll(dialog_library::kFileName);
    if (library)
        return ask_library(library.get(), printer_name, units);
    TRACE("dll not found: Tessalo80.dll");
    return {};
}

std::wstring GetSettingFileNameFromFD(HMODULE library, const std::wstring& printer_name, size_t units) {
    TRACE("GetSettingFileNameFromFD");
    return ask_library(library, printer_name, units);
}

std::wstring SettingPathOf(const std::wstring& name) {
    return qk::is_full_path(name) ? name : ResolveSettingFilePath(name);
}
