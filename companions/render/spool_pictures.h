// Pictures of a spooled document. Windows spools grey pictures as coloured ones, and what shall be black and
// white has to be made so before the engine compresses it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "print_settings/PrintSettings.h"

namespace companions::render {

// What becomes of the pictures.
struct PictureWork {
    enum class To { kAsTheyAre, kGrey, kBlackAndWhite };
    To to = To::kAsTheyAre;  // pictures without colours become grey ones all the same
    uint32_t method = 0;     // Color_impl::GrayDecreasingMethod
    bool dithers = false;
    uint8_t threshold = 128;
    uint32_t filter = 0;  // Color_impl::MonoImageFilter
};

// Whether the setting needs that work, and which.
[[nodiscard]] bool wants_picture_work(const ps::PrintSettings& settings, PictureWork& work);

// The document with the pictures changed that stand in it as Wine's PostScript driver writes them; others
// stay.
[[nodiscard]] std::string change_pictures(std::string_view document, const PictureWork& work);

// PostScript for the start of the document that does the like to the colours of text and lines.
[[nodiscard]] std::string colour_work(const ps::PrintSettings& settings);

// A grey picture, a byte a pixel.
struct GreyPicture {
    size_t width = 0;
    size_t height = 0;
    std::vector<uint8_t> pixels;
};

// Makes every pixel 0 or 255.
void make_black_and_white(GreyPicture& picture, const PictureWork& work);

}  // namespace companions::render
