// A print setting in a few lines, for who chooses one.
#pragma once

#include <string>

#include "UI_dll/PDFSettings/dialog_state.h"
#include "UI_dll/PDFSettings/list_rules.h"

namespace pdf_settings {

// Paper, PDF version, colour, protection, place of the PDF and watermark, a line each in the dialog's
// language and with the words of the pages. Of a row that is not the user's to change it says why; of one
// that cannot be read, nothing else.
[[nodiscard]] std::wstring summary_of(const Setting& setting, const SettingEntry& entry);

}  // namespace pdf_settings
