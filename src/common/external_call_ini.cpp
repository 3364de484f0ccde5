#include "common/external_call_ini.h"

#include <windows.h>

#include <vector>

#include "common/qk/paths.h"

namespace pd_tk {

namespace {

constexpr DWORD kValueUnits = 4096;

}  // namespace

ExternalCallIni::ExternalCallIni() {
    // Not where the user may have moved it to: the programs that run the external programs look there.
    if (const std::wstring roaming = qk::default_roaming_folder(); !roaming.empty())
        path_ = roaming + L"\\Corvanta\\Vantrix\\8.0\\externalCallSetting.ini";
}

bool ExternalCallIni::exists() const noexcept {
    return qk::is_file(path_);
}

std::wstring ExternalCallIni::value(const wchar_t* section, const wchar_t* key) const {
    std::vector<wchar_t> buffer(kValueUnits);
    const DWORD units =
        GetPrivateProfileStringW(section, key, L"", buffer.data(), kValueUnits, path_.c_str());
    return {buffer.data(), units};
}

}  // namespace pd_tk
