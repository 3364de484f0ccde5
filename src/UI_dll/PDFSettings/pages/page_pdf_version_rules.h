// The rules of the PDF version page: what a version needs, which profiles fit it, how margins are written.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pdf_settings {

// The version codes in the order of the page's list.
inline constexpr std::array<uint32_t, 13> kVersionOrder = {0, 1, 2, 3, 4, 5, 11, 6, 7, 8, 9, 10, 12};

// PDF/A and PDF/X: these need a colour profile and allow no protection.
[[nodiscard]] constexpr bool is_standard(uint32_t version) noexcept {
    return version >= 5 && version <= 11;
}
// PDF/X: these need an output condition, too, and have page boxes.
[[nodiscard]] constexpr bool is_press_standard(uint32_t version) noexcept {
    return version >= 6 && version <= 10;
}

// Whether a profile with that colour space and device class (values of its header) can be chosen for the
// version.
[[nodiscard]] bool is_profile_listed(uint32_t version, uint32_t colour_space, uint32_t device_class) noexcept;

inline constexpr float kMostMargin = 3276.7f;  // millimetres

// The shortest text that is read as the same number.
[[nodiscard]] std::wstring margin_text(float millimetres);

// A margin of at least 0; the decimal sign is a point or a comma. Nothing when the text is anything else or
// the margin is above `kMostMargin`.
[[nodiscard]] std::optional<float> find_margin(std::wstring_view text);

}  // namespace pdf_settings
