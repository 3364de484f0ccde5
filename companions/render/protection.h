// How a setting's passwords protect its PDF when qpdf writes it.
#pragma once

#include <picojson.h>

#include <optional>
#include <string>

#include "print_settings/PrintSettings.h"

namespace companions::render {

// RC4 with 128 bits, AES with 128 and 256. The 40 bits of PDF 1.3 are the engine's.
enum class Encryption { kRc4, kAes, kAes256 };

// What the version of PDF and the level allow: PDF 1.4 and 1.5 the first, 1.6 and 1.7 the second (the first
// at level 0), PDF 2.0 the last. PDF 1.7 takes the last one too, at level 5 and for passwords that the others
// have no bytes for. Nothing when such a password meets an older version, for one with control characters,
// and for PDF 1.3.
[[nodiscard]] std::optional<Encryption> find_encryption(
    const Corvanta::Vantrix::PrintSettings::PrintSettings& settings);

// The member "encrypt" of a job of qpdf, with the passwords.
[[nodiscard]] picojson::value encryption_job(const Corvanta::Vantrix::PrintSettings::Security_impl& security,
                                             Encryption encryption);

}  // namespace companions::render
