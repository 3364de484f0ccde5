// What can be wrong with a template.
#pragma once

#include <map>
#include <string>

#include "companions/template_check/findings.h"
#include "companions/template_check/measure.h"

namespace template_check {

using StringTable = std::map<unsigned, std::wstring>;

// For who works with the keyboard: reports mnemonics that are missing, shared or taken by the sheet
// (`sheet_mnemonic`, 0 for none), controls without a label directly before them, two of one group box that
// go by one name, tab stops and radio groups that are not marked, default buttons beside the sheet's or none
// of a box, and a tab order that is not the order of reading: rows from the top, each from the left, a group
// box before what follows it.
void check_keyboard(unsigned template_id, const DialogTemplate& page, wchar_t sheet_mnemonic,
                    Findings& findings);

// Reports controls that overlap, leave the page or its margins or cross a group box, and texts that do not
// fit, those included that the page takes from the strings.
void check_layout(unsigned template_id, const DialogTemplate& page, const StringTable& strings,
                  const Measure& measure, Findings& findings);

// Tries the checks on templates with known faults: whether every fault is found, and a template that ends
// too early is refused; tells what is not.
[[nodiscard]] bool run_self_test();

}  // namespace template_check
