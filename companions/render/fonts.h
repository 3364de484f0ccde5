// Which fonts the PDF holds.
#pragma once

#include <string>

#include "print_settings/sections.h"

namespace companions::render {

// PostScript for the start of the document: which fonts are embedded. The setting's names of families are
// looked up among the installed fonts. PDF/A and PDF/X have all of them (`all`).
[[nodiscard]] std::string font_parameters(const ps::Font_impl& fonts, bool all);

// The name of a font that a PDF, as qpdf describes it in JSON, does not hold although the setting asks for
// it; empty when there is none. `parameters` is what font_parameters gave.
[[nodiscard]] std::string missing_font(const std::string& json, const std::string& parameters);

}  // namespace companions::render
