#include "print_settings/printer_setting.h"

#include "common/qk/paths.h"
#include "common/qk/trace.h"
#include "common/rwPDFSet_functions.h"

namespace Corvanta::Vantrix::PrintSettings {

PrinterSetting load_printer_setting(const std::wstring& name, PrintSettingsAdmin& settings) {
    if (name.empty())
        return PrinterSetting::kNone;
    const std::wstring path = SettingPathOf(name);
    if (!qk::is_file(path))
        return PrinterSetting::kMissing;
    TRACE("sd2");
    return settings.Load(path) ? PrinterSetting::kLoaded : PrinterSetting::kBad;
}

}  // namespace Corvanta::Vantrix::PrintSettings
