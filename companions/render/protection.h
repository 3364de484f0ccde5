// How a setting's passwords protect its PDF when qpdf writes it.
#pragma once

#include <picojson.h>

#include <optional>
#include <string>

#include "print_settings/PrintSettings.h"

namespace companions::render {

// RC4 with 128 bits, AES with 128 and 256. The 40 bits of PDF 1.3 are the engine's.
enum class Encryption { kRc4, kAes, kAes256 };

// What keeps a password from protecting a PDF as it stands.
enum class ProtectionFault {
    kControl,   // it has control characters, which nobody can type
    kNotLatin,  // characters outside Latin-1, which only AES with 256 bits has bytes for
    kTooLong,   // longer than that one's 127 bytes of UTF-8
    kCut,       // only its first 32 characters count: the others' readers and writers leave out the rest
};

// What is wrong with one of the setting's passwords; nothing when its PDF takes it whole, or is a PDF/A or
// PDF/X, which has none.
[[nodiscard]] std::optional<ProtectionFault> find_protection_fault(const ps::PrintSettings& settings,
                                                                   const std::wstring& password);

// Whether a job with that setting fails (kPasswordUnusable): for every fault but the last.
[[nodiscard]] bool refuses_passwords(const ps::PrintSettings& settings);

// What the version of PDF and the level allow: PDF 1.4 and 1.5 the first, 1.6 and 1.7 the second (the first
// at level 0), PDF 2.0 the last. PDF 1.7 takes the last one too, at level 5 and for passwords that the others
// have no bytes for. Nothing for PDF 1.3.
[[nodiscard]] std::optional<Encryption> find_encryption(const ps::PrintSettings& settings);

// The member "encrypt" of a job of qpdf, with the passwords.
[[nodiscard]] picojson::value encryption_job(const ps::Security_impl& security, Encryption encryption);

}  // namespace companions::render
