// The rules of the Compression page: which values a choice uses.
#pragma once

#include "print_settings/compress_image.h"

namespace pdf_settings {

// Which values of one kind of image have an effect.
struct ImageUse {
    bool any;
    bool quality;      // JPEG quality
    bool resolutions;  // threshold and target
};

// `remains`: the colour mode leaves images of that kind in the document.
[[nodiscard]] ImageUse use_of_image(const Corvanta::Vantrix::PrintSettings::CompressImage_impl& image,
                                    bool is_mono, bool remains) noexcept;

}  // namespace pdf_settings
