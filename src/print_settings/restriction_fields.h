// The field table of the administrator's own values.
#pragma once

#include <tuple>

#include "print_settings/PSAdmin.h"
#include "print_settings/field.h"

namespace Corvanta::Vantrix::PrintSettings {

template <>
inline constexpr auto kFields<Administrator::Restriction> = std::tuple{
    field("PSFile", &Administrator::Restriction::PSFile, 0),
    field("PDFFileName", &Administrator::Restriction::PDFFileName, 0),
    field("NoSettingTabs", &Administrator::Restriction::NoSettingTabs, 0),
    field("OutputFolder", &Administrator::Restriction::OutputFolder, 0),
};

}  // namespace Corvanta::Vantrix::PrintSettings
