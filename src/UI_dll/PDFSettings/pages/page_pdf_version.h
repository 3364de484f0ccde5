// What other pages read of the PDF version page, and what it does when the version changes.
#pragma once

#include <windows.h>

#include <cstdint>

#include "print_settings/PrintSettings.h"

namespace pdf_settings {

// The PDF version section as the controls of the PDF version page stand, applied or not. `page` is any page
// of the sheet; without a PDF version page beside it the edited setting's section.
[[nodiscard]] Corvanta::Vantrix::PrintSettings::PDFVersion_impl read_PDFVersion(HWND page);

// Fills the list of colour profiles with those that fit the version and selects the one that was selected
// before.
void ListupICCFileByName(HWND page, void* ignored, uint32_t version);

}  // namespace pdf_settings
