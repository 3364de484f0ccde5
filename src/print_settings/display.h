// Settings as text for a person, from the language library.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "print_settings/PrintSettings.h"

namespace Corvanta::Vantrix::PrintSettings {

// The name of the form with that number; empty when it is not known.
using PaperNames = std::function<std::wstring(int32_t number)>;

// What differs between two settings, one sentence per change in the container's order: name, comment, then
// the differences of each section. Papers go by the name that the setting gives them itself, else by that of
// `paper_name`.
[[nodiscard]] std::vector<std::wstring> Changed2Str(const PrintSettings& older, const PrintSettings& newer,
                                                    const PaperNames& paper_name = {});

// The sentence for one change, "Watermark - Text: "a" -> "b"".
[[nodiscard]] std::wstring Changed2Str(const std::wstring& what, const std::wstring& older,
                                       const std::wstring& newer);

// Every value of a setting that is a code with a name, one line each: "General - Orientation: landscape".
[[nodiscard]] std::vector<std::wstring> Types2Str(const PrintSettings& settings);

// The name by which a version of PDF is written in logs, "ZRPS::PDFVer::_17". Static.
[[nodiscard]] const wchar_t* Types2Str(PDFVer version) noexcept;

}  // namespace Corvanta::Vantrix::PrintSettings
