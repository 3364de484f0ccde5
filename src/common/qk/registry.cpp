#include "common/qk/registry.h"

#include <algorithm>

#include "common/qk/trace.h"

namespace qk::registry {

RegKey open(HKEY parent, const std::wstring& path, REGSAM access) noexcept {
    RegKey key;
    const LSTATUS status = RegOpenKeyExW(parent, path.c_str(), 0, access | KEY_WOW64_64KEY, key.put());
    if (status == ERROR_SUCCESS)
        return key;
    TRACE_F(L"err:RegOpenKeyExW %ld %s", status, path.c_str());
    return {};
}

RegKey create(HKEY parent, const std::wstring& path, REGSAM access) noexcept {
    RegKey key;
    const LSTATUS status = RegCreateKeyExW(parent, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                           access | KEY_WOW64_64KEY, nullptr, key.put(), nullptr);
    if (status == ERROR_SUCCESS)
        return key;
    TRACE_F(L"err:RegCreateKeyExW %ld %s", status, path.c_str());
    return {};
}

CurrentUser::CurrentUser() noexcept {
    if (RegOpenCurrentUser(KEY_READ | KEY_WRITE, key_.put()) != ERROR_SUCCESS &&
        RegOpenCurrentUser(KEY_READ, key_.put()) != ERROR_SUCCESS)
        key_.reset();
}

bool CurrentUser::is_own() noexcept {
    HandleObj token;
    return !OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, token.put()) &&
           GetLastError() == ERROR_NO_TOKEN;
}

std::optional<std::wstring> find_text(HKEY key, const wchar_t* value) {
    std::wstring text(260, L'\0');
    for (;;) {
        DWORD type = REG_NONE;
        auto bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        const LSTATUS status =
            RegQueryValueExW(key, value, nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &bytes);
        if (status == ERROR_MORE_DATA) {  // it may have grown since the last call: ask again until it fits
            text.resize(bytes / sizeof(wchar_t) + 2);
            continue;
        }
        if (status != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ))
            return std::nullopt;
        text.resize(bytes / sizeof(wchar_t));
        text.resize(std::min(text.find(L'\0'), text.size()));
        return text;
    }
}

std::optional<DWORD> find_number(HKEY key, const wchar_t* value) noexcept {
    DWORD type = REG_NONE;
    DWORD number = 0;
    DWORD bytes = sizeof number;
    if (RegQueryValueExW(key, value, nullptr, &type, reinterpret_cast<BYTE*>(&number), &bytes) !=
            ERROR_SUCCESS ||
        type != REG_DWORD || bytes != sizeof number)
        return std::nullopt;
    return number;
}

std::optional<std::wstring> find_text(HKEY parent, const std::wstring& path, const wchar_t* value) {
    const RegKey key = open(parent, path);
    return key ? find_text(key.get(), value) : std::nullopt;
}

std::optional<DWORD> find_number(HKEY parent, const std::wstring& path, const wchar_t* value) noexcept {
    const RegKey key = open(parent, path);
    return key ? find_number(key.get(), value) : std::nullopt;
}

}  // namespace qk::registry

namespace {

std::wstring read_users_text(const std::wstring& path, const wchar_t* value) {
    const qk::RegKey key = qk::registry::create(qk::registry::CurrentUser().get(), path, KEY_READ);
    return key ? qk::registry::find_text(key.get(), value).value_or(L"") : std::wstring();
}

}  // namespace

std::wstring ReadDriverRegString(const wchar_t* value_name, const wchar_t* subkey) {
    TRACE("ReadDriverRegString");
    const std::wstring root = qk::registry::kRoot;
    const std::wstring path = subkey ? root + subkey : root;
    std::wstring text = read_users_text(path, value_name);
    if (text.empty())
        text = qk::registry::find_text(HKEY_LOCAL_MACHINE, path, value_name).value_or(L"");
    if (text.empty())  // also when `path` is the root already
        text = qk::registry::find_text(HKEY_LOCAL_MACHINE, root, value_name).value_or(L"");
    return text;
}
