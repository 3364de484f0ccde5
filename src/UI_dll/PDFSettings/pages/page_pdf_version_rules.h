// The rules of the PDF version page: what a version needs, which profiles fit it, how margins are written.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "print_settings/pdf_version.h"

namespace pdf_settings {

using Corvanta::Vantrix::PrintSettings::is_press_standard;
using Corvanta::Vantrix::PrintSettings::is_standard;
using Corvanta::Vantrix::PrintSettings::kVersionOrder;

// Whether a profile with that colour space and device class (values of its header) can be chosen for the
// version.
[[nodiscard]] bool is_profile_listed(uint32_t version, uint32_t colour_space, uint32_t device_class) noexcept;

inline constexpr float kMostMargin = 3276.7f;  // millimetres

// The shortest text that is read as the same number.
[[nodiscard]] std::wstring margin_text(float millimetres);

// A margin of at least 0, in any way that plain_length() reads. Nothing when the text is anything else or the
// margin is above `kMostMargin`.
[[nodiscard]] std::optional<float> find_margin(std::wstring_view text);

}  // namespace pdf_settings
