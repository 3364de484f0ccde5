// Option items: what they read as, who may change them, and what their callback is told.
#include <gtest/gtest.h>

#include "UI_dll/plotui.h"
#include "common/qk/resource_dll.h"
#include "companions/compstui/option_item.h"
#include "companions/compstui_player.h"
#include "resources/ids.h"

namespace {

std::wstring tree_text(HWND page) {
    const HWND tree = GetDlgItem(page, compstui::kOptionTree);
    wchar_t text[64] = {};
    TVITEMW item = {
        .mask = TVIF_TEXT, .hItem = TreeView_GetSelection(tree), .pszText = text, .cchTextMax = 64};
    SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    return text;
}

struct Told {
    int changes, applies;
    LONG old;
};
Told told;

// Keeps the sheet open when it is to be left for the first time.
LONG APIENTRY keep_told(CPSUICBPARAM* parameter) noexcept {
    if (parameter->Reason == CPSUICB_REASON_SEL_CHANGED)
        told = {told.changes + 1, told.applies, parameter->OldSel};
    const bool first = parameter->Reason == CPSUICB_REASON_APPLYNOW && told.applies++ == 0;
    return first ? CPSUICB_ACTION_NO_APPLY_EXIT : CPSUICB_ACTION_NONE;
}

}  // namespace

TEST(CompstuiOptions, OnlyWithPermissionTheyChange) {
    ASSERT_TRUE(plotui::attach_process(GetModuleHandleW(nullptr)));
    const struct {
        const char* label;
        WORD template_id;
        int list;
        WORD sheet_flags;
        DWORD item_flags;
        bool may_change;
    } rows[] = {
        {"the host's page", DP_STD_TREEVIEWPAGE, compstui::kOptionList, CPSUIF_UPDATE_PERMISSION, 0, true},
        {"the caller's page", IDD_OPTIONS, IDC_OPTION_ITEM, CPSUIF_UPDATE_PERMISSION, 0, true},
        {"no permission", IDD_OPTIONS, IDC_OPTION_ITEM, 0, 0, false},
        {"item off", DP_STD_TREEVIEWPAGE, compstui::kOptionList, CPSUIF_UPDATE_PERMISSION, OPTIF_DISABLED,
         false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        OneItem group;
        group.item.Flags = OPTIF_CALLBACK | row.item_flags;
        group.page.Flags = 0;
        group.page.DlgTemplateID = row.template_id;
        group.sheet.hInstCaller = qk::resource_module();
        group.sheet.Flags = row.sheet_flags;
        group.sheet.pfnCallBack = &keep_told;
        told = {};
        Player player;
        player.add = [&](PROPSHEETUI_INFO& info) { call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet); };
        player.script = [&](HWND page) {
            const HWND list = GetDlgItem(page, row.list + compstui::kListBox);
            const bool has_tree = GetDlgItem(page, compstui::kOptionTree) != nullptr;
            EXPECT_EQ(row.template_id == DP_STD_TREEVIEWPAGE, has_tree);
            wchar_t title[20] = {};
            GetDlgItemTextW(page, row.list + compstui::kListTitle, title, 20);
            EXPECT_STREQ(L"Item", title);
            EXPECT_EQ(2, SendMessageW(list, LB_GETCOUNT, 0, 0));
            EXPECT_EQ(1, SendMessageW(list, LB_GETCURSEL, 0, 0));
            EXPECT_EQ(row.may_change, IsWindowEnabled(list) != FALSE);
            if (row.may_change) {
                SendMessageW(list, LB_SETCURSEL, 0, 0);
                SendMessageW(page, WM_COMMAND, MAKEWPARAM(row.list + compstui::kListBox, LBN_SELCHANGE),
                             reinterpret_cast<LPARAM>(list));
            }
            if (has_tree) {
                EXPECT_EQ(row.may_change ? L"Item: zero" : L"Item: one", tree_text(page));
            }
            SendMessageW(GetParent(page), PSM_PRESSBUTTON, PSBTN_OK, 0);
            EXPECT_EQ(1, told.applies);
            Player::press(page, PSBTN_OK);
        };
        EXPECT_EQ(CPSUI_OK, player.play().answer);
        EXPECT_EQ(row.may_change ? 0 : 1, group.item.Sel);
        EXPECT_EQ(row.may_change ? 1 : 0, told.changes);
        EXPECT_EQ(row.may_change ? 1 : 0, told.old);
        EXPECT_EQ(2, told.applies);
    }
    plotui::detach_process(false);
}
