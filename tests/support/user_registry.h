// The current user's hive, replaced by an empty key of the test's own. Where both are replaced, make the
// machine's first.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "support/import_patch.h"

class UserRegistry {
public:
    UserRegistry()
        : name_(L"Software\\zr_user_" + std::to_wstring(GetCurrentProcessId())),
          open_user_("RegOpenCurrentUser", reinterpret_cast<void*>(&open_hive)) {
        RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str());
        // Not volatile: the shell makes keys of its own below, which would have to be volatile too.
        RegCreateKeyExW(HKEY_CURRENT_USER, name_.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                        nullptr, &key_, nullptr);
        RegOverridePredefKey(HKEY_CURRENT_USER, key_);
        hive_ = key_;
    }
    ~UserRegistry() {
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        RegDeleteTreeW(key_, nullptr);
        RegCloseKey(key_);
        RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str());
    }
    UserRegistry(const UserRegistry&) = delete;
    UserRegistry& operator=(const UserRegistry&) = delete;

    void set(const std::wstring& path, const std::wstring& value, DWORD type, const void* data,
             size_t bytes) const {
        set_below(HKEY_CURRENT_USER, path, value, type, data, bytes);
    }
    void set_text(const std::wstring& path, const std::wstring& value, const std::wstring& text) const {
        set(path, value, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    }
    static void set_below(HKEY hive, const std::wstring& path, const std::wstring& value, DWORD type,
                          const void* data, size_t bytes) {
        HKEY key = nullptr;
        RegCreateKeyExW(hive, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr,
                        &key, nullptr);
        RegSetValueExW(key, value.c_str(), 0, type, static_cast<const BYTE*>(data),
                       static_cast<DWORD>(bytes));
        RegCloseKey(key);
    }

    // The bytes of a value as they stand there, nothing when it is missing.
    [[nodiscard]] static std::optional<std::vector<BYTE>> find(const std::wstring& path,
                                                               const std::wstring& value) {
        std::vector<BYTE> bytes(4096);
        auto size = static_cast<DWORD>(bytes.size());
        if (RegGetValueW(HKEY_CURRENT_USER, path.c_str(), value.c_str(), RRF_RT_ANY | RRF_NOEXPAND, nullptr,
                         bytes.data(), &size) != ERROR_SUCCESS)
            return std::nullopt;
        bytes.resize(size);
        return bytes;
    }

    // Stands in for RegOpenCurrentUser, which goes past the override. A library that a test loads needs a
    // patch of its own.
    static LSTATUS WINAPI open_hive(REGSAM access, HKEY* key) {
        return RegOpenKeyExW(hive_, L"", 0, access, key);
    }

private:
    static inline HKEY hive_ = nullptr;
    std::wstring name_;
    ImportPatch open_user_;
    HKEY key_ = nullptr;
};
