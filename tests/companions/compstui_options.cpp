// Option items: what they read as, and how their controls change them.
#include <gtest/gtest.h>

#include "companions/compstui/option_item.h"
#include "companions/compstui_player.h"

namespace {

// An item with its type and parameters.
struct Item {
    wchar_t buffer[8] = L"old";
    OPTPARAM parameters[3] = {};
    OPTTYPE type = {};
    OPTITEM item = {};

    Item(BYTE kind, WORD count, LONG selection) {
        constexpr const wchar_t* kTexts[] = {L"zero", L"one", L"two"};
        for (size_t i = 0; i < 3; ++i) {
            parameters[i].cbSize = sizeof(OPTPARAM);
            parameters[i].pData = const_cast<wchar_t*>(kTexts[i]);
        }
        type.cbSize = sizeof type;
        type.Type = kind;
        type.Count = count;
        type.pOptParam = parameters;
        item.cbSize = sizeof item;
        item.Flags = OPTIF_CALLBACK;
        item.pName = const_cast<wchar_t*>(L"Item");
        item.pOptType = &type;
        item.Sel = selection;
        if (kind == TVOT_UDARROW || kind == TVOT_TRACKBAR || kind == TVOT_SCROLLBAR) {
            parameters[1].IconID = static_cast<ULONG_PTR>(-10);
            parameters[1].lParam = 100;
            parameters[2].lParam = 20;
        }
        if (kind == TVOT_EDITBOX) {
            item.pSel = buffer;
            parameters[1].IconID = std::size(buffer);
        }
    }
    Item(const Item&) = delete;
    Item& operator=(const Item&) = delete;
};

void click(HWND page, int id) {
    SendDlgItemMessageW(page, id, BM_CLICK, 0, 0);
}

void choose(HWND page, UINT message, int index) {
    SendDlgItemMessageW(page, compstui::kOptionValue, message, static_cast<WPARAM>(index), 0);
    SendMessageW(page, WM_COMMAND, MAKEWPARAM(compstui::kOptionValue, CBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(GetDlgItem(page, compstui::kOptionValue)));
}

void scroll(HWND page, WORD how) {
    SendMessageW(page, WM_HSCROLL, how, reinterpret_cast<LPARAM>(GetDlgItem(page, compstui::kOptionValue)));
}

std::wstring tree_text(HWND page) {
    const HWND tree = GetDlgItem(page, compstui::kOptionTree);
    wchar_t text[64] = {};
    TVITEMW item = {};
    item.mask = TVIF_TEXT;
    item.hItem = TreeView_GetSelection(tree);
    item.pszText = text;
    item.cchTextMax = 64;
    SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    return text;
}

struct Told {
    int changes;
    LONG old;
    WORD reason;
};
Told told;

LONG APIENTRY keep_told(CPSUICBPARAM* parameter) noexcept {
    if (parameter->Reason < CPSUICB_REASON_DLGPROC)
        told = {told.changes + 1, parameter->OldSel, parameter->Reason};
    return CPSUICB_ACTION_NONE;
}

// Shows a sheet with the item alone and runs `script` on its page.
void with_page(Item& item, bool may_update, const std::function<void(HWND)>& script) {
    told = {};
    Group group;
    group.sheet.Flags = may_update ? CPSUIF_UPDATE_PERMISSION : 0;
    group.sheet.pfnCallBack = &keep_told;
    group.sheet.pOptItem = &item.item;
    group.sheet.cOptItem = 1;
    Player player;
    player.add = [&](PROPSHEETUI_INFO& info) { call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet); };
    player.script = [&](HWND page) {
        script(page);
        Player::press(page, PSBTN_OK);
    };
    EXPECT_EQ(CPSUI_OK, player.play().answer);
}

struct Change {
    const char* label;
    BYTE type;
    WORD count;
    LONG before;
    void (*act)(HWND page);
    LONG after;
    const wchar_t* text;
};

const Change kChanges[] = {
    {"2 states", TVOT_2STATES, 2, 0, [](HWND p) { click(p, compstui::kOptionRadio + 1); }, 1, L"Item: one"},
    {"3 states", TVOT_3STATES, 3, 1, [](HWND p) { click(p, compstui::kOptionRadio + 2); }, 2, L"Item: two"},
    {"list box", TVOT_LISTBOX, 3, 0, [](HWND p) { choose(p, LB_SETCURSEL, 2); }, 2, L"Item: two"},
    {"combo box", TVOT_COMBOBOX, 3, 2, [](HWND p) { choose(p, CB_SETCURSEL, 1); }, 1, L"Item: one"},
    {"check box", TVOT_CHKBOX, 1, 0, [](HWND p) { click(p, compstui::kOptionValue); }, 1, L"Item: True"},
    {"typed number", TVOT_UDARROW, 2, 5, [](HWND p) { SetDlgItemTextW(p, compstui::kOptionValue, L"-7"); },
     -7, L"Item: -7 zero"},
    {"number out of range", TVOT_UDARROW, 2, 5,
     [](HWND p) { SetDlgItemTextW(p, compstui::kOptionValue, L"101"); }, 5, L"Item: 5 zero"},
    {"scroll bar, a page", TVOT_SCROLLBAR, 3, 5, [](HWND p) { scroll(p, SB_PAGERIGHT); }, 25,
     L"Item: 25 zero"},
    {"scroll bar, its end", TVOT_SCROLLBAR, 3, 5, [](HWND p) { scroll(p, SB_RIGHT); }, 100,
     L"Item: 100 zero"},
    {"track bar", TVOT_TRACKBAR, 3, 5,
     [](HWND p) {
         SendDlgItemMessageW(p, compstui::kOptionValue, TBM_SETPOS, TRUE, 42);
         scroll(p, TB_THUMBPOSITION);
     },
     42, L"Item: 42 zero"},
};

}  // namespace

TEST(CompstuiOptions, ControlsChangeTheItem) {
    for (const Change& row : kChanges) {
        SCOPED_TRACE(row.label);
        Item item(row.type, row.count, row.before);
        with_page(item, true, [&](HWND page) {
            row.act(page);
            EXPECT_EQ(row.text, tree_text(page));
        });
        EXPECT_EQ(row.after, item.item.Sel);
        const bool changed = row.after != row.before;
        EXPECT_EQ(changed, told.changes == 1);
        EXPECT_EQ(changed, (item.item.Flags & OPTIF_CHANGEONCE) != 0);
        EXPECT_EQ(changed ? row.before : 0, told.old);
    }
}

TEST(CompstuiOptions, TypedTextStaysInItsBuffer) {
    Item item(TVOT_EDITBOX, 2, 0);
    with_page(item, true,
              [](HWND page) { SetDlgItemTextW(page, compstui::kOptionValue, L"longer than that"); });
    EXPECT_STREQ(L"longer ", item.buffer);
}

TEST(CompstuiOptions, ReadOnlyWithoutPermission) {
    struct Row {
        const char* label;
        bool may_update;
        DWORD flags;
        BOOL enabled;
    };
    constexpr Row kRows[] = {{"permission", true, 0, TRUE},
                             {"no permission", false, 0, FALSE},
                             {"item off", true, OPTIF_DISABLED, FALSE}};
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.label);
        Item item(TVOT_COMBOBOX, 3, 1);
        item.item.Flags |= row.flags;
        with_page(item, row.may_update, [&](HWND page) {
            EXPECT_EQ(row.enabled, IsWindowEnabled(GetDlgItem(page, compstui::kOptionValue)));
            EXPECT_EQ(L"Item: one", tree_text(page));
        });
        EXPECT_EQ(1, item.item.Sel);
    }
}

TEST(CompstuiOptions, PushButtonsAndExtrasTellTheirReason) {
    EXTCHKBOX check = {};
    check.cbSize = sizeof check;
    check.pTitle = const_cast<wchar_t*>(L"Extra");
    Item item(TVOT_PUSHBUTTON, 1, 0);
    item.type.Style = PUSHBUTTON_TYPE_CALLBACK;
    item.parameters[0].pData = nullptr;
    item.item.pExtChkBox = &check;
    with_page(item, true, [](HWND page) {
        click(page, compstui::kOptionValue);
        EXPECT_EQ(CPSUICB_REASON_PUSHBUTTON, told.reason);
        click(page, compstui::kOptionExtra);
        EXPECT_EQ(CPSUICB_REASON_ECB_CHANGED, told.reason);
    });
    EXPECT_EQ(2, told.changes);
    EXPECT_TRUE(item.item.Flags & OPTIF_ECB_CHECKED);
}

TEST(CompstuiOptions, HiddenOrForeignItemsMakeNoTree) {
    Item item(TVOT_LISTBOX, 3, 0);
    item.item.Flags |= OPTIF_HIDE;
    with_page(item, true, [](HWND page) { EXPECT_EQ(nullptr, GetDlgItem(page, compstui::kOptionTree)); });
}
