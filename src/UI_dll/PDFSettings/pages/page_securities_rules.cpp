#include "UI_dll/PDFSettings/pages/page_securities_rules.h"

#include <algorithm>

#include "UI_dll/PDFSettings/pages/page_pdf_version_rules.h"
#include "common/qk/text.h"

namespace pdf_settings {

namespace {

constexpr size_t kPasswordBytes = 128;  // in UTF-8, as a setting file holds it, with its end

bool has_bad_character(std::wstring_view password) noexcept {
    return std::ranges::any_of(password, [](wchar_t unit) { return unit < 33 || unit > 254; });
}

bool is_too_long(std::wstring_view password) {
    return qk::to_utf8(password).size() >= kPasswordBytes;
}

}  // namespace

std::optional<PasswordFault> find_password_fault(uint32_t version, const PasswordChoice& choice) {
    if (is_standard(version))
        return std::nullopt;
    const bool is_any_new = choice.is_open_new || choice.is_permissions_new;
    if (is_any_new && !choice.open.empty() && choice.open == choice.permissions)
        return PasswordFault::kSame;
    if (choice.is_open_new && choice.needs_open && choice.open.empty())
        return PasswordFault::kNoOpen;
    if (choice.is_permissions_new && choice.needs_permissions && choice.permissions.empty())
        return PasswordFault::kNoPermissions;
    if (choice.is_permissions_new && version != ps::kPDF20 && has_bad_character(choice.permissions))
        return PasswordFault::kPermissionsCharacter;
    if (choice.is_open_new && version != ps::kPDF20 && has_bad_character(choice.open))
        return PasswordFault::kOpenCharacter;
    if (choice.is_permissions_new && is_too_long(choice.permissions))
        return PasswordFault::kPermissionsTooLong;
    if (choice.is_open_new && is_too_long(choice.open))
        return PasswordFault::kOpenTooLong;
    return std::nullopt;
}

}  // namespace pdf_settings
