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

struct Leaving {
    const char* label;
    void (*script)(HWND page);
    LONG init_answer;
    LONG header_answer;
    bool pages;
    const char* reasons;
    LONG answer;
    DWORD result;
    LPARAM destroyed;
};

constexpr Leaving kLeavings[] = {
    {"OK", press_ok, 1, 1, true, "50132", CPSUI_OK, 1, 256},
    {"Cancel", press_cancel, 1, 1, true, "5012", CPSUI_CANCEL, 0, 256},
    {"Apply, then Cancel", apply_then_cancel, 1, 1, true, "50132", CPSUI_OK, 1, 256},
    {"INIT fails", press_ok, -5, 1, true, "502", -5, 0, 0},
    {"INIT answers nothing", press_ok, 0, 1, true, "502", ERR_CPSUI_GETLASTERROR, 0, 0},
    {"no header", press_ok, 1, 0, true, "5012", ERR_CPSUI_GETLASTERROR, 0, 256},
    {"no pages", press_ok, 1, 1, false, "5012", ERR_CPSUI_NO_PROPSHEETPAGE, 0, 256},
};

}  // namespace

TEST(CompstuiSheet, ReasonsAndResultByHowItIsLeft) {
    for (const Leaving& row : kLeavings) {
        SCOPED_TRACE(row.label);
        Group group;
        LONG_PTR added = 0;
        Player player;
        player.script = row.script;
        player.init_answer = row.init_answer;
        player.header_answer = row.header_answer;
        player.add = [&](PROPSHEETUI_INFO& info) {
            if (row.pages)
                added = call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet);
        };
        player.play();
        EXPECT_EQ(row.reasons, player.reasons);
        EXPECT_EQ(row.answer, player.answer);
        EXPECT_EQ(row.result, player.result);
        EXPECT_EQ(row.destroyed, player.destroyed);
        const bool told = player.reasons.find('3') != std::string::npos;
        EXPECT_EQ(told ? std::vector{reinterpret_cast<HANDLE>(added)} : std::vector<HANDLE>(), player.spoke);
    }
}

TEST(CompstuiSheet, ResultsGoFromChildToParent) {
    for (const bool refused : {false, true}) {
        SCOPED_TRACE(refused ? "a child that refuses leaves nothing" : "a child");
        Player root, child;
        HANDLE child_handle = nullptr;
        Group group;
        child.init_answer = refused ? -1 : 1;
        child.add = [&](PROPSHEETUI_INFO& info) { call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet); };
        root.add = [&](PROPSHEETUI_INFO& info) {
            child_handle = reinterpret_cast<HANDLE>(call(info, CPSFUNC_ADD_PFNPROPSHEETUIW,
                                                         reinterpret_cast<void*>(&Player::function),
                                                         reinterpret_cast<LPARAM>(&child)));
        };
        root.script = press_ok;
        root.play();
        EXPECT_EQ(refused ? ERR_CPSUI_NO_PROPSHEETPAGE : CPSUI_OK, root.answer);
        EXPECT_EQ(refused ? "502" : "5032", child.reasons);
        EXPECT_EQ(refused ? "5012" : "50132", root.reasons);
        EXPECT_EQ(refused, child_handle == nullptr);
        EXPECT_EQ(refused ? std::vector<HANDLE>() : std::vector{child_handle}, root.spoke);
        EXPECT_EQ(refused ? 0u : 1u, root.result);
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
