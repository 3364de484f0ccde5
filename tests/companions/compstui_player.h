// Plays a common property sheet: a root function that keeps what it is told, and a page that runs a script
// once the sheet stands.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "UI_dll/plotui.h"
#include "common/qk/resource_dll.h"
#include "companions/compstui/page.h"
#include "companions/compstui/sheet.h"
#include "resources/ids.h"

// The module's page with an option item, in English.
inline const DLGTEMPLATE* page_template() {
    return compstui::find_template(qk::resource_module(), MAKEINTRESOURCEW(IDD_OPTIONS));
}

struct Player {
    std::function<void(PROPSHEETUI_INFO&)> add;  // at INIT
    std::function<void(HWND page)> script;       // once a page of `page_proc` stands; it must end the sheet
    LONG init_answer = 1;
    LONG header_answer = 1;
    bool page_applies = false;  // the page's procedure answers PSN_APPLY itself

    std::string reasons;  // one digit each
    std::vector<HANDLE> spoke;
    LPARAM destroyed = -1;
    LONG answer = 0;
    DWORD result = 99;

    // Runs the sheet on this thread.
    Player& play() {
        current() = this;
        answer = compstui::show_sheet(nullptr, &function, reinterpret_cast<LPARAM>(this), &result);
        current() = nullptr;
        return *this;
    }

    // Ends the script's sheet.
    static void press(HWND page, int button) {
        PostMessageW(GetParent(page), PSM_PRESSBUTTON, static_cast<WPARAM>(button), 0);
    }

    static LONG function(PROPSHEETUI_INFO* info, LPARAM parameter) {
        auto& player = *reinterpret_cast<Player*>(info->lParamInit);
        player.reasons += static_cast<char>('0' + info->Reason);
        if (info->Reason == PROPSHEETUI_REASON_INIT) {
            if (player.add)
                player.add(*info);
            return player.init_answer;
        }
        if (info->Reason == PROPSHEETUI_REASON_GET_INFO_HEADER) {
            auto& header = *reinterpret_cast<PROPSHEETUI_INFO_HEADER*>(parameter);
            header.pTitle = const_cast<wchar_t*>(L"Sheet");
            return player.header_answer;
        }
        if (info->Reason == PROPSHEETUI_REASON_SET_RESULT) {
            const auto& taken = *reinterpret_cast<const SETRESULT_INFO*>(parameter);
            player.spoke.push_back(taken.hSetResult);
            info->Result = static_cast<ULONG_PTR>(taken.Result);
            return 1;
        }
        if (info->Reason != PROPSHEETUI_REASON_DESTROY)
            return -1;
        player.destroyed = parameter;
        return 1;
    }

    // Leaves every message to the host, as the pages of option items do, PSN_APPLY only when it is not told
    // to answer that itself.
    static INT_PTR CALLBACK page_proc(HWND page, UINT message, WPARAM, LPARAM lparam) {
        static const UINT kStands = RegisterWindowMessageW(L"compstui test: the sheet stands");
        if (message == WM_INITDIALOG)
            PostMessageW(page, kStands, 0, 0);
        else if (message == kStands && current())
            current()->script(page);
        else if (message == WM_NOTIFY && reinterpret_cast<const NMHDR*>(lparam)->code == PSN_APPLY)
            return current() && current()->page_applies;
        return FALSE;
    }

private:
    static Player*& current() {
        thread_local Player* player = nullptr;
        return player;
    }
};

inline LONG_PTR call(const PROPSHEETUI_INFO& info, UINT function, const void* first, LPARAM second = 0) {
    return info.pfnComPropSheet(info.hComPropSheet, function, reinterpret_cast<LPARAM>(first), second);
}

inline PROPSHEETPAGEW plain_page() {
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
    COMPROPSHEETUI sheet = {};

    Group() {
        item.Sel = 1;
        page.pTabName = const_cast<wchar_t*>(L"Options");
        page.DlgTemplateID = IDD_OPTIONS;
        sheet.cbSize = sizeof sheet;
        sheet.hInstCaller = qk::resource_module();
        sheet.pCallerName = const_cast<wchar_t*>(L"Printer");
        sheet.pDlgPage = &page;
        sheet.cDlgPage = 1;
        sheet.pOptItem = &item;
        sheet.cOptItem = 1;
    }
    Group(const Group&) = delete;
    Group& operator=(const Group&) = delete;
};
