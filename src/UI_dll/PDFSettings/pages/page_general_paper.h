// The paper on the General page: a form of the printer, or a size of one's own.
#pragma once

#include <windows.h>

#include <memory>

#include "UI_dll/PDFSettings/pages/dlg_item.h"
#include "lib/forms.h"
#include "print_settings/PrintSettings.h"

namespace pdf_settings {

// What these controls keep while the sheet is open.
struct PaperState {
    FormRecords forms;  // in list order; the items of the paper list point at them
    std::shared_ptr<DlgRadioGroup> type;
};

// Lists the forms of the sheet's printer and prepares the edits, once for each sheet.
void init_paper(HWND page, PaperState& state);

// Shows a section's paper; after init_paper().
void load_paper(HWND page, const Corvanta::Vantrix::PrintSettings::General_impl& section, PaperState& state);

// Another form was selected: its size takes the place of the one in the edits.
void show_form_size(HWND page);

// One of the two radio buttons was clicked: a form's controls are offered, or those of a size.
void click_paper_type(HWND page, int control, PaperState& state);

// Whether the edits hold lengths in range; if not, it has said so, and shows the edited setting's again.
[[nodiscard]] bool check_paper(HWND page, const Corvanta::Vantrix::PrintSettings::General_impl& edited);

// Stores what was touched. The number of a form that this computer does not have, or has for another one,
// stays until a paper is chosen.
void store_paper(HWND page, Corvanta::Vantrix::PrintSettings::General_impl& section);

// Stores the selected form's name in the edited setting, where there is one.
void store_form_name(HWND page);

}  // namespace pdf_settings
