#include "companions/tessalo/options.h"

#include <windows.h>

#include <shlobj.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include "common/qk/memory_probe.h"
#include "common/qk/paths.h"
#include "common/qk/process.h"
#include "common/qk/registry.h"
#include "common/qk/text.h"
#include "companions/system_texts.h"

namespace companions {

namespace {

constexpr wchar_t kSection[] = L"Dialog";

std::wstring ini_text(const std::wstring& ini_path, const wchar_t* key) {
    return qk::grow_until_it_fits([&](wchar_t* buffer, DWORD units) {
        return GetPrivateProfileStringW(kSection, key, L"", buffer, units, ini_path.c_str());
    });
}

std::wstring documents_folder() {
    wchar_t folder[MAX_PATH + 1] = {};
    return SHGetSpecialFolderPathW(nullptr, folder, CSIDL_PERSONAL, TRUE) ? std::wstring(folder)
                                                                          : std::wstring();
}

}  // namespace

bool unattended(const std::wstring& ini_path) {
    if (!qk::has_visible_station())
        return true;
    std::wstring choice = variable(L"ZR_UNATTENDED");
    if (choice.empty())
        choice = ini_text(ini_path, L"Unattended");
    return qk::find_number(choice).value_or(0) != 0;
}

std::wstring unattended_folder(const std::wstring& record_folder, const ps::General_impl& general,
                               const std::wstring& ini_path) {
    // The renderer has a current folder of its own, so what it is told must not depend on this process's.
    if (!record_folder.empty())
        return absolute_path(record_folder);
    if (!general.OutputFolder.empty())
        return absolute_path(general.OutputFolder);
    std::wstring folder = variable(L"ZR_OUTPUT_FOLDER");
    if (folder.empty())
        folder = ini_text(ini_path, L"OutputFolder");
    return folder.empty() ? documents_folder() : absolute_path(folder);
}

std::wstring dialog_folder(const std::wstring& record_folder, const ps::General_impl& general) {
    if (!record_folder.empty())
        return absolute_path(record_folder);
    return general.OutputFolder.empty() ? documents_folder() : absolute_path(general.OutputFolder);
}

bool has_fixed_folder(const ps::General_impl& general) noexcept {
    return general.SaveStyle == general.kFixedFolder && !general.OutputFolder.empty();
}

std::wstring setting_name_for(const std::wstring& printer_name, size_t units) {
    const std::wstring value = L"settingfile_for_process_" + printer_name;
    auto chosen =
        qk::registry::find_text(qk::registry::CurrentUser().get(), qk::registry::kRoot, value.c_str());
    // One that the job could not be told would leave it without any setting.
    return chosen && !chosen->empty() && chosen->size() < units ? std::move(*chosen)
                                                                : GetSettingFileName(printer_name);
}

void assign(qk::MsWString& field, std::wstring_view text, std::wstring& own) {
    const bool in_place =
        field.capacity <= qk::MsWString::kInPlace && field.length <= qk::MsWString::kInPlace;
    if (in_place && text.size() <= qk::MsWString::kInPlace) {
        field.set_in_place(text);
    } else if (!in_place && text.size() <= field.capacity &&
               qk::is_writable(field.address, (text.size() + 1) * sizeof(wchar_t))) {
        *std::ranges::copy(text, field.address).out = L'\0';
        field.length = text.size();
    } else {
        own.reserve(std::max(text.size(), qk::MsWString::kInPlace + 1));  // held by address
        own = text;
        field.address = own.data();
        field.length = own.size();
        field.capacity = own.capacity();
    }
}

}  // namespace companions
