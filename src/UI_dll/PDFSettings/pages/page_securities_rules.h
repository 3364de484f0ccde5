// The rules of the Security page: which passwords a version of PDF takes.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace pdf_settings {

struct PasswordChoice {
    std::wstring_view open;         // opens the document
    std::wstring_view permissions;  // lifts the restrictions
    bool needs_open;
    bool needs_permissions;
    // Whether the password, or the version, is another than in the file: else it is left as it is.
    bool is_open_new = true;
    bool is_permissions_new = true;
};

enum class PasswordFault {
    kSame,
    kNoOpen,
    kNoPermissions,
    kPermissionsCharacter,
    kOpenCharacter,
    kPermissionsTooLong,
    kOpenTooLong,
};

// What is wrong first; nothing when the version takes the passwords, or allows none and so does not look at
// them.
[[nodiscard]] std::optional<PasswordFault> find_password_fault(uint32_t version,
                                                               const PasswordChoice& choice);

}  // namespace pdf_settings
