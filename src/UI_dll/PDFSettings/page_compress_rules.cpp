#include "UI_dll/PDFSettings/page_compress_rules.h"

namespace pdf_settings {

namespace {

constexpr uint32_t kNoSampling = 0;
constexpr uint32_t kAutomatic = 0;  // JPEG or lossless, whichever suits the image
constexpr uint32_t kJpeg = 1;

}  // namespace

ImageUse use_of_image(const Corvanta::Vantrix::PrintSettings::CompressImage_impl& image, bool is_mono,
                      bool remains) noexcept {
    const bool jpeg = image.CompressionMethod == kAutomatic || image.CompressionMethod == kJpeg;
    return {remains, remains && !is_mono && jpeg, remains && image.DownSamplingMethod != kNoSampling};
}

}  // namespace pdf_settings
