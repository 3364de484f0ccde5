// Every field of a print setting that the renderer obeys: what the finished PDF answers.
#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "companions/render/ascii85.h"
#include "companions/render/fonts.h"
#include "companions/render/spool_pictures.h"
#include "companions/wine_layer.h"
#include "support/render_process.h"
#include "support/variable.h"

namespace {

namespace ps = Corvanta::Vantrix::PrintSettings;
using Settings = ps::PrintSettings;

// A picture as Wine's PostScript driver spools it: run lengths of 1 to 128 bytes, in ASCII.
std::string picture(int left, const char* decode, const char* operation, size_t row,
                    uint8_t (*sample)(size_t)) {
    constexpr size_t kSide = 64;
    std::vector<uint8_t> packed;
    for (size_t i = 0; i < kSide * row; ++i) {
        if (i % 64 == 0)
            packed.push_back(63);
        packed.push_back(sample(i));
    }
    packed.push_back(128);
    return "gsave " + std::to_string(left) +
           " 500 translate 100 100 scale\n<<\n /ImageType 1\n /Width 64\n /Height 64\n /BitsPerComponent " +
           (row == 8 ? "1" : "8") + "\n /ImageMatrix [64 0 0 -64 0 64]\n /Decode " + decode +
           "\n /DataSource currentfile /ASCII85Decode filter /RunLengthDecode filter\n>>\n" + operation +
           "\n" + companions::render::to_ascii85(packed) + "\ngrestore\n";
}

// A page of text with pictures in colour, in grey and in black and white, an empty one, and one of text.
std::string document() {
    constexpr char kText[] =
        "/Courier findfont 12 scalefont setfont 0 0 0 setrgbcolor\n"
        "72 700 moveto (see https://example.org/a?b=1, or www.test.net.) show\n"
        "0.8 0.1 0.1 setrgbcolor 72 660 moveto (red) show 72 610 100 30 rectfill\n";
    const auto colour = [](size_t i) { return static_cast<uint8_t>(i % 3 == 0 ? i / 192 * 3 : i % 192); };
    const auto grey = [](size_t i) { return static_cast<uint8_t>(i % 192 / 3 * 4); };
    const auto bits = [](size_t i) { return static_cast<uint8_t>(i / 32 % 2 == 0 ? 0xF0 : 0x0F); };
    return std::string("%!PS-Adobe-3.0\n%%EndComments\n<< /PageSize [612 792] >> setpagedevice\n") + kText +
           picture(72, "[0 1 0 1 0 1]", "image", 192, colour) +
           picture(200, "[0 1 0 1 0 1]", "image", 192, grey) + "0 0 0 setrgbcolor\n" +
           picture(330, "[0 1]", "imagemask", 8, bits) + "showpage\nshowpage\n" + kText + "showpage\n";
}

// Questions: commands of a shell with the PDF as $1 and a folder to write in as $2.
constexpr char kInfo[] = "pdfinfo \"$1\" 2>/dev/null | sed -n 's/^PDF version: *//p; s/^Pages: */pages /p'";
constexpr char kImages[] = "pdfimages -list \"$1\" | awk 'NR > 2 { print $6 \":\" $8 \":\" $9 }'";
constexpr char kFonts[] = "pdffonts \"$1\" | awk 'NR > 2 { print $1, $(NF - 4) }' | sed 's/^.*+//'";
// The catalogue's entries, where the PDF is as the engine has written it.
constexpr char kCatalogue[] =
    "qpdf --show-object=1 \"$1\" | sed 's/ [0-9]* 0 R//g; s/ .Metadata//; s/ .Pages.*.Type .Catalog//'";
constexpr char kFirstPage[] =
    "n=$(qpdf --show-object=1 \"$1\" | sed 's/.*OpenAction . \\([0-9]*\\) .*/\\1/'); "
    "qpdf --show-pages \"$1\" | sed -n \"s/: $n 0 R//p\"";
constexpr char kLinks[] = "qpdf --qdf --object-streams=disable \"$1\" - | grep -a -o '/URI (.*)'";
constexpr char kSecurity[] =
    "printf 'usr' >\"$2/pw\"; qpdf --password-file=\"$2/pw\" --show-encryption \"$1\" | sed -n "
    "'s/^R = //p; s/^P = //p; s/^file encryption method: //p'";
constexpr char kSecurityOther[] =
    "printf '\\346\\227\\245' >\"$2/pw\"; qpdf --password-file=\"$2/pw\" "
    "--show-encryption \"$1\" | sed -n 's/^R = //p'";
// The texts of the document information, then of the metadata.
constexpr char kTwice[] =
    "pdfinfo \"$1\" | sed -n 's/^\\(Title\\|Subject\\|Author\\|Keywords\\|Creator\\): *//p'; "
    "pdfinfo -meta \"$1\" | grep -o -E '(default.|rdf:li|Keywords|CreatorTool)>[^<]+' | sed 's/.*>//'";
constexpr char kTwiceAnswer[] =
    "\u65E5\u672C\u8A9E \uD55C k \U0001F5A8 <& \u00E9 "
    "k \u00E9 \u65E5\u672C\u8A9E \U0001F5A8 &lt;&amp; \uD55C";
constexpr char kBoxes[] = "pdfinfo -box \"$1\" | awk '/TrimBox|BleedBox/ { print $1, $2, $3, $4, $5 }'";
constexpr char kIdentity[] =
    "qpdf --qdf --object-streams=disable \"$1\" - | grep -a -o -E "
    "\"/S /GTS_PDF[AX]1?|GTS_PDFXVersion[ =].PDF/X-[0-9a:]+|pdfaid:part='[0-9]|/N [34]\" | sort -u";
// How light the grey picture is.
constexpr char kMean[] =
    "pdfimages -png \"$1\" \"$2/x\" && printf %.1f $(identify -format '%[fx:mean]' \"$2/x-001.png\")";
// Colours of a page at 20 dpi; $3 is a place of the picture.
constexpr char kPixel[] =
    "pdftoppm -r 20 -f 1 -l 1 \"$1\" | convert - -crop 1x1+$PLACE -depth 8 txt:- | "
    "grep -o '#[0-9A-F][0-9A-F]*'";

std::string pixel(const char* place) {
    std::string question = kPixel;
    return question.replace(question.find("$PLACE"), 6, place);
}

class RenderFields : public RenderProcess {
public:
    // What the command prints about the PDF, its lines joined by blanks.
    [[nodiscard]] std::string ask(const std::string& question) const {
        using companions::wine::find_unix_path;
        folder_.write(L"ask.sh", "{ " + question + "; } 2>&1 | tr '\\n' ' ' | sed 's/ $//' >\"$2/answer\"\n");
        const std::vector<std::string> command = {
            "/bin/sh", find_unix_path(folder_.file(L"ask.sh")).value_or(""),
            find_unix_path(target_).value_or(""), find_unix_path(folder_.path()).value_or("")};
        if (companions::wine::run_unix_program(command) != 0)
            return "<the question failed>";
        return TempFolder::read(folder_.file(L"answer"));
    }
};

struct Row {
    const char* label;
    void (*change)(Settings&);
    std::string question;
    std::string answer;
};

constexpr wchar_t kRgb[] = L"Z:\\usr\\share\\color\\icc\\ghostscript\\srgb.icc";
constexpr wchar_t kCmyk[] = L"Z:\\usr\\share\\color\\icc\\ghostscript\\default_cmyk.icc";

void standard(Settings& s, uint32_t version, const wchar_t* profile) {
    s.pdfVersion()->Version = version;
    s.pdfVersion()->ICCFileName = profile;
    s.summary()->Title = L"\u00C9t\u00E9";
    s.addition()->Str[L"OutputCondition"] = L"FOGRA39";
}

void secret(Settings& s, uint32_t version, const wchar_t* user) {
    s.pdfVersion()->Version = version;
    s.security()->UserPassword = user;
    s.security()->MasterPassword = L"-own er";
    s.security()->PrintPermission = 1;
}

void mark(Settings& s, uint32_t vertical, uint32_t horizontal, uint32_t transparency) {
    s.watermark()->Style = ps::Watermark_impl::kTextMark;
    s.watermark()->Text = L"\u2588\u2588";
    s.watermark()->FontName = L"DejaVu Sans";
    s.watermark()->FontSize = 100;
    s.watermark()->DiagonalText = false;
    s.watermark()->VerticalPosition = vertical;
    s.watermark()->HorizontalPosition = horizontal;
    s.watermark()->Transparency = transparency;
}

void hard_texts(Settings& s, uint32_t version) {
    standard(s, version, version == ps::kPDFX4 ? kCmyk : kRgb);
    s.summary()->Title = L"\u65E5\u672C\u8A9E";
    s.summary()->Author = L"\U0001F5A8 <&";
    s.summary()->Subject = L"\uD55C";
    s.summary()->Keywords = L"k";
    s.summary()->Creator = L"\u00E9";
}

const std::vector<Row> kRows = {
    {"defaults", [](Settings&) {}, kInfo, "pages 3 1.7"},
    {"Linearize", [](Settings&) {}, "qpdf --check-linearization \"$1\" | sed 's/.*: //'",
     "no linearization errors"},
    {"NoOutputBlankPage", [](Settings& s) { s.general()->NoOutputBlankPage = true; }, kInfo, "pages 2 1.7"},
    {"URLLink", [](Settings& s) { s.general()->URLLink = true; }, std::string(kLinks) + " | sort | uniq -c",
     "      2 /URI (http://www.test.net)       2 /URI (https://example.org/a?b=1)"},

    {"ASCIIFormat", [](Settings& s) { s.compression()->ASCIIFormat = true; },
     "grep -a -c 'Filter.*ASCII85Decode' \"$1\"", "6"},
    {"TextAndLineArt off", [](Settings&) {}, "grep -a -c ' Tf$' \"$1\"", "4"},
    {"TextAndLineArt", [](Settings& s) { s.compression()->TextAndLineArt = true; },
     "grep -a -c ' Tf$' \"$1\"", "0"},
    {"HighCompress", [](Settings& s) { s.compression()->HighCompress = true; },
     "grep -a -o /ObjStm \"$1\" | sort -u", "/ObjStm"},
    {"methods: JPEG, ZIP",
     [](Settings& s) {
         s.compression()->Color->CompressionMethod = ps::CompressImage_impl::kJpeg;
         s.compression()->Gray->CompressionMethod = 2;
     },
     kImages, "rgb:8:jpeg gray:8:image -:1:ccitt"},
    {"methods: ZIP, JPEG, ZIP",
     [](Settings& s) {
         s.compression()->Color->CompressionMethod = 2;
         s.compression()->Gray->CompressionMethod = ps::CompressImage_impl::kJpeg;
         s.compression()->Mono->MonoCompressionMethod = 3;
     },
     kImages, "rgb:8:image gray:8:jpeg -:1:image"},
    {"MonoCompressionMethod: group 3", [](Settings& s) { s.compression()->Mono->MonoCompressionMethod = 1; },
     "grep -a -o '/K -*[0-9]*' \"$1\"; grep -a -c CCF \"$1\"", "1"},
    {"MonoCompressionMethod: group 4", [](Settings&) {}, "grep -a -o '/K -*[0-9]*' \"$1\"", "/K -1"},
    {"MonoCompressionMethod: run length",
     [](Settings& s) { s.compression()->Mono->MonoCompressionMethod = 4; }, "grep -a -o '/F */RL' \"$1\"",
     "/F/RL"},
    {"JpegQuality",
     [](Settings& s) {
         s.compression()->Color->CompressionMethod = ps::CompressImage_impl::kJpeg;
         s.compression()->Color->JpegQuality = 10;
         s.compression()->Gray = {};
     },
     "pdfimages -j \"$1\" \"$2/x\" && identify -format %Q \"$2/x-000.jpg\"", "10"},
    {"resolutions",
     [](Settings& s) {
         s.compression()->Color->ResolutionThreshold = 40;
         s.compression()->Color->ResolutionTarget = 23;
         s.compression()->Gray->DownSamplingMethod = 0;
     },
     "pdfimages -list \"$1\" | awk 'NR > 2 { print $4 }'", "32 64 64"},

    {"EmbedBase14", [](Settings&) {}, kFonts, "Courier yes"},
    {"EmbedBase14 off", [](Settings& s) { s.font()->EmbedBase14 = false; }, kFonts, "Courier no"},
    {"Fonts: not these",
     [](Settings& s) {
         s.font()->Fonts = {L"Arial", L"Courier"};
     },
     kFonts, "Courier no"},
    {"Fonts: only these",
     [](Settings& s) {
         s.font()->EmbedFontStyle = ps::Font_impl::kListedOnly;
         s.font()->Fonts = {L"Courier"};
     },
     kFonts, "Courier yes"},
    {"Fonts: only others",
     [](Settings& s) {
         s.font()->EmbedFontStyle = ps::Font_impl::kListedOnly;
         s.font()->WhenFailedToEmbed = ps::Font_impl::kNoPDF;
         s.font()->Fonts = {L"Arial"};
     },
     kFonts, "Courier no"},

    {"Summary",
     [](Settings& s) {
         s.pdfVersion()->Version = ps::kPDF20;
         s->PSName = L"Office";
         *s.summary() = {};
         s.summary()->Title = L"\u65E5";
         s.summary()->Subject = L"S";
         s.summary()->Author = L"A (1)";
         s.summary()->Keywords = L"K";
         s.summary()->Creator = L"C";
         s.summary()->EmbedPSFileName = true;
     },
     "pdfinfo -custom \"$1\" | sed -n "
     "'s/^\\(Title\\|Subject\\|Author\\|Keywords\\|Creator\\|PrintSetting\\): *//p'",
     "A (1) C K Office S \u65E5"},

    {"Summary of any characters, in the metadata too", [](Settings& s) { hard_texts(s, ps::kPDF17); }, kTwice,
     kTwiceAnswer},
    {"the same in PDF/A-1b", [](Settings& s) { hard_texts(s, ps::kPDFA1b); }, kTwice, kTwiceAnswer},
    {"the same in PDF/X-4", [](Settings& s) { hard_texts(s, ps::kPDFX4); }, kTwice, kTwiceAnswer},

    {"OpenAction",
     [](Settings& s) {
         s.general()->Linearize = false;
         auto& open = *s.openAction();
         open.PageLayout = ps::OpenAction_impl::kTwoPages;
         open.Binding = ps::OpenAction_impl::kRightBinding;
         open.PageAdjust = ps::OpenAction_impl::kFitPage;
         open.PageMode = ps::OpenAction_impl::kThumbnails;
         open.StartPage = 99;
         open.FullScreen = open.ShowDocumentTitle = open.HideMenu = open.HideToolBar = true;
         open.HideWindowControl = open.FitToPage = open.CenterWindow = true;
     },
     kCatalogue,
     "<< /OpenAction [ /Fit ] /PageLayout /TwoPageLeft /PageMode /FullScreen /ViewerPreferences << "
     "/CenterWindow true "
     "/Direction /R2L /DisplayDocTitle true /FitWindow true /HideMenubar true /HideToolbar true "
     "/HideWindowUI true "
     "/NonFullScreenPageMode /UseThumbs >> >>"},
    {"OpenAction without blank pages",
     [](Settings& s) {
         s.general()->Linearize = false;
         s.general()->NoOutputBlankPage = true;
         s.openAction()->StartPage = 3;
     },
     kFirstPage, "page 2"},

    {"PDF 1.3: 40 bits", [](Settings& s) { secret(s, ps::kPDF13, L"usr"); }, kSecurity, "2 -32"},
    {"PDF 1.5: RC4", [](Settings& s) { secret(s, ps::kPDF15, L"usr"); }, kSecurity, "3 -3132"},
    {"PDF 1.7: AES", [](Settings& s) { secret(s, ps::kPDF17, L"usr"); }, kSecurity, "4 -3132 AESv2"},
    {"PDF 1.7, level 5",
     [](Settings& s) {
         secret(s, ps::kPDF17, L"usr");
         s.security()->Level = 5;
         s.security()->EditPermission = 5;
         s.security()->AllowCopyContent = true;
         s.security()->PrintPermission = 2;
     },
     kSecurity, "6 -4 AESv3"},
    {"PDF 2.0, any characters", [](Settings& s) { secret(s, ps::kPDF20, L"\u65E5"); }, kSecurityOther, "6"},

    {"boxes",
     [](Settings& s) {
         s.pdfVersion()->UseTrimBox = s.pdfVersion()->UseBleedBox = true;
         s.pdfVersion()->TrimBox = {25.4f, 50.8f, 25.4f, 12.7f};
         s.pdfVersion()->BleedBox = {12.7f, 12.7f, 12.7f, 0};
     },
     kBoxes, "BleedBox: 36.00 0.00 576.00 756.00 TrimBox: 72.00 36.00 540.00 648.00"},
    {"PDF/A-1b", [](Settings& s) { standard(s, ps::kPDFA1b, kRgb); }, kIdentity,
     "/N 3 /S /GTS_PDFA1 pdfaid:part='1"},
    {"PDF/A-1b: ends of streams on lines of their own, the dates' form",
     [](Settings& s) { standard(s, ps::kPDFA1b, kRgb); },
     "grep -a -v '^endstream' \"$1\" | grep -a -c endstream; pdfinfo -rawdates \"$1\" | grep -c 'Date: .*Z$'",
     "0 2"},
    {"PDF/A-2b", [](Settings& s) { standard(s, ps::kPDFA2b, kCmyk); }, kIdentity,
     "/N 4 /S /GTS_PDFA1 pdfaid:part='2"},
    {"PDF/X-1a:2001", [](Settings& s) { standard(s, ps::kPDFX1a2001, kCmyk); }, kIdentity,
     "/N 4 /S /GTS_PDFX GTS_PDFXVersion (PDF/X-1:2001"},
    {"PDF/X-1a:2003", [](Settings& s) { standard(s, ps::kPDFX1a2003, kCmyk); }, kIdentity,
     "/N 4 /S /GTS_PDFX GTS_PDFXVersion (PDF/X-1a:2003"},
    {"PDF/X-3:2002", [](Settings& s) { standard(s, ps::kPDFX32002, kCmyk); }, kIdentity,
     "/N 4 /S /GTS_PDFX GTS_PDFXVersion (PDF/X-3:2002"},
    {"PDF/X-3:2003", [](Settings& s) { standard(s, ps::kPDFX32003, kCmyk); }, kIdentity,
     "/N 4 /S /GTS_PDFX GTS_PDFXVersion (PDF/X-3:2003"},
    {"PDF/X-4", [](Settings& s) { standard(s, ps::kPDFX4, kCmyk); }, kIdentity,
     "/N 4 /S /GTS_PDFX GTS_PDFXVersion='PDF/X-4"},

    {"watermark over, top left, solid", [](Settings& s) { mark(s, 0, 0, 0); }, pixel("20+20"), "#FF0000"},
    {"watermark under the page",
     [](Settings& s) {
         mark(s, 0, 0, 0);
         s.watermark()->FontSize = 150;
         s.watermark()->ZOrder = ps::Watermark_impl::kUnderThePage;
     },
     pixel("30+46") + " | cut -c1-2", "#C"},
    {"watermark bottom right, half", [](Settings& s) { mark(s, 2, 2, 50); }, pixel("145+205"), "#FF7F7F"},
    {"watermark nowhere else", [](Settings& s) { mark(s, 2, 2, 50); }, pixel("20+20"), "#FFFFFF"},
    {"watermark before transparency",
     [](Settings& s) {
         mark(s, 2, 2, 50);
         s.pdfVersion()->Version = ps::kPDF13;
     },
     pixel("145+205"), "#FF7F7F"},
    {"watermark on the screen alone",
     [](Settings& s) {
         mark(s, 0, 0, 0);
         s.watermark()->VisibleInPrint = false;
     },
     "qpdf --qdf --object-streams=disable \"$1\" - | grep -a -A1 -E '/(Print|View)State' | grep -a -o "
     "'/[A-Z].*'",
     "/PrintState /OFF /ViewState /ON"},

    {"ColorMode: grey", [](Settings& s) { s.color()->ColorMode = ps::Color_impl::kGrey; }, kImages,
     "gray:8:image gray:8:image -:1:ccitt"},
    {"GrayDecreasingMethod",
     [](Settings& s) {
         s.color()->ColorMode = ps::Color_impl::kGrey;
         s.color()->GrayDecreasingMethod = 2;
     },
     pixel("30+46") + " | cut -c1-2", "#7"},
    {"ColorMode: black and white", [](Settings& s) { s.color()->ColorMode = ps::Color_impl::kMonochrome; },
     kImages, "gray:1:ccitt gray:1:ccitt -:1:ccitt"},
    {"text and lines in black and white",
     [](Settings& s) { s.color()->ColorMode = ps::Color_impl::kMonochrome; }, pixel("30+46"), "#000000"},
    {"MonoTextAndPassThreshold",
     [](Settings& s) {
         s.color()->ColorMode = ps::Color_impl::kMonochrome;
         s.color()->MonoTextAndPassThreshold = 20;
     },
     pixel("30+46"), "#FFFFFF"},
    {"MonoImageThreshold",
     [](Settings& s) {
         s.color()->ColorMode = ps::Color_impl::kMonochrome;
         s.color()->MonoImageThreshold = 0;
     },
     kMean, "1.0"},
    {"MonoDecreasingMethod: dither, which has no threshold",
     [](Settings& s) {
         s.color()->ColorMode = ps::Color_impl::kMonochrome;
         s.color()->MonoDecreasingMethod = 1;
         s.color()->MonoImageThreshold = 0;
     },
     kMean, "0.5"},
    {"BlackToK100",
     [](Settings& s) {
         standard(s, ps::kPDFX1a2001, kCmyk);
         s.color()->BlackToK100 = true;
     },
     "grep -a -c ' 0 0 0 1 k\\| 0.[0-9]* 0.[0-9]* 0.[0-9]* 1* k' \"$1\"", "0"},
};

TEST_F(RenderFields, EveryRow) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.label);
        settings_ = Settings();
        settings_.general()->OpenPDF = ps::General_impl::kLeaveClosed;
        row.change(settings_);
        folder_.write(L"job.ps", document());
        EXPECT_EQ(run(), kDone) << qk::to_utf8(result_.view()->message.find_text().value_or(L""));
        EXPECT_EQ(ask(row.question), row.answer);
    }
}

TEST_F(RenderFields, StandardThatCannotBeMet) {
    constexpr char kMovie[] = "%!PS\n[ /Rect [0 0 9 9] /Subtype /Movie /ANN pdfmark showpage\n";
    standard(settings_, ps::kPDFA1b, kRgb);
    for (const bool stops : {true, false}) {
        folder_.write(L"job.ps", kMovie);
        settings_.pdfVersion()->WhenErroredPDFAX =
            stops ? ps::PDFVersion_impl::kStop : ps::PDFVersion_impl::kContinue;
        EXPECT_EQ(run(), stops ? kFailed : kDone);
        EXPECT_EQ(error(), stops ? 1013u : 0u);
    }
    EXPECT_EQ(ask("grep -a -c pdfaid \"$1\""), "0") << "an ordinary PDF";
    folder_.write(L"job.ps", kMovie);
    settings_.pdfVersion()->ICCFileName = L"C:\\none.icc";
    EXPECT_EQ(run(), kFailed);
    EXPECT_EQ(error(), 1013u) << "no profile";
}

TEST_F(RenderFields, PictureOfTheWatermark) {
    // Four pixels, green and, turned upside down as the format has it, blue above.
    const std::string green("\0\xFF\0\0\xFF\0\0\0", 8), blue("\xFF\0\0\xFF\0\0\0\0", 8);
    std::string bmp("BM\x46\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\2\0\0\0\1\0\x18\0", 30);
    bmp += std::string("\0\0\0\0\x10\0\0\0\x13\x0B\0\0\x13\x0B\0\0\0\0\0\0\0\0\0\0", 24) + green + blue;
    auto& watermark = *settings_.watermark();
    watermark.Style = ps::Watermark_impl::kPictureMark;
    watermark.PictureFileName = folder_.write(L"mark.bmp", bmp);
    watermark.Transparency = 0;
    ASSERT_EQ(run(), kDone);
    EXPECT_EQ(ask(pixel("85+90")), "#0000FF");
    EXPECT_EQ(ask(pixel("85+140")), "#00FF00");
}

TEST_F(RenderFields, ProgramsOfOthers) {
    folder_.write(L"view.bat", "@echo %~nx1>\"" + qk::to_utf8(folder_.file(L"seen.txt")) + "\"\r\n");
    const Variable viewer(L"ZR_VIEWER", folder_.file(L"view.bat"));
    target_ = folder_.file(L"made.pdf");
    settings_.general()->OpenPDF = ps::General_impl::kOpen;
    ASSERT_EQ(run(), kDone);
    for (int wait = 0; wait < 100 && !TempFolder::read(folder_.file(L"seen.txt")).starts_with("made.pdf");
         ++wait)
        Sleep(50);
    EXPECT_TRUE(TempFolder::read(folder_.file(L"seen.txt")).starts_with("made.pdf"));
}

TEST(RenderFonts, WhatThePdfLacks) {
    const std::string kept =
        R"(,"obj:2 0 R":{"value":{"/Type":"/FontDescriptor","/FontName":"/B","/FontFile2":"3 0 R"}})";
    const struct {
        const char* label;
        const char* object;
        const char* parameters;
        const char* missing;
    } rows[] = {
        {"without its file", R"("/Type":"/FontDescriptor","/FontName":"/A")", "/NeverEmbed [ ]", "A"},
        {"not wanted", R"("/Type":"/FontDescriptor","/FontName":"/A")", "/NeverEmbed [ /A ]", ""},
        {"not listed", R"("/Type":"/FontDescriptor","/FontName":"/A")",
         "/EmbedAllFonts false /AlwaysEmbed [ /B ]", ""},
        {"without a description", R"("/Type":"/Font","/Subtype":"/Type1","/BaseFont":"/C")",
         "/NeverEmbed [ ]", "C"},
        {"drawn in the PDF", R"("/Type":"/Font","/Subtype":"/Type3")", "/NeverEmbed [ ]", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(companions::render::missing_font(std::string(R"({"qpdf":[{},{"obj:1 0 R":{"value":{)") +
                                                       row.object + "}}" + kept + "}]}",
                                                   row.parameters),
                  row.missing)
            << row.label;
}

// One darker pixel in the middle of light ones: what it becomes.
TEST(RenderPictures, FiltersComeBeforeTheThreshold) {
    using namespace companions::render;
    const struct {
        uint32_t filter;
        uint8_t middle;
        int black;
    } rows[] = {{0, 100, 1}, {0, 150, 0}, {1, 100, 0}, {2, 150, 1}, {2, 170, 0}, {3, 170, 1}, {4, 100, 0}};
    for (const auto& row : rows) {
        GreyPicture picture{5, 5, std::vector<uint8_t>(25, 200)};
        picture.pixels[12] = row.middle;
        PictureWork work;
        work.filter = row.filter;
        make_black_and_white(picture, work);
        EXPECT_EQ(std::ranges::count(picture.pixels, 0), row.black) << row.filter << ' ' << int{row.middle};
    }
}

}  // namespace
