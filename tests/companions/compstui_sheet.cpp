// A common property sheet: what is added to it, reasons and results.

#include "UI_dll/plotui.h"
#include "companions/compstui/page.h"
#include "companions/compstui/sheet.h"
#include "resources/ids.h"

namespace {

// The module's page with an option item, in English.
const DLGTEMPLATE* page_template() {
    return compstui::find_template(qk::resource_module(), MAKEINTRESOURCEW(IDD_OPTIONS));
}

// Plays a sheet: a root function that keeps what it is told, and a page that runs a script once the sheet
// stands.
struct Player {
    std::function<void(PROPSHEETUI_INFO&)> add;  // at INIT
    std::function<void(HWND page)> script;       // once a page of `page_proc` stands; it must end the sheet
    LONG init_answer = 1, header_answer = 1;
    bool page_applies = false;  // the page's procedure answers PSN_APPLY itself

    std::string reasons;  // one digit each
    std::vector<HANDLE> spoke;
    LPARAM destroyed = -1;
    LONG answer = 0;
    DWORD result = 99;

    // Runs the sheet on this thread.
    Player& play() {
        current = this;
        answer = compstui::show_sheet(nullptr, &function, reinterpret_cast<LPARAM>(this), &result);
        current = nullptr;
        return *this;
    }

    // Ends the script's sheet.
    static void press(HWND page, int button) {
        PostMessageW(GetParent(page), PSM_PRESSBUTTON, static_cast<WPARAM>(button), 0);
    }

    static LONG function(PROPSHEETUI_INFO* info, LPARAM parameter) {
        auto& player = *reinterpret_cast<Player*>(info->lParamInit);
        player.reasons += static_cast<char>('0' + info->Reason);
        switch (info->Reason) {
            case PROPSHEETUI_REASON_INIT:
                return player.add(*info), player.init_answer;
            case PROPSHEETUI_REASON_GET_INFO_HEADER:
                EXPECT_TRUE(reinterpret_cast<PROPSHEETUI_INFO_HEADER*>(parameter)->Flags &
                            PSUIHDRF_PROPTITLE);
                reinterpret_cast<PROPSHEETUI_INFO_HEADER*>(parameter)->pTitle = const_cast<wchar_t*>(L"Any");
                return player.header_answer;
            case PROPSHEETUI_REASON_SET_RESULT: {
                const auto& taken = *reinterpret_cast<const SETRESULT_INFO*>(parameter);
                player.spoke.push_back(taken.hSetResult);
                info->Result = static_cast<ULONG_PTR>(taken.Result);
                return 1;
            }
            case PROPSHEETUI_REASON_DESTROY:
                return player.destroyed = parameter, 1;
            default:
                return -1;
        }
    }

    // Leaves every message to the host, as the pages of option items do, PSN_APPLY only when it is not told
    // to answer that itself.
    static INT_PTR CALLBACK page_proc(HWND page, UINT message, WPARAM, LPARAM lparam) {
        static const UINT kStands = RegisterWindowMessageW(L"compstui test: the sheet stands");
        if (message == WM_INITDIALOG)
            PostMessageW(page, kStands, 0, 0);
        else if (message == kStands && current)
            current->script(page);
        else if (message == WM_NOTIFY && reinterpret_cast<const NMHDR*>(lparam)->code == PSN_APPLY)
            return current && current->page_applies;
        return FALSE;
    }

    static inline Player* current = nullptr;
};

LONG_PTR call(const PROPSHEETUI_INFO& info, UINT function, const void* first, LPARAM second = 0) {
    return info.pfnComPropSheet(info.hComPropSheet, function, reinterpret_cast<LPARAM>(first), second);
}

PROPSHEETPAGEW plain_page() {
    return {.dwSize = sizeof(PROPSHEETPAGEW),
            .dwFlags = PSP_DLGINDIRECT | PSP_USETITLE,
            .pResource = page_template(),
            .pszTitle = L"Page",
            .pfnDlgProc = &Player::page_proc};
}

// A group of one page with one option item, a list box that has its second text chosen.
struct Group {
    OPTPARAM parameters[2] = {{.cbSize = sizeof(OPTPARAM), .pData = const_cast<wchar_t*>(L"zero")},
                              {.cbSize = sizeof(OPTPARAM), .pData = const_cast<wchar_t*>(L"one")}};
    OPTTYPE type = {.cbSize = sizeof(OPTTYPE),
                    .Type = TVOT_LISTBOX,
                    .Count = 2,
                    .BegCtrlID = IDC_OPTION_ITEM,
                    .pOptParam = parameters};
    OPTITEM item = {.cbSize = sizeof(OPTITEM), .pName = const_cast<wchar_t*>(L"Item"), .pOptType = &type};
    DLGPAGE page = {.cbSize = sizeof(DLGPAGE), .DlgProc = &Player::page_proc};
    COMPROPSHEETUI sheet = {.cbSize = sizeof(COMPROPSHEETUI),
                            .hInstCaller = qk::resource_module(),
                            .pCallerName = const_cast<wchar_t*>(L"Printer"),
                            .pOptItem = &item,
                            .pDlgPage = &page,
                            .cOptItem = 1,
                            .cDlgPage = 1};

    Group() {
        item.Sel = 1;
        page.pTabName = const_cast<wchar_t*>(L"Options");
        page.DlgTemplateID = IDD_OPTIONS;
    }
    Group(const Group&) = delete;
    Group& operator=(const Group&) = delete;
};

LONG APIENTRY restarts(CPSUICBPARAM* parameter) {
    EXPECT_EQ(parameter->Reason, CPSUICB_REASON_APPLYNOW);
    EXPECT_EQ(std::tuple(parameter->Result, parameter->OldSel), std::tuple(ULONG_PTR{CPSUI_OK}, -1));
    parameter->Result = CPSUI_RESTARTWINDOWS;
    return CPSUICB_ACTION_ITEMS_APPLIED;
}

// The texts of the pages are the module's.
struct CompstuiSheet : testing::Test {
    CompstuiSheet() { EXPECT_TRUE(plotui::attach_process(GetModuleHandleW(nullptr))); }
    ~CompstuiSheet() override { plotui::detach_process(false); }
};

}  // namespace

TEST_F(CompstuiSheet, WhatIsMalformedIsNotAdded) {
    const std::pair<void (*)(Group&), LONG> rows[] = {
        {[](Group& g) { g.sheet.cbSize = 120; }, ERR_CPSUI_INVALID_PDATA},
        {[](Group& g) { g.sheet.hInstCaller = nullptr; }, ERR_CPSUI_NULL_HINST},
        {[](Group& g) { g.sheet.cDlgPage = 65; }, ERR_CPSUI_TOO_MANY_DLGPAGES},
        {[](Group& g) { g.page.DlgTemplateID = 1; }, ERR_CPSUI_CREATEPROPPAGE_FAILED},
        {[](Group& g) { g.sheet.pOptItem = nullptr; }, ERR_CPSUI_NULL_POPTITEM},
        {[](Group& g) { g.item.pName = nullptr; }, ERR_CPSUI_NULL_OPTITEMNAME},
        {[](Group& g) { g.item.DlgPageIdx = 1; }, ERR_CPSUI_INVALID_DLGPAGEIDX},
        {[](Group& g) { g.type.Type = TVOT_CHKBOX; }, ERR_CPSUI_INVALID_TVOT_TYPE},
        {[](Group& g) { g.type.pOptParam = nullptr; }, ERR_CPSUI_NULL_POPTPARAM},
        {[](Group& g) { g.parameters[1].cbSize = 1; }, ERR_CPSUI_INVALID_OPTPARAM_CBSIZE},
        {[](Group&) {}, 1}};
    Player player;
    player.init_answer = -1;  // the sheet is not shown
    player.add = [&](PROPSHEETUI_INFO& info) {
        for (const auto& [spoil, wanted] : rows) {
            Group group;
            spoil(group);
            LONG pages = 0;
            const LONG_PTR added =
                call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet, reinterpret_cast<LPARAM>(&pages));
            EXPECT_EQ(wanted, pages);
            EXPECT_EQ(wanted > 0, added != 0) << wanted;
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

// The reasons: 5 before INIT, 0 INIT, 1 header, 3 result, 2 DESTROY.
TEST_F(CompstuiSheet, ReasonsAndResultByHowItIsLeft) {
    enum Pages { kNone, kGroup, kOwnApply, kAlone };
    // The buttons, the answers to INIT and to the header, the pages, the reasons, the sheet's answer and
    // result.
    const std::tuple<std::vector<int>, LONG, LONG, Pages, const char*, LONG, DWORD> rows[] = {
        {{PSBTN_OK}, 1, 1, kGroup, "50132", CPSUI_OK, 1},
        {{PSBTN_CANCEL}, 1, 1, kGroup, "5012", CPSUI_CANCEL, 0},
        {{PSBTN_APPLYNOW, PSBTN_CANCEL}, 1, 1, kGroup, "50132", CPSUI_CANCEL, 1},
        {{PSBTN_OK}, 1, 1, kOwnApply, "5012", CPSUI_OK, 0},
        {{PSBTN_OK}, 1, 1, kAlone, "5012", CPSUI_OK, 0},
        {{}, -5, 1, kGroup, "502", -5, 0},
        {{}, 0, 1, kGroup, "502", ERR_CPSUI_GETLASTERROR, 0},
        {{}, 1, 0, kGroup, "5012", ERR_CPSUI_GETLASTERROR, 0},
        {{}, 1, 1, kNone, "5012", ERR_CPSUI_NO_PROPSHEETPAGE, 0}};
    for (const auto& [buttons, init, header, pages, reasons, answer, result] : rows) {
        SCOPED_TRACE(reasons);
        Group group;
        const PROPSHEETPAGEW page = plain_page();
        LONG_PTR added = 0;
        Player player;
        player.script = [&pressed = buttons](HWND shown) {
            SendMessageW(GetParent(shown), PSM_CHANGED, reinterpret_cast<WPARAM>(shown), 0);
            for (const int button : pressed)
                Player::press(shown, button);
        };
        player.init_answer = init;
        player.header_answer = header;
        player.page_applies = pages == kOwnApply;
        player.add = [&, made = pages](PROPSHEETUI_INFO& info) {
            if (made == kAlone)
                call(info, CPSFUNC_ADD_PROPSHEETPAGEW, &page);
            else if (made != kNone)
                added = call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet);
        };
        player.play();
        EXPECT_EQ(reasons, player.reasons);
        EXPECT_EQ(std::tuple(answer, result), std::tuple(player.answer, player.result));
        EXPECT_EQ(answer >= 0, player.destroyed != 0) << "left by a button";
        const bool told = player.reasons.find('3') != std::string::npos;
        EXPECT_EQ(told ? std::vector{reinterpret_cast<HANDLE>(added)} : std::vector<HANDLE>(), player.spoke);
    }
}

TEST_F(CompstuiSheet, ResultGoesUpToEveryParent) {
    Group group;
    Player inner, outer;
    LONG_PTR added = 0, function = 0;
    inner.add = [&](PROPSHEETUI_INFO& info) {
        added = call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet);
    };
    outer.add = [&](PROPSHEETUI_INFO& info) {
        function = call(info, CPSFUNC_ADD_PFNPROPSHEETUIW, reinterpret_cast<void*>(&Player::function),
                        reinterpret_cast<LPARAM>(&inner));
        EXPECT_EQ(1, call(info, CPSFUNC_GET_PAGECOUNT, nullptr));
    };
    outer.script = [](HWND page) {
        SendMessageW(GetParent(page), PSM_CHANGED, reinterpret_cast<WPARAM>(page), 0);
        Player::press(page, PSBTN_OK);
    };
    group.sheet.pfnCallBack = &restarts;
    EXPECT_EQ(std::tuple(outer.play().answer, outer.result),
              std::tuple(CPSUI_OK, DWORD{CPSUI_RESTARTWINDOWS}));
    EXPECT_EQ(std::tuple(inner.reasons, outer.reasons), std::tuple("032", "50132"));
    EXPECT_NE(function, 0);
    for (const Player* told : {&inner, &outer})
        EXPECT_EQ(told->spoke, std::vector{reinterpret_cast<HANDLE>(added)});
    EXPECT_NE(inner.destroyed, 0) << "left by a button";
}
