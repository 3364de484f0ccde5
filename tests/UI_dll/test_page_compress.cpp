#include <gtest/gtest.h>

#include "resources/ids.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;

constexpr PageIndex kPage = kCompressPage;

class CompressPage : public EditSheet {};

TEST_F(CompressPage, GreysWhatTheChoicesDoNotUse) {
    struct {
        int mode, method, sampling;  // mode: 0 colour, 1 grey, 2 monochrome
        bool any, quality, resolutions;
    } const rows[] = {
        {IDC_COLOR_MODE_COLOR, 0, 2, true, true, true},   {IDC_COLOR_MODE_COLOR, 1, 3, true, true, true},
        {IDC_COLOR_MODE_COLOR, 2, 0, true, false, false}, {IDC_COLOR_MODE_COLOR, 4, 1, true, false, true},
        {IDC_COLOR_MODE_GRAY, 0, 2, false, false, false}, {IDC_COLOR_MODE_MONO, 1, 1, false, false, false},
    };
    show([&] {
        for (const auto& row : rows) {
            SCOPED_TRACE(&row - rows);
            go_to(kColorPage);
            click(kColorPage, row.mode);
            go_to(kPage);
            choose(kPage, IDC_CMP_COLOUR + CMP_METHOD, row.method);
            choose(kPage, IDC_CMP_COLOUR + CMP_SAMPLING, row.sampling);
            EXPECT_EQ(enabled(kPage, IDC_CMP_COLOUR + CMP_METHOD), row.any);
            EXPECT_EQ(enabled(kPage, IDC_CMP_COLOUR + CMP_QUALITY), row.quality);
            EXPECT_EQ(enabled(kPage, IDC_CMP_COLOUR + CMP_THRESHOLD), row.resolutions);
            EXPECT_EQ(enabled(kPage, IDC_CMP_COLOUR + CMP_TARGET), row.resolutions);
            EXPECT_EQ(enabled(kPage, IDC_CMP_GREY + CMP_METHOD), row.mode != IDC_COLOR_MODE_MONO);
            EXPECT_TRUE(enabled(kPage, IDC_CMP_MONO + CMP_METHOD));
        }
    });
}

TEST_F(CompressPage, NumbersThatDoNotGoTogetherKeepThePageOpen) {
    struct {
        int method, sampling;
        const wchar_t *quality, *threshold, *target;
        UINT message;  // 0: accepted
        int focus;
    } const rows[] = {
        {1, 2, L"100", L"150", L"150", 0, 0},
        {1, 2, L"100", L"149", L"150", IDS_CMP_TARGET_ABOVE, CMP_TARGET},
        {1, 2, L"101", L"150", L"150", IDS_CMP_BAD_QUALITY, CMP_QUALITY},
        {1, 2, L"", L"150", L"150", IDS_CMP_BAD_QUALITY, CMP_QUALITY},
        {2, 2, L"101", L"24000", L"10", 0, 0},
        {2, 2, L"0", L"24001", L"10", IDS_CMP_BAD_RESOLUTION, CMP_THRESHOLD},
        {2, 2, L"0", L"100", L"9", IDS_CMP_BAD_RESOLUTION, CMP_TARGET},
        {2, 0, L"0", L"9", L"x", 0, 0},
    };
    show([&] {
        for (const auto& row : rows) {
            SCOPED_TRACE(&row - rows);
            go_to(kPage);
            choose(kPage, IDC_CMP_GREY + CMP_METHOD, row.method);
            choose(kPage, IDC_CMP_GREY + CMP_SAMPLING, row.sampling);
            type(kPage, IDC_CMP_GREY + CMP_QUALITY, row.quality);
            type(kPage, IDC_CMP_GREY + CMP_THRESHOLD, row.threshold);
            type(kPage, IDC_CMP_GREY + CMP_TARGET, row.target);
            expect_check(kPage, row.message, IDC_CMP_GREY + row.focus);
        }
    });
}

}  // namespace
