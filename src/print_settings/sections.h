// The sections of a print setting: their values, defaults and handles. Texts are UTF-16. The ranges are those
// to which the reader of setting files brings a value (field_tables.h).
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "print_settings/compress_image.h"
#include "print_settings/ps_impl_base.h"

namespace Corvanta::Vantrix::PrintSettings {

// Output behaviour and paper.
struct General_impl final : ps_impl_base<General_impl> {
    bool Linearize = true;           // optimised for viewing over a network
    int32_t OpenPDF = 1;             // 0 to 3: open the PDF after creation; 0 = no, 1 = yes
    int32_t WhenSameName = 0;        // 0 to 3: the output file exists: overwrite, ask, number, refuse
    bool NoOutputBlankPage = false;  // drop blank pages
    bool URLLink = false;            // turn URLs in text into links
    int32_t SaveStyle = 0;           // 0 = ask for the place, 1 = a fixed output folder
    std::wstring OutputFolder;
    int32_t PaperType = 0;          // 0 = a form, 1 = a custom size
    int16_t PaperName = 9;          // the form, as DEVMODE's dmPaperSize counts (9 = A4), 1 to 32767
    float PaperWidth = 210.0f;      // millimetres, 25.4 to 3276.7
    float PaperHeight = 297.0f;     // millimetres, 25.4 to 3276.7
    int32_t PaperOrientation = 0;   // 0 = portrait, 1 = landscape
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
    uint32_t EmbedFontStyle = 0;     // 0 = all but those in Fonts, 1 = only those
    uint32_t WhenFailedToEmbed = 1;  // 0 = no PDF, 1 = go on without the font
    bool EmbedBase14 = true;         // the 14 standard fonts of PDF too
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

    uint32_t PageLayout = 0;  // 0 = the viewer's, one page (1, continuous 2), two pages (3, continuous 4)
    uint32_t Binding = 1;     // 0 = the viewer's, 1 = left, 2 = right
    uint32_t PageAdjust = 0;  // 0 = the viewer's, 1 = 100 %, 2 = page, 3 = its width, 4 = contents' width
    uint32_t PageMode = 0;    // pane: 0 = none, 1 = bookmarks, 2 = thumbnails, 3 = layers
    uint32_t StartPage = 1;   // kNoStartPage or 0 to 1000000
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
    uint32_t Version = 4;           // 0 to 12; see pdf_ver
    uint32_t WhenErroredPDFAX = 0;  // 0 to 1: what to do when the PDF/A or PDF/X check fails
    bool UseTrimBox = false;
    Box TrimBox;
    bool UseBleedBox = false;
    Box BleedBox;
    std::wstring ICCFileName;  // colour profile of the output intent: a path or the name of an installed one
};
class PDFVersion final : public ps_handle<PDFVersion_impl> {};

// The versions of PDF by name.
enum class PDFVer { Unknown, _13, _14, _15, _16, _17, _20 };

// The version of PDF that the code in `PDFVersion` stands for; a PDF/A or PDF/X code gives the version of PDF
// that standard builds on. Codes above 12 give Unknown.
[[nodiscard]] PDFVer pdf_ver(uint32_t version_code) noexcept;

struct Security_impl final : ps_impl_base<Security_impl> {
    Security_impl() = default;
    ~Security_impl() override;  // leaves no password in memory
    Security_impl(const Security_impl&) = default;
    Security_impl& operator=(const Security_impl&) = default;

    std::wstring MasterPassword;  // guards the permissions
    std::wstring UserPassword;    // opens the document
    bool AllowCopyContent = false;
    bool AllowAccessFromScreenReader = true;
    uint32_t EditPermission = 2;      // 0 to 5
    uint32_t PrintPermission = 0;     // 0 to 2
    uint32_t Level = 4;               // 0 to 5: encryption
    bool PDF13_DisallowPrint = true;  // the four of the 40-bit encryption of PDF 1.3
    bool PDF13_DisallowModify = true;
    bool PDF13_DisallowCopy = true;
    bool PDF13_DisallowAnnotate = false;
};
class Security final : public ps_handle<Security_impl> {};

struct Watermark_impl final : ps_impl_base<Watermark_impl> {
    static constexpr uint32_t kNoPictureScale = 0xFFFFFFFF;

    uint32_t Style = 0;  // 0 = none, 1 = text, 2 = picture
    std::wstring PictureFileName;
    uint32_t PictureScale = kNoPictureScale;  // percent, 0 to 6400, or kNoPictureScale: never set
    std::wstring Text = L"CONFIDENTIAL";
    int32_t TextColor = 255;  // COLORREF 0x00BBGGRR
    std::wstring FontName = L"Arial";
    uint32_t FontSize = 0;  // points, 8 to 500; 0 = as the text needs
    bool DiagonalText = true;
    uint32_t ZOrder = 0;              // 0 = over the page's content, 1 = under it
    uint32_t VerticalPosition = 1;    // 0 = top, 1 = middle, 2 = bottom
    uint32_t HorizontalPosition = 1;  // 0 = left, 1 = centre, 2 = right
    uint32_t Transparency = 70;       // percent
    bool VisibleInPrint = true;
    bool VisibleInDisplay = true;
};
class Watermark final : public ps_handle<Watermark_impl> {};

struct Color_impl final : ps_impl_base<Color_impl> {
    bool BlackToK100 = false;           // black becomes pure K
    uint32_t GrayDecreasingMethod = 0;  // 0 to 2
    uint32_t MonoDecreasingMethod = 0;  // 0 to 1
    uint32_t ColorMode = 0;             // 0 = colour, 1 = grey, 2 = monochrome
    uint8_t MonoImageThreshold = 128;
    uint8_t MonoTextAndPassThreshold = 128;
    uint32_t MonoImageFilter = 0;  // 0 to 4
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
