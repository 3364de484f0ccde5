#include "companions/render/protection.h"

#include <algorithm>

#include "common/qk/text.h"
#include "companions/render/engine_arguments.h"

namespace companions::render {

namespace {

// qpdf reads a password as a line of a file, and nobody can type these.
bool has_control(const std::wstring& password) {
    return std::ranges::any_of(password, [](wchar_t unit) { return unit < 0x20; });
}

// Whether AES with 256 bits protects the PDF, which takes every letter.
bool is_strongest(const ps::PrintSettings& settings) {
    const auto& security = *settings.security();
    const uint32_t version = settings.pdfVersion()->Version;
    return version == ps::kPDF20 ||
           (version == ps::kPDF17 &&
            (security.Level >= ps::Security_impl::kAes256Level || !is_latin(security.MasterPassword) ||
             !is_latin(security.UserPassword)));
}

}  // namespace

std::optional<ProtectionFault> find_protection_fault(const ps::PrintSettings& settings,
                                                     const std::wstring& password) {
    // Readers cut what is typed behind so many bytes; qpdf counts all, and no password opens its PDF.
    constexpr size_t kMostBytes = 127;
    if (ps::is_standard(settings.pdfVersion()->Version))
        return std::nullopt;
    if (has_control(password))
        return ProtectionFault::kControl;
    if (is_strongest(settings))
        return qk::to_utf8(password).size() > kMostBytes ? std::optional(ProtectionFault::kTooLong)
                                                         : std::nullopt;
    if (!is_latin(password))
        return ProtectionFault::kNotLatin;
    return password.size() > kMostLatinPassword ? std::optional(ProtectionFault::kCut) : std::nullopt;
}

bool refuses_passwords(const ps::PrintSettings& settings) {
    const auto is_refused = [&settings](const std::wstring& password) {
        return find_protection_fault(settings, password).value_or(ProtectionFault::kCut) !=
               ProtectionFault::kCut;
    };
    return is_refused(settings.security()->MasterPassword) || is_refused(settings.security()->UserPassword);
}

std::optional<Encryption> find_encryption(const ps::PrintSettings& settings) {
    const uint32_t version = settings.pdfVersion()->Version;
    if (is_strongest(settings))
        return Encryption::kAes256;
    if (ps::has_low_level(version))
        return std::nullopt;
    return version < ps::kPDF16 || settings.security()->Level == ps::Security_impl::kRc4Level
               ? Encryption::kRc4
               : Encryption::kAes;
}

picojson::value encryption_job(const ps::Security_impl& security, Encryption encryption) {
    const auto bits = static_cast<uint32_t>(permission_bits(security, false));
    const auto allowed = [bits](uint32_t bit) { return picojson::value((bits & bit) != 0 ? "y" : "n"); };
    picojson::object permissions;
    permissions["annotate"] = allowed(kMayAnnotate);
    permissions["assemble"] = allowed(kMayAssemble);
    permissions["extract"] = allowed(kMayCopy);
    permissions["form"] = allowed(kMayFillForms);
    permissions["modifyOther"] = allowed(kMayModify);
    permissions["print"] = picojson::value((bits & kMayPrintFine) != 0 ? "full"
                                           : (bits & kMayPrint) != 0   ? "low"
                                                                       : "none");
    if (encryption == Encryption::kRc4)
        permissions["accessibility"] = allowed(kMayReadAloud);  // the later ones always allow it
    else if (encryption == Encryption::kAes)
        permissions["useAes"] = picojson::value("y");
    picojson::object encrypt;
    encrypt["ownerPassword"] = picojson::value(qk::to_utf8(owner_password(security)));
    encrypt["userPassword"] = picojson::value(qk::to_utf8(security.UserPassword));
    encrypt[encryption == Encryption::kAes256 ? "256bit" : "128bit"] = picojson::value(permissions);
    return picojson::value(encrypt);
}

}  // namespace companions::render
