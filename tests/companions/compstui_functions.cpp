// What callers reach through pfnComPropSheet, and the groups that are refused.
#include <gtest/gtest.h>

#include <cstring>

#include "companions/compstui/strings.h"
#include "companions/compstui_player.h"

namespace {

// Runs `body` at INIT of a sheet that is not shown.
void at_init(const std::function<void(PROPSHEETUI_INFO&)>& body) {
    Player player;
    player.add = body;
    player.init_answer = -1;
    player.play();
    ASSERT_EQ("502", player.reasons);
}

LPARAM seen_page_lparam;
PSPINFO seen_info;
ULONG_PTR seen_data;

INT_PTR CALLBACK looking_proc(HWND page, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        const auto* shown = reinterpret_cast<const PROPSHEETPAGEW*>(lparam);
        seen_page_lparam = shown->lParam;
        seen_info = *PPSPINFO_FROM_WM_INITDIALOG_LPARAM(lparam);
        SetWindowLongPtrW(page, DWLP_USER, 1);
        EXPECT_TRUE(compstui::try_set_page_user_data(page, 77));
    }
    if (message == WM_NOTIFY)
        seen_data = compstui::page_user_data(page);
    return Player::page_proc(page, message, wparam, lparam);
}

}  // namespace

TEST(CompstuiPage, ProcedureSeesItsPageAndTheHost) {
    for (const DWORD size : {DWORD{PROPSHEETPAGEW_V1_SIZE}, DWORD{sizeof(PROPSHEETPAGEW)}, DWORD{104}}) {
        for (const bool of_group : {false, true}) {
            SCOPED_TRACE(testing::Message() << size << (of_group ? " in a group" : ""));
            struct {
                PROPSHEETPAGEW page;
                HANDLE bitmap;
            } own = {plain_page(&looking_proc), nullptr};
            own.page.dwSize = size;
            own.page.lParam = 0x1234;
            Group group;
            group.page.DlgProc = &looking_proc;
            HANDLE sheet = nullptr;
            LONG_PTR added = 0;
            Player player;
            player.add = [&](PROPSHEETUI_INFO& info) {
                sheet = info.hComPropSheet;
                added = of_group ? call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet)
                                 : call(info, CPSFUNC_ADD_PROPSHEETPAGEW, &own.page);
            };
            player.script = [](HWND page) { Player::press(page, PSBTN_OK); };
            ASSERT_EQ(CPSUI_OK, player.play().answer);
            EXPECT_EQ(sizeof(PSPINFO), seen_info.cbSize);
            EXPECT_EQ(sheet, seen_info.hComPropSheet);
            EXPECT_NE(nullptr, seen_info.pfnComPropSheet);
            EXPECT_EQ(77u, seen_data);
            if (!of_group) {
                EXPECT_EQ(0x1234, seen_page_lparam);
                EXPECT_EQ(added, reinterpret_cast<LONG_PTR>(seen_info.hCPSUIPage));
            }
        }
    }
}

TEST(CompstuiPage, OtherSizesAreRefused) {
    at_init([](PROPSHEETUI_INFO& info) {
        for (const DWORD size :
             {0u, 8u, static_cast<unsigned>(PROPSHEETPAGEW_V1_SIZE) - 1, 105u, 0xFFFFFFFFu}) {
            PROPSHEETPAGEW page[2] = {plain_page()};
            page[0].dwSize = size;
            EXPECT_EQ(0, call(info, CPSFUNC_ADD_PROPSHEETPAGEW, page)) << size;
        }
        EXPECT_EQ(0, call(info, CPSFUNC_ADD_PROPSHEETPAGEW, nullptr));
        EXPECT_EQ(0, call(info, CPSFUNC_ADD_PROPSHEETPAGEW, reinterpret_cast<void*>(8)));
    });
}

TEST(CompstuiGroup, MalformedOnesAreRefused) {
    struct Row {
        const char* label;
        void (*spoil)(Group& group, OPTITEM& item, OPTTYPE& type, OPTPARAM (&parameters)[2]);
        LONG error;
    };
    using Parameters = OPTPARAM(&)[2];
    const Row rows[] = {
        {"sheet size", [](Group& g, OPTITEM&, OPTTYPE&, Parameters) { g.sheet.cbSize = 120; },
         ERR_CPSUI_INVALID_PDATA},
        {"no instance", [](Group& g, OPTITEM&, OPTTYPE&, Parameters) { g.sheet.hInstCaller = nullptr; },
         ERR_CPSUI_NULL_HINST},
        {"no caller", [](Group& g, OPTITEM&, OPTTYPE&, Parameters) { g.sheet.pCallerName = nullptr; },
         ERR_CPSUI_NULL_CALLERNAME},
        {"no pages", [](Group& g, OPTITEM&, OPTTYPE&, Parameters) { g.sheet.cDlgPage = 0; },
         ERR_CPSUI_INVALID_PDLGPAGE},
        {"too many pages", [](Group& g, OPTITEM&, OPTTYPE&, Parameters) { g.sheet.cDlgPage = 65; },
         ERR_CPSUI_TOO_MANY_DLGPAGES},
        {"page size", [](Group& g, OPTITEM&, OPTTYPE&, Parameters) { g.page.cbSize = 32; },
         ERR_CPSUI_INVALID_DLGPAGE_CBSIZE},
        {"no template",
         [](Group& g, OPTITEM&, OPTTYPE&, Parameters) { g.page.Flags = 0, g.page.hDlgTemplate = nullptr; },
         ERR_CPSUI_CREATEPROPPAGE_FAILED},
        {"no items", [](Group& g, OPTITEM&, OPTTYPE&, Parameters) { g.sheet.pOptItem = nullptr; },
         ERR_CPSUI_NULL_POPTITEM},
        {"item size", [](Group&, OPTITEM& i, OPTTYPE&, Parameters) { i.cbSize = 80; },
         ERR_CPSUI_INVALID_OPTITEM_CBSIZE},
        {"no name", [](Group&, OPTITEM& i, OPTTYPE&, Parameters) { i.pName = nullptr; },
         ERR_CPSUI_NULL_OPTITEMNAME},
        {"page index", [](Group&, OPTITEM& i, OPTTYPE&, Parameters) { i.DlgPageIdx = 1; },
         ERR_CPSUI_INVALID_DLGPAGEIDX},
        {"type size", [](Group&, OPTITEM&, OPTTYPE& t, Parameters) { t.cbSize = 0; },
         ERR_CPSUI_INVALID_OPTTYPE_CBSIZE},
        {"type", [](Group&, OPTITEM&, OPTTYPE& t, Parameters) { t.Type = 99; }, ERR_CPSUI_INVALID_TVOT_TYPE},
        {"count", [](Group&, OPTITEM&, OPTTYPE& t, Parameters) { t.Count = 3; },
         ERR_CPSUI_INVALID_OPTTYPE_COUNT},
        {"no parameters", [](Group&, OPTITEM&, OPTTYPE& t, Parameters) { t.pOptParam = nullptr; },
         ERR_CPSUI_NULL_POPTPARAM},
        {"parameter size", [](Group&, OPTITEM&, OPTTYPE&, Parameters p) { p[1].cbSize = 1; },
         ERR_CPSUI_INVALID_OPTPARAM_CBSIZE},
        {"edit box without buffer",
         [](Group&, OPTITEM& i, OPTTYPE& t, Parameters p) {
             t.Type = TVOT_EDITBOX, p[1].IconID = 8, i.pSel = nullptr;
         },
         ERR_CPSUI_INVALID_EDITBOX_PSEL},
        {"edit box without size", [](Group&, OPTITEM&, OPTTYPE& t, Parameters) { t.Type = TVOT_EDITBOX; },
         ERR_CPSUI_INVALID_EDITBOX_BUF_SIZE},
        {"nothing wrong", [](Group&, OPTITEM&, OPTTYPE&, Parameters) {}, 1},
    };
    at_init([&](PROPSHEETUI_INFO& info) {
        for (const Row& row : rows) {
            SCOPED_TRACE(row.label);
            OPTPARAM parameters[2] = {};
            parameters[0].cbSize = parameters[1].cbSize = sizeof(OPTPARAM);
            OPTTYPE type = {};
            type.cbSize = sizeof type;
            type.Count = 2;
            type.pOptParam = parameters;
            OPTITEM item = {};
            item.cbSize = sizeof item;
            item.pName = const_cast<wchar_t*>(L"Item");
            item.pOptType = &type;
            Group group;
            group.sheet.pOptItem = &item;
            group.sheet.cOptItem = 1;
            row.spoil(group, item, type, parameters);
            LONG pages = 0;
            const LONG_PTR added =
                call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet, reinterpret_cast<LPARAM>(&pages));
            EXPECT_EQ(row.error, pages);
            EXPECT_EQ(row.error > 0, added != 0);
        }
        EXPECT_EQ(1, call(info, CPSFUNC_GET_PAGECOUNT, nullptr));
    });
}

TEST(CompstuiFunctions, PagesAreCountedListedAndTakenOut) {
    at_init([](PROPSHEETUI_INFO& info) {
        Group group;
        const PROPSHEETPAGEW page = plain_page();
        const auto* in_group =
            reinterpret_cast<void*>(call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet));
        const auto* alone = reinterpret_cast<void*>(call(info, CPSFUNC_ADD_PROPSHEETPAGEW, &page));
        const auto* made =
            reinterpret_cast<void*>(call(info, CPSFUNC_ADD_HPROPSHEETPAGE, CreatePropertySheetPageW(&page)));
        EXPECT_TRUE(in_group && alone && made);
        EXPECT_EQ(3, call(info, CPSFUNC_GET_PAGECOUNT, nullptr));
        EXPECT_EQ(1, call(info, CPSFUNC_GET_PAGECOUNT, in_group));
        const void* pages[3] = {};
        EXPECT_GT(0, call(info, CPSFUNC_GET_HPSUIPAGES, pages, 2));
        EXPECT_EQ(3, call(info, CPSFUNC_GET_HPSUIPAGES, pages, 3));
        EXPECT_EQ(alone, pages[1]);
        EXPECT_EQ(made, pages[2]);
        EXPECT_EQ(1, call(info, CPSFUNC_DELETE_HCOMPROPSHEET, in_group));
        EXPECT_EQ(0, call(info, CPSFUNC_DELETE_HCOMPROPSHEET, in_group));
        EXPECT_EQ(0, call(info, CPSFUNC_DELETE_HCOMPROPSHEET, info.hComPropSheet));
        EXPECT_EQ(0, call(info, CPSFUNC_SET_HSTARTPAGE, in_group));
        EXPECT_EQ(2, call(info, CPSFUNC_GET_PAGECOUNT, nullptr));
        for (int i = 2; i < MAXPROPPAGES; ++i)
            EXPECT_NE(0, call(info, CPSFUNC_ADD_PROPSHEETPAGEW, &page));
        EXPECT_EQ(0, call(info, CPSFUNC_ADD_PROPSHEETPAGEW, &page));
        EXPECT_EQ(0, call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet));
    });
}

TEST(CompstuiFunctions, StartPageIsTheOneShown) {
    Player player;
    const PROPSHEETPAGEW first = plain_page();
    PROPSHEETPAGEW second = plain_page();
    static bool second_shown;
    second_shown = false;
    second.pfnDlgProc = [](HWND page, UINT message, WPARAM wparam, LPARAM lparam) -> INT_PTR {
        second_shown = second_shown || message == WM_INITDIALOG;
        return Player::page_proc(page, message, wparam, lparam);
    };
    player.add = [&](PROPSHEETUI_INFO& info) {
        call(info, CPSFUNC_ADD_PROPSHEETPAGEW, &first);
        call(info, CPSFUNC_ADD_PROPSHEETPAGEW, &second);
        EXPECT_EQ(0, call(info, CPSFUNC_SET_HSTARTPAGE, nullptr, 2));
        EXPECT_EQ(1, call(info, CPSFUNC_SET_HSTARTPAGE, nullptr, 1));
    };
    player.script = [](HWND page) { Player::press(page, PSBTN_CANCEL); };
    EXPECT_EQ(CPSUI_CANCEL, player.play().answer);
    EXPECT_TRUE(second_shown);
}

TEST(CompstuiFunctions, StringsDataAndWrongHandles) {
    EXPECT_EQ(L"Orientation", compstui::own_string(IDS_CPSUI_ORIENTATION));
    EXPECT_EQ(L"Total", compstui::own_string(IDS_CPSUI_TOTAL));
    EXPECT_EQ(L"Poster", compstui::own_string(IDS_CPSUI_POSTER));
    EXPECT_EQ(L"Bordered", compstui::own_string(IDS_CPSUI_NUP_BORDERED));
    at_init([](PROPSHEETUI_INFO& info) {
        wchar_t text[4] = L"zzz";
        EXPECT_EQ(3, call(info, CPSFUNC_LOAD_CPSUI_STRINGW, text, MAKELPARAM(4, IDS_CPSUI_OPTIONS)));
        EXPECT_STREQ(L"Opt", text);
        EXPECT_EQ(0, call(info, CPSFUNC_LOAD_CPSUI_STRINGW, text, MAKELPARAM(4, 5)));
        const PROPSHEETPAGEW page = plain_page();
        const LPARAM added = call(info, CPSFUNC_ADD_PROPSHEETPAGEW, &page);
        BYTE stored[] = {1, 2, 3}, read[8] = {};
        CPSUIDATABLOCK block = {3, stored};
        EXPECT_EQ(3, call(info, CPSFUNC_SET_DATABLOCK, &block, added));
        block = {8, nullptr};
        EXPECT_EQ(3, call(info, CPSFUNC_QUERY_DATABLOCK, &block, added));
        block.pbData = read;
        EXPECT_EQ(3, call(info, CPSFUNC_QUERY_DATABLOCK, &block, added));
        EXPECT_EQ(0, std::memcmp(stored, read, 3));
        EXPECT_EQ(0, call(info, CPSFUNC_ADD_PCOMPROPSHEETUIA, &page));
        EXPECT_EQ(DWORD{ERROR_CALL_NOT_IMPLEMENTED}, GetLastError());
        EXPECT_EQ(0, call(info, 1000, nullptr));
        long long zeros[32] = {};
        for (HANDLE wrong :
             {HANDLE{}, static_cast<HANDLE>(zeros), reinterpret_cast<HANDLE>(12345), INVALID_HANDLE_VALUE})
            EXPECT_EQ(0, info.pfnComPropSheet(wrong, CPSFUNC_GET_PAGECOUNT, 0, 0));
    });
}
