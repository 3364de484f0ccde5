// Option items: what they read as, who may change them, and what their callback is told.
#include <gtest/gtest.h>

#include "companions/compstui/option_item.h"
#include "companions/compstui_player.h"

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
    const struct {
        const char* label;
        WORD sheet_flags;
        DWORD item_flags;
        bool may_change;
    } rows[] = {{"permission", CPSUIF_UPDATE_PERMISSION, 0, true},
                {"no permission", 0, 0, false},
                {"item off", CPSUIF_UPDATE_PERMISSION, OPTIF_DISABLED, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        OneItem group;
        group.item.Flags = OPTIF_CALLBACK | row.item_flags;
        group.sheet.Flags = row.sheet_flags;
        group.sheet.pfnCallBack = &keep_told;
        told = {};
        Player player;
        player.add = [&](PROPSHEETUI_INFO& info) { call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet); };
        player.script = [&](HWND page) {
            const HWND value = GetDlgItem(page, compstui::kOptionValue);
            EXPECT_EQ(L"Item: one", tree_text(page));
            EXPECT_EQ(row.may_change, IsWindowEnabled(value) != FALSE);
            if (row.may_change) {
                SendMessageW(value, CB_SETCURSEL, 0, 0);
                SendMessageW(page, WM_COMMAND, MAKEWPARAM(compstui::kOptionValue, CBN_SELCHANGE),
                             reinterpret_cast<LPARAM>(value));
                EXPECT_EQ(L"Item: zero", tree_text(page));
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
}
