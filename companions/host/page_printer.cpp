#include "companions/host/page_printer.h"

#include <algorithm>

#include "common/qk/text.h"

namespace host {

namespace {

constexpr int kBorder = 200;  // tenths of a millimetre
constexpr int kTenthsPerInch = 254;
constexpr int kFontPoints = 10;
constexpr int kPointsPerInch = 72;

// No line of a page is longer; measuring more of an endless line would cost its square.
constexpr size_t kMostUnitsPerLine = 1000;

// Tried in this order; a system has at least one of them.
constexpr const wchar_t* kFaces[] = {L"DejaVu Sans Mono", L"Liberation Mono", L"Consolas", L"Courier New"};

int CALLBACK note_found(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM found) noexcept {
    *reinterpret_cast<bool*>(found) = true;
    return 0;
}

bool has_face(HDC context, const wchar_t* face) noexcept {
    LOGFONTW wanted = {};
    wanted.lfCharSet = DEFAULT_CHARSET;
    lstrcpynW(wanted.lfFaceName, face, LF_FACESIZE);
    bool found = false;
    EnumFontFamiliesExW(context, &wanted, &note_found, reinterpret_cast<LPARAM>(&found), 0);
    return found;
}

qk::Font create_font(HDC context) noexcept {
    const auto face = std::ranges::find_if(kFaces, [context](auto* name) { return has_face(context, name); });
    LOGFONTW font = {};
    font.lfHeight = -MulDiv(kFontPoints, GetDeviceCaps(context, LOGPIXELSY), kPointsPerInch);
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
    if (face != std::end(kFaces))
        lstrcpynW(font.lfFaceName, *face, LF_FACESIZE);
    return qk::Font(CreateFontIndirectW(&font));
}

// The part of the printable area that keeps the borders from the paper's edges.
RECT text_area(HDC context) noexcept {
    const auto inside = [context](int resolution, int offset, int paper, int printable) {
        const int border = MulDiv(kBorder, GetDeviceCaps(context, resolution), kTenthsPerInch);
        const int near_edge = std::max(border - GetDeviceCaps(context, offset), 0);
        const int far_edge = GetDeviceCaps(context, paper) - border - GetDeviceCaps(context, offset);
        return std::pair(near_edge, std::min(far_edge, GetDeviceCaps(context, printable)));
    };
    const auto [left, right] = inside(LOGPIXELSX, PHYSICALOFFSETX, PHYSICALWIDTH, HORZRES);
    const auto [top, bottom] = inside(LOGPIXELSY, PHYSICALOFFSETY, PHYSICALHEIGHT, VERTRES);
    return {left, top, right, bottom};
}

void draw_text(HDC context, int x, int y, const std::wstring& text) noexcept {
    TextOutW(context, x, y, text.c_str(), static_cast<int>(text.size()));
}

}  // namespace

PagePrinter::PagePrinter(HDC context)
    : context_(context),
      font_(create_font(context)),
      selected_(context, font_.get()),
      area_(text_area(context)) {
    TEXTMETRICW metrics = {};
    GetTextMetricsW(context_, &metrics);
    line_height_ = std::max<int>(metrics.tmHeight + metrics.tmExternalLeading, 1);
    footer_top_ = area_.bottom - line_height_;
}

PageLayout PagePrinter::layout() const {
    const int text_bottom = footer_top_ - line_height_;  // an empty line above the page number
    const int lines = (text_bottom - area_.top) / line_height_;
    return {static_cast<size_t>(std::max(lines, 1)),
            [this](std::wstring_view line) { return fitting_units(line); }};
}

size_t PagePrinter::fitting_units(std::wstring_view line) const {
    const std::wstring_view measured = line.substr(0, kMostUnitsPerLine);
    int fits = 0;
    SIZE size = {};
    if (measured.empty() ||
        !GetTextExtentExPointW(context_, measured.data(), static_cast<int>(measured.size()),
                               static_cast<int>(area_.right - area_.left), &fits, nullptr, &size))
        return measured.size();
    return static_cast<size_t>(fits);
}

void PagePrinter::select_font() const {
    SelectObject(context_, font_.get());  // StartPage gives the context its default font back
    SetBkMode(context_, TRANSPARENT);
}

void PagePrinter::draw(const Page& page, size_t number, size_t pages) const {
    select_font();
    int y = area_.top;
    for (const std::wstring& line : page) {
        if (line.find_first_not_of(L' ') != std::wstring::npos)
            draw_text(context_, area_.left, y, line);
        y += line_height_;
    }
    const std::wstring footer = qk::format(L"Page %llu of %llu", number, pages);
    SIZE size = {};
    GetTextExtentPoint32W(context_, footer.c_str(), static_cast<int>(footer.size()), &size);
    draw_text(context_, (area_.left + area_.right - size.cx) / 2, footer_top_, footer);
}

std::wstring PagePrinter::font_face() const {
    wchar_t face[LF_FACESIZE] = {};
    GetTextFaceW(context_, LF_FACESIZE, face);
    return face;
}

}  // namespace host
