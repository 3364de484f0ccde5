#include "companions/render/mark_drawing.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <vector>

#include "UI_dll/PDFSettings/preview/picture_file.h"
#include "common/qk/gdi_handle.h"
#include "common/qk/text.h"
#include "companions/render/ascii85.h"

namespace companions::render {

namespace {

constexpr int kUnits = 1000;      // of the font's height, in which its outlines are taken
constexpr UINT kMostSide = 1600;  // of a picture, pixels
constexpr double kPointsPerMm = 72 / 25.4;

// A share of a colour's part, lighter where the paper is to shine through.
uint8_t lightened(uint8_t part, const ps::Watermark_impl& watermark, bool opaque) {
    const unsigned percent = opaque ? std::min(watermark.Transparency, 100u) : 0;
    return static_cast<uint8_t>(part + (255 - part) * percent / 100);
}

std::string colour(const ps::Watermark_impl& watermark, bool opaque) {
    const auto part = [&](int shift) {
        return lightened(static_cast<uint8_t>(watermark.TextColor >> shift), watermark, opaque) / 255.0;
    };
    char text[64];
    std::snprintf(text, sizeof text, "%.3f %.3f %.3f setrgbcolor\n", part(0), part(8), part(16));
    return text;
}

// The path that the device context holds, turned to have its origin at the lower left.
std::string outlines(HDC dc, LONG height) {
    const int count = GetPath(dc, nullptr, nullptr, 0);
    if (count <= 0)
        return {};
    std::vector<POINT> points(static_cast<size_t>(count));
    std::vector<BYTE> kinds(points.size());
    if (GetPath(dc, points.data(), kinds.data(), count) != count)
        return {};
    std::string path;
    unsigned of_curve = 0;  // a curve has three points
    for (size_t i = 0; i < points.size(); ++i) {
        char text[48];
        std::snprintf(text, sizeof text, "%ld %ld ", points[i].x, height - points[i].y);
        path += text;
        const int kind = kinds[i] & ~PT_CLOSEFIGURE;
        if (kind == PT_BEZIERTO)
            path += ++of_curve % 3 == 0 ? "curveto\n" : "";
        else
            path += kind == PT_MOVETO ? "moveto\n" : "lineto\n";
        if ((kinds[i] & PT_CLOSEFIGURE) != 0)
            path += "closepath\n";
    }
    return path;
}

std::optional<MarkDrawing> draw_text(const ps::Watermark_impl& watermark, bool opaque) {
    constexpr size_t kMostText = 1000;
    const std::wstring text = watermark.Text.substr(0, kMostText);
    const qk::DeviceContext dc(CreateCompatibleDC(nullptr));
    LOGFONTW wanted = {};
    wanted.lfHeight = -kUnits;
    wanted.lfCharSet = DEFAULT_CHARSET;
    wanted.lfOutPrecision = OUT_TT_PRECIS;
    qk::copy_zero_padded(wanted.lfFaceName, std::size(wanted.lfFaceName), watermark.FontName);
    const qk::Font font(CreateFontIndirectW(&wanted));
    if (!dc || !font)
        return std::nullopt;
    const qk::Selected selected(dc.get(), font.get());
    SetBkMode(dc.get(), TRANSPARENT);
    SIZE size = {};
    GetTextExtentPoint32W(dc.get(), text.c_str(), static_cast<int>(text.size()), &size);
    BeginPath(dc.get());
    TextOutW(dc.get(), 0, 0, text.c_str(), static_cast<int>(text.size()));
    EndPath(dc.get());
    const std::string path = outlines(dc.get(), size.cy);
    if (path.empty() || size.cx <= 0)
        return std::nullopt;
    MarkDrawing mark;
    mark.fits = watermark.FontSize == 0;
    const double scale = (mark.fits ? 100 : watermark.FontSize) / double{kUnits};
    mark.width = size.cx * scale;
    mark.height = size.cy * scale;
    char start[48];
    std::snprintf(start, sizeof start, "%.4f dup scale newpath\n", scale);
    mark.drawing = colour(watermark, opaque) + start + path + "fill";
    return mark;
}

// The bitmap's pixels from top to bottom, four bytes each with premultiplied alpha.
std::vector<uint8_t> pixels_of(const pdf_settings::Picture& picture) {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = picture.pixels.cx;
    info.bmiHeader.biHeight = -picture.pixels.cy;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    std::vector<uint8_t> pixels(static_cast<size_t>(picture.pixels.cx) *
                                static_cast<size_t>(picture.pixels.cy) * 4);
    const qk::DeviceContext dc(CreateCompatibleDC(nullptr));
    if (GetDIBits(dc.get(), picture.bitmap.get(), 0, static_cast<UINT>(picture.pixels.cy), pixels.data(),
                  &info, DIB_RGB_COLORS) != picture.pixels.cy)
        pixels.clear();
    return pixels;
}

// The pixels as red, green and blue, each behind a byte of the mask: what is more than half transparent is
// left out.
std::vector<uint8_t> masked_samples(const std::vector<uint8_t>& pixels, const ps::Watermark_impl& watermark,
                                    bool opaque) {
    std::vector<uint8_t> samples;
    samples.reserve(pixels.size());
    for (size_t at = 0; at < pixels.size(); at += 4) {
        const unsigned alpha = pixels[at + 3];
        samples.push_back(alpha < 128 ? 255 : 0);
        for (const size_t part : {at + 2, at + 1, at}) {
            const unsigned full = alpha == 0 ? 255 : std::min(255u, pixels[part] * 255u / alpha);
            samples.push_back(lightened(static_cast<uint8_t>(full), watermark, opaque));
        }
    }
    return samples;
}

// Takes the mask out where it leaves nothing out; true then.
bool drop_empty_mask(std::vector<uint8_t>& samples) {
    for (size_t at = 0; at < samples.size(); at += 4)
        if (samples[at] != 0)
            return false;
    size_t kept = 0;
    for (size_t i = 0; i < samples.size(); ++i)
        if (i % 4 != 0)
            samples[kept++] = samples[i];
    samples.resize(kept);
    return true;
}

// The picture's PostScript before its samples, whose mask stands between them unless it is `solid`.
std::string picture_head(const MarkDrawing& mark, SIZE pixels, bool solid) {
    const int width = pixels.cx;
    const int height = pixels.cy;
    char text[500];
    std::snprintf(text, sizeof text,
                  "%.2f %.2f scale /DeviceRGB setcolorspace\n"
                  "<< /ImageType 1 /Width %d /Height %d /BitsPerComponent 8 /Decode [0 1 0 1 0 1]\n"
                  "/ImageMatrix [%d 0 0 %d 0 %d] /DataSource currentfile /ASCII85Decode filter >>\n",
                  mark.width, mark.height, width, height, width, -height, height);
    std::string head = text;
    if (!solid) {
        std::snprintf(
            text, sizeof text,
            "<< exch /DataDict exch /ImageType 3 /InterleaveType 1 /MaskDict << /ImageType 1\n"
            "/Width %d /Height %d /BitsPerComponent 8 /Decode [0 1] /ImageMatrix [%d 0 0 %d 0 %d] >> >>\n",
            width, height, width, -height, height);
        head += text;
    }
    return head + "image\n";
}

std::optional<MarkDrawing> draw_picture(const ps::Watermark_impl& watermark, bool opaque) {
    const pdf_settings::Picture picture = pdf_settings::load_picture(watermark.PictureFileName, kMostSide);
    const std::vector<uint8_t> pixels = picture.bitmap ? pixels_of(picture) : std::vector<uint8_t>();
    if (pixels.empty())
        return std::nullopt;
    std::vector<uint8_t> samples = masked_samples(pixels, watermark, opaque);
    const bool solid = drop_empty_mask(samples);
    MarkDrawing mark;
    mark.fits = watermark.PictureScale == ps::Watermark_impl::kNoPictureScale;
    const double percent = mark.fits ? 100 : std::max(watermark.PictureScale, 1u);
    mark.width = picture.width_mm * kPointsPerMm * percent / 100;
    mark.height = picture.height_mm * kPointsPerMm * percent / 100;
    mark.drawing = picture_head(mark, picture.pixels, solid) + to_ascii85(samples);
    return mark;
}

}  // namespace

std::optional<MarkDrawing> draw_watermark(const ps::Watermark_impl& watermark, bool opaque) {
    if (watermark.Style == ps::Watermark_impl::kTextMark)
        return draw_text(watermark, opaque);
    if (watermark.Style == ps::Watermark_impl::kPictureMark)
        return draw_picture(watermark, opaque);
    return MarkDrawing();
}

}  // namespace companions::render
