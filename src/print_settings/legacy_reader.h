// The older binary settings, `.printSetting3` and `.printSetting2`.
#pragma once

#include <string_view>

#include "print_settings/PrintSettings.h"

namespace Corvanta::Vantrix::PrintSettings {

// Checks the bytes of a legacy setting of the kind kLegacyFirst or kLegacyChunked: kUnreadable, traced, when
// they are damaged. The records inside are written by programs that kept their layout to themselves, so the
// values of a sound file cannot be taken over: kLegacyPayload. Never kLoaded, and no setting is changed.
[[nodiscard]] LoadResult read_legacy(std::string_view bytes, SettingKind kind);

}  // namespace Corvanta::Vantrix::PrintSettings
