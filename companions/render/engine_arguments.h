// How a print setting reads as arguments of Ghostscript's PDF writer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "print_settings/PrintSettings.h"

namespace companions::render {

// Paths as the engine opens them, in UTF-8 or the bytes of the Unix system.
struct EngineFiles {
    std::string options;  // file of arguments that no process list may show; empty: none
    std::string output;
    std::string prologue;
    std::string spool;
    std::string epilogue;
    std::vector<std::string> more = {};  // arguments of other parts of the setting
    bool rewritten = false;              // whether qpdf makes it a PDF 2.0 afterwards
};

// The version of PDF to write, "1.3" to "2.0", for a setting's version code; codes of PDF/A and PDF/X give
// the version that they build on.
[[nodiscard]] std::string_view compatibility_level(uint32_t version_code) noexcept;

// The arguments behind the program's name, in the engine's order.
[[nodiscard]] std::vector<std::string> engine_arguments(const ps::PrintSettings& settings,
                                                        const EngineFiles& files);

// Arguments for a run with another of the engine's devices.
[[nodiscard]] std::vector<std::string> quiet_arguments(const char* device);

// PostScript: what an image's compression needs beyond arguments.
[[nodiscard]] std::string image_parameters(const ps::PrintSettings& settings);

// Whether the setting asks for a password and its version of PDF allows one.
[[nodiscard]] bool wants_password(const ps::PrintSettings& settings) noexcept;

// The arguments with the passwords, one a line, for the file `EngineFiles::options`; nothing when a password
// has characters outside Latin-1, which this encryption has no bytes for. Only 32 characters of one count.
[[nodiscard]] std::optional<std::string> find_password_options(const ps::PrintSettings& settings);

// Whether Latin-1 has every character of a password, as the encryptions but AES with 256 bits need it, for
// which so many count.
[[nodiscard]] bool is_latin(std::wstring_view password) noexcept;
inline constexpr size_t kMostLatinPassword = 32;

// Without a master password the user's stands for it, as the format has it.
[[nodiscard]] const std::wstring& owner_password(const ps::Security_impl& security) noexcept;

// The permission bits (the PDF entry /P) of a setting, for the 40-bit encryption of PDF 1.3 and for 128 bits.
inline constexpr uint32_t kMayPrint = 0x4, kMayModify = 0x8, kMayCopy = 0x10, kMayAnnotate = 0x20,
                          kMayFillForms = 0x100, kMayReadAloud = 0x200, kMayAssemble = 0x400,
                          kMayPrintFine = 0x800;
[[nodiscard]] int32_t permission_bits(const ps::Security_impl& security, bool pdf13) noexcept;

// What the setting asks for and this renderer does not do, a phrase each; empty when it does everything.
[[nodiscard]] std::vector<std::string> unsupported_wishes(const ps::PrintSettings& settings);

}  // namespace companions::render
