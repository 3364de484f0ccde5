#include <cstdint>

#include "UI_dll/PDFSettings/messages.h"
#include "UI_dll/PDFSettings/pages/exchange.h"
#include "UI_dll/PDFSettings/pages/page.h"
#include "common/qk/trace.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

using Corvanta::Vantrix::PrintSettings::Color_impl;
using Corvanta::Vantrix::PrintSettings::CompressImage_impl;
using Corvanta::Vantrix::PrintSettings::Compression_impl;

constexpr auto kTable = std::tuple{
    CheckBox{IDC_CMP_TEXT, &Compression_impl::TextAndLineArt},
    CheckBox{IDC_CMP_HIGH, &Compression_impl::HighCompress},
    CheckBox{IDC_CMP_ASCII, &Compression_impl::ASCIIFormat},
};

constexpr auto threshold_of(int base) {
    return Number{base + CMP_THRESHOLD, &CompressImage_impl::ResolutionThreshold};
}
constexpr auto target_of(int base) {
    return Number{base + CMP_TARGET, &CompressImage_impl::ResolutionTarget};
}
constexpr auto quality_of(int base) {
    return Number{base + CMP_QUALITY, &CompressImage_impl::JpegQuality, base + CMP_QUALITY_SPIN};
}

// The rows of one kind of image, whose controls start at `base`.
constexpr auto resolution_rows(int base) {
    return std::tuple{
        DropList{base + CMP_SAMPLING, &CompressImage_impl::DownSamplingMethod},
        threshold_of(base),
        target_of(base),
    };
}
constexpr auto colour_rows(int base) {
    return std::tuple_cat(
        std::tuple{DropList{base + CMP_METHOD, &CompressImage_impl::CompressionMethod}, quality_of(base)},
        resolution_rows(base));
}
constexpr auto kColour = colour_rows(IDC_CMP_COLOUR);
constexpr auto kGrey = colour_rows(IDC_CMP_GREY);
constexpr auto kMono = std::tuple_cat(
    std::tuple{DropList{IDC_CMP_MONO + CMP_METHOD, &CompressImage_impl::MonoCompressionMethod}},
    resolution_rows(IDC_CMP_MONO));

// The kinds of image by the greatest colour mode that leaves such images in the document.
struct ImageControls {
    int base;
    uint32_t last_mode;
};
constexpr ImageControls kImages[] = {{IDC_CMP_COLOUR, Color_impl::kColour},
                                     {IDC_CMP_GREY, Color_impl::kGrey},
                                     {IDC_CMP_MONO, Color_impl::kMonochrome}};

// The colour mode as the Colour page shows it, applied or not.
uint32_t read_color_mode() {
    const HWND page = dialog_state().sheet.pages[kColorPage];
    if (is_checked(page, IDC_COLOR_MODE_COLOR))
        return Color_impl::kColour;
    if (is_checked(page, IDC_COLOR_MODE_GRAY))
        return Color_impl::kGrey;
    if (is_checked(page, IDC_COLOR_MODE_MONO))
        return Color_impl::kMonochrome;
    return edited_setting().color()->ColorMode;
}

// Which values of one kind of image have an effect.
struct ImageUse {
    bool any;
    bool quality;      // JPEG quality
    bool resolutions;  // threshold and target
};

ImageUse image_use(HWND page, const ImageControls& image) {
    const bool any = read_color_mode() <= image.last_mode;  // the document has such images
    // What is chosen automatically is JPEG, too, where it suits the image.
    const bool jpeg = image.base != IDC_CMP_MONO &&
                      selected(page, image.base + CMP_METHOD) <= int{CompressImage_impl::kJpeg};
    return {any, any && jpeg,
            any && selected(page, image.base + CMP_SAMPLING) != int{CompressImage_impl::kNoSampling}};
}

void enable_image(HWND page, const ImageControls& image) {
    const ImageUse use = image_use(page, image);
    for (const int control : {CMP_GROUP, CMP_METHOD, CMP_METHOD_LABEL, CMP_SAMPLING, CMP_SAMPLING_LABEL})
        enable(page, image.base + control, use.any);
    for (const int control : {CMP_QUALITY, CMP_QUALITY_SPIN, CMP_QUALITY_LABEL, CMP_QUALITY_UNIT})
        enable(page, image.base + control, use.quality);
    for (const int control : {CMP_THRESHOLD, CMP_THRESHOLD_LABEL, CMP_THRESHOLD_UNIT, CMP_TARGET,
                              CMP_TARGET_LABEL, CMP_TARGET_UNIT})
        enable(page, image.base + control, use.resolutions);
}

void dlg_enable_Compress(HWND page) {
    TRACE("dlg_enable_Compress");
    for (const ImageControls& image : kImages)
        enable_image(page, image);
    SetDlgItemTextW(page, IDC_CMP_NOTE, dialog_text(IDS_CMP_NOTE_COLOUR + read_color_mode()).c_str());
}

void show_Compress(HWND page, const Setting& setting) {
    const Compression_impl& section = *setting.compression();
    load_controls(page, section, kTable);
    load_controls(page, *section.Color, kColour);
    load_controls(page, *section.Gray, kGrey);
    load_controls(page, *section.Mono, kMono);
    dlg_enable_Compress(page);
}

void dlg_init_Compress(HWND page) {
    TRACE("dlg_init_Compress");
    show_Compress(page, edited_setting());
}

// The colour mode may have changed.
void dlg_setactive_Compress(HWND page) {
    TRACE("dlg_setactive_Compress");
    dlg_enable_Compress(page);
}

void dlg_command_Compress(HWND page, int control, int notification) {
    TRACE("dlg_command_Compress");
    if (notification != CBN_SELCHANGE)
        return;
    for (const ImageControls& image : kImages)
        if (control == image.base + CMP_METHOD || control == image.base + CMP_SAMPLING)
            enable_image(page, image);
}

bool check_image(HWND page, const ImageControls& image) {
    const ImageUse use = image_use(page, image);
    if (use.quality && !quality_of(image.base).find(page) &&
        !refuse(page, image.base + CMP_QUALITY, IDS_CMP_BAD_QUALITY))
        return false;
    if (!use.resolutions)
        return true;
    const auto threshold = threshold_of(image.base).find(page);
    const auto target = target_of(image.base).find(page);
    if ((!threshold && !refuse(page, image.base + CMP_THRESHOLD, IDS_CMP_BAD_RESOLUTION)) ||
        (!target && !refuse(page, image.base + CMP_TARGET, IDS_CMP_BAD_RESOLUTION)))
        return false;
    if (!threshold || !target)
        return true;  // both are told
    const std::array together = {image.base + CMP_SAMPLING, image.base + CMP_THRESHOLD,
                                 image.base + CMP_TARGET};
    return *target <= *threshold || !is_touched(page, together) ||
           refuse(page, image.base + CMP_TARGET, IDS_CMP_TARGET_ABOVE);
}

bool dlg_killactive_Compress(HWND page) {
    TRACE("dlg_killactive_Compress");
    for (const ImageControls& image : kImages)
        if (!check_image(page, image))
            return false;
    return true;
}

void dlg_apply_Compress(HWND page) {
    TRACE("dlg_apply_Compress");
    Compression_impl read = *loaded_setting().compression();
    store_controls(page, read, kTable);
    store_controls(page, *read.Color, kColour);
    store_controls(page, *read.Gray, kGrey);
    store_controls(page, *read.Mono, kMono);
    *edited_setting().compression() = read;
}

}  // namespace

const PageOperations kCompress = {.index = kCompressPage,
                                  .template_id = IDD_COMPRESS,
                                  .title_id = IDS_COMPRESS_TAB,
                                  .init = &dlg_init_Compress,
                                  .show = &show_Compress,
                                  .command = &dlg_command_Compress,
                                  .set_active = &dlg_setactive_Compress,
                                  .check = &dlg_killactive_Compress,
                                  .apply = &dlg_apply_Compress};

}  // namespace pdf_settings
