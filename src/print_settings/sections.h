// The sections of a print setting: their values, defaults and handles. Texts are UTF-16. The ranges are those
// to which the reader of setting files brings a value (field_tables.h). The codes of a field stand before it,
// in their order; it is wide enough for what a file holds.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "print_settings/compress_image.h"
#include "print_settings/pdf_version.h"
#include "print_settings/ps_impl_base.h"

namespace Corvanta::Vantrix::PrintSettings {

// Output behaviour and paper.
struct General_impl final : ps_impl_base<General_impl> {
    bool Linearize = true;  // optimised for viewing over a network
    enum : int32_t { kLeaveClosed, kOpen };
    int32_t OpenPDF = kOpen;  // after creation; 2 and 3 in another way
    enum : int32_t { kOverwrite, kAsk, kNumber, kRefuse };
    int32_t WhenSameName = kOverwrite;  // the output file exists
    bool NoOutputBlankPage = false;     // drop blank pages
    bool URLLink = false;               // turn URLs in text into links
    enum : int32_t { kAskForPlace, kFixedFolder };
    int32_t SaveStyle = kAskForPlace;
    std::wstring OutputFolder;
    enum : int32_t { kForm, kCustomSize };
    int32_t PaperType = kForm;
    int16_t PaperName = 9;       // the form, as DEVMODE's dmPaperSize counts (9 = A4), 1 to 32767
    float PaperWidth = 210.0f;   // millimetres, 25.4 to 3276.7
    float PaperHeight = 297.0f;  // millimetres, 25.4 to 3276.7
    enum : int32_t { kPortrait, kLandscape };
    int32_t PaperOrientation = kPortrait;
    int32_t PaperResolution = 600;  // dots per inch, 72 to 3600
    int32_t Scale = 100;            // percent, 10 to 400
};
class General final : public ps_handle<General_impl> {};

struct Compression_impl final : ps_impl_base<Compression_impl> {
    bool ASCIIFormat = false;  // write streams in ASCII form
    bool TextAndLineArt = false;
    bool HighCompress = false;
    ColorImage Color;
    GrayImage Gray;
    MonoImage Mono;
};
class Compression final : public ps_handle<Compression_impl> {};

struct Font_impl final : ps_impl_base<Font_impl> {
    enum : uint32_t { kAllButListed, kListedOnly };
    uint32_t EmbedFontStyle = kAllButListed;
    enum : uint32_t { kNoPDF, kGoOnWithout };
    uint32_t WhenFailedToEmbed = kGoOnWithout;
    bool EmbedBase14 = true;  // the 14 standard fonts of PDF too
    std::vector<std::wstring> Fonts;
};
class Font final : public ps_handle<Font_impl> {};

// The document information of the PDF.
struct Summary_impl final : ps_impl_base<Summary_impl> {
    std::wstring Title;
    std::wstring Subject;
    std::wstring Author;
    std::wstring Keywords;
    std::wstring Creator;
    bool EmbedPSFileName = false;  // put the setting's name into the document information
};
class Summary final : public ps_handle<Summary_impl> {};

// How a viewer opens the PDF.
struct OpenAction_impl final : ps_impl_base<OpenAction_impl> {
    static constexpr uint32_t kNoStartPage = 0xFFFFFFFF;  // -1, as an unsigned field holds it

    // The first of each is the viewer's own choice.
    enum : uint32_t { kAnyLayout, kSinglePage, kOneColumn, kTwoPages, kTwoColumns };
    uint32_t PageLayout = kAnyLayout;
    enum : uint32_t { kAnyBinding, kLeftBinding, kRightBinding };
    uint32_t Binding = kLeftBinding;
    enum : uint32_t { kAnyZoom, kFullSize, kFitPage, kFitWidth, kFitContents };
    uint32_t PageAdjust = kAnyZoom;
    enum : uint32_t { kNoPane, kBookmarks, kThumbnails, kLayers };
    uint32_t PageMode = kNoPane;
    uint32_t StartPage = 1;  // kNoStartPage or 0 to 1000000
    bool FullScreen = false;
    bool ShowDocumentTitle = false;
    bool HideMenu = false;
    bool HideToolBar = false;
    bool HideWindowControl = false;
    bool FitToPage = false;
    bool CenterWindow = false;
};
class OpenAction final : public ps_handle<OpenAction_impl> {};

// A box of a page as margins from its edges, in millimetres.
struct Box {
    float left = 0;
    float top = 0;
    float right = 0;
    float bottom = 0;

    friend bool operator==(const Box&, const Box&) = default;
};

struct PDFVersion_impl final : ps_impl_base<PDFVersion_impl> {
    uint32_t Version = kPDF17;  // a PDFVersionCode
    enum : uint32_t { kStop, kContinue };
    uint32_t WhenErroredPDFAX = kStop;  // the check of PDF/A or PDF/X fails
    bool UseTrimBox = false;
    Box TrimBox;
    bool UseBleedBox = false;
    Box BleedBox;
    std::wstring ICCFileName;  // colour profile of the output intent: a path or the name of an installed one
};
class PDFVersion final : public ps_handle<PDFVersion_impl> {};

struct Security_impl final : ps_impl_base<Security_impl> {
    Security_impl() = default;
    ~Security_impl() override;  // leaves no password in memory
    Security_impl(const Security_impl&) = default;
    Security_impl& operator=(const Security_impl&) = default;

    std::wstring MasterPassword;  // guards the permissions
    std::wstring UserPassword;    // opens the document
    bool AllowCopyContent = false;
    bool AllowAccessFromScreenReader = true;
    enum : uint32_t { kNoEdit, kEditPages, kFillForms, kAnnotate, kEditContents, kEditAll };
    uint32_t EditPermission = kFillForms;
    enum : uint32_t { kNoPrint, kPrintLow, kPrintHigh };
    uint32_t PrintPermission = kNoPrint;
    enum : uint32_t { kRc4Level, kPageLevel, kUsualLevel = 4, kAes256Level };
    uint32_t Level = kUsualLevel;     // 0 to 5: encryption; the Security page stores kPageLevel
    bool PDF13_DisallowPrint = true;  // the four of the 40-bit encryption of PDF 1.3
    bool PDF13_DisallowModify = true;
    bool PDF13_DisallowCopy = true;
    bool PDF13_DisallowAnnotate = false;
};
class Security final : public ps_handle<Security_impl> {};

struct Watermark_impl final : ps_impl_base<Watermark_impl> {
    static constexpr uint32_t kNoPictureScale = 0xFFFFFFFF;

    enum : uint32_t { kNoMark, kTextMark, kPictureMark };
    uint32_t Style = kNoMark;
    std::wstring PictureFileName;
    uint32_t PictureScale = kNoPictureScale;  // percent, 0 to 6400, or kNoPictureScale: never set
    std::wstring Text = L"CONFIDENTIAL";
    int32_t TextColor = 255;  // COLORREF 0x00BBGGRR
    std::wstring FontName = L"Arial";
    uint32_t FontSize = 0;  // points, 8 to 500; 0 = as the text needs
    bool DiagonalText = true;
    enum : uint32_t { kOverThePage, kUnderThePage };
    uint32_t ZOrder = kOverThePage;
    enum : uint32_t { kTopOrLeft, kMiddle, kBottomOrRight };
    uint32_t VerticalPosition = kMiddle;
    uint32_t HorizontalPosition = kMiddle;
    uint32_t Transparency = 70;  // percent
    bool VisibleInPrint = true;
    bool VisibleInDisplay = true;
};
class Watermark final : public ps_handle<Watermark_impl> {};

struct Color_impl final : ps_impl_base<Color_impl> {
    bool BlackToK100 = false;  // black becomes pure K
    enum : uint32_t { kLuminance, kMean, kMidway };
    uint32_t GrayDecreasingMethod = kLuminance;
    enum : uint32_t { kThreshold, kDither };
    uint32_t MonoDecreasingMethod = kThreshold;
    enum : uint32_t { kColour, kGrey, kMonochrome };
    uint32_t ColorMode = kColour;
    uint8_t MonoImageThreshold = 128;
    uint8_t MonoTextAndPassThreshold = 128;
    enum : uint32_t { kNoFilter, kSmooth, kSharpen, kEmphasiseEdges, kRemoveSpecks };
    uint32_t MonoImageFilter = kNoFilter;
};
class Color final : public ps_handle<Color_impl> {};

// Texts of the messages posted during the job, and the 64-bit number they carry, held as its two halves.
struct Notification_V6_impl final : ps_impl_base<Notification_V6_impl> {
    int32_t ID_High = 0;
    int32_t ID_Low = 0;
    std::wstring PrintStart;
    std::wstring PageStart;
    std::wstring PageEnd;
    std::wstring PrintEnd;
    std::wstring PrintError;  // a setting file gives it the text of PrintEnd

    [[nodiscard]] uint64_t ID() const noexcept {
        return uint64_t{static_cast<uint32_t>(ID_High)} << 32 | static_cast<uint32_t>(ID_Low);
    }
    void set_ID(uint64_t id) noexcept {
        ID_High = static_cast<int32_t>(id >> 32);
        ID_Low = static_cast<int32_t>(id & 0xFFFFFFFF);
    }
};
class Notification_V6 final : public ps_handle<Notification_V6_impl> {};

// Messages posted to another program's window during the job.
struct Notification_impl final : ps_impl_base<Notification_impl> {
    int32_t ID = 0;
    std::wstring RegisterMessageString;  // the name under which the message is registered
    Notification_V6 V6;
};
class Notification final : public ps_handle<Notification_impl> {};

// Values that later versions and customisations add under names of their own.
struct Addition_impl final : ps_impl_base<Addition_impl> {
    template <class Value>
    using Named = std::map<std::wstring, Value>;

    static constexpr wchar_t kPaperName[] = L"PaperName";  // the text that names the paper of General

    Named<int32_t> Int;
    Named<bool> Bool;
    Named<double> Float;
    Named<std::wstring> Str;
    Named<std::vector<int32_t>> Int_Array;
    Named<std::vector<bool>> Bool_Array;
    Named<std::vector<double>> Float_Array;
    Named<std::vector<std::wstring>> Str_Array;
};
class Addition final : public ps_handle<Addition_impl> {};

}  // namespace Corvanta::Vantrix::PrintSettings
