// The machine's registry hive, replaced by an empty key of the test's own.
#pragma once

#include <windows.h>

#include <string>

#include "support/user_registry.h"

class MachineRegistry {
public:
    MachineRegistry() : name_(L"Software\\zr_test_" + std::to_wstring(GetCurrentProcessId())) {
        RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str());
        RegCreateKeyExW(HKEY_CURRENT_USER, name_.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                        nullptr, &key_, nullptr);
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, key_);
    }
    ~MachineRegistry() {
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        RegCloseKey(key_);
        RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str());
    }
    MachineRegistry(const MachineRegistry&) = delete;
    MachineRegistry& operator=(const MachineRegistry&) = delete;

    void set_text(const std::wstring& path, const std::wstring& value, const std::wstring& text) const {
        UserRegistry::set_below(key_, path, value, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    }

private:
    std::wstring name_;
    HKEY key_ = nullptr;
};
