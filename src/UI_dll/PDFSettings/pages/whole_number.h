// Whole numbers that a person types.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace pdf_settings {

// The number that `text` is: one to nine decimal digits and nothing else.
[[nodiscard]] constexpr std::optional<uint32_t> whole_number(std::wstring_view text) noexcept {
    if (text.empty() || text.size() > 9)
        return std::nullopt;
    uint32_t number = 0;
    for (const wchar_t digit : text) {
        if (digit < L'0' || digit > L'9')
            return std::nullopt;
        number = number * 10 + static_cast<uint32_t>(digit - L'0');
    }
    return number;
}

// The same from `low` to `high`.
[[nodiscard]] constexpr std::optional<uint32_t> whole_number(std::wstring_view text, uint32_t low,
                                                             uint32_t high) noexcept {
    const auto number = whole_number(text);
    return number && *number >= low && *number <= high ? number : std::nullopt;
}

}  // namespace pdf_settings
