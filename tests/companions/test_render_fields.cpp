// Every field of a print setting that the renderer obeys: what the finished PDF answers.

#include "companions/render/ascii85.h"
#include "companions/render/fonts.h"
#include "companions/render/spool_pictures.h"
#include "companions/wine_layer.h"
#include "support/render_process.h"

namespace {

// A picture as Wine's PostScript driver spools it: run lengths of 1 to 128 bytes, in ASCII.
std::string picture(int left, const char* decode, const char* paint, size_t row, uint8_t (*sample)(size_t)) {
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
           "\n /DataSource currentfile /ASCII85Decode filter /RunLengthDecode filter\n>>\n" + paint + "\n" +
           companions::render::to_ascii85(packed) + "\ngrestore\n";
}

// A page of text with pictures in colour, in grey and in black and white, an empty one, and one of text.
std::string document() {
    constexpr char kText[] =
        "/Courier findfont 12 scalefont setfont 0 0 0 setrgbcolor\n"
        "72 700 moveto (see https://example.org/a) show /germandbls glyphshow (?b=1, or www.test.net.) show\n"
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
// The small picture in black and white stands in the page.
constexpr char kMono[] = "grep -a -o -E '^/BPC 1|^/F */[A-Z][A-Za-z]*|/K -1' \"$1\" | tr -d ' '";
constexpr char kWidths[] = "pdfimages -list \"$1\" | awk 'NR > 2 { print $4 }'";
constexpr char kFonts[] = "pdffonts \"$1\" | awk 'NR > 2 { print $1, $(NF - 4) }' | sed 's/^.*+//'";
const std::string kPasswords =
    R"("Security": {"MasterPassword": "-own er", "UserPassword": "usr", "PDF13_DisallowPrint": false}})";
// The catalogue's entries, where the PDF is as the engine has written it.
constexpr char kCatalogue[] =
    "qpdf --show-object=1 \"$1\" | sed 's/ [0-9]* 0 R//g; s/ .Metadata//; s/ .Pages.*.Type .Catalog//'";
constexpr char kFirstPage[] =
    "n=$(qpdf --show-object=1 \"$1\" | sed 's/.*OpenAction . \\([0-9]*\\) .*/\\1/'); "
    "qpdf --show-pages \"$1\" | sed -n \"s/: $n 0 R//p\"";
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
constexpr char kIdentity[] =
    "qpdf --qdf --object-streams=disable \"$1\" - | grep -a -o -E "
    "\"/S /GTS_PDF[AX]1?|GTS_PDFXVersion[ =].PDF/X-[0-9a:]+|pdfaid:part='[0-9]|/N [34]\" | sort -u";
// How light the grey picture is.
constexpr char kMean[] =
    "pdfimages -png \"$1\" \"$2/x\" && printf %.1f $(identify -format '%[fx:mean]' \"$2/x-001.png\" "
    "2>/dev/null)";
// The colour of a page at a place of it, at 20 dpi.
std::string pixel(const std::string& place) {
    return "pdftoppm -r 20 -f 1 -l 1 \"$1\" | convert 2>/dev/null - -crop 1x1+" + place +
           " -depth 8 txt:- | grep -o '#[0-9A-F][0-9A-F]*'";
}

struct RenderFields : RenderProcess {
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

// What every row starts from: a watermark that is not shown yet, what standards ask for, a permission.
constexpr char kStart[] = R"({"PSComment": [], "General": {"OpenPDF": 0}, "Security": {"PrintPermission": 1},
    "PDFVersion": {"ICCFileName": "Z:\\usr\\share\\color\\icc\\ghostscript\\default_cmyk.icc"},
    "Summary": {"Title": "\u00C9t\u00E9"}, "Addition": {"Str": {"OutputCondition": "FOGRA39"}},
    "Watermark": {"Text": "\u2588\u2588", "FontName": "DejaVu Sans", "FontSize": 100, "DiagonalText": false,
                  "VerticalPosition": 0, "HorizontalPosition": 0, "Transparency": 0}})";

struct Row {
    std::string setting;  // what it says besides; empty: the PDF of the row before is asked once more
    std::string question, answer;
};

// Texts of every script, under a version of PDF and a profile that fits.
std::string hard_texts(int version, const std::string& profile) {
    return R"({"PDFVersion": {"Version": )" + std::to_string(version) +
           R"(, "ICCFileName": "Z:\\usr\\share\\color\\icc\\ghostscript\\)" + profile +
           R"(.icc"}, "Summary": {"Title": "\u65E5\u672C\u8A9E", "Author": "\uD83D\uDDA8 <&",)"
           R"( "Subject": "\uD55C", "Keywords": "k", "Creator": "\u00E9"}})";
}

const std::vector<Row> kRows = {
    {"{}", kInfo, "pages 3 1.7"},
    {"", "qpdf --check-linearization \"$1\" | sed 's/.*: //'", "no linearization errors"},
    {"", "grep -a -c ' Tf$' \"$1\"", "4"},
    {"", kFonts, "Courier yes"},
    {R"({"General": {"NoOutputBlankPage": true}})", kInfo, "pages 2 1.7"},
    {R"({"General": {"URLLink": true}})",
     "qpdf --qdf --object-streams=disable \"$1\" - | grep -a -o '/URI (.*)' | sort | uniq -c",
     "      2 /URI (http://www.test.net)       2 /URI (https://example.org/a%C3%9F?b=1)"},

    {R"({"Compression": {"ASCIIFormat": true}})",
     "test $(grep -a -c 'Filter.*ASCII85Decode' \"$1\") -ge 6; echo $?", "0"},
    {R"({"Compression": {"TextAndLineArt": true}})", "grep -a -c ' Tf$' \"$1\"", "0"},
    {R"({"Compression": {"HighCompress": true}})", "grep -a -o /ObjStm \"$1\" | sort -u", "/ObjStm"},
    {R"({"Compression": {"Color": {"CompressionMethod": 2}, "Gray": {"CompressionMethod": 1},
                         "Mono": {"MonoCompressionMethod": 3}}})",
     kImages, "rgb:8:image gray:8:jpeg -:1:image"},
    {R"({"Compression": {"Mono": {"MonoCompressionMethod": 0}}})", kMono, "/BPC1"},  // as it is
    {R"({"Compression": {"Mono": {"MonoCompressionMethod": 1}}})", kMono, "/BPC1 /F/CCF"},
    {R"({"Compression": {"Mono": {"MonoCompressionMethod": 2}}})", kMono, "/BPC1 /F/CCF /K-1"},
    {R"({"Compression": {"Mono": {"MonoCompressionMethod": 4}}})", kMono, "/BPC1 /F/RL"},
    {R"({"Compression": {"Color": {"CompressionMethod": 1, "JpegQuality": 10},
                         "Gray": {"CompressionMethod": 1, "JpegQuality": 80}}})",
     "pdfimages -j \"$1\" \"$2/x\" && identify -format '%Q ' \"$2/x-000.jpg\" \"$2/x-001.jpg\" 2>/dev/null",
     "10 80"},
    {R"({"Compression": {"Color": {"ResolutionThreshold": 40, "ResolutionTarget": 23},
                         "Gray": {"ResolutionThreshold": 40, "DownSamplingMethod": 0},
                         "Mono": {"ResolutionTarget": 10}}})",  // as far below as the engine takes
     kWidths, "32 64 64"},
    {R"({"Compression": {"Mono": {"ResolutionThreshold": 40, "ResolutionTarget": 23}}})", kWidths,
     "64 64 32"},

    {R"({"Font": {"EmbedBase14": false}})", kFonts, "Courier no"},
    {R"({"Font": {"Fonts": ["Arial", "Courier"]}})", kFonts, "Courier no"},
    {R"({"Font": {"Fonts": ["Courier"], "EmbedFontStyle": 1}})", kFonts, "Courier yes"},
    {R"({"Font": {"Fonts": ["Arial"], "EmbedFontStyle": 1, "WhenFailedToEmbed": 0}})", kFonts, "Courier no"},

    {R"({"PDFVersion": {"Version": 12}, "PSName": "Office", "Summary": {"Title": "\u65E5", "Subject": "S",
        "Author": "A (1) B", "Keywords": "K", "Creator": "C", "EmbedPSFileName": true}})",
     "pdfinfo -custom \"$1\" | sed -n "
     "'s/^\\(Title\\|Subject\\|Author\\|Keywords\\|Creator\\|PrintSetting\\): *//p'",
     "A (1) B C K Office S \u65E5"},
    {"", kInfo, "pages 3 2.0"},

    {hard_texts(ps::kPDF17, "srgb"), kTwice, kTwiceAnswer},
    {hard_texts(ps::kPDFA1b, "srgb"), kTwice, kTwiceAnswer},
    {hard_texts(ps::kPDFX4, "default_cmyk"), kTwice, kTwiceAnswer},

    {R"({"General": {"Linearize": false}, "OpenAction": {"PageLayout": 3, "Binding": 2, "PageAdjust": 2,
        "PageMode": 2, "StartPage": 99, "FullScreen": true, "ShowDocumentTitle": true, "HideMenu": true,
        "HideToolBar": true, "HideWindowControl": true, "FitToPage": true, "CenterWindow": true}})",
     kCatalogue,
     "<< /OpenAction [ /Fit ] /PageLayout /TwoPageLeft /PageMode /FullScreen /ViewerPreferences << "
     "/CenterWindow true /Direction /R2L /DisplayDocTitle true /FitWindow true /HideMenubar true "
     "/HideToolbar true /HideWindowUI true /NonFullScreenPageMode /UseThumbs >> >>"},
    {R"({"General": {"Linearize": false, "NoOutputBlankPage": true}, "OpenAction": {"StartPage": 3}})",
     kFirstPage, "page 2"},

    // Print and annotate; change and annotate; copy.
    {R"({"PDFVersion": {"Version": 0}, )" + kPasswords, kSecurity, "2 -28"},
    {R"({"PDFVersion": {"Version": 0}, "Security": {"UserPassword": "usr", "PDF13_DisallowModify": false}})",
     kSecurity, "2 -24"},
    {R"({"PDFVersion": {"Version": 0}, "Security": {"UserPassword": "usr", "PDF13_DisallowCopy": false,
                                                    "PDF13_DisallowAnnotate": true}})",
     kSecurity, "2 -48"},
    {R"({"PDFVersion": {"Version": 2}, )" + kPasswords, kSecurity, "3 -3132"},
    {R"({"Security": {"MasterPassword": "o", "UserPassword": "usr", "Level": 0}})", kSecurity, "3 -3132"},
    {R"({"Security": {"MasterPassword": "o", "UserPassword": "usr", "AllowCopyContent": true,
                      "AllowAccessFromScreenReader": false}})",
     kSecurity, "4 -3116 AESv2"},  // copying reads aloud too
    {R"({"Security": {"MasterPassword": "-own er", "UserPassword": "usr", "Level": 5, "EditPermission": 5,
                      "AllowCopyContent": true, "PrintPermission": 2}})",
     kSecurity, "6 -4 AESv3"},
    {"", "qpdf --password-file=\"$2/pw\" --check-linearization \"$1\" | sed 's/.*: //'",
     "no linearization errors"},
    {R"({"PDFVersion": {"Version": 12}, "Security": {"MasterPassword": "x", "UserPassword": "\u65E5"}})",
     kSecurityOther, "6"},

    {R"({"PDFVersion": {"UseTrimBox": true, "UseBleedBox": true,
        "TrimBox": {"left": 25.4, "top": 50.8, "right": 25.4, "bottom": 12.7},
        "BleedBox": {"left": 12.7, "top": 12.7, "right": 12.7}}})",
     "pdfinfo -box \"$1\" | awk '/TrimBox|BleedBox/ { print $1, $2, $3, $4, $5 }'",
     "BleedBox: 36.00 0.00 576.00 756.00 TrimBox: 72.00 36.00 540.00 648.00"},
    {R"({"PDFVersion": {"Version": 5,
                        "ICCFileName": "Z:\\usr\\share\\color\\icc\\ghostscript\\srgb.icc"}})",
     kIdentity, "/N 3 /S /GTS_PDFA1 pdfaid:part='1"},
    {"", kInfo, "pages 3 1.4"},
    {"",  // ends of streams on lines of their own, the dates' form
     "grep -a -v '^endstream' \"$1\" | grep -a -c endstream; pdfinfo -rawdates \"$1\" | grep -c 'Date: .*Z$'",
     "0 2"},
    {R"({"PDFVersion": {"Version": 11}})", kIdentity, "/N 4 /S /GTS_PDFA1 pdfaid:part='2"},
    {R"({"PDFVersion": {"Version": 6}, "Color": {"BlackToK100": true}})", kIdentity,
     "/N 4 /S /GTS_PDFX GTS_PDFXVersion (PDF/X-1:2001"},
    {"",  // no black of four inks
     "qpdf --qdf --object-streams=disable \"$1\" - | grep -a -x -E "
     "'0 g|0\\.[0-9]+ 0\\.[0-9]+ 0\\.[0-9]+ 0\\.[1-9][0-9]* k' | sort -u",
     "0 g"},
    {R"({"PDFVersion": {"Version": 7}})", kIdentity, "/N 4 /S /GTS_PDFX GTS_PDFXVersion (PDF/X-1a:2003"},
    {R"({"PDFVersion": {"Version": 8}})", kIdentity, "/N 4 /S /GTS_PDFX GTS_PDFXVersion (PDF/X-3:2002"},
    {R"({"PDFVersion": {"Version": 9}})", kIdentity, "/N 4 /S /GTS_PDFX GTS_PDFXVersion (PDF/X-3:2003"},
    {R"({"PDFVersion": {"Version": 10}})", kIdentity, "/N 4 /S /GTS_PDFX GTS_PDFXVersion='PDF/X-4"},
    {R"({"PDFVersion": {"Version": 7, "ICCFileName": "Z:\\usr\\share\\color\\icc\\ghostscript\\ps_cmyk.icc"}})",
     "qpdf --qdf --object-streams=disable \"$1\" - | grep -a -o '^0.561 .* k$' | sort -u",
     "0.561 0.886 0.973 0 k"},  // the red by this profile

    {R"({"Watermark": {"Style": 1, "VisibleInPrint": false}})", pixel("20+20"), "#FF0000"},
    {"",
     "qpdf --qdf --object-streams=disable \"$1\" - | grep -a -A1 -E '/(Print|View)State' | grep -a -o "
     "'/[A-Z].*'",
     "/PrintState /OFF /ViewState /ON"},
    {R"({"Watermark": {"Style": 1, "FontSize": 150, "ZOrder": 1}})", pixel("30+46") + " | cut -c1-2", "#C"},
    {R"({"Watermark": {"Style": 1, "VerticalPosition": 2, "HorizontalPosition": 2, "Transparency": 50,
                       "TextColor": 16711680}})",
     pixel("145+205"), "#7F7FFF"},
    {R"({"Watermark": {"Style": 1, "VerticalPosition": 1, "HorizontalPosition": 1, "DiagonalText": true}})",
     pixel("93+93"), "#FF0000"},           // above what stands upright there
    {R"({"Watermark": {"Style": 1, "VerticalPosition": 2, "HorizontalPosition": 2, "Transparency": 50},
         "PDFVersion": {"Version": 0}})",  // which has no transparency
     pixel("145+205"), "#FF7F7F"},

    {R"({"Color": {"ColorMode": 1}})", kImages, "gray:8:image gray:8:image -:1:ccitt"},
    {R"({"Color": {"ColorMode": 1, "GrayDecreasingMethod": 2}})", pixel("30+46") + " | cut -c1-2", "#7"},
    {R"({"Color": {"ColorMode": 2}})", kImages, "gray:1:ccitt gray:1:ccitt -:1:ccitt"},
    {"", pixel("30+46"), "#000000"},
    {R"({"Color": {"ColorMode": 2, "MonoTextAndPassThreshold": 20}})", pixel("30+46"), "#FFFFFF"},
    {R"({"Color": {"ColorMode": 2, "MonoImageThreshold": 0}})", kMean, "1.0"},
    {R"({"Color": {"ColorMode": 2, "MonoImageThreshold": 0, "MonoDecreasingMethod": 1}})",  // dithers
     kMean, "0.5"},
};

TEST_F(RenderFields, EveryRow) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.question);
        if (!row.setting.empty()) {
            settings_ = {};
            ASSERT_EQ(settings_.LoadPS4(kStart, false), ps::kLoaded);
            ASSERT_EQ(settings_.LoadPS4(row.setting, true), ps::kLoaded);
            folder_.write(L"job.ps", document());
            EXPECT_EQ(run(), kDone) << qk::to_utf8(message());
        }
        EXPECT_EQ(ask(row.question), row.answer) << row.setting;
    }
}

TEST_F(RenderFields, StandardThatCannotBeMet) {
    constexpr wchar_t kProfile[] = L"Z:\\usr\\share\\color\\icc\\ghostscript\\srgb.icc";
    settings_.pdfVersion()->Version = ps::kPDFA1b;
    // Whether the job stops, the profile, the renderer's answer and error.
    const std::tuple<bool, const wchar_t*, int, uint32_t> rows[] = {{true, kProfile, kFailed, 1013},
                                                                    {false, L"C:\\none.icc", kFailed, 1013},
                                                                    {false, kProfile, kDone, 0}};
    for (const auto& [stops, profile, code, wanted] : rows) {
        folder_.write(L"job.ps", "%!PS\n[ /Rect [0 0 9 9] /Subtype /Movie /ANN pdfmark showpage\n");
        settings_.pdfVersion()->ICCFileName = profile;
        settings_.pdfVersion()->WhenErroredPDFAX =
            stops ? ps::PDFVersion_impl::kStop : ps::PDFVersion_impl::kContinue;
        EXPECT_EQ(run(), code);
        EXPECT_EQ(error(), wanted);
    }
    EXPECT_EQ(ask("grep -a -c pdfaid \"$1\""), "0") << "an ordinary PDF";
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
    EXPECT_EQ(ask(pixel("85+90") + "; " + pixel("85+140")), "#0000FF #00FF00");
    watermark.PictureScale = 6400;
    folder_.write(L"job.ps", kTwoPages);
    ASSERT_EQ(run(), kDone);
    EXPECT_EQ(ask(pixel("85+107") + "; " + pixel("85+140")), "#0000FF #FFFFFF");
}

TEST_F(RenderFields, ViewerIsToldOfThePdf) {
    const std::wstring seen = folder_.file(L"seen.txt");
    folder_.write(L"view.bat", "@echo %~nx1>\"" + qk::to_utf8(seen) + "\"\r\n");
    const Variable viewer(L"ZR_VIEWER", folder_.file(L"view.bat"));
    target_ = folder_.file(L"made.pdf");
    settings_.general()->OpenPDF = ps::General_impl::kOpen;
    ASSERT_EQ(run(), kDone);
    for (int wait = 0; wait < 100 && !TempFolder::read(seen).starts_with("made.pdf"); ++wait)
        Sleep(50);
    EXPECT_TRUE(TempFolder::read(seen).starts_with("made.pdf"));
}

TEST(RenderFonts, WhatThePdfLacks) {
    const std::string kept =
        R"(,"obj:2 0 R":{"value":{"/Type":"/FontDescriptor","/FontName":"/B","/FontFile2":"3 0 R"}})";
    constexpr char kFile[] = R"("/Type":"/FontDescriptor","/FontName":"/A")";
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {kFile, "/NeverEmbed [ ]", "A"},
        {kFile, "/NeverEmbed [ /A ]", ""},
        {kFile, "/EmbedAllFonts false /AlwaysEmbed [ /B ]", ""},
        {R"("/Type":"/Font","/Subtype":"/Type1","/BaseFont":"/C")", "/NeverEmbed [ ]", "C"},  // not described
        {R"("/Type":"/Font","/Subtype":"/Type3")", "/NeverEmbed [ ]", ""}};  // drawn in the PDF
    for (const auto& [object, parameters, missing] : rows)
        EXPECT_EQ(
            companions::render::missing_font(
                R"({"qpdf":[{},{"obj:1 0 R":{"value":{)" + (object + ("}}" + kept)) + "}]}", parameters),
            missing)
            << object << parameters;
}

// One darker pixel in the middle of light ones: what it becomes.
TEST(RenderPictures, FiltersComeBeforeTheThreshold) {
    using namespace companions::render;
    const std::tuple<uint32_t, uint8_t, int> rows[] = {{0, 100, 1}, {1, 100, 0}, {2, 150, 1}, {4, 100, 0}};
    for (const auto& [filter, middle, black] : rows) {
        GreyPicture picture{5, 5, std::vector<uint8_t>(25, 200)};
        picture.pixels[12] = middle;
        PictureWork work;
        work.filter = filter;
        make_black_and_white(picture, work);
        EXPECT_EQ(std::ranges::count(picture.pixels, 0), black) << filter << ' ' << int{middle};
    }
}

}  // namespace
