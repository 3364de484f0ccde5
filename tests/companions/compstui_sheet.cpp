// The life of a common property sheet: reasons, results, what is left behind.
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "common/handle.h"
#include "common/paths.h"
#include "common/text.h"
#include "companions/compstui_player.h"
#include "support/handle_count.h"

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

// The system's own counter of such objects is not kept by every Windows layer, so they are asked one by one:
// the low half of a handle names it.
template <class Asks>
unsigned count_objects(Asks exists) {
    unsigned found = 0;
    for (uintptr_t value = 1; value < 0x10000; ++value)
        found += exists(reinterpret_cast<HANDLE>(value));
    return found;
}

unsigned gdi_count() {
    return count_objects([](HANDLE object) { return GetObjectType(object) != 0; });
}

// This process's windows; other processes' come and go.
unsigned window_count() {
    return count_objects([](HANDLE object) {
        DWORD process = 0;
        GetWindowThreadProcessId(static_cast<HWND>(object), &process);
        return process == GetCurrentProcessId();
    });
}

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
    Player root, child;
    HANDLE child_handle = nullptr;
    Group group;
    child.add = [&](PROPSHEETUI_INFO& info) { call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet); };
    root.add = [&](PROPSHEETUI_INFO& info) {
        child_handle = reinterpret_cast<HANDLE>(call(info, CPSFUNC_ADD_PFNPROPSHEETUIW,
                                                     reinterpret_cast<void*>(&Player::function),
                                                     reinterpret_cast<LPARAM>(&child)));
    };
    root.script = press_ok;
    root.play();
    EXPECT_EQ("5032", child.reasons);
    EXPECT_EQ("50132", root.reasons);
    EXPECT_EQ(std::vector{child_handle}, root.spoke);
    EXPECT_EQ(1u, root.result);
}

// As when the print system's own root function adds the driver's.
TEST(CompstuiSheet, TitleMayComeFromBelow) {
    Player root, child;
    root.title = nullptr;
    child.title = L"Below";
    Group group;
    child.add = [&](PROPSHEETUI_INFO& info) { call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet); };
    root.add = [&](PROPSHEETUI_INFO& info) {
        call(info, CPSFUNC_ADD_PFNPROPSHEETUIW, reinterpret_cast<void*>(&Player::function),
             reinterpret_cast<LPARAM>(&child));
    };
    std::wstring caption(64, L'\0');
    root.script = [&](HWND page) {
        caption.resize(static_cast<size_t>(GetWindowTextW(GetParent(page), caption.data(), 64)));
        press_ok(page);
    };
    root.play();
    EXPECT_NE(std::wstring::npos, caption.find(L"Below")) << qk::to_utf8(caption);
    EXPECT_EQ("50132", child.reasons);
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

TEST(CompstuiSheet, RefusedChildLeavesNothing) {
    Player root, child;
    child.init_answer = -1;
    Group group;
    child.add = [&](PROPSHEETUI_INFO& info) { call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet); };
    LONG_PTR added = 1;
    root.add = [&](PROPSHEETUI_INFO& info) {
        added = call(info, CPSFUNC_ADD_PFNPROPSHEETUIW, reinterpret_cast<void*>(&Player::function),
                     reinterpret_cast<LPARAM>(&child));
    };
    EXPECT_EQ(ERR_CPSUI_NO_PROPSHEETPAGE, root.play().answer);
    EXPECT_EQ(0, added);
    EXPECT_EQ("502", child.reasons);
    EXPECT_EQ(0, child.destroyed);
}

TEST(CompstuiSheet, CallbackKeepsItOpen) {
    static int asked;
    asked = 0;
    Group group;
    group.sheet.pfnCallBack = [](CPSUICBPARAM* told) -> LONG {
        if (told->Reason != CPSUICB_REASON_APPLYNOW)
            return CPSUICB_ACTION_NONE;
        return ++asked == 1 ? CPSUICB_ACTION_NO_APPLY_EXIT : CPSUICB_ACTION_NONE;
    };
    Player player;
    player.add = [&](PROPSHEETUI_INFO& info) { call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet); };
    player.script = [](HWND page) {
        SendMessageW(GetParent(page), PSM_PRESSBUTTON, PSBTN_OK, 0);
        EXPECT_EQ(1, asked);
        Player::press(page, PSBTN_OK);
    };
    EXPECT_EQ(CPSUI_OK, player.play().answer);
    EXPECT_EQ(2, asked);
}

TEST(CompstuiSheet, ThreadsDoNotSeeEachOther) {
    const auto play = [](void (*leave)(HWND), DWORD expected) {
        for (int i = 0; i < 5; ++i) {
            Group group;
            Player player;
            player.add = [&](PROPSHEETUI_INFO& info) {
                call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet);
            };
            player.script = leave;
            EXPECT_EQ(expected, player.play().result);
        }
    };
    std::thread other(play, press_cancel, 0);
    play(press_ok, 1);
    other.join();
}

TEST(CompstuiSheet, NothingIsLeftBehind) {
    const auto play = [](bool initialised) {
        Group group;
        OPTITEM item = {};
        item.cbSize = sizeof item;
        item.pName = const_cast<wchar_t*>(L"Heading");
        group.sheet.pOptItem = &item;
        group.sheet.cOptItem = 1;
        Player player;
        player.init_answer = initialised ? 1 : -1;
        player.add = [&](PROPSHEETUI_INFO& info) { call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet); };
        player.script = press_ok;
        player.play();
    };
    play(true);
    play(false);
    const unsigned handles = handle_count(), drawing = gdi_count(), windows = window_count();
    for (int i = 0; i < 40; ++i)
        play(i % 4 != 3);
    EXPECT_LE(handle_count(), handles);
    EXPECT_LE(gdi_count(), drawing);
    EXPECT_LE(window_count(), windows);
    // The counters count: what is left behind on purpose shows.
    const HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3));
    const HWND window =
        CreateWindowExW(0, WC_STATICW, L"", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(drawing + 1, gdi_count());
    EXPECT_LT(windows, window_count());
    DestroyWindow(window);
    DeleteObject(brush);
}

TEST(CompstuiLibrary, LoadsByItsPath) {
    std::wstring path = qk::module_path(nullptr);
    path.resize(path.size() - qk::file_part(path).size());
    const qk::DLL library(
        LoadLibraryExW((path + L"compstui.dll").c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    ASSERT_TRUE(library);
    using Show = LONG APIENTRY(HWND, PFNPROPSHEETUI, LPARAM, DWORD*);
    auto* wide = qk::find_export<Show>(library.get(), "CommonPropertySheetUIW");
    auto* narrow = qk::find_export<Show>(library.get(), "CommonPropertySheetUIA");
    auto* data = qk::find_export<ULONG_PTR APIENTRY(HWND)>(library.get(), "GetCPSUIUserData");
    auto* set_data = qk::find_export<BOOL APIENTRY(HWND, ULONG_PTR)>(library.get(), "SetCPSUIUserData");
    ASSERT_TRUE(wide && narrow && data && set_data);
    DWORD result = 7;
    EXPECT_EQ(ERR_CPSUI_INVALID_PDATA, wide(nullptr, nullptr, 0, &result));
    EXPECT_EQ(0u, result);
    SetLastError(0);
    EXPECT_GT(0, narrow(nullptr, &Player::function, 0, &result));
    EXPECT_EQ(DWORD{ERROR_CALL_NOT_IMPLEMENTED}, GetLastError());
    EXPECT_EQ(0u, data(GetDesktopWindow()));
    EXPECT_FALSE(set_data(nullptr, 1));
}
