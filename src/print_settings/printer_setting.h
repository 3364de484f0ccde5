// The setting that a printer's jobs use.
#pragma once

#include <string>

#include "print_settings/PSAdmin.h"

namespace Corvanta::Vantrix::PrintSettings {

enum class PrinterSetting {
    kNone,     // the name is empty
    kMissing,  // the named file is not there
    kBad,      // it, or the administrator's file, cannot be loaded
    kLoaded
};

// Loads the setting of that name (GetSettingFileNameFromFD), a full path or a file of the setting folders,
// with the administrator's values on top. Unless the result is kLoaded, `settings` is not to be used.
[[nodiscard]] PrinterSetting load_printer_setting(const std::wstring& name, PrintSettingsAdmin& settings);

}  // namespace Corvanta::Vantrix::PrintSettings
