#include "companions/host/sheet_host.h"

#include <windows.h>

#include <string_view>

#include "common/qk/handle.h"
#include "common/qk/paths.h"
#include "common/qk/registry.h"
#include "common/qk/text.h"
#include "companions/host/host_error.h"
#include "companions/host/stage_files.h"
#include "companions/system_texts.h"

namespace host {

namespace {

constexpr wchar_t kOverrides[] = L"Software\\Wine\\DllOverrides";
constexpr wchar_t kLibrary[] = L"compstui";
constexpr wchar_t kFileFirst[] = L"native,builtin";  // a file that is not Wine's goes before Wine's own
constexpr std::string_view kWinesMark = "Wine builtin DLL";
constexpr size_t kWinesMarkAt = 0x40;  // behind the DOS header

bool is_wines_own(const std::wstring& path) {
    const auto bytes = find_bytes(path);
    return bytes && bytes->size() > kWinesMarkAt &&
           std::string_view(*bytes).substr(kWinesMarkAt).starts_with(kWinesMark);
}

// Where Wine's own lies while the stand-in has its place.
std::wstring kept_path(const std::wstring& target) {
    return target + L".wine";
}

void prefer_file() {
    const qk::RegKey key = qk::registry::create(HKEY_CURRENT_USER, kOverrides, KEY_WRITE);
    const DWORD error = companions::store_text(key.get(), kLibrary, kFileFirst);
    if (error != ERROR_SUCCESS)
        throw installation_fault(L"programs cannot be told of the sheet host", error);
}

}  // namespace

std::wstring sheet_host_path() {
    return qk::grow_until_it_fits(
               [](wchar_t* buffer, DWORD units) { return GetSystemDirectoryW(buffer, units); }) +
           L"\\compstui.dll";
}

std::wstring install_sheet_host(const std::wstring& source, const std::wstring& target) {
    const std::wstring kept = kept_path(target);
    if (is_wines_own(target))
        bring_up_to_date({target, kept, false});
    else if (!qk::is_file(kept))
        return L"left as it is";
    const CopyOutcome outcome = bring_up_to_date({source, target, false});
    prefer_file();
    return outcome_name(outcome);
}

std::wstring sheet_host_state(const std::wstring& target) {
    return qk::is_file(kept_path(target)) && !is_wines_own(target) ? L"the stand-in" : L"the system's own";
}

bool remove_sheet_host(const std::wstring& target) {
    const std::wstring kept = kept_path(target);
    if (!qk::is_file(kept))
        return false;
    if (!is_wines_own(target))
        bring_up_to_date({kept, target, false});
    DeleteFileW(kept.c_str());
    if (qk::registry::find_text(HKEY_CURRENT_USER, kOverrides, kLibrary) == kFileFirst)
        RegDeleteKeyValueW(HKEY_CURRENT_USER, kOverrides, kLibrary);
    return true;
}

}  // namespace host
