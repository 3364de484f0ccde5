#include "common/external_call_ini.h"

#include <windows.h>

#include <shlobj.h>

#include <vector>

#include "common/qk/paths.h"

namespace pd_tk {

namespace {

constexpr DWORD kValueUnits = 4096;

}  // namespace

ExternalCallIni::ExternalCallIni() {
    // The folder as it is by default, not where the user may have moved it to: the programs that run the
    // external programs look there.
    wchar_t roaming[MAX_PATH] = {};
    if (SUCCEEDED(SHGetFolderPathW(nullptr, CSIDL_APPDATA, nullptr, SHGFP_TYPE_DEFAULT, roaming)) && *roaming)
        path_ = roaming + std::wstring(L"\\Corvanta\\Vantrix\\8.0\\externalCallSetting.ini");
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
