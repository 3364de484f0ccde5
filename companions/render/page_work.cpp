#include "companions/render/page_work.h"

#include <algorithm>
#include <cstdio>

#include "companions/render/pdfmark.h"

namespace companions::render {

namespace {

// ZRspace leaves the width and the height of the page and counts in points from its lower left corner,
// whichever way it lies. ZRplace goes to the corner of the watermark as the preview of the settings dialog
// places it. ZRpage counts in global memory, since documents restore theirs after each page.
constexpr char kProcedures[] = R"(userdict /ZR 40 dict put
globaldict /ZRpage 0 put
userdict /ZRspace {
  currentpagedevice /HWResolution get aload pop 72 div exch 72 div exch
  0 exch 0 exch 0 0 6 array astore setmatrix
  initclip newpath clippath pathbbox newpath 4 2 roll pop pop
} bind put
userdict /ZRplace {
  ZR begin /h exch def /w exch def
  /angle diagonal { h w atan } { 0 } ifelse def
  /aw mw angle cos mul mh angle sin mul add def
  /ah mw angle sin mul mh angle cos mul add def
  /edge w h 2 copy gt { exch } if pop 20 div def
  /zoom fits { w edge 2 mul sub aw div h edge 2 mul sub ah div 2 copy gt { exch } if pop } { 1 } ifelse def
  [ { edge aw zoom mul 2 div add } { w 2 div } { w edge sub aw zoom mul 2 div sub } ] across get exec
  [ { h edge sub ah zoom mul 2 div sub } { h 2 div } { edge ah zoom mul 2 div add } ] down get exec
  translate angle rotate zoom dup scale mw -2 div mh -2 div translate
  end
} bind put
userdict /ZRlink {
  /Border [0 0 0] /F 4 /Subtype /Link /ANN pdfmark
} bind put
)";

std::string number(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.2f ", value);
    return text;
}

std::string condition(const char* name, bool value) {
    return std::string("/") + name + (value ? " true def\n" : " false def\n");
}

std::string mark_definition(const ps::Watermark_impl& watermark, const MarkDrawing& mark) {
    const auto side = [](uint32_t code) { return std::to_string(std::min(code, 2u)); };
    const double room = mark.height / 2;  // for what letters have outside their box
    return "ZR begin\n/mw " + number(mark.width) + "def /mh " + number(mark.height) + "def\n" +
           condition("fits", mark.fits) +
           condition("diagonal", watermark.Style == ps::Watermark_impl::kTextMark && watermark.DiagonalText) +
           "/across " + side(watermark.HorizontalPosition) + " def /down " +
           side(watermark.VerticalPosition) + " def end\n[ /_objdef {ZRmark} /BBox [ " + number(-room) +
           number(-room) + number(mark.width + room) + number(mark.height + room) + "] /BP pdfmark\n" +
           mark.drawing + "\n[ /EP pdfmark\n";
}

std::string layer_definition(const ps::Watermark_impl& watermark) {
    const char* print = watermark.VisibleInPrint ? "/ON" : "/OFF";
    const char* view = watermark.VisibleInDisplay ? "/ON" : "/OFF";
    return std::string(
               "[ /_objdef {ZRlayer} /type /dict /OBJ pdfmark\n"
               "[ {ZRlayer} << /Type /OCG /Name (Watermark) /Usage << /Print << /PrintState ") +
           print + " >> /View << /ViewState " + view +
           " >> >> >> /PUT pdfmark\n"
           "[ {Catalog} << /OCProperties << /OCGs [{ZRlayer}] /D << /Name (Watermark) /Order [{ZRlayer}] " +
           (watermark.VisibleInDisplay ? "/ON" : "/OFF") +
           " [{ZRlayer}] /AS [ << /Event /Print /Category [/Print] /OCGs [{ZRlayer}] >>"
           " << /Event /View /Category [/View] /OCGs [{ZRlayer}] >> ] >> >> >> /PUT pdfmark\n";
}

std::string draw_mark(const ps::Watermark_impl& watermark, bool transparent, bool layer) {
    std::string drawing = "gsave ZRspace ZRplace\n";
    if (layer)
        drawing += "[ /OC {ZRlayer} /BDC pdfmark\n";
    if (transparent)
        drawing += "systemdict /.setfillconstantalpha known { " +
                   number(1 - std::min(watermark.Transparency, 100u) / 100.0) +
                   ".setfillconstantalpha } if\n";
    drawing += "[ {ZRmark} /SP pdfmark\n";
    return drawing + (layer ? "[ /EMC pdfmark\n" : "") + "grestore\n";
}

// A box as a page mark, between the edges of a page whose width and height are on the stack.
std::string box(const char* name, const ps::Box& margins) {
    const auto points = [](float mm) { return number(static_cast<double>(mm) * 72 / 25.4); };
    return "2 copy " + points(margins.top) + "sub exch " + points(margins.right) + "sub exch\n" +
           points(margins.left) + points(margins.bottom) + "4 2 roll 4 array astore [ exch /" + name +
           " exch /PAGE pdfmark\n";
}

std::string boxes(const ps::PDFVersion_impl& version) {
    const bool press = ps::is_press_standard(version.Version);  // these need a trim box
    std::string marks;
    if (version.UseTrimBox || press)
        marks += box("TrimBox", version.UseTrimBox ? version.TrimBox : ps::Box());
    if (version.UseBleedBox)
        marks += box("BleedBox", version.BleedBox);
    return marks.empty() ? marks : "gsave ZRspace\n" + marks + "pop pop grestore\n";
}

std::string links(const std::vector<std::vector<WebLink>>& pages) {
    std::string procedures;
    for (size_t page = 0; page < pages.size(); ++page) {
        if (pages[page].empty())
            continue;
        procedures += std::to_string(page + 1) + " {\n";
        for (const WebLink& link : pages[page])
            procedures += "[ /Rect [ " + number(link.left) + "ZRh " + number(link.bottom) + "sub " +
                          number(link.right) + "ZRh " + number(link.top) +
                          "sub ] /Action << /Subtype /URI /URI " + postscript_literal(link.address) +
                          " >> ZRlink\n";
        procedures += "}\n";
    }
    return procedures;
}

}  // namespace

bool allows_transparency(uint32_t version) noexcept {
    return version != ps::kPDF13 && version != ps::kPDFA1b &&
           (!ps::is_press_standard(version) || version == ps::kPDFX4);
}

bool allows_layers(uint32_t version) noexcept {
    return version >= ps::kPDF15 && (!ps::is_standard(version) || version == ps::kPDFX4);
}

unsigned page_left(unsigned page, const std::vector<bool>& blank) noexcept {
    const size_t before = std::min<size_t>(page > 0 ? page - 1 : 0, blank.size());
    const auto gone = std::count(blank.begin(), blank.begin() + static_cast<ptrdiff_t>(before), true);
    return page - std::min(page, static_cast<unsigned>(gone));
}

std::string page_work(const ps::Watermark_impl& watermark, const ps::PDFVersion_impl& version,
                      const MarkDrawing& mark, const PagesFound& found) {
    const bool seen = !mark.drawing.empty() && (watermark.VisibleInPrint || watermark.VisibleInDisplay);
    const bool layer =
        seen && watermark.VisibleInPrint != watermark.VisibleInDisplay && allows_layers(version.Version);
    const std::string stamp =
        seen ? draw_mark(watermark, allows_transparency(version.Version), layer) : std::string();
    const bool under = watermark.ZOrder == ps::Watermark_impl::kUnderThePage;
    const std::string annotations =
        ps::is_press_standard(version.Version) ? std::string() : links(found.links);
    std::string blank;
    for (size_t page = 0; page < found.blank.size(); ++page)
        if (found.blank[page])
            blank += std::to_string(page + 1) + " true ";
    const std::string at_end = boxes(version) + (under ? std::string() : stamp);
    if (blank.empty() && annotations.empty() && at_end.empty() && stamp.empty())
        return {};

    std::string work = kProcedures;
    if (layer)
        work += layer_definition(watermark);
    if (seen)
        work += mark_definition(watermark, mark);
    work += "userdict /ZRblank << " + blank + ">> put\nuserdict /ZRlinks << " + annotations + ">> put\n";
    if (under && seen)
        work += "<< /BeginPage { pop\n" + stamp + "} bind >> setpagedevice\n";
    return work +
           "<< /EndPage { exch pop 2 lt {\n"
           "globaldict /ZRpage globaldict /ZRpage get 1 add put\n"
           "ZRblank globaldict /ZRpage get known { false } {\n" +
           at_end +
           "ZRlinks globaldict /ZRpage get 2 copy known { gsave ZRspace userdict /ZRh 3 -1 roll put pop\n"
           "get exec grestore } { pop pop } ifelse\n"
           "true } ifelse } { false } ifelse } bind >> setpagedevice\n";
}

}  // namespace companions::render
