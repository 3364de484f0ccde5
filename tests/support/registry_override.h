// The machine's registry hive, replaced by an empty key of the test's own.
#pragma once

#include <windows.h>

#include <string>

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
        HKEY key = nullptr;
        RegCreateKeyExW(key_, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr,
                        &key, nullptr);
        RegSetValueExW(key, value.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                       static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
        RegCloseKey(key);
    }

private:
    std::wstring name_;
    HKEY key_ = nullptr;
};
