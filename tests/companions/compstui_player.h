// Plays a common property sheet: a root function that keeps what it is told, and a page that runs a script
// once the sheet stands.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "companions/compstui/page.h"
#include "companions/compstui/page_template.h"
#include "companions/compstui/sheet.h"
#include "resources/ids.h"

struct Player {
    std::function<void(PROPSHEETUI_INFO&)> add;  // at INIT
    std::function<void(HWND page)> script;       // once a page of `page_proc` stands; it must end the sheet
    LONG init_answer = 1;
    LONG header_answer = 1;
    LRESULT passed_on = -1;     // what a parent gets in place of the result; -1: the result
    bool page_applies = false;  // the page's procedure answers PSN_APPLY itself

    std::string reasons;  // one digit each
    std::vector<HANDLE> spoke;
    WORD header_flags = 0;  // as the host has set them
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
        switch (info->Reason) {
            case PROPSHEETUI_REASON_INIT:
                if (player.add)
                    player.add(*info);
                return player.init_answer;
            case PROPSHEETUI_REASON_GET_INFO_HEADER: {
                auto& header = *reinterpret_cast<PROPSHEETUI_INFO_HEADER*>(parameter);
                header.pTitle = const_cast<wchar_t*>(L"Sheet");
                player.header_flags = header.Flags;
                return player.header_answer;
            }
            case PROPSHEETUI_REASON_SET_RESULT: {
                auto& taken = *reinterpret_cast<SETRESULT_INFO*>(parameter);
                player.spoke.push_back(taken.hSetResult);
                info->Result = static_cast<ULONG_PTR>(taken.Result);
                if (player.passed_on >= 0)
                    taken.Result = player.passed_on;
                return 1;
            }
            case PROPSHEETUI_REASON_DESTROY:
                player.destroyed = parameter;
                return 1;
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
    PROPSHEETPAGEW page = {};
    page.dwSize = sizeof page;
    page.dwFlags = PSP_DLGINDIRECT | PSP_USETITLE;
    page.pResource = compstui::plain_page_template();
    page.pszTitle = L"Page";
    page.pfnDlgProc = &Player::page_proc;
    return page;
}

// A group of one page.
struct Group {
    DLGPAGE page = {};
    COMPROPSHEETUI sheet = {};

    Group() {
        page.cbSize = sizeof page;
        page.Flags = DPF_USE_HDLGTEMPLATE;
        page.hDlgTemplate = const_cast<DLGTEMPLATE*>(compstui::plain_page_template());
        page.DlgProc = &Player::page_proc;
        page.pTabName = const_cast<wchar_t*>(L"Options");
        sheet.cbSize = sizeof sheet;
        sheet.Flags = CPSUIF_UPDATE_PERMISSION;
        sheet.hInstCaller = GetModuleHandleW(nullptr);
        sheet.pCallerName = const_cast<wchar_t*>(L"Printer");
        sheet.pDlgPage = &page;
        sheet.cDlgPage = 1;
    }
    Group(const Group&) = delete;
    Group& operator=(const Group&) = delete;
};

// The same with one option item, a list box that has its second text chosen.
struct OneItem : Group {
    OPTPARAM parameters[2] = {};
    OPTTYPE type = {};
    OPTITEM item = {};

    OneItem() {
        parameters[0].cbSize = parameters[1].cbSize = sizeof(OPTPARAM);
        parameters[0].pData = const_cast<wchar_t*>(L"zero");
        parameters[1].pData = const_cast<wchar_t*>(L"one");
        type.cbSize = sizeof type;
        type.Type = TVOT_LISTBOX;
        type.BegCtrlID = IDC_OPTION_ITEM;
        type.Count = 2;
        type.pOptParam = parameters;
        item.cbSize = sizeof item;
        item.pName = const_cast<wchar_t*>(L"Item");
        item.pOptType = &type;
        item.Sel = 1;
        sheet.pOptItem = &item;
        sheet.cOptItem = 1;
    }
};
