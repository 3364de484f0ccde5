// PDF/A and PDF/X: what the engine is told so that the PDF keeps to one of them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "companions/render/pdfmark.h"
#include "print_settings/PrintSettings.h"

namespace companions::render {

struct Standard {
    std::vector<std::string> arguments;
    std::string definition;  // PostScript for the start of the document: output intent and identification
    std::string cmyk;        // the profile by which colours become CMYK; empty: they become something else
};

// Empty for a plain PDF; nothing when the setting's colour profile cannot be read.
[[nodiscard]] std::optional<Standard> find_standard(const ps::PrintSettings& settings);

// The document information with the time as the standards take it: the engine leaves out what is not ASCII of
// its usual form, and old ones break the metadata over characters beyond the first plane.
[[nodiscard]] std::string standard_information(const DocumentInfo& info);

// The texts with U+FFFD in the place of such characters.
[[nodiscard]] DocumentInfo standard_texts(DocumentInfo info);

}  // namespace companions::render
