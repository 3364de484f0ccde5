#include "UI_dll/PDFSettings/page_pdf_version_rules.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "common/icc_profile.h"

namespace pdf_settings {

bool is_profile_listed(uint32_t version, uint32_t colour_space, uint32_t device_class) noexcept {
    const bool archive = version == 5 || version == 11;
    const bool takes_rgb = archive || (version >= 8 && version <= 10);
    const bool fits = colour_space == icc::kCMYK || (takes_rgb && colour_space == icc::kRGB);
    return is_standard(version) && fits && (archive || device_class == icc::kOutputDevice);
}

std::wstring margin_text(float millimetres) {
    char digits[64];
    const auto end =
        std::to_chars(std::begin(digits), std::end(digits), millimetres, std::chars_format::fixed);
    return std::wstring(std::begin(digits), end.ptr);
}

std::optional<float> find_margin(std::wstring_view text) noexcept {
    const size_t first = text.find_first_not_of(L' ');
    if (first == std::wstring_view::npos)
        return std::nullopt;
    text = text.substr(first, text.find_last_not_of(L' ') - first + 1);
    char digits[64];
    if (text.size() > std::size(digits) || text.find_first_not_of(L"0123456789.,") != std::wstring_view::npos)
        return std::nullopt;
    std::ranges::transform(text, digits,
                           [](wchar_t unit) { return unit == L',' ? '.' : static_cast<char>(unit); });
    float margin = 0;
    const auto [end, error] = std::from_chars(digits, digits + text.size(), margin, std::chars_format::fixed);
    if (error != std::errc{} || end != digits + text.size() || margin > kMostMargin)
        return std::nullopt;
    return margin;
}

}  // namespace pdf_settings
