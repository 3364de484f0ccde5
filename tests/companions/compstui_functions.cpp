// What callers reach through pfnComPropSheet, and what is refused.
#include <gtest/gtest.h>

#include <functional>

#include "companions/compstui_player.h"

namespace {

// Runs `body` at INIT of a sheet that is not shown.
void at_init(const std::function<void(PROPSHEETUI_INFO&)>& body) {
    Player player;
    player.add = body;
    player.init_answer = -1;
    player.play();
    ASSERT_EQ('2', player.reasons.back());
}

}  // namespace

TEST(CompstuiFunctions, MalformedPagesAndGroupsAreRefused) {
    const struct {
        const char* label;
        void (*spoil)(OneItem& g);
        LONG error;
    } rows[] = {
        {"sheet size", [](OneItem& g) { g.sheet.cbSize = 120; }, ERR_CPSUI_INVALID_PDATA},
        {"no instance", [](OneItem& g) { g.sheet.hInstCaller = nullptr; }, ERR_CPSUI_NULL_HINST},
        {"no caller", [](OneItem& g) { g.sheet.pCallerName = nullptr; }, ERR_CPSUI_NULL_CALLERNAME},
        {"no pages", [](OneItem& g) { g.sheet.cDlgPage = 0; }, ERR_CPSUI_INVALID_PDLGPAGE},
        {"too many pages", [](OneItem& g) { g.sheet.cDlgPage = 65; }, ERR_CPSUI_TOO_MANY_DLGPAGES},
        {"page size", [](OneItem& g) { g.page.cbSize = 32; }, ERR_CPSUI_INVALID_DLGPAGE_CBSIZE},
        {"no template", [](OneItem& g) { g.page.hDlgTemplate = nullptr; }, ERR_CPSUI_CREATEPROPPAGE_FAILED},
        {"no items", [](OneItem& g) { g.sheet.pOptItem = nullptr; }, ERR_CPSUI_NULL_POPTITEM},
        {"item size", [](OneItem& g) { g.item.cbSize = 80; }, ERR_CPSUI_INVALID_OPTITEM_CBSIZE},
        {"no name", [](OneItem& g) { g.item.pName = nullptr; }, ERR_CPSUI_NULL_OPTITEMNAME},
        {"page index", [](OneItem& g) { g.item.DlgPageIdx = 1; }, ERR_CPSUI_INVALID_DLGPAGEIDX},
        {"type size", [](OneItem& g) { g.type.cbSize = 0; }, ERR_CPSUI_INVALID_OPTTYPE_CBSIZE},
        {"type", [](OneItem& g) { g.type.Type = 99; }, ERR_CPSUI_INVALID_TVOT_TYPE},
        {"a type that is not served", [](OneItem& g) { g.type.Type = TVOT_CHKBOX; },
         ERR_CPSUI_INVALID_TVOT_TYPE},
        {"count", [](OneItem& g) { g.type.Count = 0; }, ERR_CPSUI_INVALID_OPTTYPE_COUNT},
        {"no parameters", [](OneItem& g) { g.type.pOptParam = nullptr; }, ERR_CPSUI_NULL_POPTPARAM},
        {"parameter size", [](OneItem& g) { g.parameters[1].cbSize = 1; }, ERR_CPSUI_INVALID_OPTPARAM_CBSIZE},
        {"nothing wrong", [](OneItem&) {}, 1},
    };
    at_init([&](PROPSHEETUI_INFO& info) {
        for (const auto& row : rows) {
            OneItem group;
            row.spoil(group);
            LONG pages = 0;
            const LONG_PTR added =
                call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet, reinterpret_cast<LPARAM>(&pages));
            EXPECT_EQ(row.error, pages) << row.label;
            EXPECT_EQ(row.error > 0, added != 0) << row.label;
        }
        EXPECT_EQ(1, call(info, CPSFUNC_GET_PAGECOUNT, nullptr));
        for (const size_t size : {size_t{0}, PROPSHEETPAGEW_V1_SIZE - 1, size_t{105}, size_t{MAXDWORD}}) {
            PROPSHEETPAGEW page[2] = {plain_page()};
            page[0].dwSize = static_cast<DWORD>(size);
            EXPECT_EQ(0, call(info, CPSFUNC_ADD_PROPSHEETPAGEW, page)) << size;
        }
        EXPECT_EQ(0, call(info, CPSFUNC_ADD_PROPSHEETPAGEW, nullptr));
        EXPECT_EQ(0, call(info, CPSFUNC_ADD_PROPSHEETPAGEW, reinterpret_cast<void*>(8)));
        EXPECT_EQ(0, info.pfnComPropSheet(reinterpret_cast<HANDLE>(12345), CPSFUNC_GET_PAGECOUNT, 0, 0));
    });
}

TEST(CompstuiFunctions, PagesAreCountedChosenAndTakenOut) {
    at_init([](PROPSHEETUI_INFO& info) {
        Group group;
        DLGPAGE two[2] = {group.page, group.page};
        group.sheet.pDlgPage = two;
        group.sheet.cDlgPage = 2;
        const PROPSHEETPAGEW page = plain_page();
        const LONG_PTR in_group = call(info, CPSFUNC_ADD_PCOMPROPSHEETUIW, &group.sheet);
        const LONG_PTR alone = call(info, CPSFUNC_ADD_PROPSHEETPAGEW, &page);
        const auto handle = [](LONG_PTR number) { return reinterpret_cast<void*>(number); };
        EXPECT_TRUE(in_group && alone);
        EXPECT_EQ(3, call(info, CPSFUNC_GET_PAGECOUNT, nullptr));
        const struct {
            LONG_PTR page;
            LPARAM index;
            LONG_PTR answer;
        } starts[] = {{alone, 9, alone}, {in_group, 1, in_group}, {in_group, 2, 0}, {0, 0, 0}, {8, 0, 0}};
        for (const auto& row : starts)
            EXPECT_EQ(row.answer, call(info, CPSFUNC_SET_HSTARTPAGE, handle(row.page), row.index));
        EXPECT_EQ(-1, call(info, CPSFUNC_SET_RESULT, handle(8), CPSUI_OK));
        EXPECT_EQ(-1, info.pfnComPropSheet(handle(8), CPSFUNC_SET_RESULT, 0, CPSUI_OK));
        EXPECT_EQ(1, call(info, CPSFUNC_SET_RESULT, handle(alone), CPSUI_OK));
        EXPECT_EQ(1, call(info, CPSFUNC_SET_RESULT, nullptr, CPSUI_CANCEL));  // the function's own
        EXPECT_EQ(2, call(info, CPSFUNC_DELETE_HCOMPROPSHEET, handle(in_group)));
        EXPECT_EQ(0, call(info, CPSFUNC_DELETE_HCOMPROPSHEET, handle(in_group)));
        EXPECT_EQ(1, call(info, CPSFUNC_GET_PAGECOUNT, nullptr));
        for (int i = 1; i < MAXPROPPAGES; ++i)
            EXPECT_NE(0, call(info, CPSFUNC_ADD_PROPSHEETPAGEW, &page));
        EXPECT_EQ(0, call(info, CPSFUNC_ADD_PROPSHEETPAGEW, &page));
    });
}
