// The registry below the product's key. All keys are opened in the 64-bit view.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

#include "common/qk/handle.h"

namespace qk::registry {

inline constexpr wchar_t kRoot[] = L"SOFTWARE\\Corvanta\\Vantrix\\8.0\\";
inline constexpr wchar_t kSpecial[] = L"SOFTWARE\\Corvanta\\Vantrix\\8.0\\Special";
inline constexpr wchar_t kDebug[] = L"SOFTWARE\\Corvanta\\Vantrix\\8.0\\Debug";
inline constexpr wchar_t kNotification[] = L"SOFTWARE\\Corvanta\\Vantrix\\8.0\\Notification";

// An existing key opened with `access` (KEY_READ, KEY_WRITE); empty when it cannot be.
[[nodiscard]] RegKey open(HKEY parent, const std::wstring& path, REGSAM access = KEY_READ) noexcept;

// The same, made when it is missing.
[[nodiscard]] RegKey create(HKEY parent, const std::wstring& path, REGSAM access) noexcept;

// The hive of the user on whose behalf the thread runs: a spooler thread impersonates who prints, and in a
// service HKEY_CURRENT_USER itself may be somebody else's. Every look into the user's hive goes through here.
class CurrentUser {
public:
    CurrentUser() noexcept;
    [[nodiscard]] HKEY get() const noexcept { return key_ ? key_.get() : HKEY_CURRENT_USER; }

    // Whether the thread acts for nobody but the process's own user.
    [[nodiscard]] static bool is_own() noexcept;

private:
    RegKey key_;
};

// A text value (REG_SZ or REG_EXPAND_SZ, not expanded), with or without its terminating zero; cut at the
// first zero. Nothing when it is missing or of another type.
[[nodiscard]] std::optional<std::wstring> find_text(HKEY key, const wchar_t* value);

// A number value (REG_DWORD). Nothing when it is missing or of another type or size.
[[nodiscard]] std::optional<DWORD> find_number(HKEY key, const wchar_t* value) noexcept;

// The same of the key `path` below `parent`.
[[nodiscard]] std::optional<std::wstring> find_text(HKEY parent, const std::wstring& path,
                                                    const wchar_t* value);
[[nodiscard]] std::optional<DWORD> find_number(HKEY parent, const std::wstring& path,
                                               const wchar_t* value) noexcept;

}  // namespace qk::registry

// A text value of the product's key: the current user's key `subkey` below the root, then the machine's, then
// the machine's root key itself. The first that is not empty; empty when there is none. `subkey` may be null.
// The user's key is made when it is missing.
[[nodiscard]] std::wstring ReadDriverRegString(const wchar_t* value_name, const wchar_t* subkey);
