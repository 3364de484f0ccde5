// What other pages read of the General page.
#pragma once

#include "print_settings/PrintSettings.h"

namespace pdf_settings {

// The General section as the controls of the open sheet stand, applied or not; the edited setting's where no
// sheet is open.
[[nodiscard]] Corvanta::Vantrix::PrintSettings::General_impl read_General();

}  // namespace pdf_settings
