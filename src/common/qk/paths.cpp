#include "common/qk/paths.h"

#include <knownfolders.h>
#include <shlobj.h>

#include "common/qk/disk_file.h"
#include "common/qk/own_user.h"
#include "common/qk/registry.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"

namespace qk {

namespace {

DWORD attributes_of(const std::wstring& path) noexcept {
    return path.empty() || names_device(path) ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(path.c_str());
}

}  // namespace

bool is_file(const std::wstring& path) noexcept {
    const DWORD attributes = attributes_of(path);
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool is_folder(const std::wstring& path) noexcept {
    const DWORD attributes = attributes_of(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

std::wstring module_path(HMODULE module) {
    return grow_until_it_fits(
        [module](wchar_t* buffer, DWORD units) { return GetModuleFileNameW(module, buffer, units); });
}

DLL load_system_library(std::wstring_view file_name) {
    const std::wstring folder =
        grow_until_it_fits([](wchar_t* buffer, DWORD units) { return GetSystemDirectoryW(buffer, units); });
    if (folder.empty())
        return {};
    const std::wstring path = folder + L'\\' + std::wstring(file_name);
    return DLL(LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
}

bool is_full_path(std::wstring_view path) noexcept {
    constexpr std::wstring_view kSlashes = L"\\/";
    const auto is_slash = [&](size_t at) { return kSlashes.find(path[at]) != std::wstring_view::npos; };
    return path.size() > 2 && ((is_slash(0) && is_slash(1)) || (path[1] == L':' && is_slash(2)));
}

namespace {

constexpr wchar_t kInstallFolder[] = L"PdfDllPath";

std::wstring full_folder(std::wstring folder) {
    if (!is_full_path(folder) || names_device(folder))
        return {};
    if (folder.back() != L'\\')
        folder += L'\\';
    return folder;
}

}  // namespace

std::wstring install_folder() {
    const std::wstring folder = full_folder(ReadDriverRegString(kInstallFolder, nullptr));
    return folder.empty() ? machine_install_folder() : folder;
}

std::wstring trusted_install_folder() {
    return registry::CurrentUser::is_own() ? install_folder() : machine_install_folder();
}

std::wstring machine_install_folder() {
    return full_folder(
        registry::find_text(HKEY_LOCAL_MACHINE, registry::kRoot, kInstallFolder).value_or(L""));
}

namespace {

OwnUsersText common_documents, roaming, default_roaming;

std::wstring shell_common_documents() {
    wchar_t buffer[MAX_PATH + 1] = {};
    return SHGetSpecialFolderPathW(nullptr, buffer, CSIDL_COMMON_DOCUMENTS, FALSE) ? buffer : L"";
}

template <SHGFP_TYPE type>
std::wstring shell_roaming_folder() {
    wchar_t buffer[MAX_PATH] = {};
    return SUCCEEDED(SHGetFolderPathW(nullptr, CSIDL_APPDATA, nullptr, type, buffer)) ? buffer : L"";
}

std::wstring known_folder(const GUID& id) {
    const DLL ole(LoadLibraryExW(L"ole32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    auto* free_text = ole ? find_export<void WINAPI(void*)>(ole.get(), "CoTaskMemFree") : nullptr;
    wchar_t* text = nullptr;
    if (!free_text || FAILED(SHGetKnownFolderPath(id, 0, nullptr, &text)))
        return {};
    std::wstring folder = text;
    free_text(text);
    return folder;
}

}  // namespace

std::wstring common_documents_folder() {
    constexpr wchar_t kSpecialFolders[] = L"SOFTWARE\\Dunmere\\Common\\SpecialFolder";
    std::wstring folder =
        registry::find_text(HKEY_LOCAL_MACHINE, kSpecialFolders, L"CSIDL_COMMON_DOCUMENTS").value_or(L"");
    if (folder.empty())
        folder = common_documents.get(shell_common_documents);
    return std::wstring(without_trailing_backslashes(folder));
}

std::wstring roaming_folder() {
    return roaming.get(shell_roaming_folder<SHGFP_TYPE_CURRENT>);
}

std::wstring default_roaming_folder() {
    return default_roaming.get(shell_roaming_folder<SHGFP_TYPE_DEFAULT>);
}

std::wstring local_low_folder() {
    // {A520A1A4-1780-4FF6-BD18-167343C5AF16}, FOLDERID_LocalAppDataLow
    return known_folder({0xA520A1A4, 0x1780, 0x4FF6, {0xBD, 0x18, 0x16, 0x73, 0x43, 0xC5, 0xAF, 0x16}});
}

std::wstring shared_documents_folder() {
    const std::wstring common = common_documents_folder();
    return common.empty() ? common : common + L"\\Dunmere\\Vantrix2";
}

}  // namespace qk

bool ForceDirectories(const std::wstring& path) {
    TRACE("ForceDirectories");
    TRACE(path);
    const std::wstring folder(qk::without_trailing_backslashes(path));
    if (folder.empty() || qk::is_folder(folder))
        return !folder.empty();
    const size_t slash = folder.rfind(L'\\');
    if (slash != std::wstring::npos && slash > 0 && folder[slash - 1] != L':' && folder[slash - 1] != L'\\')
        ForceDirectories(folder.substr(0, slash));
    return CreateDirectoryW(folder.c_str(), nullptr) ||
           (GetLastError() == ERROR_ALREADY_EXISTS && qk::is_folder(folder));
}

namespace {

enum class ScratchFailure { kNone = 0, kNoRoot = 3, kNotMade = 4, kNoCache = 5 };

// Internet Explorer's protected mode and its kin cannot write the temporary folder.
bool in_protected_mode() noexcept {
    const qk::DLL library(LoadLibraryExW(L"ieframe.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    using IsProtected = HRESULT WINAPI(BOOL*);
    auto* is_protected =
        library ? qk::find_export<IsProtected>(library.get(), "IEIsProtectedModeProcess") : nullptr;
    BOOL answer = FALSE;
    return is_protected && SUCCEEDED(is_protected(&answer)) && answer;
}

std::wstring internet_cache_folder() {
    // {352481E8-33BE-4251-BA85-6007CAEDCF9D}, FOLDERID_InternetCache
    return qk::known_folder({0x352481E8, 0x33BE, 0x4251, {0xBA, 0x85, 0x60, 0x07, 0xCA, 0xED, 0xCF, 0x9D}});
}

ScratchFailure find_scratch_folder(std::wstring& folder) {
    const std::wstring root = ZRTK_TempRoot();
    if (root.empty() || (!qk::is_folder(root) && !CreateDirectoryW(root.c_str(), nullptr) &&
                         GetLastError() != ERROR_ALREADY_EXISTS))
        return ScratchFailure::kNoRoot;
    folder = thread_temp_folder(root);
    if (ForceDirectories(folder) || qk::is_folder(folder))
        return ScratchFailure::kNone;
    if (!in_protected_mode())
        return ScratchFailure::kNotMade;
    folder = internet_cache_folder();
    return folder.empty() ? ScratchFailure::kNoCache : ScratchFailure::kNone;
}

}  // namespace

std::wstring ZRTK_TempRoot() {
    std::wstring root =
        qk::grow_until_it_fits([](wchar_t* buffer, DWORD units) { return GetTempPathW(units, buffer); });
    return root.empty() ? root : root + kTempRootName;
}

std::wstring thread_temp_folder(const std::wstring& root) {
    return qk::format(L"%s\\%lu", root.c_str(), GetCurrentThreadId());
}

std::wstring ZRTK_TempPath() {
    TRACE("ZRTK_TempPath");
    std::wstring folder;
    const ScratchFailure failure = find_scratch_folder(folder);
    if (failure == ScratchFailure::kNone && folder.size() < MAX_PATH)
        return folder;
    TRACE_F(L"err:ZRTK_TempPath %d", static_cast<int>(failure));
    return {};
}

qk::DLL LoadInstallDll(std::wstring_view file_name) {
    return LoadInstallDll(file_name, qk::trusted_install_folder());
}

qk::DLL LoadInstallDll(std::wstring_view file_name, const std::wstring& install_folder) {
    TRACE("LoadInstallDll");
    if (install_folder.empty()) {  // a bare name would be looked for where anybody can put a library
        SetLastError(ERROR_FILE_NOT_FOUND);
        return {};
    }
    const std::wstring path = install_folder + std::wstring(file_name);
    return qk::DLL(LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
}
