// The life of a common property sheet: reasons, results, room for its pages.
#include <gtest/gtest.h>

#include <algorithm>

#include "companions/compstui_player.h"

namespace {

void press_ok(HWND page) {
    Player::press(page, PSBTN_OK);
}
void press_cancel(HWND page) {
    Player::press(page, PSBTN_CANCEL);
}
void apply_then_cancel(HWND page) {
    SendMessageW(GetParent(page), PSM_CHANGED, reinterpret_cast<WPARAM>(page), 0);
    Player::press(page, PSBTN_APPLYNOW);
    Player::press(page, PSBTN_CANCEL);
}

LONG APIENTRY restarts(CPSUICBPARAM* parameter) {
    if (parameter->Reason != CPSUICB_REASON_APPLYNOW)
        return CPSUICB_ACTION_NONE;
    EXPECT_EQ(parameter->OldSel, -1);
    EXPECT_EQ(parameter->Result, ULONG_PTR{CPSUI_OK});
    parameter->Result = CPSUI_RESTARTWINDOWS;
    return CPSUICB_ACTION_ITEMS_APPLIED;
}

enum class Pages { none, group, own_apply, restarting, alone };

struct Leaving {
    const char* label;
    void (*script)(HWND page);
    LONG init_answer;
    LONG header_answer;
    Pages pages;
    const char* reasons;
    LONG answer;
    DWORD result;
    bool left_by_button;
};

// The reasons: 5 before INIT, 0 INIT, 1 header, 3 result, 2 DESTROY.
constexpr Leaving kLeavings[] = {
    {"OK", press_ok, 1, 1, Pages::group, "50132", CPSUI_OK, 1, true},
    {"Cancel", press_cancel, 1, 1, Pages::group, "5012", CPSUI_CANCEL, 0, true},
    {"Apply, then Cancel", apply_then_cancel, 1, 1, Pages::group, "50132", CPSUI_CANCEL, 1, true},
    {"the page's own PSN_APPLY", press_ok, 1, 1, Pages::own_apply, "5012", CPSUI_OK, 0, true},
    {"the callback's result", press_ok, 1, 1, Pages::restarting, "50132", CPSUI_OK, 2, true},
    {"a page that says nothing", press_ok, 1, 1, Pages::alone, "5012", CPSUI_OK, 0, true},
    {"INIT fails", press_ok, -5, 1, Pages::group, "502", -5, 0, false},
    {"INIT answers nothing", press_ok, 0, 1, Pages::group, "502", ERR_CPSUI_GETLASTERROR, 0, false},
    {"no header", press_ok, 1, 0, Pages::group, "5012", ERR_CPSUI_GETLASTERROR, 0, false},
    {"no pages", press_ok, 1, 1, Pages::none, "5012", ERR_CPSUI_NO_PROPSHEETPAGE, 0, false},
};

}  // namespace

TEST(CompstuiSheet, ReasonsAndResultByHowItIsLeft) {
    for (const Leaving& row : kLeavings) {
        SCOPED_TRACE(row.label);
        Group group;
        const PROPSHEETPAGEW page = plain_page();
        LONG_PTR added = 0;
        Player player;
        player.script = row.script;
        player.init_answer = row.init_answer;
        player.header_answer = row.header_answer;
        player.page_applies = row.pages == Pages::own_apply;
        group.sheet.pfnCallBack = row.pages == Pages::restarting ? &restarts : nullptr;
        player.add = [&](PROPSHEETUI_INFO& info) {
            if (row.pages == Pages::alone)
                call(info, CPSFUNC_ADD_PROPSHEETPAGEW, &page);
            else if (row.pages != Pages::none)
                added = call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet);
        };
        player.play();
        EXPECT_EQ(row.reasons, player.reasons);
        EXPECT_EQ(row.answer, player.answer);
        EXPECT_EQ(row.result, player.result);
        EXPECT_EQ(row.left_by_button, player.destroyed != 0);
        if (player.reasons.find('1') != std::string::npos) {
            EXPECT_EQ(PSUIHDRF_PROPTITLE, player.header_flags);
        }
        const bool told = player.reasons.find('3') != std::string::npos;
        EXPECT_EQ(told ? std::vector{reinterpret_cast<HANDLE>(added)} : std::vector<HANDLE>(), player.spoke);
    }
}

TEST(CompstuiSheet, ResultsGoFromChildToParent) {
    for (const bool refused : {false, true}) {
        SCOPED_TRACE(refused ? "a child that refuses leaves nothing" : "a child");
        Player root, child;
        LONG_PTR child_handle = 0, group_handle = 0;
        Group group;
        child.init_answer = refused ? -1 : 1;
        child.passed_on = CPSUI_REBOOTSYSTEM;
        child.add = [&](PROPSHEETUI_INFO& info) {
            group_handle = call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet);
        };
        root.add = [&](PROPSHEETUI_INFO& info) {
            child_handle = call(info, CPSFUNC_ADD_PFNPROPSHEETUIW, reinterpret_cast<void*>(&Player::function),
                                reinterpret_cast<LPARAM>(&child));
        };
        root.script = press_ok;
        root.play();
        EXPECT_EQ(refused ? ERR_CPSUI_NO_PROPSHEETPAGE : CPSUI_OK, root.answer);
        EXPECT_EQ(refused ? "02" : "032", child.reasons);
        EXPECT_EQ(refused ? "5012" : "50132", root.reasons);
        EXPECT_EQ(refused, child_handle == 0);
        const auto spoke = [&] {
            return refused ? std::vector<HANDLE>() : std::vector{reinterpret_cast<HANDLE>(group_handle)};
        };
        EXPECT_EQ(spoke(), child.spoke);
        EXPECT_EQ(spoke(), root.spoke);
        EXPECT_EQ(refused ? 0u : 3u, root.result);
    }
}

TEST(CompstuiSheet, HasRoomForItsLargestPage) {
    constexpr size_t kPointSizeAt = 32;
    alignas(4) BYTE large[64] = {};
    std::copy_n(reinterpret_cast<const BYTE*>(compstui::plain_page_template()), sizeof large, large);
    large[kPointSizeAt] = 15;
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
        press_ok(page);
    };
    player.play();
    EXPECT_GE(room.right, wanted.right);
    EXPECT_GE(room.bottom, wanted.bottom);
    EXPECT_GE(button.top, tabs.bottom);
    EXPECT_LE(button.bottom, sheet.bottom);
}
