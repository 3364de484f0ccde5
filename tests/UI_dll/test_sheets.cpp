#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>
#include <prsht.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <vector>

#include "UI_dll/PDFSettings/list/settings_page.h"
#include "UI_dll/cpsui.h"
#include "UI_dll/ddi.h"
#include "UI_dll/optitem.h"
#include "UI_dll/plotui.h"
#include "UI_dll/ps_to_devmode.h"
#include "common/dialog_library.h"
#include "common/qk/resource_dll.h"
#include "common/rwPDFSet_functions.h"
#include "common/threadprop.h"
#include "companions/compstui/sheet.h"
#include "companions/compstui/interface.h"
#include "companions/thread.h"
#include "resources/ids.h"
#include "support/fake_printer.h"
#include "support/guarded_buffer.h"
#include "support/installation.h"
#include "support/sheet_driver.h"

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

TEST_F(Sheet, LivesFromInitToDestroyAndGivesBackWhatItHid) {
    const auto thread_has = [](HANDLE handle, const wchar_t* name) {
        ULONG_PTR printer = 0, kept = 0;
        GetThreadProp(threadprop::kPrinter, printer);
        GetThreadProp(threadprop::kPrinterName, kept);
        EXPECT_EQ(reinterpret_cast<HANDLE>(printer), handle);
        EXPECT_STREQ(kept ? reinterpret_cast<const std::wstring*>(kept)->c_str() : nullptr, name);
    };
    const HANDLE job = reinterpret_cast<HANDLE>(INT_PTR{123}), nobody = reinterpret_cast<HANDLE>(INT_PTR{77});
    SetThreadProp(threadprop::kPrinter, reinterpret_cast<ULONG_PTR>(job));
    EXPECT_EQ(send(PROPSHEETUI_REASON_INIT), 1);
    EXPECT_EQ(added, (std::vector<UINT>{CPSFUNC_ADD_PCOMPROPSHEETUIW, CPSFUNC_ADD_PROPSHEETPAGEW}));
    EXPECT_EQ(added_sheet.cbSize, sizeof(COMPROPSHEETUI));
    EXPECT_EQ(added_sheet.Flags, CPSUIF_UPDATE_PERMISSION);
    EXPECT_EQ(added_sheet.cOptItem, 1);
    EXPECT_EQ(added_sheet.pDlgPage->DlgTemplateID, 7100);
    thread_has(FakePrinter::handle(), here.printer.name.c_str());
    PROPSHEETUI_INFO_HEADER sheet_header = {};
    EXPECT_EQ(send(PROPSHEETUI_REASON_GET_INFO_HEADER, &sheet_header), 1);
    EXPECT_EQ(sheet_header.Flags, 6);
    EXPECT_STREQ(sheet_header.pTitle, here.printer.name.c_str());

    DevicePropertyHeader inner_header = {.cbSize = sizeof inner_header, .hPrinter = nobody};
    PROPSHEETUI_INFO inner = info;
    inner.Reason = PROPSHEETUI_REASON_INIT;
    inner.UserData = 0;
    inner.lParamInit = reinterpret_cast<LPARAM>(&inner_header);
    EXPECT_EQ(DrvDevicePropertySheets(&inner, 0), 1);
    thread_has(nobody, L"");
    inner.Reason = PROPSHEETUI_REASON_DESTROY;
    EXPECT_EQ(DrvDevicePropertySheets(&inner, 0), 1);
    EXPECT_EQ(DrvDevicePropertySheets(&inner, 0), -1);  // once only
    thread_has(FakePrinter::handle(), here.printer.name.c_str());

    EXPECT_EQ(end_with(CPSUI_OK), 1);
    EXPECT_EQ(info.Result, ULONG_PTR{CPSUI_OK});
    EXPECT_EQ(output.dm.dmSize, 220);
    EXPECT_EQ(send(PROPSHEETUI_REASON_DESTROY), 1);
    thread_has(job, nullptr);
    EXPECT_EQ(FreeThreadProp(threadprop::kPrinter), 123u);
    EXPECT_EQ(FreeThreadProp(threadprop::kSavedPrinter), 0u);
}

TEST_F(Sheet, OnlyCancelAndTheNoPermissionFlagWriteNothing) {
    const struct {
        LRESULT result;
        DWORD mode;
        WORD written;
    } rows[] = {{CPSUI_CANCEL, 0, 0},
                {CPSUI_OK, 0, 220},
                {CPSUI_RESTARTWINDOWS, 0, 220},
                {CPSUI_REBOOTSYSTEM, 0, 220},
                {CPSUI_OK, kNoPermission, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.result);
        output = {};
        header.fMode = DM_COPY | DM_PROMPT | row.mode;
        send(PROPSHEETUI_REASON_INIT);
        EXPECT_EQ(added_sheet.Flags, row.mode ? 0 : CPSUIF_UPDATE_PERMISSION);
        end_with(row.result);
        send(PROPSHEETUI_REASON_DESTROY);
        EXPECT_EQ(output.dm.dmSize, row.written);
    }
}

TEST_F(Sheet, PrinterSheetHasNoCallbackAndAlwaysATitle) {
    here.printer.name.clear();
    DevicePropertyHeader device = {.cbSize = sizeof device, .hPrinter = FakePrinter::handle()};
    info.lParamInit = reinterpret_cast<LPARAM>(&device);
    const auto tell = [&](WORD reason, const void* parameter = nullptr) {
        info.Reason = reason;
        EXPECT_EQ(DrvDevicePropertySheets(&info, reinterpret_cast<LPARAM>(parameter)), 1);
    };
    {
        const CallHook<decltype(GetPrinterW)> by_info_2(
            "GetPrinterW", [](auto original, HANDLE printer, DWORD level, auto... rest) {
                EXPECT_EQ(level, 2u) << "the name is that of PRINTER_INFO_2W";
                return original(printer, level, rest...);
            });
        tell(PROPSHEETUI_REASON_INIT);
    }
    EXPECT_EQ(added_sheet.pfnCallBack, nullptr);
    ASSERT_EQ(added_sheet.cOptItem, 1);
    EXPECT_EQ(added_sheet.pOptItem->Flags & OPTIF_CALLBACK, 0u);
    PROPSHEETUI_INFO_HEADER sheet_header = {};
    tell(PROPSHEETUI_REASON_GET_INFO_HEADER, &sheet_header);
    EXPECT_STREQ(sheet_header.pTitle, qk::load_string(IDS_SETTINGS_TAB).c_str());
    tell(PROPSHEETUI_REASON_DESTROY);
}

TEST_F(Sheet, WithoutMemoryTheThreadKeepsWhatItHad) {
    std::atomic<int> failing_allocation = 0;  // which of those from now on; 0: none
    const CallHook<void*(size_t)> allocations("malloc", [&](auto original, size_t size) {
        return failing_allocation > 0 && --failing_allocation == 0 ? nullptr : original(size);
    });
    std::wstring name = L"the job's";
    int refused = 0;
    for (int nth = 1, started = 0; started < 3; ++nth) {
        SCOPED_TRACE(nth);
        SetThreadProp(threadprop::kPrinter, 123);
        SetThreadProp(threadprop::kPrinterName, reinterpret_cast<ULONG_PTR>(&name));
        failing_allocation = nth;
        const LONG answer = send(PROPSHEETUI_REASON_INIT);
        started = failing_allocation > 0 ? started + 1 : 0;
        failing_allocation = 0;
        refused += answer < 0;
        send(PROPSHEETUI_REASON_DESTROY);
        info.UserData = 0;
        EXPECT_EQ(FreeThreadProp(threadprop::kPrinter), 123u);
        EXPECT_EQ(FreeThreadProp(threadprop::kPrinterName), reinterpret_cast<ULONG_PTR>(&name));
        EXPECT_EQ(FreeThreadProp(threadprop::kPrinter), 0u);
        EXPECT_EQ(FreeThreadProp(threadprop::kSavedPrinter), 0u);
        ASSERT_LT(nth, 2000);
    }
    EXPECT_GT(refused, 3);
}

TEST_F(Sheet, ServiceGetsAHeaderThatIsNotOnTheStack) {
    static LPARAM given;
    static LONG answer;
    static DWORD result;
    static std::wstring loaded;  // not what the program has beside it
    const ImportPatch load("LoadLibraryExW", [](const wchar_t* path, HANDLE, DWORD) {
        loaded = path;
        return GetModuleHandleW(nullptr);
    });
    wchar_t system[MAX_PATH] = {};
    GetSystemDirectoryW(system, MAX_PATH);
    const ImportPatch find("GetProcAddress", []() -> void* {
        return reinterpret_cast<void*>(+[](HWND, PFNPROPSHEETUI, LPARAM parameter, DWORD* ended) -> LONG {
            given = parameter;
            *ended = result;
            return answer;
        });
    });
    const auto on_stack = [](LPARAM address) {
        const auto* block = reinterpret_cast<const NT_TIB*>(NtCurrentTeb());
        const auto at = reinterpret_cast<const void*>(address);
        return at >= block->StackLimit && at < block->StackBase;
    };
    const struct {
        LONG answer;
        DWORD result;
        LONG document;
        BOOL printer;
    } rows[] = {{1, CPSUI_OK, IDOK, TRUE},
                {0, CPSUI_CANCEL, IDCANCEL, FALSE},
                {1, CPSUI_RESTARTWINDOWS, IDCANCEL, FALSE},
                {-1, CPSUI_OK, IDCANCEL, FALSE}};
    for (const auto& row : rows) {
        answer = row.answer, result = row.result;
        for (const bool document : {true, false}) {
            given = 0;
            EXPECT_EQ(document ? DrvDocumentProperties(nullptr, header.hPrinter, nullptr, &output.dm, nullptr,
                                                       DM_PROMPT)
                               : PrinterProperties(nullptr, header.hPrinter),
                      document ? row.document : row.printer);
            EXPECT_TRUE(given && !on_stack(given));
        }
        EXPECT_EQ(loaded, system + std::wstring(L"\\compstui.dll"));
    }
}

TEST_F(Sheet, HiddenTabLeavesTheSettingsPageAlone) {
    const struct {
        const char* label;
        std::optional<DWORD> user, machine;
        size_t pages;
        WORD dialog;
    } rows[] = {{"nothing set", {}, {}, 2, 7100},
                {"by the user", 1, {}, 1, 370},
                {"the machine replaces it", 1, 0, 2, 7100},
                {"by the machine", {}, 1, 1, 370}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const Installation fresh;
        if (row.user)
            fresh.set_number(HKEY_CURRENT_USER, L"\\Special", L"HideSettingTab", *row.user);
        if (row.machine)
            fresh.set_number(HKEY_LOCAL_MACHINE, L"\\Special", L"HideSettingTab", *row.machine);
        added.clear();
        EXPECT_EQ(send(PROPSHEETUI_REASON_INIT), 1);
        EXPECT_EQ(added.size(), row.pages);
        EXPECT_EQ(added_sheet.pDlgPage->DlgTemplateID, row.dialog);
        send(PROPSHEETUI_REASON_DESTROY);
    }
}

TEST_F(Sheet, BadHeadersAndReasonsAreRefused) {
    SetLastError(0);
    EXPECT_EQ(DrvDevicePropertySheets(nullptr, 0), -1);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    using Function = LONG WINAPI(PROPSHEETUI_INFO*, LPARAM) noexcept;
    const struct {
        Function* function;
        size_t header;
    } sheets[] = {{&DrvDocumentPropertySheets, sizeof(DocumentPropertyHeader)},
                  {&DrvDevicePropertySheets, sizeof(DevicePropertyHeader)}};
    for (const auto& sheet : sheets) {
        SCOPED_TRACE(sheet.header);
        const auto reason = [&](int number, const void* parameter = nullptr) {
            info.Reason = static_cast<WORD>(number);
            return sheet.function(&info, reinterpret_cast<LPARAM>(parameter));
        };
        header.cbSize = static_cast<WORD>(sheet.header);
        const GuardedBuffer whole(sheet.header, &header), stump(sheet.header - 1, &header);
        info.lParamInit = reinterpret_cast<LPARAM>(whole.as<>());
        const SETRESULT_INFO ok = {sizeof ok, 0, reinterpret_cast<HANDLE>(INT_PTR{77}), CPSUI_OK};
        for (int number = 1; number <= 200; ++number)  // none of them belongs to a sheet before its INIT
            EXPECT_EQ(reason(number, number == PROPSHEETUI_REASON_SET_RESULT ? &ok : nullptr), -1) << number;
        EXPECT_EQ(reason(0xFFFF), -1);
        for (const WORD claimed : {WORD{0}, WORD{12}, static_cast<WORD>(sheet.header - 1)}) {
            whole.as<DocumentPropertyHeader>()->cbSize = claimed;
            EXPECT_EQ(reason(PROPSHEETUI_REASON_INIT), -1);
        }
        for (void* const place :
             {static_cast<void*>(nullptr), reinterpret_cast<void*>(48), static_cast<void*>(stump.as<>())}) {
            info.lParamInit = reinterpret_cast<LPARAM>(place);
            EXPECT_EQ(reason(PROPSHEETUI_REASON_INIT), -1);
        }
        EXPECT_TRUE(added.empty());

        whole.as<DocumentPropertyHeader>()->cbSize = 0xFFFF;  // of a later system: there is more behind
        info.lParamInit = reinterpret_cast<LPARAM>(whole.as<>());
        EXPECT_EQ(reason(PROPSHEETUI_REASON_INIT), 1);
        EXPECT_EQ(reason(PROPSHEETUI_REASON_GET_INFO_HEADER), -1);
        EXPECT_EQ(reason(PROPSHEETUI_REASON_SET_RESULT), -1);
        const SETRESULT_INFO other = {sizeof other, 0, nullptr, CPSUI_OK};
        EXPECT_EQ(reason(PROPSHEETUI_REASON_SET_RESULT, &other), -1);
        EXPECT_EQ(reason(PROPSHEETUI_REASON_DESTROY), 1);
        EXPECT_EQ(reason(PROPSHEETUI_REASON_DESTROY), -1) << "it is gone";
        added.clear();
    }
}

// The document's sheet with the settings page before the option page.
LONG APIENTRY settings_page_first(PROPSHEETUI_INFO* info, LPARAM parameter) {
    info->pfnComPropSheet = [](HANDLE sheet, UINT function, LPARAM what, LPARAM more) -> LONG_PTR {
        if (function == CPSFUNC_ADD_PROPSHEETPAGEW)
            return 1;  // it is there
        if (function == CPSFUNC_ADD_PCOMPROPSHEETUIW) {
            PROPSHEETPAGEW page = {};
            page.dwSize = sizeof page;
            page.hInstance = qk::resource_module();
            page.pszTemplate = MAKEINTRESOURCEW(IDD_SETTINGS);
            page.pfnDlgProc = &settings_page_proc;
            compstui::com_prop_sheet(sheet, CPSFUNC_ADD_PROPSHEETPAGEW, reinterpret_cast<LPARAM>(&page), 0);
        }
        return compstui::com_prop_sheet(sheet, function, what, more);
    };
    return DrvDocumentPropertySheets(info, parameter);
}

TEST_F(Sheet, SettingChosenJustBeforeOkIsWrittenDown) {
    EXPECT_TRUE(plotui::attach_process(GetModuleHandleW(nullptr)));
    const std::wstring library = here.folder.file(dialog_library::kFileName);
    CopyFileW(Installation::built(dialog_library::kFileName).c_str(), library.c_str(), TRUE);
    const qk::DLL dialogs(LoadLibraryW(library.c_str()));
    const ImportPatch hive("RegOpenCurrentUser", &UserRegistry::open_hive, dialogs.get());
    PrintSettings custom, office;
    custom->PSName = L"Standard";
    custom.general()->PaperType = 1;
    office->PSName = L"Office";
    office.general()->Scale = 50;
    EXPECT_TRUE(custom.Save(here.folder.file(L"Settings\\standard.ps4")));
    EXPECT_TRUE(office.Save(here.folder.file(L"CustomSettings\\office.ps4")));
    const struct {
        const char* label;
        PFNPROPSHEETUI function;
        DWORD hide_tab;
        WPARAM settings_page;
    } rows[] = {{"option page first", &DrvDocumentPropertySheets, 0, 1},
                {"settings page first", &settings_page_first, 0, 0},
                {"settings page alone", &DrvDocumentPropertySheets, 1, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        here.set_number(HKEY_LOCAL_MACHINE, L"\\Special", L"HideSettingTab", row.hide_tab);
        SetSettingFileName(kDefaultSettingFile, here.printer.name);
        output = {};
        const auto sheet = [] {
            HWND found = nullptr;
            const auto visit = [](HWND window, LPARAM result) -> BOOL {
                if (SendMessageW(window, PSM_GETCURRENTPAGEHWND, 0, 0))
                    *reinterpret_cast<HWND*>(result) = window;
                return TRUE;
            };
            EnumThreadWindows(GetCurrentThreadId(), visit, reinterpret_cast<LPARAM>(&found));
            return found;
        };
        const Later later(
            [&] { return sheet() != nullptr; },
            [&] {
                const auto page = [&](WPARAM index) {
                    SendMessageW(sheet(), PSM_SETCURSEL, index, 0);
                    return reinterpret_cast<HWND>(SendMessageW(sheet(), PSM_GETCURRENTPAGEHWND, 0, 0));
                };
                if (!row.hide_tab) {
                    const HWND options = page(1 - row.settings_page);
                    wchar_t title[100] = {}, text[100] = {};
                    GetDlgItemTextW(options, 8021, title, 100);
                    EXPECT_EQ(title, qk::load_string(IDS_SETTING_IN_FORCE));
                    SendDlgItemMessageW(options, 8022, LB_GETTEXT, 0, reinterpret_cast<LPARAM>(text));
                    EXPECT_STREQ(text, L"Standard");
                    EXPECT_TRUE(GetDlgItem(options, 8020) && GetDlgItem(options, 8023));
                }
                const HWND list = GetDlgItem(page(row.settings_page), IDC_SETTINGS_LIST);
                EXPECT_EQ(ListView_GetItemCount(list), 2);
                constexpr UINT kChosen = LVIS_SELECTED | LVIS_FOCUSED;
                ListView_SetItemState(list, 0, kChosen, kChosen);
                PostMessageW(sheet(), PSM_PRESSBUTTON, PSBTN_OK, 0);
            });
        DWORD result = 99;
        EXPECT_EQ(compstui::show_sheet(nullptr, row.function, reinterpret_cast<LPARAM>(&header), &result), 1);
        EXPECT_EQ(result, DWORD{CPSUI_OK});
        EXPECT_EQ(GetSettingFileName(here.printer.name), L"office.ps4");
        EXPECT_EQ(output.dm.dmScale, 50);
        EXPECT_EQ(output.dm.dmFields & (DM_PAPERWIDTH | DM_PAPERLENGTH), 0u) << "of the setting before";
    }
    plotui::detach_process(false);
}

TEST_F(Sheet, WorldInDisorderStillGivesASheet) {
    ForceDirectories(here.folder.file(L"Settings\\standard.ps4"));  // a folder where a setting is expected
    const ImportPatch texts("LoadStringW", [] { return 0; });
    here.printer.fails_to_tell = true;
    EXPECT_EQ(send(PROPSHEETUI_REASON_INIT), 1);
    PROPSHEETUI_INFO_HEADER sheet_header = {};
    EXPECT_EQ(send(PROPSHEETUI_REASON_GET_INFO_HEADER, &sheet_header), 1);
    EXPECT_NE(*sheet_header.pTitle, L'\0');
    EXPECT_EQ(end_with(CPSUI_OK), 1);
    EXPECT_EQ(output.dm.dmScale, 100);
    EXPECT_EQ(send(PROPSHEETUI_REASON_DESTROY), 1);
}

TEST_F(Sheet, WithoutTheServiceItCountsAsCancelled) {
    const ImportPatch load("LoadLibraryExW", []() -> HMODULE { return nullptr; });
    EXPECT_EQ(DrvDocumentProperties(nullptr, header.hPrinter, header.pszPrinterName, &output.dm, nullptr,
                                    DM_COPY | DM_PROMPT),
              IDCANCEL);
    EXPECT_EQ(output.dm.dmSize, 0);
    EXPECT_FALSE(PrinterProperties(nullptr, header.hPrinter));
}

TEST_F(Sheet, SpoolerMayAskWhileItIsAsked) {
    DriverDevmode inner = {};
    here.printer.while_telling = [&] {
        EXPECT_EQ(DrvDocumentProperties(nullptr, FakePrinter::handle(), nullptr, &inner.dm, nullptr, DM_COPY),
                  1);
    };
    EXPECT_EQ(DrvDocumentProperties(nullptr, FakePrinter::handle(), nullptr, &output.dm, nullptr, DM_COPY),
              1);
    EXPECT_EQ(inner.dm.dmScale, 100);
    EXPECT_EQ(output.dm.dmSize, 220);
}

TEST_F(Sheet, ThoseOfTwoThreadsDoNotMeet) {
    std::atomic<int> standing = 0;
    const auto live = [&](ULONG_PTR job, short scale) {
        DriverDevmode in = default_devmode(), out = {};
        in.dm.dmFields = DM_SCALE;
        in.dm.dmScale = scale;
        SetThreadProp(threadprop::kPrinter, job);
        DocumentPropertyHeader mine = header;
        mine.pdmIn = &in.dm, mine.pdmOut = &out.dm;
        PROPSHEETUI_INFO sheet = info;
        sheet.pfnComPropSheet = [](HANDLE, UINT, LPARAM, LPARAM) -> LONG_PTR { return 77; };
        sheet.lParamInit = reinterpret_cast<LPARAM>(&mine);
        const SETRESULT_INFO set = {sizeof set, 0, reinterpret_cast<HANDLE>(INT_PTR{77}), CPSUI_OK};
        const auto tell = [&](WORD reason) {
            sheet.Reason = reason;
            EXPECT_EQ(DrvDocumentPropertySheets(&sheet, reinterpret_cast<LPARAM>(&set)), 1);
        };
        tell(PROPSHEETUI_REASON_INIT);
        for (++standing; standing < 2;)
            Sleep(0);
        tell(PROPSHEETUI_REASON_SET_RESULT);
        tell(PROPSHEETUI_REASON_DESTROY);
        EXPECT_EQ(out.dm.dmScale, scale);
        EXPECT_EQ(FreeThreadProp(threadprop::kPrinter), job);
    };
    companions::Thread other([&] { live(11, 50); });
    live(22, 75);
    other.join();
}

TEST(OptionItem, EachTypeHasItsParameters) {
    constexpr size_t kCounts[] = {2, 3, 2, 3, 3, 4, 4, 2, 1, 1, 0};
    for (BYTE type = 0; type < std::size(kCounts); ++type) {
        SCOPED_TRACE(int{type});
        using D = OptionDescriptor;
        const D descriptor = {
            0, 1, 101, 19, type, 4, 0, 10, D::kExtended | D::kIconsCountUp | D::kDataAdvances};
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
        EXPECT_EQ(item.get()->Flags, 0u);  // no OIEXT, no push button
        EXPECT_EQ(item.get()->pExtChkBox->cbSize, 64);
        EXPECT_NE(item.get()->pExtChkBox->pTitle, nullptr);
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
