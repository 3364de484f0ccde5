// The hives of the registry, replaced by empty keys of the test's own.
#pragma once

#include "support/import_patch.h"

class RegistryOverride {
public:
    RegistryOverride(HKEY hive, const wchar_t* name)
        : hive_(hive), name_(name + std::to_wstring(GetCurrentProcessId())) {
        RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str());
        // Not volatile: the shell makes keys of its own below, which would have to be volatile too.
        RegCreateKeyExW(HKEY_CURRENT_USER, name_.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                        nullptr, &key_, nullptr);
        RegOverridePredefKey(hive_, key_);
    }
    ~RegistryOverride() {
        RegOverridePredefKey(hive_, nullptr);
        RegDeleteTreeW(key_, nullptr);
        RegCloseKey(key_);
        RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str());
    }
    RegistryOverride(RegistryOverride&&) = delete;

    void set(const std::wstring& path, const std::wstring& value, DWORD type, const void* data,
             size_t bytes) const {
        set_below(key_, path, value, type, data, bytes);
    }
    void set_text(const std::wstring& path, const std::wstring& value, const std::wstring& text) const {
        set(path, value, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    }
    static void set_below(HKEY hive, const std::wstring& path, const std::wstring& value, DWORD type,
                          const void* data, size_t bytes) {
        RegSetKeyValueW(hive, path.c_str(), value.c_str(), type, data, static_cast<DWORD>(bytes));
    }

protected:
    HKEY hive_;
    std::wstring name_;
    HKEY key_ = nullptr;
};

// The current user's. Where both are replaced, make the machine's first.
class UserRegistry : public RegistryOverride {
public:
    UserRegistry()
        : RegistryOverride(HKEY_CURRENT_USER, L"Software\\zr_user_"),
          open_user_("RegOpenCurrentUser", &open_hive) {
        own_ = key_;
    }

    // The bytes of a value as they stand there, nothing when it is missing.
    [[nodiscard]] static std::optional<std::vector<BYTE>> find(const std::wstring& path,
                                                               const std::wstring& value) {
        std::vector<BYTE> bytes(4096);
        DWORD size = 4096;
        const LSTATUS status = RegGetValueW(HKEY_CURRENT_USER, path.c_str(), value.c_str(),
                                            RRF_RT_ANY | RRF_NOEXPAND, nullptr, bytes.data(), &size);
        bytes.resize(size);
        return status == ERROR_SUCCESS ? std::optional(bytes) : std::nullopt;
    }

    // Stands in for RegOpenCurrentUser, which goes past the override. A library that a test loads needs a
    // patch of its own.
    static LSTATUS WINAPI open_hive(REGSAM access, HKEY* key) {
        return RegOpenKeyExW(own_, L"", 0, access, key);
    }

private:
    static inline HKEY own_ = nullptr;
    ImportPatch open_user_;
};

// The machine's.
class MachineRegistry : public RegistryOverride {
public:
    MachineRegistry() : RegistryOverride(HKEY_LOCAL_MACHINE, L"Software\\zr_test_") {}
};
