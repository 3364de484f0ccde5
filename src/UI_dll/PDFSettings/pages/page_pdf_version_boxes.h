// Trim box and bleed box on the PDF version page: margins in millimetres. The boxes' check boxes belong to
// the page's table.
#pragma once

#include <windows.h>

#include <vector>

#include "print_settings/PrintSettings.h"

namespace pdf_settings {

void load_boxes(HWND page, const Corvanta::Vantrix::PrintSettings::PDFVersion_impl& section);

// Text that is no margin leaves its field, and so does one that was not touched.
void store_boxes(HWND page, Corvanta::Vantrix::PrintSettings::PDFVersion_impl& section);

// Greys both boxes, or offers them and greys the margins of one that is not used.
void enable_boxes(HWND page, bool offered);

// The edits of the used boxes that hold no margin, of what was touched.
[[nodiscard]] std::vector<int> find_bad_margins(HWND page);

// The control to put the boxes right with when the trim box is not inside the bleed box: the first bleed
// margin that is too large, where it can be typed in, else the trim margin of that edge, else what makes them
// typeable.
[[nodiscard]] int box_to_mend(HWND page, const Corvanta::Vantrix::PrintSettings::PDFVersion_impl& section);

}  // namespace pdf_settings
