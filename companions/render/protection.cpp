#include "companions/render/protection.h"

#include <algorithm>

#include "common/qk/text.h"
#include "companions/render/engine_arguments.h"

namespace companions::render {

namespace {

namespace ps = Corvanta::Vantrix::PrintSettings;

bool is_latin(const std::wstring& password) {
    return std::ranges::all_of(password, [](wchar_t unit) {
        return (unit >= 0x20 && unit < 0x7F) || (unit > 0xA0 && unit < 0x100);
    });
}

// qpdf reads a password as a line of a file, and nobody can type these.
bool has_control(const std::wstring& password) {
    return std::ranges::any_of(password, [](wchar_t unit) { return unit < 0x20; });
}

}  // namespace

std::optional<Encryption> find_encryption(const ps::PrintSettings& settings) {
    constexpr uint32_t kStrongest = 5;
    const auto& security = *settings.security();
    const uint32_t version = settings.pdfVersion()->Version;
    if (has_control(security.MasterPassword) || has_control(security.UserPassword))
        return std::nullopt;
    if (version == ps::kPDF20)
        return Encryption::kAes256;
    const bool latin = is_latin(security.MasterPassword) && is_latin(security.UserPassword);
    if (version == ps::kPDF17 && (!latin || security.Level >= kStrongest))
        return Encryption::kAes256;
    if (!latin || ps::has_low_level(version))
        return std::nullopt;
    return version < ps::kPDF16 || security.Level == 0 ? Encryption::kRc4 : Encryption::kAes;
}

picojson::value encryption_job(const ps::Security_impl& security, Encryption encryption) {
    const auto bits = static_cast<uint32_t>(permission_bits(security, false));
    const auto allowed = [bits](uint32_t bit) { return picojson::value((bits & bit) != 0 ? "y" : "n"); };
    picojson::object permissions;
    permissions["annotate"] = allowed(0x20);
    permissions["assemble"] = allowed(0x400);
    permissions["extract"] = allowed(0x10);
    permissions["form"] = allowed(0x100);
    permissions["modifyOther"] = allowed(0x8);
    permissions["print"] = picojson::value((bits & 0x800) != 0 ? "full" : (bits & 0x4) != 0 ? "low" : "none");
    if (encryption == Encryption::kRc4)
        permissions["accessibility"] = allowed(0x200);  // the later ones always allow it
    else if (encryption == Encryption::kAes)
        permissions["useAes"] = picojson::value("y");
    picojson::object encrypt;
    // Without a master password the user's stands for it, as the format has it.
    const std::wstring& owner =
        security.MasterPassword.empty() ? security.UserPassword : security.MasterPassword;
    encrypt["ownerPassword"] = picojson::value(qk::to_utf8(owner));
    encrypt["userPassword"] = picojson::value(qk::to_utf8(security.UserPassword));
    encrypt[encryption == Encryption::kAes256 ? "256bit" : "128bit"] = picojson::value(permissions);
    return picojson::value(encrypt);
}

}  // namespace companions::render
