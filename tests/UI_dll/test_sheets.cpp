#include <gtest/gtest.h>

#include <vector>

#include "UI_dll/cpsui.h"
#include "UI_dll/ddi.h"
#include "UI_dll/optitem.h"
#include "UI_dll/ps_to_devmode.h"
#include "common/threadprop.h"
#include "support/fake_printer.h"
#include "support/installation.h"

namespace {

using Corvanta::Vantrix::PrintSettings::PrintSettings;

// Stands in for the service: notes what is added and hands out a handle.
std::vector<UINT> added;
COMPROPSHEETUI added_sheet;

LONG_PTR CALLBACK note_addition(HANDLE, UINT function, LPARAM what, LPARAM) {
    added.push_back(function);
    if (function == CPSFUNC_ADD_PCOMPROPSHEETUIW)
        added_sheet = *reinterpret_cast<const COMPROPSHEETUI*>(what);
    return 77;
}

class Sheet : public testing::Test {
protected:
    Sheet() {
        added.clear();
        added_sheet = {};
        header = {sizeof header, 0,          FakePrinter::handle(), here.printer.name.data(),
                  nullptr,       &output.dm, sizeof output,         DM_COPY | DM_PROMPT};
        info = {sizeof info,    PROPSHEETUI_INFO_VERSION,          0, 0, nullptr,
                &note_addition, reinterpret_cast<LPARAM>(&header), 0, 0};
    }
    LONG send(WORD reason, const void* parameter = nullptr) {
        info.Reason = reason;
        return DrvDocumentPropertySheets(&info, reinterpret_cast<LPARAM>(parameter));
    }
    LONG end_with(LRESULT result) {
        const SETRESULT_INFO set = {sizeof set, 0, reinterpret_cast<HANDLE>(INT_PTR{77}), result};
        return send(PROPSHEETUI_REASON_SET_RESULT, &set);
    }

    Installation here;
    DriverDevmode output = {};
    DocumentPropertyHeader header;
    PROPSHEETUI_INFO info;
};

TEST_F(Sheet, LivesFromInitToDestroyAndGivesTheJobItsHandleBack) {
    SetThreadProp(threadprop::kPrinter, 123);  // of a job on this thread
    EXPECT_EQ(send(PROPSHEETUI_REASON_INIT), 1);
    EXPECT_EQ(added, (std::vector<UINT>{CPSFUNC_ADD_PCOMPROPSHEETUIW, CPSFUNC_ADD_PROPSHEETPAGEW}));
    EXPECT_EQ(added_sheet.cbSize, sizeof(COMPROPSHEETUI));
    EXPECT_EQ(added_sheet.Flags, CPSUIF_UPDATE_PERMISSION);
    EXPECT_EQ(added_sheet.cOptItem, 1);
    EXPECT_EQ(added_sheet.pDlgPage->DlgTemplateID, 7100);
    ULONG_PTR printer = 0;
    GetThreadProp(threadprop::kPrinter, printer);
    EXPECT_EQ(printer, reinterpret_cast<ULONG_PTR>(FakePrinter::handle()));
    PROPSHEETUI_INFO_HEADER sheet_header = {};
    EXPECT_EQ(send(PROPSHEETUI_REASON_GET_INFO_HEADER, &sheet_header), 1);
    EXPECT_EQ(sheet_header.Flags, 6);
    EXPECT_STREQ(sheet_header.pTitle, here.printer.name.c_str());
    EXPECT_EQ(end_with(CPSUI_OK), 1);
    EXPECT_EQ(info.Result, ULONG_PTR{CPSUI_OK});
    EXPECT_EQ(output.dm.dmSize, 220);
    EXPECT_EQ(send(PROPSHEETUI_REASON_DESTROY), 1);
    EXPECT_EQ(FreeThreadProp(threadprop::kPrinter), 123u);
}

TEST_F(Sheet, CancelAndTheNoPermissionFlagWriteNothing) {
    send(PROPSHEETUI_REASON_INIT);
    end_with(CPSUI_CANCEL);
    send(PROPSHEETUI_REASON_DESTROY);
    header.fMode |= kNoPermission;
    send(PROPSHEETUI_REASON_INIT);
    EXPECT_EQ(added_sheet.Flags, 0);
    end_with(CPSUI_OK);
    send(PROPSHEETUI_REASON_DESTROY);
    EXPECT_EQ(output.dm.dmSize, 0);
}

TEST_F(Sheet, HiddenTabLeavesTheSettingsPageAlone) {
    struct Row {
        const char* label;
        int user, machine;  // -1: not set
        size_t pages;
        WORD dialog;
    };
    constexpr Row kRows[] = {{"nothing set", -1, -1, 2, 7100},
                             {"by the user", 1, -1, 1, 370},
                             {"the machine replaces it", 1, 0, 2, 7100},
                             {"by the machine", -1, 1, 1, 370}};
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.label);
        Installation fresh;
        if (row.user >= 0)
            fresh.set_number(HKEY_CURRENT_USER, L"\\Special", L"HideSettingTab",
                             static_cast<DWORD>(row.user));
        if (row.machine >= 0)
            fresh.set_number(HKEY_LOCAL_MACHINE, L"\\Special", L"HideSettingTab",
                             static_cast<DWORD>(row.machine));
        added.clear();
        EXPECT_EQ(send(PROPSHEETUI_REASON_INIT), 1);
        EXPECT_EQ(added.size(), row.pages);
        EXPECT_EQ(added_sheet.pDlgPage->DlgTemplateID, row.dialog);
        send(PROPSHEETUI_REASON_DESTROY);
    }
}

TEST_F(Sheet, BadHeadersAndReasonsAreRefused) {
    EXPECT_EQ(send(99), -1);
    header.cbSize = 12;
    EXPECT_EQ(send(PROPSHEETUI_REASON_INIT), -1);
    info.lParamInit = 0;
    EXPECT_EQ(send(PROPSHEETUI_REASON_INIT), -1);
    EXPECT_TRUE(added.empty());
}

TEST(OptionItem, EachTypeHasItsParameters) {
    constexpr size_t kCounts[] = {2, 3, 2, 3, 3, 4, 4, 2, 1, 1, 0};
    for (BYTE type = 0; type < std::size(kCounts); ++type) {
        SCOPED_TRACE(int{type});
        const OptionDescriptor descriptor = {.flags = 0,
                                             .level = 1,
                                             .public_id = 101,
                                             .name_id = 19,
                                             .type = type,
                                             .count = 4,
                                             .style = 0,
                                             .icon_id = 10,
                                             .build = OptionDescriptor::kExtended |
                                                      OptionDescriptor::kIconsCountUp |
                                                      OptionDescriptor::kDataAdvances};
        OptionItem item;
        ASSERT_EQ(CreateOPTTYPE(descriptor, {L"a", L"b"}, 5000, item), kCounts[type] != 0);
        if (kCounts[type] == 0)
            continue;
        const OPTTYPE& made = *item.get()->pOptType;
        EXPECT_EQ(made.Count, kCounts[type]);
        EXPECT_EQ(made.BegCtrlID, 8020);
        EXPECT_EQ(made.pOptParam[made.Count - 1].IconID, 10u + made.Count - 1);
        EXPECT_STREQ(made.pOptParam[0].pData, L"a");
        EXPECT_EQ(made.pOptParam[0].lParam, type == TVOT_PUSHBUTTON ? 5000 : 0);
        EXPECT_EQ(item.get()->pOIExt->cbSize, sizeof(OIEXT));
    }
}

TEST(SettingToDevmode, PaperOrientationAndResolutionAreCopied) {
    const std::vector<FormRecord> forms = {{.name = L"A5", .paper_number = 11}};
    PrintSettings settings;
    settings.general()->Scale = 50;
    settings.general()->PaperResolution = 1200;
    settings.general()->PaperOrientation = 1;
    settings.general()->PaperName = 11;
    settings.general()->PaperWidth = 148.0f;
    DEVMODEW dm = {};
    copy_setting(settings, forms, dm);
    EXPECT_EQ(dm.dmScale, 50);
    EXPECT_EQ(dm.dmPrintQuality, 1200);
    EXPECT_EQ(dm.dmOrientation, DMORIENT_LANDSCAPE);
    EXPECT_EQ(dm.dmPaperSize, 11);
    EXPECT_EQ(dm.dmPaperWidth, 1480);
    EXPECT_STREQ(dm.dmFormName, L"A5");
    settings.addition()->Str[L"PaperName"] = L"My paper";
    copy_setting(settings, forms, dm);
    EXPECT_STREQ(dm.dmFormName, L"My paper");
    settings.general()->PaperType = 1;
    copy_setting(settings, forms, dm);
    EXPECT_EQ(dm.dmPaperSize, DMPAPER_USER);
    EXPECT_EQ(dm.dmOrientation, DMORIENT_PORTRAIT);
    EXPECT_STREQ(dm.dmFormName, L"custom");
    EXPECT_EQ(dm.dmFields, DWORD{DM_PAPERWIDTH | DM_PAPERLENGTH});
}

}  // namespace
