// The drawing of the page that a setting makes.

#include <cmath>

#include "UI_dll/PDFSettings/preview/page_drawing.h"
#include "UI_dll/PDFSettings/preview/view_box.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;

TEST(ViewBoxRules, PageFollowsPaperAndOrientation) {
    constexpr Extent kA3 = {297, 420};
    const std::tuple<const char*, int32_t, int32_t, std::optional<Extent>, float, Extent> rows[] = {
        {"own size", 0, 0, {}, 100, {100, 297}},
        {"the form's size", 0, 0, kA3, 100, kA3},
        {"turned form", 0, 1, kA3, 100, {420, 297}},
        {"a custom size is not turned", 1, 1, kA3, 100, {100, 297}},
        {"no number", 1, 0, {}, NAN, {1, 297}}};
    for (const auto& [label, type, orientation, form, width, wanted] : rows) {
        ps::General_impl general;
        general.PaperType = type;
        general.PaperOrientation = orientation;
        general.PaperWidth = width;
        const Extent page = page_extent(general, form);
        EXPECT_EQ(std::pair(page.width, page.height), std::pair(wanted.width, wanted.height)) << label;
    }
    for (const auto& [width, height] : {std::pair{0, 0}, {3, 500}, {101, 160}}) {
        const RECT place = fit_page({210, 297}, width, height);
        EXPECT_TRUE(place.left < place.right && place.top < place.bottom);
    }
    EXPECT_FALSE(box_on_page({100, 0, 110, 0}, {0, 0, 210, 297}, 1));
    const RECT box = box_on_page({1, 2, 3, -1e30f}, {0, 0, 210, 297}, 2).value();
    EXPECT_EQ(std::pair(box.left, box.right), std::pair(LONG{2}, LONG{204}));
}

// The page of the loaded setting, drawn into a bitmap whose bits can be read.
struct PageDrawing : EditSheet {
    static constexpr int kWidth = 216;  // with the shadow's room the page is 210 x 297
    static constexpr int kHeight = 303;

    PageDrawing() {
        const BITMAPINFO info = {{sizeof info.bmiHeader, kWidth, -kHeight, 1, 32, BI_RGB}};
        bitmap.reset(
            CreateDIBSection(dc.get(), &info, DIB_RGB_COLORS, reinterpret_cast<void**>(&bits), nullptr, 0));
        mark.Style = 1;
        mark.Transparency = 0;
        setting().general()->Scale = 10;  // the contents keep out of the way
    }
    // Where the drawing has the watermark's red.
    struct Red {
        RECT around = {kWidth, kHeight, 0, 0};
        [[nodiscard]] bool is_none() const { return around.right == 0; }
        [[nodiscard]] LONG width() const { return around.right - around.left; }
        [[nodiscard]] LONG height() const { return around.bottom - around.top; }
    };
    Red draw() {
        const qk::Selected selected(dc.get(), bitmap.get());
        Setting shown = setting();
        *shown.watermark() = mark;
        draw_page(dc.get(), {0, 0, kWidth, kHeight}, GetSysColorBrush(COLOR_BTNFACE), shown);
        GdiFlush();
        Red red;
        for (LONG y = 0; y < kHeight; ++y)
            for (LONG x = 0; x < kWidth; ++x) {
                const uint32_t pixel = bits[y * kWidth + x];
                if ((pixel >> 16 & 0xFF) >= (pixel & 0xFF) + 32)
                    red.around = {std::min(red.around.left, x), std::min(red.around.top, y),
                                  std::max(red.around.right, x), std::max(red.around.bottom, y)};
            }
        return red;
    }

    qk::DeviceContext dc{CreateCompatibleDC(nullptr)};
    qk::Bitmap bitmap;
    uint32_t* bits = nullptr;
    ps::Watermark_impl mark;
};

TEST_F(PageDrawing, WatermarkLiesWhereItIsAsked) {
    mark.DiagonalText = false;
    mark.FontSize = 30;
    mark.Text = L"MM";
    for (uint32_t place = 0; place < 9; ++place) {
        mark.HorizontalPosition = place % 3;
        mark.VerticalPosition = place / 3;
        const Red red = draw();
        ASSERT_FALSE(red.is_none());
        const auto third = [](LONG first, LONG last, int side) { return (first + last) / 2 * 3 / side; };
        EXPECT_EQ(third(red.around.left, red.around.right, kWidth), static_cast<LONG>(place % 3));
        EXPECT_EQ(third(red.around.top, red.around.bottom, kHeight), static_cast<LONG>(place / 3));
    }
}

TEST_F(PageDrawing, PictureIsDrawnInItsOwnColoursAndSize) {
    // Two by two red pixels, at 2 per 25.4 mm.
    std::string file(
        "BM\x46\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\2\0\0\0\1\0\x18\0\0\0\0\0\x10\0\0\0"
        "\x4f\0\0\0\x4f\0\0\0\0\0\0\0\0\0\0\0\0\0\xff\0\0\xff\0\0\0\0\xff\0\0\xff\0\0",
        70);
    mark.Style = 2;
    mark.PictureScale = 200;
    for (const char pixels_per_metre : {'\x4f', '\x9e'}) {  // in height: as in width, and twice as many
        file[42] = pixels_per_metre;
        mark.PictureFileName = here.folder.write(std::to_wstring(pixels_per_metre) + L".bmp", file);
        const Red red = draw();
        EXPECT_NEAR(red.width(), 51, 3);
        EXPECT_NEAR(red.height(), pixels_per_metre == '\x4f' ? 51 : 25, 3);
    }
    mark.PictureScale = ps::Watermark_impl::kNoPictureScale;
    EXPECT_NEAR(draw().width(), 189, 4);
    mark.PictureFileName = here.folder.write(L"broken.bmp", file.substr(0, 20));
    EXPECT_TRUE(draw().is_none());
}

}  // namespace
