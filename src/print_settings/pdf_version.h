// The PDF versions, PDF/A and PDF/X profiles that a setting can ask for, and what they have in common.
#pragma once

#include <array>
#include <cstdint>

namespace Corvanta::Vantrix::PrintSettings {

// The codes of `PDFVersion_impl::Version`, as setting files hold them.
enum PDFVersionCode : uint32_t {
    kPDF13,
    kPDF14,
    kPDF15,
    kPDF16,
    kPDF17,
    kPDFA1b,
    kPDFX1a2001,
    kPDFX1a2003,
    kPDFX32002,
    kPDFX32003,
    kPDFX4,
    kPDFA2b,
    kPDF20,
    kPDFVersionCount
};

// The order in which people choose from them.
inline constexpr std::array<uint32_t, kPDFVersionCount> kVersionOrder = {
    kPDF13,      kPDF14,      kPDF15,     kPDF16,     kPDF17, kPDFA1b, kPDFA2b,
    kPDFX1a2001, kPDFX1a2003, kPDFX32002, kPDFX32003, kPDFX4, kPDF20};

// PDF/A: for archives.
[[nodiscard]] constexpr bool is_archive(uint32_t version) noexcept {
    return version == kPDFA1b || version == kPDFA2b;
}

// PDF/X, for printing presses: these need an output condition and have page boxes.
[[nodiscard]] constexpr bool is_press_standard(uint32_t version) noexcept {
    return version >= kPDFX1a2001 && version <= kPDFX4;
}

// PDF/A and PDF/X: these need a colour profile and allow no protection.
[[nodiscard]] constexpr bool is_standard(uint32_t version) noexcept {
    return is_archive(version) || is_press_standard(version);
}

// PDF/X-1a: CMYK colours alone.
[[nodiscard]] constexpr bool is_cmyk_only(uint32_t version) noexcept {
    return version == kPDFX1a2001 || version == kPDFX1a2003;
}

// Whether the version encrypts with 40 bits, with the four permissions of PDF 1.3; the others have the finer
// ones.
[[nodiscard]] constexpr bool has_low_level(uint32_t version) noexcept {
    return version == kPDF13;
}

// The versions of PDF by name.
enum class PDFVer { Unknown, _13, _14, _15, _16, _17, _20 };

// The version of PDF that the code stands for; a PDF/A or PDF/X code gives the version of PDF that standard
// builds on. Codes above kPDF20 give Unknown.
[[nodiscard]] PDFVer pdf_ver(uint32_t version_code) noexcept;

}  // namespace Corvanta::Vantrix::PrintSettings

namespace ps = Corvanta::Vantrix::PrintSettings;  // as everybody else calls it
