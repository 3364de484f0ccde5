// The pages for opening, document, fonts and watermark: what they show, write back, refuse and grey.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "UI_dll/PDFSettings/setting_list.h"
#include "UI_dll/PDFSettings/whole_number.h"
#include "resources/ids.h"
#include "support/random_settings.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;
using Corvanta::Vantrix::PrintSettings::OpenAction_impl;
using Corvanta::Vantrix::PrintSettings::Summary_impl;

class PageValues : public EditSheet {
protected:
    static void take_sections(const Setting& from) {
        setting().openAction() = from.openAction();
        setting().summary() = from.summary();
        setting().font() = from.font();
        setting().watermark() = from.watermark();
    }
    static void expect_sections(const Setting& wanted) {
        EXPECT_EQ(setting().openAction(), wanted.openAction());
        EXPECT_EQ(setting().summary(), wanted.summary());
        EXPECT_EQ(setting().font(), wanted.font());
        EXPECT_EQ(setting().watermark(), wanted.watermark());
    }
    // Random values of the kind that a person may enter.
    Setting enterable(RandomSettings& random) const {
        Setting made = random.next();
        Summary_impl& summary = *made.summary();
        auto& mark = *made.watermark();
        for (std::wstring* text : {&summary.Title, &summary.Subject, &summary.Author, &summary.Keywords,
                                   &summary.Creator, &mark.Text, &mark.FontName})
            std::ranges::replace_if(
                *text, [](wchar_t unit) { return unit < L' '; }, L'_');
        mark.Text += L'x';
        mark.FontName = mark.FontName.substr(0, 20) + L'x';
        mark.PictureFileName = here.folder.write(L"picture.bmp", "BM");
        mark.PictureScale = std::max(mark.PictureScale, 1u);
        made.openAction()->StartPage = std::max(made.openAction()->StartPage, 1u);
        made.font()->Fonts = {L"First", L"Second"};
        return made;
    }
};

TEST_F(PageValues, WhatIsShownReachesTheFile) {
    RandomSettings random(8);
    for (int round = 0; round < 4; ++round) {
        SCOPED_TRACE(round);
        const Setting wanted = enterable(random);
        setting()->PSName = L"Tested " + std::to_wstring(round);
        take_sections(wanted);
        show([] {
            MSG message;  // the document page's to itself
            while (PeekMessageW(&message, page(kInfoPage), WM_APP + 44, WM_APP + 44, PM_REMOVE))
                DispatchMessageW(&message);
            take_sections({});  // from here on only the controls know the values
            for (const PageIndex index : {kFontPage, kWaterMarkPage, kOpenActionPage, kInfoPage})
                EXPECT_TRUE(go_to(index)) << index;
            press_ok();
        });
        ASSERT_TRUE(LoadSettingFile(dialog_state().path));
        expect_sections(wanted);
    }
    EXPECT_TRUE(Outbox::boxes.empty());
}

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
            Outbox::boxes.clear();
            EXPECT_EQ(go_to(kGeneralPage), row.message == 0);
            if (row.message == 0)
                continue;
            ASSERT_EQ(Outbox::boxes.size(), 1u);
            EXPECT_EQ(Outbox::boxes[0].text, dialog_text(row.message));
            EXPECT_EQ(GetFocus(), control(row.index, row.focus));
            if (row.index != kMark) {  // the next page's turn
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
        EXPECT_EQ(kInfo.apply(info, false), PSNRET_INVALID_NOCHANGEPAGE);
        EXPECT_EQ(setting().summary()->Title, L"Kept");
    });
}

}  // namespace
