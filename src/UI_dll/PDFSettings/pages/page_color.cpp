#include "UI_dll/PDFSettings/pages/exchange.h"
#include "UI_dll/PDFSettings/pages/page.h"
#include "UI_dll/PDFSettings/pages/page_pdf_version.h"
#include "common/icc_folder.h"
#include "common/qk/trace.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

using Corvanta::Vantrix::PrintSettings::Color_impl;

constexpr Number kImageThreshold = {IDC_IMAGE_THRESHOLD, &Color_impl::MonoImageThreshold,
                                    IDC_IMAGE_THRESHOLD_SPIN, true};
constexpr Number kTextThreshold = {IDC_TEXT_THRESHOLD, &Color_impl::MonoTextAndPassThreshold,
                                   IDC_TEXT_THRESHOLD_SPIN, true};

constexpr std::array kModes = {IDC_COLOR_MODE_COLOR, IDC_COLOR_MODE_GRAY, IDC_COLOR_MODE_MONO};

constexpr std::tuple kControls = {
    DropList{IDC_GRAY_METHOD, &Color_impl::GrayDecreasingMethod},
    DropList{IDC_MONO_METHOD, &Color_impl::MonoDecreasingMethod},
    DropList{IDC_MONO_FILTER, &Color_impl::MonoImageFilter},
    kImageThreshold,
    kTextThreshold,
    Radios{kModes, &Color_impl::ColorMode},
    CheckBox{IDC_BLACK_TO_K, &Color_impl::BlackToK100},
};

// Each with what explains it. Grey output uses the conversion to grey; black and white output starts from
// grey and uses the rest as well; colour output uses none of them. Whether the threshold of images is offered
// is a matter of the method alone.
constexpr std::array kGrayControls = {IDC_GRAY_METHOD_LABEL, IDC_GRAY_METHOD};
constexpr std::array kMonoControls = {
    IDC_MONO_METHOD_LABEL,   IDC_MONO_METHOD,          IDC_TEXT_THRESHOLD_LABEL, IDC_TEXT_THRESHOLD,
    IDC_TEXT_THRESHOLD_SPIN, IDC_TEXT_THRESHOLD_RANGE, IDC_MONO_FILTER_LABEL,    IDC_MONO_FILTER};
constexpr std::array kImageThresholdControls = {IDC_IMAGE_THRESHOLD_LABEL, IDC_IMAGE_THRESHOLD,
                                                IDC_IMAGE_THRESHOLD_SPIN, IDC_IMAGE_THRESHOLD_RANGE};
constexpr std::array kBlackControls = {IDC_BLACK_TO_K, IDC_BLACK_TO_K_GROUP};

void enable_conversions(HWND page) {
    const bool mono = is_checked(page, IDC_COLOR_MODE_MONO);
    enable(page, kGrayControls, mono || is_checked(page, IDC_COLOR_MODE_GRAY));
    enable(page, kMonoControls, mono);
    // Dithering has no use for it.
    enable(page, kImageThresholdControls, selected(page, IDC_MONO_METHOD) != int{Color_impl::kDither});
}

// Pure K is a matter of the output condition: the versions that carry one, and one that prints in CMYK.
bool can_convert_black(HWND page) {
    const auto version = read_PDFVersion(page);
    return version.Version >= ps::kPDFA1b && version.Version <= ps::kPDF20 &&
           icc::is_cmyk_profile(version.ICCFileName);
}

void dlg_enable_Color(HWND page) {
    TRACE("dlg_enable_Color");
    enable_conversions(page);
    enable(page, kBlackControls, can_convert_black(page));
}

void show_Color(HWND page, const Setting& setting) {
    load_controls(page, *setting.color(), kControls);
}

void dlg_init_Color(HWND page) {
    TRACE("dlg_init_Color");
    show_Color(page, edited_setting());
}

// Shows a threshold as it will be stored.
void settle(HWND page, const auto& threshold) {
    Color_impl shown = *loaded_setting().color();
    threshold.store(page, shown);
    threshold.load(page, shown);
}

void command(HWND page, int control, int notification) {
    switch (control) {
        case IDC_COLOR_MODE_COLOR:
        case IDC_COLOR_MODE_GRAY:
        case IDC_COLOR_MODE_MONO:
            if (notification == BN_CLICKED)
                enable_conversions(page);
            break;
        case IDC_MONO_METHOD:
            if (notification == CBN_SELCHANGE)
                enable_conversions(page);
            break;
        case IDC_IMAGE_THRESHOLD:
            if (notification == EN_KILLFOCUS)
                settle(page, kImageThreshold);
            break;
        case IDC_TEXT_THRESHOLD:
            if (notification == EN_KILLFOCUS)
                settle(page, kTextThreshold);
            break;
        default:
            break;
    }
}

// A greyed check box keeps its mark: another profile may bring it back.
void dlg_apply_Color(HWND page) {
    TRACE("dlg_apply_Color");
    Color_impl read = *loaded_setting().color();
    store_controls(page, read, kControls);
    *edited_setting().color() = read;
}

}  // namespace

const PageOperations kColor = {.index = kColorPage,
                               .template_id = IDD_COLOR,
                               .title_id = IDS_COLOR_TAB,
                               .init = &dlg_init_Color,
                               .show = &show_Color,
                               .command = &command,
                               .set_active = &dlg_enable_Color,
                               .apply = &dlg_apply_Color};

}  // namespace pdf_settings
