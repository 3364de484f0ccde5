// The field table of every section. The order is that of comparing and describing.
#pragma once

#include <tuple>

#include "print_settings/PrintSettings_impl.h"
#include "print_settings/field.h"
#include "resources/ids.h"

namespace Corvanta::Vantrix::PrintSettings {

template <>
inline constexpr UINT kName<General_impl> = IDS_PS_GENERAL;
template <>
inline constexpr auto kFields<General_impl> = std::tuple{
    field("Linearize", &General_impl::Linearize, IDS_PS_LINEARIZE),
    field("OpenPDF", &General_impl::OpenPDF, IDS_PS_OPEN_PDF).values(IDS_PS_OPEN_PDF_0, 4),
    field("WhenSameName", &General_impl::WhenSameName, IDS_PS_SAME_NAME).values(IDS_PS_SAME_NAME_0, 4),
    field("NoOutputBlankPage", &General_impl::NoOutputBlankPage, IDS_PS_NO_BLANK_PAGE),
    field("URLLink", &General_impl::URLLink, IDS_PS_URL_LINK),
    field("SaveStyle", &General_impl::SaveStyle, IDS_PS_SAVE_STYLE).values(IDS_PS_SAVE_STYLE_0, 2),
    field("OutputFolder", &General_impl::OutputFolder, IDS_PS_OUTPUT_FOLDER).typed(512),
    field("PaperType", &General_impl::PaperType, IDS_PS_PAPER_TYPE).values(IDS_PS_PAPER_TYPE_0, 2),
    field("PaperName", &General_impl::PaperName, IDS_PS_PAPER_NAME, range(1, 32767)).as(Shown::kPaper),
    field("PaperWidth", &General_impl::PaperWidth, IDS_PS_PAPER_WIDTH, range(25.4, 3276.7)),
    field("PaperHeight", &General_impl::PaperHeight, IDS_PS_PAPER_HEIGHT, range(25.4, 3276.7)),
    field("PaperOrientation", &General_impl::PaperOrientation, IDS_PS_ORIENTATION)
        .values(IDS_PS_ORIENTATION_0, 2),
    field("PaperResolution", &General_impl::PaperResolution, IDS_PS_RESOLUTION, range(72, 3600)),
    field("Scale", &General_impl::Scale, IDS_PS_SCALE, range(10, 400)),
};

// The fields of the record that the kinds of image share; each kind uses some of them.
namespace image_fields {

inline constexpr auto kMonoMethod =
    field("MonoCompressionMethod", &CompressImage_impl::MonoCompressionMethod, IDS_PS_METHOD)
        .values(IDS_CMP_MONO_METHOD_0, 5);
inline constexpr auto kSampling =
    field("DownSamplingMethod", &CompressImage_impl::DownSamplingMethod, IDS_PS_DOWN_SAMPLING)
        .values(IDS_CMP_SAMPLING_0, 4);
inline constexpr auto kMethod =
    field("CompressionMethod", &CompressImage_impl::CompressionMethod, IDS_PS_METHOD)
        .values(IDS_CMP_METHOD_0, 5);
inline constexpr auto kQuality =
    field("JpegQuality", &CompressImage_impl::JpegQuality, IDS_PS_JPEG_QUALITY, low_bits_range(0xFF, 0, 100));
inline constexpr auto kThreshold = field("ResolutionThreshold", &CompressImage_impl::ResolutionThreshold,
                                         IDS_PS_THRESHOLD, range(10, 24000));
inline constexpr auto kTarget =
    field("ResolutionTarget", &CompressImage_impl::ResolutionTarget, IDS_PS_TARGET, range(10, 24000));

}  // namespace image_fields
template <>
inline constexpr auto kFields<CompressImage_impl> =
    std::tuple{image_fields::kMonoMethod, image_fields::kSampling,  image_fields::kMethod,
               image_fields::kQuality,    image_fields::kThreshold, image_fields::kTarget};
inline constexpr auto kColourImageFields =
    std::tuple{image_fields::kSampling, image_fields::kMethod, image_fields::kQuality,
               image_fields::kThreshold, image_fields::kTarget};
template <>
inline constexpr UINT kName<ColorImage_impl> = IDS_PS_COLOUR_IMAGES;
template <>
inline constexpr auto kFields<ColorImage_impl> = kColourImageFields;
template <>
inline constexpr UINT kName<GrayImage_impl> = IDS_PS_GREY_IMAGES;
template <>
inline constexpr auto kFields<GrayImage_impl> = kColourImageFields;
template <>
inline constexpr UINT kName<MonoImage_impl> = IDS_PS_MONO_IMAGES;
template <>
inline constexpr auto kFields<MonoImage_impl> = std::tuple{image_fields::kMonoMethod, image_fields::kSampling,
                                                           image_fields::kThreshold, image_fields::kTarget};

template <>
inline constexpr UINT kName<Compression_impl> = IDS_PS_COMPRESSION;
template <>
inline constexpr auto kFields<Compression_impl> = std::tuple{
    field("ASCIIFormat", &Compression_impl::ASCIIFormat, IDS_PS_ASCII),
    field("TextAndLineArt", &Compression_impl::TextAndLineArt, IDS_PS_TEXT_AND_LINE_ART),
    field("HighCompress", &Compression_impl::HighCompress, IDS_PS_HIGH_COMPRESS),
    section("Color", &Compression_impl::Color),
    section("Gray", &Compression_impl::Gray),
    section("Mono", &Compression_impl::Mono),
};

template <>
inline constexpr UINT kName<Font_impl> = IDS_PS_FONT;
template <>
inline constexpr auto kFields<Font_impl> = std::tuple{
    field("EmbedFontStyle", &Font_impl::EmbedFontStyle, IDS_PS_EMBED_STYLE).values(IDS_FONT_STYLE_0, 2),
    field("WhenFailedToEmbed", &Font_impl::WhenFailedToEmbed, IDS_PS_EMBED_FAILED)
        .values(IDS_FONT_FAILED_0, 2),
    field("EmbedBase14", &Font_impl::EmbedBase14, IDS_PS_EMBED_BASE_14),
    field("Fonts", &Font_impl::Fonts, IDS_PS_FONTS),
};

template <>
inline constexpr UINT kName<Summary_impl> = IDS_PS_SUMMARY;
template <>
inline constexpr auto kFields<Summary_impl> = std::tuple{
    field("Title", &Summary_impl::Title, IDS_PS_TITLE).typed(1000),
    field("Subject", &Summary_impl::Subject, IDS_PS_SUBJECT).typed(1000),
    field("Author", &Summary_impl::Author, IDS_PS_AUTHOR).typed(1000),
    field("Keywords", &Summary_impl::Keywords, IDS_PS_KEYWORDS).typed(1000),
    field("Creator", &Summary_impl::Creator, IDS_PS_CREATOR).typed(1000),
    field("EmbedPSFileName", &Summary_impl::EmbedPSFileName, IDS_PS_EMBED_PS_NAME),
};

template <>
inline constexpr UINT kName<OpenAction_impl> = IDS_PS_OPEN_ACTION;
template <>
inline constexpr auto kFields<OpenAction_impl> = std::tuple{
    field("PageLayout", &OpenAction_impl::PageLayout, IDS_PS_PAGE_LAYOUT).values(IDS_OPEN_LAYOUT_0, 5),
    field("Binding", &OpenAction_impl::Binding, IDS_PS_BINDING).values(IDS_OPEN_BINDING_0, 3),
    field("PageAdjust", &OpenAction_impl::PageAdjust, IDS_PS_PAGE_ADJUST).values(IDS_OPEN_ADJUST_0, 5),
    field("PageMode", &OpenAction_impl::PageMode, IDS_PS_PAGE_MODE).values(IDS_OPEN_MODE_0, 4),
    field("StartPage", &OpenAction_impl::StartPage, IDS_PS_START_PAGE, range_or_all_ones(-1, 1000000))
        .as(Shown::kOnesAreNone),
    field("FullScreen", &OpenAction_impl::FullScreen, IDS_PS_FULL_SCREEN),
    field("ShowDocumentTitle", &OpenAction_impl::ShowDocumentTitle, IDS_PS_SHOW_TITLE),
    field("HideMenu", &OpenAction_impl::HideMenu, IDS_PS_HIDE_MENU),
    field("HideToolBar", &OpenAction_impl::HideToolBar, IDS_PS_HIDE_TOOL_BAR),
    field("HideWindowControl", &OpenAction_impl::HideWindowControl, IDS_PS_HIDE_WINDOW_CONTROL),
    field("FitToPage", &OpenAction_impl::FitToPage, IDS_PS_FIT_TO_PAGE),
    field("CenterWindow", &OpenAction_impl::CenterWindow, IDS_PS_CENTER_WINDOW),
};

template <>
inline constexpr auto kFields<Box> = std::tuple{
    field("left", &Box::left, IDS_PS_LEFT),
    field("top", &Box::top, IDS_PS_TOP),
    field("right", &Box::right, IDS_PS_RIGHT),
    field("bottom", &Box::bottom, IDS_PS_BOTTOM),
};

template <>
inline constexpr UINT kName<PDFVersion_impl> = IDS_PS_PDF_VERSION;
template <>
inline constexpr auto kFields<PDFVersion_impl> = std::tuple{
    field("Version", &PDFVersion_impl::Version, IDS_PS_VERSION).values(IDS_PS_VERSION_0, 13),
    field("WhenErroredPDFAX", &PDFVersion_impl::WhenErroredPDFAX, IDS_PS_WHEN_ERRORED)
        .values(IDS_PV_ON_ERROR_0, 2),
    field("UseTrimBox", &PDFVersion_impl::UseTrimBox, IDS_PS_USE_TRIM_BOX),
    field("TrimBox", &PDFVersion_impl::TrimBox, IDS_PS_TRIM_BOX),
    field("UseBleedBox", &PDFVersion_impl::UseBleedBox, IDS_PS_USE_BLEED_BOX),
    field("BleedBox", &PDFVersion_impl::BleedBox, IDS_PS_BLEED_BOX),
    field("ICCFileName", &PDFVersion_impl::ICCFileName, IDS_PS_ICC_FILE),
};

template <>
inline constexpr UINT kName<Security_impl> = IDS_PS_SECURITY;
template <>
inline constexpr auto kFields<Security_impl> = std::tuple{
    field("MasterPassword", &Security_impl::MasterPassword, IDS_PS_MASTER_PASSWORD)
        .as(Shown::kSecret)
        .typed(1000),
    field("UserPassword", &Security_impl::UserPassword, IDS_PS_USER_PASSWORD).as(Shown::kSecret).typed(1000),
    field("AllowCopyContent", &Security_impl::AllowCopyContent, IDS_PS_ALLOW_COPY),
    field("AllowAccessFromScreenReader", &Security_impl::AllowAccessFromScreenReader, IDS_PS_ALLOW_READER),
    field("EditPermission", &Security_impl::EditPermission, IDS_PS_EDIT_PERMISSION).values(IDS_SEC_EDIT_0, 6),
    field("PrintPermission", &Security_impl::PrintPermission, IDS_PS_PRINT_PERMISSION)
        .values(IDS_SEC_PRINT_0, 3),
    field("Level", &Security_impl::Level, IDS_PS_LEVEL).values(IDS_PS_LEVEL_0, 6),
    field("PDF13_DisallowPrint", &Security_impl::PDF13_DisallowPrint, IDS_PS_13_NO_PRINT),
    field("PDF13_DisallowModify", &Security_impl::PDF13_DisallowModify, IDS_PS_13_NO_MODIFY),
    field("PDF13_DisallowCopy", &Security_impl::PDF13_DisallowCopy, IDS_PS_13_NO_COPY),
    field("PDF13_DisallowAnnotate", &Security_impl::PDF13_DisallowAnnotate, IDS_PS_13_NO_ANNOTATE),
};

template <>
inline constexpr UINT kName<Watermark_impl> = IDS_PS_WATERMARK;
template <>
inline constexpr auto kFields<Watermark_impl> = std::tuple{
    field("Style", &Watermark_impl::Style, IDS_PS_STYLE).values(IDS_PS_STYLE_0, 3),
    field("PictureFileName", &Watermark_impl::PictureFileName, IDS_PS_PICTURE).typed(32767),
    field("PictureScale", &Watermark_impl::PictureScale, IDS_PS_PICTURE_SCALE, range_or_all_ones(0, 6400))
        .as(Shown::kOnesAreAuto),
    field("Text", &Watermark_impl::Text, IDS_PS_TEXT).typed(255),
    field("TextColor", &Watermark_impl::TextColor, IDS_PS_TEXT_COLOUR, low_bits(0xFFFFFF)).as(Shown::kColour),
    field("FontName", &Watermark_impl::FontName, IDS_PS_FONT_NAME).typed(31),
    field("FontSize", &Watermark_impl::FontSize, IDS_PS_FONT_SIZE, zero_or_range(8, 500))
        .as(Shown::kZeroIsAuto),
    field("DiagonalText", &Watermark_impl::DiagonalText, IDS_PS_DIAGONAL),
    field("ZOrder", &Watermark_impl::ZOrder, IDS_PS_Z_ORDER).values(IDS_MARK_ORDER_0, 2),
    field("VerticalPosition", &Watermark_impl::VerticalPosition, IDS_PS_VERTICAL)
        .values(IDS_MARK_VERTICAL_0, 3),
    field("HorizontalPosition", &Watermark_impl::HorizontalPosition, IDS_PS_HORIZONTAL)
        .values(IDS_MARK_HORIZONTAL_0, 3),
    field("Transparency", &Watermark_impl::Transparency, IDS_PS_TRANSPARENCY, range(0, 100)),
    field("VisibleInPrint", &Watermark_impl::VisibleInPrint, IDS_PS_VISIBLE_PRINT),
    field("VisibleInDisplay", &Watermark_impl::VisibleInDisplay, IDS_PS_VISIBLE_DISPLAY),
};

template <>
inline constexpr UINT kName<Color_impl> = IDS_PS_COLOUR;
template <>
inline constexpr auto kFields<Color_impl> = std::tuple{
    field("BlackToK100", &Color_impl::BlackToK100, IDS_PS_BLACK_TO_K),
    field("GrayDecreasingMethod", &Color_impl::GrayDecreasingMethod, IDS_PS_GREY_METHOD)
        .values(IDS_GRAY_METHOD_0, 3),
    field("MonoDecreasingMethod", &Color_impl::MonoDecreasingMethod, IDS_PS_MONO_METHOD)
        .values(IDS_MONO_METHOD_0, 2),
    field("ColorMode", &Color_impl::ColorMode, IDS_PS_COLOUR_MODE).values(IDS_PS_COLOUR_MODE_0, 3),
    field("MonoImageThreshold", &Color_impl::MonoImageThreshold, IDS_PS_MONO_THRESHOLD, low_bits(0xFF)),
    field("MonoTextAndPassThreshold", &Color_impl::MonoTextAndPassThreshold, IDS_PS_MONO_TEXT_THRESHOLD,
          range(0, 255)),
    field("MonoImageFilter", &Color_impl::MonoImageFilter, IDS_PS_MONO_FILTER).values(IDS_MONO_FILTER_0, 5),
};

template <>
inline constexpr UINT kName<Notification_V6_impl> = IDS_PS_NOTIFICATION_V6;
template <>
inline constexpr auto kFields<Notification_V6_impl> = std::tuple{
    field("ID_High", &Notification_V6_impl::ID_High, IDS_PS_ID_HIGH, low_bits(0xFFFFFFFF)),
    field("ID_Low", &Notification_V6_impl::ID_Low, IDS_PS_ID_LOW, low_bits(0xFFFFFFFF)),
    field("PrintStart", &Notification_V6_impl::PrintStart, IDS_PS_PRINT_START),
    field("PageStart", &Notification_V6_impl::PageStart, IDS_PS_PAGE_START),
    field("PageEnd", &Notification_V6_impl::PageEnd, IDS_PS_PAGE_END),
    field("PrintEnd", &Notification_V6_impl::PrintEnd, IDS_PS_PRINT_END),
    // Readers have always filled it from "PrintEnd", and programs that listen rely on it; its own key is
    // written only.
    field("PrintError", &Notification_V6_impl::PrintError, IDS_PS_PRINT_ERROR).read_from("PrintEnd"),
};

template <>
inline constexpr UINT kName<Notification_impl> = IDS_PS_NOTIFICATION;
template <>
inline constexpr auto kFields<Notification_impl> = std::tuple{
    field("ID", &Notification_impl::ID, IDS_PS_ID),
    field("RegisterMessageString", &Notification_impl::RegisterMessageString, IDS_PS_MESSAGE_NAME),
    section("V6", &Notification_impl::V6),
};

template <>
inline constexpr UINT kName<Addition_impl> = IDS_PS_ADDITION;
template <>
inline constexpr auto kFields<Addition_impl> = std::tuple{
    field("Int", &Addition_impl::Int, 0),
    field("Bool", &Addition_impl::Bool, 0),
    field("Float", &Addition_impl::Float, 0),
    field("Str", &Addition_impl::Str, 0),
    field("Int_Array", &Addition_impl::Int_Array, 0),
    field("Bool_Array", &Addition_impl::Bool_Array, 0),
    field("Float_Array", &Addition_impl::Float_Array, 0),
    field("Str_Array", &Addition_impl::Str_Array, 0),
};

// The whole setting.
template <>
inline constexpr auto kFields<PrintSettings_impl> = std::tuple{
    field("PSVersion", &PrintSettings_impl::PSVersion, IDS_PS_PS_VERSION),
    field("PSName", &PrintSettings_impl::PSName, IDS_PS_PS_NAME),
    field("PSComment", &PrintSettings_impl::PSComment, IDS_PS_PS_COMMENT),
    section("General", &PrintSettings_impl::general),
    section("Compression", &PrintSettings_impl::compression),
    section("Font", &PrintSettings_impl::font),
    section("Summary", &PrintSettings_impl::summary),
    section("OpenAction", &PrintSettings_impl::openAction),
    section("PDFVersion", &PrintSettings_impl::pdfVersion),
    section("Security", &PrintSettings_impl::security),
    section("Watermark", &PrintSettings_impl::watermark),
    section("Color", &PrintSettings_impl::color),
    section("Notification", &PrintSettings_impl::notification),
    section("Addition", &PrintSettings_impl::addition),
};

}  // namespace Corvanta::Vantrix::PrintSettings
