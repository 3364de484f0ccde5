// A common property sheet: what is added to it, reasons, results, option items, room for its pages.
#include <gtest/gtest.h>

#include <algorithm>

#include "companions/compstui_player.h"

namespace {

LONG APIENTRY restarts(CPSUICBPARAM* parameter) {
    EXPECT_EQ(parameter->Reason, CPSUICB_REASON_APPLYNOW);
    EXPECT_EQ(parameter->Result, ULONG_PTR{CPSUI_OK});
    parameter->Result = CPSUI_RESTARTWINDOWS;
    return CPSUICB_ACTION_ITEMS_APPLIED;
}

// The texts of the pages are the module's.
class CompstuiSheet : public testing::Test {
protected:
    CompstuiSheet() { EXPECT_TRUE(plotui::attach_process(GetModuleHandleW(nullptr))); }
    ~CompstuiSheet() override { plotui::detach_process(false); }
};

}  // namespace

TEST_F(CompstuiSheet, WhatIsMalformedIsNotAdded) {
    const struct {
        const char* label;
        void (*spoil)(Group& g);
        LONG error;
    } rows[] = {
        {"sheet size", [](Group& g) { g.sheet.cbSize = 120; }, ERR_CPSUI_INVALID_PDATA},
        {"no instance", [](Group& g) { g.sheet.hInstCaller = nullptr; }, ERR_CPSUI_NULL_HINST},
        {"no pages", [](Group& g) { g.sheet.cDlgPage = 0; }, ERR_CPSUI_INVALID_PDLGPAGE},
        {"too many pages", [](Group& g) { g.sheet.cDlgPage = 65; }, ERR_CPSUI_TOO_MANY_DLGPAGES},
        {"no template", [](Group& g) { g.page.DlgTemplateID = 1; }, ERR_CPSUI_CREATEPROPPAGE_FAILED},
        {"no items", [](Group& g) { g.sheet.pOptItem = nullptr; }, ERR_CPSUI_NULL_POPTITEM},
        {"no name", [](Group& g) { g.item.pName = nullptr; }, ERR_CPSUI_NULL_OPTITEMNAME},
        {"page index", [](Group& g) { g.item.DlgPageIdx = 1; }, ERR_CPSUI_INVALID_DLGPAGEIDX},
        {"not served", [](Group& g) { g.type.Type = TVOT_CHKBOX; }, ERR_CPSUI_INVALID_TVOT_TYPE},
        {"no parameters", [](Group& g) { g.type.pOptParam = nullptr; }, ERR_CPSUI_NULL_POPTPARAM},
        {"parameter size", [](Group& g) { g.parameters[1].cbSize = 1; }, ERR_CPSUI_INVALID_OPTPARAM_CBSIZE},
        {"nothing wrong", [](Group&) {}, 1}};
    Player player;
    player.init_answer = -1;  // the sheet is not shown
    player.add = [&](PROPSHEETUI_INFO& info) {
        for (const auto& row : rows) {
            Group group;
            row.spoil(group);
            LONG pages = 0;
            const LONG_PTR added =
                call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet, reinterpret_cast<LPARAM>(&pages));
            EXPECT_EQ(row.error, pages) << row.label;
            EXPECT_EQ(row.error > 0, added != 0) << row.label;
        }
        const PROPSHEETPAGEW good = plain_page();
        for (const size_t size : {size_t{0}, PROPSHEETPAGEW_V1_SIZE - 1, size_t{105}, size_t{MAXDWORD}}) {
            PROPSHEETPAGEW page[2] = {good};
            page[0].dwSize = static_cast<DWORD>(size);
            EXPECT_EQ(0, call(info, CPSFUNC_ADD_PROPSHEETPAGEW, page)) << size;
        }
        EXPECT_EQ(0, call(info, CPSFUNC_ADD_PROPSHEETPAGEW, reinterpret_cast<void*>(8)));
        EXPECT_EQ(0, info.pfnComPropSheet(reinterpret_cast<HANDLE>(12345), CPSFUNC_GET_PAGECOUNT, 0, 0));
        EXPECT_EQ(-1, call(info, CPSFUNC_SET_RESULT, reinterpret_cast<void*>(8), CPSUI_OK));
        EXPECT_EQ(1, call(info, CPSFUNC_GET_PAGECOUNT, nullptr));
        for (int i = 1; i < MAXPROPPAGES; ++i)
            EXPECT_NE(0, call(info, CPSFUNC_ADD_PROPSHEETPAGEW, &good));
        EXPECT_EQ(0, call(info, CPSFUNC_ADD_PROPSHEETPAGEW, &good)) << "the sheet is full";
    };
    EXPECT_EQ("502", player.play().reasons);
}

TEST_F(CompstuiSheet, OptionItemStandsInTheControlsOfItsPage) {
    Group group;
    Player player;
    player.add = [&](PROPSHEETUI_INFO& info) { call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet); };
    player.script = [](HWND page) {
        wchar_t text[20] = {};
        for (const int control : {compstui::kListFrame, compstui::kListTitle}) {
            GetDlgItemTextW(page, IDC_OPTION_ITEM + control, text, 20);
            EXPECT_STREQ(L"Item", text);
        }
        const HWND list = GetDlgItem(page, IDC_OPTION_ITEM + compstui::kListBox);
        EXPECT_EQ(2, SendMessageW(list, LB_GETCOUNT, 0, 0));
        EXPECT_EQ(1, SendMessageW(list, LB_GETCURSEL, 0, 0));
        Player::press(page, PSBTN_OK);
    };
    EXPECT_EQ(CPSUI_OK, player.play().answer);
}

// The reasons: 5 before INIT, 0 INIT, 1 header, 3 result, 2 DESTROY.
TEST_F(CompstuiSheet, ReasonsAndResultByHowItIsLeft) {
    enum Pages { kNone, kGroup, kOwnApply, kRestarting, kAlone };
    const struct {
        std::vector<int> buttons;
        LONG init_answer, header_answer;
        Pages pages;
        const char* reasons;
        LONG answer;
        DWORD result;
    } rows[] = {{{PSBTN_OK}, 1, 1, kGroup, "50132", CPSUI_OK, 1},
                {{PSBTN_CANCEL}, 1, 1, kGroup, "5012", CPSUI_CANCEL, 0},
                {{PSBTN_APPLYNOW, PSBTN_CANCEL}, 1, 1, kGroup, "50132", CPSUI_CANCEL, 1},
                {{PSBTN_OK}, 1, 1, kOwnApply, "5012", CPSUI_OK, 0},
                {{PSBTN_OK}, 1, 1, kRestarting, "50132", CPSUI_OK, 2},
                {{PSBTN_OK}, 1, 1, kAlone, "5012", CPSUI_OK, 0},
                {{}, -5, 1, kGroup, "502", -5, 0},
                {{}, 0, 1, kGroup, "502", ERR_CPSUI_GETLASTERROR, 0},
                {{}, 1, 0, kGroup, "5012", ERR_CPSUI_GETLASTERROR, 0},
                {{}, 1, 1, kNone, "5012", ERR_CPSUI_NO_PROPSHEETPAGE, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        Group group;
        const PROPSHEETPAGEW page = plain_page();
        LONG_PTR added = 0;
        Player player;
        player.script = [&](HWND shown) {
            SendMessageW(GetParent(shown), PSM_CHANGED, reinterpret_cast<WPARAM>(shown), 0);
            for (const int button : row.buttons)
                Player::press(shown, button);
        };
        player.init_answer = row.init_answer;
        player.header_answer = row.header_answer;
        player.page_applies = row.pages == kOwnApply;
        group.sheet.pfnCallBack = row.pages == kRestarting ? &restarts : nullptr;
        player.add = [&](PROPSHEETUI_INFO& info) {
            if (row.pages == kAlone)
                call(info, CPSFUNC_ADD_PROPSHEETPAGEW, &page);
            else if (row.pages != kNone)
                added = call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet);
        };
        player.play();
        EXPECT_EQ(row.reasons, player.reasons);
        EXPECT_EQ(row.answer, player.answer);
        EXPECT_EQ(row.result, player.result);
        EXPECT_EQ(row.answer >= 0, player.destroyed != 0) << "left by a button";
        const bool told = player.reasons.find('3') != std::string::npos;
        EXPECT_EQ(told ? std::vector{reinterpret_cast<HANDLE>(added)} : std::vector<HANDLE>(), player.spoke);
    }
}

TEST_F(CompstuiSheet, HasRoomForItsLargestPage) {
    constexpr DWORD kStyle = DS_SETFONT | DS_FIXEDSYS | DS_CONTROL | WS_CHILD | WS_CAPTION | WS_DISABLED;
    // A DLGTEMPLATEEX without controls, of 252 by 218 units in 15 points.
    alignas(4) static constexpr WORD large[] = {
        1,   0xFFFF, 0, 0, 0,  0,   LOWORD(kStyle), HIWORD(kStyle), 0,    0,    0,    252,
        218, 0,      0, 0, 15, 400, 0x0100,         L'T',           L'a', L'h', L'o', 0};
    PROPSHEETPAGEW pages[] = {plain_page(), plain_page()};
    pages[1].pResource = reinterpret_cast<const DLGTEMPLATE*>(large);
    const HWND alone =
        CreateDialogIndirectParamW(nullptr, pages[1].pResource, GetDesktopWindow(), nullptr, 0);
    RECT wanted = {};
    GetClientRect(alone, &wanted);
    DestroyWindow(alone);
    ASSERT_GT(wanted.bottom, 0);

    RECT room = {}, tabs = {}, button = {}, sheet = {};
    Player player;
    player.add = [&](PROPSHEETUI_INFO& info) {
        for (const PROPSHEETPAGEW& page : pages)
            call(info, CPSFUNC_ADD_PROPSHEETPAGEW, &page);
    };
    player.script = [&](HWND page) {
        GetClientRect(page, &room);
        const HWND window = GetParent(page);
        GetWindowRect(PropSheet_GetTabControl(window), &tabs);
        GetWindowRect(GetDlgItem(window, IDOK), &button);
        GetWindowRect(window, &sheet);
        Player::press(page, PSBTN_OK);
    };
    player.play();
    EXPECT_GE(room.right, wanted.right);
    EXPECT_GE(room.bottom, wanted.bottom);
    EXPECT_GE(button.top, tabs.bottom);
    EXPECT_LE(button.bottom, sheet.bottom);
}
