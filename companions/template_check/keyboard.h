// What can be wrong with a template for who works with the keyboard.
#pragma once

#include "companions/template_check/findings.h"

namespace template_check {

// Reports mnemonics that are missing, shared or taken by the sheet (`sheet_mnemonic`, 0 for none), controls
// without a label directly before them, tab stops and radio groups that are not marked, and a tab order that
// is not the order of reading: rows from the top, each from the left, a group box before what follows it.
void check_keyboard(unsigned template_id, const DialogTemplate& page, wchar_t sheet_mnemonic,
                    Findings& findings);

}  // namespace template_check
