// The saved print setting of a printer as a DEVMODE.
#pragma once

#include <windows.h>

#include <vector>

#include "lib/forms.h"
#include "print_settings/PrintSettings.h"

// Copies paper, orientation, resolution and scale of the printer's setting, with the administrator's values
// on top, into `dm`. A setting that is missing or cannot be read leaves it as it is.
void SetPSToDEVMODE(HANDLE printer, DEVMODEW& dm);

// The same of a setting already loaded. `forms` name a paper whose setting names none.
void copy_setting(const Corvanta::Vantrix::PrintSettings::PrintSettings& settings,
                  const std::vector<FormRecord>& forms, DEVMODEW& dm);
