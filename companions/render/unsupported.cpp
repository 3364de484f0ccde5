// What a setting may ask for and the renderer does not do.
#include <cstdint>

#include "companions/render/engine_arguments.h"

namespace companions::render {

namespace {

using Corvanta::Vantrix::PrintSettings::Color;
using Corvanta::Vantrix::PrintSettings::CompressImage;
using Corvanta::Vantrix::PrintSettings::PrintSettings;

bool same_compression(const CompressImage& a, const CompressImage& b) {
    return a.CompressionMethod() == b.CompressionMethod() && a.JpegQuality() == b.JpegQuality() &&
           a.MonoCompressionMethod() == b.MonoCompressionMethod();
}

bool asks_for_image_compression(const PrintSettings& settings, const PrintSettings& defaults) {
    const auto& asked = *settings.compression();
    const auto& usual = *defaults.compression();
    return asked.HighCompress || !same_compression(asked.Color, usual.Color) ||
           !same_compression(asked.Gray, usual.Gray) || !same_compression(asked.Mono, usual.Mono);
}

bool asks_for_colour_work(const PrintSettings& settings, const PrintSettings& defaults) {
    constexpr uint32_t kMonochrome = 2;
    Color rest = settings.color();
    if (rest->ColorMode < kMonochrome)
        rest->ColorMode = 0;  // colour and grey are done
    return !(rest == defaults.color());
}

}  // namespace

std::vector<std::string> unsupported_wishes(const PrintSettings& settings) {
    const PrintSettings defaults;
    const uint32_t version = settings.pdfVersion()->Version;
    const bool protects = wants_password(settings);
    const struct {
        bool asked;
        const char* wish;
    } wishes[] = {
        {version >= 5 && version <= 11, "PDF/A and PDF/X (a plain PDF is written)"},
        {settings.watermark()->Style != 0, "the watermark"},
        {!(settings.openAction() == defaults.openAction()), "the way a viewer opens the PDF"},
        {!(settings.font() == defaults.font()), "the choice of embedded fonts (all are embedded)"},
        {asks_for_image_compression(settings, defaults), "the kind and quality of image compression"},
        {asks_for_colour_work(settings, defaults), "colour conversion other than to grey"},
        {settings.general()->NoOutputBlankPage, "dropping blank pages"},
        {settings.general()->URLLink, "links from URLs in the text"},
        {!(settings.notification() == defaults.notification()), "messages to other programs"},
        {protects && version != 0, "encryption other than RC4 with 128 bits"},
    };
    std::vector<std::string> asked;
    for (const auto& row : wishes)
        if (row.asked)
            asked.emplace_back(row.wish);
    return asked;
}

}  // namespace companions::render
