#include "UI_dll/PDFSettings/pages/page_pdf_version_rules.h"

#include "UI_dll/PDFSettings/pages/page_general_rules.h"
#include "common/icc_folder.h"
#include "common/qk/text.h"

namespace pdf_settings {

bool is_profile_listed(uint32_t version, uint32_t colour_space, uint32_t device_class) noexcept {
    const bool archive = ps::is_archive(version);
    const bool takes_rgb = !ps::is_cmyk_only(version);
    const bool fits = colour_space == icc::kCMYK || (takes_rgb && colour_space == icc::kRGB);
    return is_standard(version) && fits && (archive || device_class == icc::kOutputDevice);
}

std::wstring margin_text(float millimetres) {
    constexpr int kMostDecimals = 6;
    std::wstring text;
    for (int decimals = 0; decimals <= kMostDecimals; ++decimals) {
        text = qk::fixed_text(millimetres, decimals);
        if (static_cast<float>(qk::find_number(text).value_or(-1)) == millimetres)
            break;
    }
    return text;
}

std::optional<float> find_margin(std::wstring_view text) {
    const auto margin = find_plain_number(plain_length(text));
    return margin && *margin <= kMostMargin ? std::optional(static_cast<float>(*margin)) : std::nullopt;
}

}  // namespace pdf_settings
