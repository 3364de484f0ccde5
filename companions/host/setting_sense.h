// What is wrong with a setting that can be read: what it names is not there, or its values do not go
// together.
#pragma once

#include "companions/host/setting_check.h"
#include "print_settings/PrintSettings.h"

namespace host {

struct JsonText;

// Adds what is found. Of an administrator's file only what stands there counts (`given`; null for a user's),
// since the rest is the user's affair.
void check_sense(const ps::PrintSettings& settings, const JsonText* given, SettingFindings& findings);

}  // namespace host
