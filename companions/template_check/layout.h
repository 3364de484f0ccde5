// What can be wrong with the places of a template's controls and the room for their texts.
#pragma once

#include <map>
#include <string>

#include "companions/template_check/findings.h"
#include "companions/template_check/measure.h"

namespace template_check {

using StringTable = std::map<unsigned, std::wstring>;

// Reports controls that overlap, leave the page or its margins or cross a group box, and texts that do not
// fit, those included that the page takes from the strings.
void check_layout(unsigned template_id, const DialogTemplate& page, const StringTable& strings,
                  const Measure& measure, Findings& findings);

}  // namespace template_check
