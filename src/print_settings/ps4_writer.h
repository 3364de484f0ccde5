// Makes the JSON document of a setting.
#pragma once

#include "print_settings/PrintSettings_impl.h"
#include "print_settings/json.h"

namespace Corvanta::Vantrix::PrintSettings {

// Throws std::overflow_error for a value that is not finite.
[[nodiscard]] picojson::value write_setting(const PrintSettings_impl& setting);

}  // namespace Corvanta::Vantrix::PrintSettings
