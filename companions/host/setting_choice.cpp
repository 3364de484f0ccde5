#include "companions/host/setting_choice.h"

#include "common/qk/module.h"
#include "common/qk/registry.h"
#include "common/rwPDFSet_functions.h"
#include "companions/host/host_error.h"
#include "companions/system_texts.h"

namespace host {

namespace {

constexpr DWORD kMostWait = 30000;  // milliseconds

std::wstring value_name() {
    return std::wstring(L"settingfile_for_process_") + qk::kProductName;
}

qk::RegKey key() {
    return qk::registry::create(HKEY_CURRENT_USER, qk::registry::kRoot, KEY_WRITE);
}

}  // namespace

SettingTurn::SettingTurn() : turn_(L"zr_print_setting_choice", kMostWait) {}

SettingTurn::~SettingTurn() {
    const qk::LastErrorKeeper keep;
    if (chosen_)
        RegDeleteValueW(key().get(), value_name().c_str());
}

void SettingTurn::choose(const std::wstring& setting) {
    const DWORD error = companions::store_text(key().get(), value_name().c_str(), setting);
    if (error != ERROR_SUCCESS)
        throw installation_fault(L"the job's setting cannot be chosen", error);
    chosen_ = true;
}

std::wstring setting_for_module(const std::wstring& setting) {
    std::wstring name =
        setting.find_first_of(L"\\/") == std::wstring::npos ? setting : companions::absolute_path(setting);
    if (name.size() >= kSettingNameUnits)  // the dialog library would go on with the printer's own
        throw HostError{ExitCode::kUsage, L"the setting's path is too long"};
    return name;
}

}  // namespace host
