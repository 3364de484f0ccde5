// The Colour page.
#include <gtest/gtest.h>

#include <cstdint>

#include "resources/ids.h"
#include "support/profile_folder.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;

constexpr PageIndex kPage = kColorPage;

class ColorPage : public EditSheet {};

TEST_F(ColorPage, ModeAndMethodDecideWhatIsGreyed) {
    struct {
        int mode, method;
        bool grey, mono, image_threshold;
    } const rows[] = {{4902, 0, false, false, true},
                      {4902, 1, false, false, false},
                      {4903, 0, true, false, true},
                      {4904, 0, true, true, true},
                      {4904, 1, true, true, false}};
    setting().color()->ColorMode = 2;
    setting().color()->MonoDecreasingMethod = 1;
    show([&] {
        go_to(kPage);
        EXPECT_TRUE(enabled(kPage, 4912) && !enabled(kPage, 4909));  // as stored, nothing clicked
        for (const auto& row : rows) {
            click(kPage, row.mode);
            choose(kPage, 4907, row.method);
            EXPECT_EQ(enabled(kPage, 4906), row.grey) << row.mode;
            for (const int id : {4907, 4910, 4911, 4912})
                EXPECT_EQ(enabled(kPage, id), row.mono) << row.mode << ' ' << id;
            for (const int id : {4908, 4909})
                EXPECT_EQ(enabled(kPage, id), row.image_threshold) << row.mode << ' ' << id;
        }
    });
}

TEST_F(ColorPage, ThresholdsKeepToTheirRange) {
    show([] {
        go_to(kPage);
        click(kPage, 4904);
        type(kPage, 4911, L"300");
        EXPECT_EQ(text(kPage, 4911), L"255");
        for (const wchar_t* none : {L"-5", L"", L"x"}) {
            type(kPage, 4909, L"7");
            type(kPage, 4909, none);
            EXPECT_EQ(text(kPage, 4909), L"0");
        }
        EXPECT_EQ(SendMessageW(control(kPage, 4908), UDM_GETRANGE, 0, 0), MAKELRESULT(255, 0));
        press_apply();
    });
    EXPECT_EQ(setting().color()->MonoImageThreshold, 0);
    EXPECT_EQ(setting().color()->MonoTextAndPassThreshold, 255);
}

TEST_F(ColorPage, BlackNeedsACmykOutputProfile) {
    const ProfileFolder profiles;
    profiles.add(L"press.icc", "CMYK", "prtr", "Press");
    profiles.add(L"photo.icc", "RGB ", "prtr", "Photo");
    struct {
        const wchar_t* profile;
        uint32_t version;
        bool offered;
    } const rows[] = {{L"press.icc", 4, false},  {L"press.icc", 5, true},     {L"press.icc", 10, true},
                      {L"photo.icc", 10, false}, {L"missing.icc", 12, false}, {L"press.icc", 12, true}};
    setting().color()->BlackToK100 = true;
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        setting().pdfVersion()->Version = row.version;
        setting().pdfVersion()->ICCFileName = row.profile;
        show([&] {
            go_to(kPage);
            EXPECT_EQ(enabled(kPage, 4905), row.offered);
            EXPECT_EQ(enabled(kPage, 4901), row.offered);
            press_apply();
        });
        EXPECT_TRUE(setting().color()->BlackToK100);  // greyed or not
    }
}

TEST_F(ColorPage, ComingBackFollowsTheVersionPage) {
    const ProfileFolder profiles;
    profiles.add(L"press.icc", "CMYK", "prtr", "Press");
    show([] {
        go_to(kPage);
        EXPECT_FALSE(enabled(kPage, 4905));
        go_to(kPDFVersionPage);
        choose_version(6);
        choose(kPDFVersionPage, IDC_PV_PROFILE, 0);
        go_to(kPage);
        EXPECT_TRUE(enabled(kPage, 4905));
    });
}

}  // namespace
