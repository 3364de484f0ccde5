// What a setting may ask for and the renderer does not do.
#include <cstdint>

#include "companions/render/engine_arguments.h"
#include "companions/render/page_work.h"

namespace companions::render {

std::vector<std::string> unsupported_wishes(const ps::PrintSettings& settings) {
    const ps::PrintSettings defaults;
    const uint32_t version = settings.pdfVersion()->Version;
    const auto& mark = *settings.watermark();
    const auto& compression = *settings.compression();
    constexpr auto kRunLength = ps::CompressImage_impl::kRunLength;
    const bool packed = compression.HighCompress;
    const bool has_mark = mark.Style != ps::Watermark_impl::kNoMark;
    const struct {
        bool asked;
        const char* wish;
    } wishes[] = {
        {compression.Color.CompressionMethod() == kRunLength ||
             compression.Gray.CompressionMethod() == kRunLength,
         "run length for colour and grey images (ZIP is used)"},
        {packed && (compression.ASCIIFormat || compatibility_level(version) < "1.5"),
         "high compression in ASCII format or before PDF 1.5"},
        {has_mark && mark.VisibleInPrint != mark.VisibleInDisplay && !allows_layers(version),
         "a watermark for the screen or the printer only in this version (it is always visible)"},
        {settings.general()->URLLink && ps::is_press_standard(version), "links in PDF/X, which has none"},
        {settings.color()->BlackToK100 && !ps::is_standard(version), "pure black without a CMYK profile"},
        {!(settings.notification() == defaults.notification()), "messages to other programs"},
    };
    std::vector<std::string> asked;
    for (const auto& row : wishes)
        if (row.asked)
            asked.emplace_back(row.wish);
    return asked;
}

}  // namespace companions::render
