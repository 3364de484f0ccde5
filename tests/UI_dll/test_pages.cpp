// What the pages offer, refuse and keep.

#include "UI_dll/PDFSettings/pages/page_securities_rules.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;

struct Pages : EditSheet {
    Pages() { profiles.add(L"press.icc", "CMYK", "prtr", "Press"); }
    static constexpr int kModeOfColour = 4902, kModeOfGrey = 4903, kModeOfMono = 4904;

    // What a page shows and has not greyed, and what not.
    static void expect_offer(PageIndex index, const std::vector<int>& on, const std::vector<int>& off,
                             const std::source_location& where = std::source_location::current()) {
        const testing::ScopedTrace trace(where.file_name(), static_cast<int>(where.line()), "");
        EXPECT_TRUE(go_to(index));
        for (const int id : on)
            EXPECT_TRUE(enabled(index, id) && shown(index, id)) << id;
        for (const int id : off)
            EXPECT_FALSE(enabled(index, id) && shown(index, id)) << id;
    }
    // Each gives back the page that is looked at then.
    static PageIndex at_version(uint32_t version, PageIndex page) {
        go_to(kPDFVersionPage);  // so that the page in question looks again
        choose_version(version);
        return page;
    }
    static PageIndex set_image(int kind, int method, int sampling) {
        choose(kCompressPage, kind + CMP_METHOD, method);
        choose(kCompressPage, kind + CMP_SAMPLING, sampling);
        return kCompressPage;
    }
    static PageIndex set_color(int mode, int method) {
        click(kColorPage, mode);
        choose(kColorPage, 4907, method);
        go_to(kColorPage);
        return kColorPage;
    }
    static PageIndex clicked(PageIndex page, int id) { return click(page, id), page; }

    ProfileFolder profiles;
};

TEST_F(Pages, OfferWhatTheChoicesUse) {
    setting().color()->ColorMode = 2;
    setting().color()->MonoDecreasingMethod = 1;
    setting().color()->BlackToK100 = true;
    setting().pdfVersion()->ICCFileName = L"press.icc";
    setting().security()->MasterPassword = L"master";
    show([] {
        expect_offer(set_color(kModeOfColour, 0), {4908, 4909}, {4906, 4907, 4910, 4911, 4912});
        expect_offer(set_color(kModeOfGrey, 0), {4906, 4908, 4909}, {4907, 4910, 4911, 4912});
        expect_offer(set_color(kModeOfMono, 0), {4906, 4907, 4908, 4909, 4910, 4911, 4912}, {});
        expect_offer(set_color(kModeOfMono, 1), {4906, 4907, 4910, 4911, 4912}, {4908, 4909});
        for (const uint32_t version : {5u, 10u, 12u})  // the last with the profile as it is stored
            expect_offer(at_version(version, kColorPage), {4901, 4905}, {});
        expect_offer(at_version(4, kColorPage), {}, {4901, 4905});

        constexpr int kColour = IDC_CMP_COLOUR, kGrey = IDC_CMP_GREY + CMP_METHOD;
        constexpr int kMono = IDC_CMP_MONO + CMP_METHOD;
        constexpr int kMethod = kColour + CMP_METHOD, kQuality = kColour + CMP_QUALITY;
        constexpr int kThreshold = kColour + CMP_THRESHOLD, kTarget = kColour + CMP_TARGET;
        expect_offer(set_image(kColour, 1, 1), {kMono}, {kMethod, kQuality, kTarget, kGrey});
        set_color(kModeOfGrey, 0);
        expect_offer(kCompressPage, {kMono, kGrey}, {kMethod, kThreshold});
        set_color(kModeOfColour, 0);
        expect_offer(kCompressPage, {kMono, kGrey, kMethod, kQuality, kThreshold, kTarget}, {});
        // JPEG where it suits the image.
        expect_offer(set_image(kColour, 0, 2), {kQuality, kThreshold, kTarget}, {});
        expect_offer(set_image(kColour, 2, 1), {kThreshold, kTarget}, {kQuality});
        expect_offer(set_image(kColour, 1, 0), {kQuality}, {kThreshold, kTarget});

        const std::vector low = {IDC_SEC_NO_PRINT, IDC_SEC_NO_MODIFY, IDC_SEC_NO_COPY, IDC_SEC_NO_ANNOTATE};
        const std::vector<int> high = {IDC_SEC_COPY,       IDC_SEC_READER, IDC_SEC_EDIT,
                                       IDC_SEC_EDIT_LABEL, IDC_SEC_PRINT,  IDC_SEC_PRINT_LABEL};
        const std::vector<int> uses = {IDC_SEC_USE_OPEN, IDC_SEC_USE_PERMISSIONS};
        expect_offer(at_version(0, kSecuritiesPage), low, high);
        for (const uint32_t version : {1u, 12u}) {
            expect_offer(at_version(version, kSecuritiesPage), high, low);
            expect_offer(kSecuritiesPage, uses, {});
        }
        set_check(kSecuritiesPage, IDC_SEC_COPY, true);
        expect_offer(kSecuritiesPage, {IDC_SEC_COPY}, {IDC_SEC_READER});
        for (const uint32_t version : {5u, 11u}) {
            expect_offer(at_version(version, kSecuritiesPage), {}, high);
            expect_offer(kSecuritiesPage, {}, uses);
            expect_offer(kFontPage, {}, {IDC_FONT_ONLY});
        }
        expect_offer(at_version(12, kFontPage), {IDC_FONT_ONLY}, {});

        expect_offer(clicked(kWaterMarkPage, IDC_MARK_NONE), {},
                     {IDC_MARK_FONT, IDC_MARK_BROWSE, IDC_MARK_ORDER, IDC_MARK_SCALE});
        expect_offer(clicked(kWaterMarkPage, IDC_MARK_TEXT), {IDC_MARK_FONT, IDC_MARK_ORDER},
                     {IDC_MARK_BROWSE, IDC_MARK_SCALE});
        expect_offer(clicked(kWaterMarkPage, IDC_MARK_PICTURE), {IDC_MARK_BROWSE, IDC_MARK_ORDER},
                     {IDC_MARK_FONT, IDC_MARK_SCALE});
        expect_offer(clicked(kWaterMarkPage, IDC_MARK_AUTO_SCALE), {IDC_MARK_SCALE}, {});
        click(kWaterMarkPage, IDC_MARK_NONE);

        expect_offer(kOpenActionPage, {IDC_OPEN_PAGE}, {});
        choose(kOpenActionPage, IDC_OPEN_LAYOUT, 2);
        expect_offer(clicked(kOpenActionPage, IDC_OPEN_AT_PAGE), {}, {IDC_OPEN_PAGE, IDC_OPEN_BINDING});
        go_to(at_version(4, kGeneralPage));
        press_apply();
    });
    EXPECT_TRUE(setting().color()->BlackToK100 && setting().color()->ColorMode == 0);  // greyed as it is
}

TEST_F(Pages, WhatCannotBeIsRefusedAndWhatItIsAboutIsTold) {
    const CurrentFolder programs(L"C:\\windows");
    show([] {
        // The page, what is clicked first (0: nothing), what is typed into which control, the message.
        const std::tuple<PageIndex, int, int, const wchar_t*, UINT> typed[] = {
            {kOpenActionPage, 0, IDC_OPEN_PAGE, L"0", IDS_OPEN_BAD_PAGE},
            {kOpenActionPage, 0, IDC_OPEN_PAGE, L"x", IDS_OPEN_BAD_PAGE},
            {kOpenActionPage, IDC_OPEN_AT_PAGE, IDC_OPEN_PAGE, L"0", 0},  // none at all
            {kWaterMarkPage, 0, IDC_MARK_SIZE, L"7", 0},                  // there is no watermark
            {kWaterMarkPage, IDC_MARK_TEXT, IDC_MARK_SIZE, L"7", IDS_MARK_BAD_SIZE},
            {kWaterMarkPage, 0, IDC_MARK_SIZE, L"8", 0},
            {kWaterMarkPage, 0, IDC_MARK_TRANSPARENCY, L"101", IDS_MARK_BAD_TRANSPARENCY},
            {kWaterMarkPage, 0, IDC_MARK_TRANSPARENCY, L"100", 0},
            {kWaterMarkPage, IDC_MARK_PICTURE, IDC_MARK_FILE, L"", IDS_MARK_NO_FILE},
            {kWaterMarkPage, 0, IDC_MARK_FILE, L"win.ini", IDS_MARK_LOST_FILE},  // a part of a path
            {kWaterMarkPage, 0, IDC_MARK_FILE, L"C:\\windows\\win.ini", IDS_MARK_NO_PICTURE},
            // As on another computer: not asked.
            {kWaterMarkPage, 0, IDC_MARK_FILE, L"\\\\?\\C:\\windows\\win.ini", 0},
            {kWaterMarkPage, IDC_MARK_AUTO_SCALE, IDC_MARK_SCALE, L"0", IDS_MARK_BAD_SCALE},
            {kWaterMarkPage, 0, IDC_MARK_SCALE, L"6400", 0}};
        for (const auto& [page, clicked, control, words, message] : typed) {
            SCOPED_TRACE(qk::to_utf8(words) + " into " + std::to_string(control));
            if (clicked)
                click(page, clicked);
            type(page, control, words);
            expect_check(page, message, control);
        }
        click(kFontPage, IDC_FONT_ONLY);
        expect_check(kFontPage, IDS_FONT_NONE_LISTED, IDC_FONT_INSTALLED);
        click(kFontPage, IDC_FONT_ALL_BUT);
        expect_check(kFontPage, 0);
        click(kSecuritiesPage, IDC_SEC_USE_OPEN);
        click(kSecuritiesPage, IDC_SEC_USE_PERMISSIONS);
        const std::tuple<const wchar_t*, const wchar_t*, UINT, int> passwords[] = {
            {L"x", L"y z", IDS_SEC_BAD_CHARACTER, IDC_SEC_PASSWORD},
            {L"", L"x", IDS_SEC_NO_OPEN_PASSWORD, IDC_SEC_OPEN_PASSWORD},
            {L"x", L"", IDS_SEC_NO_PASSWORD, IDC_SEC_PASSWORD},
            {L"x", L"y", 0, 0}};
        for (const auto& [open, permissions, message, focus] : passwords) {
            type(kSecuritiesPage, IDC_SEC_OPEN_PASSWORD, open);
            type(kSecuritiesPage, IDC_SEC_PASSWORD, permissions);
            expect_check(kSecuritiesPage, message, focus,
                         *open && *permissions ? MB_ICONERROR : MB_ICONEXCLAMATION);
        }

        // The method and the sampling, the quality, the threshold, the target; the message (0: accepted), the
        // focus.
        using Text = const wchar_t*;
        const std::tuple<int, int, Text, Text, Text, UINT, int> images[] = {
            {1, 2, L"100", L"150", L"150", 0, 0},
            {1, 2, L"100", L"149", L"150", IDS_CMP_TARGET_ABOVE, CMP_TARGET},
            {1, 2, L"101", L"150", L"150", IDS_CMP_BAD_QUALITY, CMP_QUALITY},
            {2, 2, L"101", L"24000", L"10", 0, 0},
            {2, 2, L"0", L"100", L"9", IDS_CMP_BAD_RESOLUTION, CMP_TARGET},
            {2, 0, L"0", L"9", L"x", 0, 0}};
        for (const auto& [method, sampling, quality, threshold, target, message, focus] : images) {
            SCOPED_TRACE(qk::to_utf8(quality + (L' ' + std::wstring(threshold)) + L' ' + target));
            set_image(IDC_CMP_GREY, method, sampling);
            type(kCompressPage, IDC_CMP_GREY + CMP_QUALITY, quality);
            type(kCompressPage, IDC_CMP_GREY + CMP_THRESHOLD, threshold);
            type(kCompressPage, IDC_CMP_GREY + CMP_TARGET, target);
            expect_check(kCompressPage, message, IDC_CMP_GREY + focus);
        }
    });
}

TEST_F(Pages, NumbersKeepToTheirRange) {
    show([] {
        click(kColorPage, 4904);
        type(kColorPage, 4911, L"300");
        EXPECT_EQ(text(kColorPage, 4911), L"255");
        for (const wchar_t* none : {L"-5", L"7", L"x"}) {
            type(kColorPage, 4909, none);
            EXPECT_EQ(text(kColorPage, 4909), *none == L'7' ? L"7" : L"0");
        }
        press_apply();
    });
    EXPECT_EQ(setting().color()->MonoImageThreshold, 0);
    EXPECT_EQ(setting().color()->MonoTextAndPassThreshold, 255);
}

TEST_F(Pages, DocumentPageKeepsWhatItHasNotLoadedAndWhatWasTyped) {
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

TEST(PasswordRules, FirstFaultCounts) {
    using Fault = PasswordFault;
    constexpr auto none = std::nullopt;
    const std::wstring fits(127, L'a'), accents(64, L'é');  // 128 bytes
    // Those that are kept as the file has them are no fault of the user's.
    struct {
        uint32_t version;
        std::wstring open, permissions;
        std::optional<Fault> fault;
        bool needs_open = true, needs_permissions = true, is_open_new = true, is_permissions_new = true;
    } const rows[] = {{4, L"", L"", none, false, false},
                      {4, L"one", L"one", Fault::kSame, false, false},
                      {4, L"", L"", Fault::kNoOpen},
                      {4, L"", L"", Fault::kNoPermissions, false},
                      {4, L"a b", L"a\x7F\xFE!", Fault::kOpenCharacter},
                      {0, L"a b", L"\xFF", Fault::kPermissionsCharacter},
                      {12, L"a b", L"\x3042\xFF", none},
                      {4, fits, fits + L"b", Fault::kPermissionsTooLong},
                      {4, accents, fits, Fault::kOpenTooLong},
                      {12, L"a", std::wstring(43, L'\x3042'), Fault::kPermissionsTooLong},
                      {5, L"one", L"one", none},
                      {4, L"a b", L"a b", none, true, true, false, false},
                      {4, L"", fits + L"b", Fault::kNoOpen, true, true, true, false},
                      {4, L"a b", L"c d", Fault::kOpenCharacter, true, true, true, false},
                      {4, L"a", L"a", Fault::kSame, true, true, false, true}};
    for (const auto& row : rows)
        EXPECT_EQ(find_password_fault(row.version,
                                      {row.open, row.permissions, row.needs_open, row.needs_permissions,
                                       row.is_open_new, row.is_permissions_new}),
                  row.fault)
            << &row - rows;
}

}  // namespace
