// The pages for opening, document, fonts and watermark: what they show, write back, refuse and grey.
#include <gtest/gtest.h>

#include <functional>

#include "resources/ids.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;

class PageValues : public EditSheet {
protected:
    static void expect_sections(const Setting& wanted) {
        EXPECT_EQ(setting().openAction(), wanted.openAction());
        EXPECT_EQ(setting().summary(), wanted.summary());
        EXPECT_EQ(setting().font(), wanted.font());
        EXPECT_EQ(setting().watermark(), wanted.watermark());
    }
};

TEST_F(PageValues, LookingAtOddValuesChangesNone) {
    setting().openAction()->StartPage = 0;
    setting().watermark()->Style = 2;
    setting().watermark()->PictureScale = 0;
    setting().watermark()->PictureFileName = L"Q:\\elsewhere.png";
    setting().font()->EmbedFontStyle = 1;
    const Setting before = setting();
    show([] {
        for (size_t index = 0; index < kPageCount; ++index)
            EXPECT_TRUE(go_to(static_cast<PageIndex>(index))) << index;
        press_apply();
    });
    expect_sections(before);
}

TEST_F(PageValues, WhatCannotBeIsRefusedAndWhatItIsAboutIsTold) {
    constexpr PageIndex kMark = kWaterMarkPage;
    struct {
        const char* label;
        PageIndex index;
        std::function<void()> enter;
        UINT message;  // 0: accepted
        int focus = 0;
    } const rows[] = {
        {"page 0", kOpenActionPage, [] { type(kOpenActionPage, IDC_OPEN_PAGE, L"0"); }, IDS_OPEN_BAD_PAGE,
         IDC_OPEN_PAGE},
        {"page too high", kOpenActionPage, [] { type(kOpenActionPage, IDC_OPEN_PAGE, L"1000001"); },
         IDS_OPEN_BAD_PAGE, IDC_OPEN_PAGE},
        {"no page at all", kOpenActionPage, [] { click(kOpenActionPage, IDC_OPEN_AT_PAGE); }, 0},
        {"only no fonts", kFontPage, [] { click(kFontPage, IDC_FONT_ONLY); }, IDS_FONT_NONE_LISTED,
         IDC_FONT_INSTALLED},
        {"nothing of no watermark", kMark, [] { type(kMark, IDC_MARK_SIZE, L"7"); }, 0},
        {"size below", kMark, [] { click(kMark, IDC_MARK_TEXT); }, IDS_MARK_BAD_SIZE, IDC_MARK_SIZE},
        {"transparency", kMark,
         [] {
             type(kMark, IDC_MARK_SIZE, L"8");
             type(kMark, IDC_MARK_TRANSPARENCY, L"101");
         },
         IDS_MARK_BAD_TRANSPARENCY, IDC_MARK_TRANSPARENCY},
        {"blank text", kMark, [] { type(kMark, IDC_MARK_WORDS, L"  "); }, IDS_MARK_NO_WORDS, IDC_MARK_WORDS},
        {"no picture", kMark, [] { click(kMark, IDC_MARK_PICTURE); }, IDS_MARK_NO_FILE, IDC_MARK_FILE},
        {"lost picture", kMark, [] { type(kMark, IDC_MARK_FILE, L"Q:\\x.png"); }, IDS_MARK_LOST_FILE,
         IDC_MARK_FILE},
        {"scale", kMark,
         [] {
             type(kMark, IDC_MARK_FILE, qk::module_path(nullptr).c_str());
             click(kMark, IDC_MARK_AUTO_SCALE);
             type(kMark, IDC_MARK_SCALE, L"6401");
         },
         IDS_MARK_BAD_SCALE, IDC_MARK_SCALE},
        {"all good", kMark,
         [] {
             type(kMark, IDC_MARK_SCALE, L"6400");
             type(kMark, IDC_MARK_TRANSPARENCY, L"100");
         },
         0},
    };
    show([&] {
        for (const auto& row : rows) {
            SCOPED_TRACE(row.label);
            if (page(row.index) !=
                reinterpret_cast<HWND>(SendMessageW(sheet(), PSM_GETCURRENTPAGEHWND, 0, 0)))
                go_to(row.index);
            row.enter();
            expect_check(row.index, row.message, row.focus);
            if (row.message != 0 && row.index != kMark) {  // the next page's turn
                click(kOpenActionPage, IDC_OPEN_AT_PAGE);
                click(kOpenActionPage, IDC_OPEN_AT_PAGE);
                type(kOpenActionPage, IDC_OPEN_PAGE, L"1");
                click(kFontPage, IDC_FONT_ALL_BUT);
            }
        }
    });
}

TEST_F(PageValues, WhatIsOfNoUseIsGrey) {
    show([] {
        struct {
            int style;
            bool text, picture, both;
        } const styles[] = {{IDC_MARK_NONE, false, false, false},
                            {IDC_MARK_TEXT, true, false, true},
                            {IDC_MARK_PICTURE, false, true, true}};
        for (const auto& row : styles) {
            click(kWaterMarkPage, row.style);
            EXPECT_EQ(enabled(kWaterMarkPage, IDC_MARK_FONT), row.text);
            EXPECT_EQ(enabled(kWaterMarkPage, IDC_MARK_BROWSE), row.picture);
            EXPECT_EQ(enabled(kWaterMarkPage, IDC_MARK_ORDER), row.both);
            EXPECT_FALSE(enabled(kWaterMarkPage, IDC_MARK_SCALE));
        }
        click(kWaterMarkPage, IDC_MARK_AUTO_SCALE);
        EXPECT_TRUE(enabled(kWaterMarkPage, IDC_MARK_SCALE));
        for (int layout = 0; layout < 5; ++layout) {
            choose(kOpenActionPage, IDC_OPEN_LAYOUT, layout);
            EXPECT_EQ(enabled(kOpenActionPage, IDC_OPEN_BINDING), layout != 1 && layout != 2);
        }
        click(kOpenActionPage, IDC_OPEN_AT_PAGE);
        EXPECT_FALSE(enabled(kOpenActionPage, IDC_OPEN_PAGE));
    });
}

TEST_F(PageValues, StandardsThatEmbedEveryFontLeaveNoChoice) {
    show([] {
        for (const auto& [version, choice] : {std::pair{4, true}, {5, false}, {11, false}, {12, true}}) {
            choose(kPDFVersionPage, IDC_PV_VERSION, version);
            kFont.set_active(page(kFontPage));
            EXPECT_EQ(enabled(kFontPage, IDC_FONT_ONLY), choice) << version;
        }
        choose(kPDFVersionPage, IDC_PV_VERSION, 4);
    });
}

TEST_F(PageValues, DocumentPageKeepsWhatItHasNotLoadedAndWhatWasTyped) {
    setting().summary()->Title = L"Kept";
    show([] {
        const HWND info = page(kInfoPage);
        SendMessageW(info, WM_APP + 44, 0, 0);
        EXPECT_EQ(text(kInfoPage, IDC_INFO_TITLE), L"Kept");
        EXPECT_EQ(text(kInfoPage, IDC_NAME), L"Tested");
        type(kInfoPage, IDC_INFO_TITLE, L"Typed");
        SendMessageW(info, WM_APP + 44, 0, 0);
        EXPECT_EQ(text(kInfoPage, IDC_INFO_TITLE), L"Typed");

        kInfo.init(info);  // its message is still to come
        kInfo.apply(info);
        EXPECT_EQ(setting().summary()->Title, L"Kept");
    });
}

}  // namespace
