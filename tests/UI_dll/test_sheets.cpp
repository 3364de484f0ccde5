#include <array>

#include "UI_dll/cpsui.h"
#include "UI_dll/ddi.h"
#include "UI_dll/optitem.h"
#include "UI_dll/ps_to_devmode.h"
#include "common/dialog_library.h"
#include "common/rwPDFSet_functions.h"
#include "companions/compstui/sheet.h"
#include "companions/compstui/interface.h"
#include "support/sheet_driver.h"

namespace {

// Stands in for the service: notes what is added and hands out a handle.
std::vector<UINT> added;
COMPROPSHEETUI added_sheet;
constexpr LONG kNoService = -77;

LONG_PTR CALLBACK note_addition(HANDLE, UINT function, LPARAM what, LPARAM) {
    if (function == CPSFUNC_SET_HSTARTPAGE)
        return what == 77;
    added.push_back(function);
    if (function == CPSFUNC_ADD_PCOMPROPSHEETUIW)
        added_sheet = *reinterpret_cast<const COMPROPSHEETUI*>(what);
    return 77;
}

// One sheet as the service asks for it.
struct Asked {
    LONG tell(int reason, const void* parameter = nullptr) {
        info.Reason = static_cast<WORD>(reason);
        return function(&info, reinterpret_cast<LPARAM>(parameter));
    }
    LONG end_with(LRESULT result) {
        const SETRESULT_INFO set = {sizeof set, 0, reinterpret_cast<HANDLE>(INT_PTR{77}), result};
        return tell(PROPSHEETUI_REASON_SET_RESULT, &set);
    }

    PFNPROPSHEETUI function;
    PROPSHEETUI_INFO info;
};

struct Sheet : testing::Test, Asked {
    Sheet() : Asked(asked(&DrvDocumentPropertySheets, &header)) {
        added.clear();
        added_sheet = {};
    }
    static Asked asked(PFNPROPSHEETUI function, void* header) {
        const auto to = reinterpret_cast<LPARAM>(header);
        return {function, {sizeof info, PROPSHEETUI_INFO_VERSION, 0, 0, nullptr, &note_addition, to, 0, 0}};
    }

    Installation here;
    DriverDevmode output = {};
    DocumentPropertyHeader header = {
        sizeof header, 0,          FakePrinter::handle(), here.printer.name.data(),
        nullptr,       &output.dm, sizeof output,         DM_COPY | DM_PROMPT};
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
    EXPECT_EQ(tell(PROPSHEETUI_REASON_INIT), 1);
    EXPECT_EQ(added, (std::vector<UINT>{CPSFUNC_ADD_PCOMPROPSHEETUIW, CPSFUNC_ADD_PROPSHEETPAGEW}));
    EXPECT_EQ(std::tuple(added_sheet.cbSize, added_sheet.Flags, added_sheet.cOptItem),
              std::tuple(sizeof(COMPROPSHEETUI), CPSUIF_UPDATE_PERMISSION, 1));
    EXPECT_EQ(added_sheet.pDlgPage->DlgTemplateID, 7100);
    thread_has(FakePrinter::handle(), here.printer.name.c_str());
    PROPSHEETUI_INFO_HEADER sheet_header = {};
    EXPECT_EQ(tell(PROPSHEETUI_REASON_GET_INFO_HEADER, &sheet_header), 1);
    EXPECT_EQ(sheet_header.Flags, 6);
    EXPECT_STREQ(sheet_header.pTitle, here.printer.name.c_str());

    DevicePropertyHeader inner_header = {.cbSize = sizeof inner_header, .hPrinter = nobody};
    Asked inner = asked(&DrvDevicePropertySheets, &inner_header);
    EXPECT_EQ(inner.tell(PROPSHEETUI_REASON_INIT), 1);
    thread_has(nobody, L"");
    EXPECT_EQ(inner.tell(PROPSHEETUI_REASON_DESTROY), 1);
    EXPECT_EQ(inner.tell(PROPSHEETUI_REASON_DESTROY), -1);  // once only
    thread_has(FakePrinter::handle(), here.printer.name.c_str());

    EXPECT_EQ(end_with(CPSUI_OK), 1);
    EXPECT_EQ(std::tuple(info.Result, output.dm.dmSize), std::tuple(ULONG_PTR{CPSUI_OK}, 220));
    EXPECT_EQ(tell(PROPSHEETUI_REASON_DESTROY), 1);
    thread_has(job, nullptr);
    EXPECT_EQ(FreeThreadProp(threadprop::kPrinter), 123u);
    EXPECT_EQ(FreeThreadProp(threadprop::kSavedPrinter), 0u);
}

TEST_F(Sheet, OnlyCancelAndTheNoPermissionFlagWriteNothing) {
    const std::tuple<LRESULT, DWORD, DWORD> rows[] = {{CPSUI_CANCEL, 0, 0},
                                                      {CPSUI_OK, 0, 220},
                                                      {CPSUI_RESTARTWINDOWS, 0, 220},
                                                      {CPSUI_REBOOTSYSTEM, 0, 220},
                                                      {CPSUI_OK, kNoPermission, 0}};
    for (const auto& [result, mode, written] : rows) {
        output = {};
        header.fMode = DM_COPY | DM_PROMPT | mode;
        tell(PROPSHEETUI_REASON_INIT);
        EXPECT_EQ(added_sheet.Flags, mode ? 0 : CPSUIF_UPDATE_PERMISSION);
        end_with(result);
        tell(PROPSHEETUI_REASON_DESTROY);
        EXPECT_EQ(output.dm.dmSize, written) << result << " of mode " << mode;
    }
}

TEST_F(Sheet, PrinterSheetHasNoCallbackAndAlwaysATitle) {
    here.printer.name.clear();
    ForceDirectories(here.folder.file(L"Settings\\standard.ps4"));  // a folder where a setting is expected
    DevicePropertyHeader device = {.cbSize = sizeof device, .hPrinter = FakePrinter::handle()};
    Asked sheet = asked(&DrvDevicePropertySheets, &device);
    EXPECT_EQ(sheet.tell(PROPSHEETUI_REASON_INIT), 1);
    EXPECT_EQ(added_sheet.pfnCallBack, nullptr);
    ASSERT_EQ(added_sheet.cOptItem, 1);
    EXPECT_EQ(added_sheet.pOptItem->Flags & OPTIF_CALLBACK, 0u);
    PROPSHEETUI_INFO_HEADER sheet_header = {};
    EXPECT_EQ(sheet.tell(PROPSHEETUI_REASON_GET_INFO_HEADER, &sheet_header), 1);
    EXPECT_STREQ(sheet_header.pTitle, qk::load_string(IDS_SETTINGS_TAB).c_str());
    EXPECT_EQ(sheet.tell(PROPSHEETUI_REASON_DESTROY), 1);
}

TEST_F(Sheet, WithoutMemoryTheThreadKeepsWhatItHad) {
    std::atomic<int> failing_allocation = 0;  // which of those from now on; 0: none
    const CallHook<void*(size_t)> allocations("malloc", [&](auto original, size_t size) {
        return failing_allocation > 0 && --failing_allocation == 0 ? nullptr : original(size);
    });
    int refused = 0, without_item = 0;
    for (int nth = 1, started = 0; started < 3; ++nth) {
        SCOPED_TRACE(nth);
        SetThreadProp(threadprop::kPrinter, 123);
        SetThreadProp(threadprop::kPrinterName, reinterpret_cast<ULONG_PTR>(&here.printer.name));
        failing_allocation = nth;
        const bool opens = tell(PROPSHEETUI_REASON_INIT) > 0;
        refused += !opens;
        without_item += opens && added_sheet.cOptItem == 0;
        started = failing_allocation > 0 ? started + 1 : 0;
        failing_allocation = 0;
        tell(PROPSHEETUI_REASON_DESTROY);
        info.UserData = 0;
        EXPECT_EQ(FreeThreadProp(threadprop::kPrinter), 123u);
        EXPECT_EQ(FreeThreadProp(threadprop::kPrinterName), reinterpret_cast<ULONG_PTR>(&here.printer.name));
        EXPECT_EQ(FreeThreadProp(threadprop::kPrinter) + FreeThreadProp(threadprop::kSavedPrinter), 0u);
        ASSERT_LT(nth, 2000);
    }
    EXPECT_TRUE(refused > 3 && without_item > 3) << refused << ' ' << without_item;
}

TEST_F(Sheet, ServiceGetsAHeaderThatIsNotOnTheStackAndItsAnswerCounts) {
    static LPARAM given;
    static LONG answer;
    static DWORD result;
    static std::wstring loaded;  // not what the program has beside it
    const ImportPatch load("LoadLibraryExW", [](const wchar_t* path, HANDLE, DWORD) {
        loaded = path;
        return answer == kNoService ? nullptr : GetModuleHandleW(nullptr);
    });
    const ImportPatch find("GetProcAddress", []() -> void* {
        return reinterpret_cast<void*>(+[](HWND, PFNPROPSHEETUI, LPARAM parameter, DWORD* ended) -> LONG {
            given = parameter;
            *ended = result;
            return answer;
        });
    });
    wchar_t system[MAX_PATH] = {};
    GetSystemDirectoryW(system, MAX_PATH);
    const auto* block = reinterpret_cast<const NT_TIB*>(NtCurrentTeb());
    // The service's answer and result, those of the document's and of the printer's sheet.
    const std::tuple<LONG, DWORD, LONG, BOOL> rows[] = {{1, CPSUI_OK, IDOK, TRUE},
                                                        {0, CPSUI_CANCEL, IDCANCEL, FALSE},
                                                        {1, CPSUI_RESTARTWINDOWS, IDCANCEL, FALSE},
                                                        {-1, CPSUI_OK, IDCANCEL, FALSE},
                                                        {kNoService, CPSUI_OK, IDCANCEL, FALSE}};
    for (const auto& [answers, results, of_document, of_printer] : rows) {
        SCOPED_TRACE(answers);
        answer = answers, result = results;
        for (const bool document : {true, false}) {
            given = 0;
            EXPECT_EQ(document ? DrvDocumentProperties(nullptr, header.hPrinter, nullptr, &output.dm, nullptr,
                                                       DM_COPY | DM_PROMPT)
                               : PrinterProperties(nullptr, header.hPrinter),
                      document ? of_document : of_printer);
            const auto* const at = reinterpret_cast<const void*>(given);
            EXPECT_EQ(at != nullptr, answer != kNoService);
            EXPECT_FALSE(at >= block->StackLimit && at < block->StackBase);
        }
        EXPECT_EQ(loaded, system + std::wstring(L"\\compstui.dll"));
        EXPECT_EQ(output.dm.dmSize, 0);
    }
}

TEST_F(Sheet, HiddenTabLeavesTheSettingsPageAlone) {
    const std::tuple<HKEY, DWORD, size_t, WORD> rows[] = {{HKEY_CURRENT_USER, 1, 1, 370},
                                                          {HKEY_LOCAL_MACHINE, 0, 2, 7100},
                                                          {HKEY_CURRENT_USER, 0, 2, 7100},
                                                          {HKEY_LOCAL_MACHINE, 1, 1, 370}};
    for (const auto& [hive, value, pages, dialog] : rows) {
        here.set_number(hive, L"\\Special", L"HideSettingTab", value);
        added.clear();
        EXPECT_EQ(tell(PROPSHEETUI_REASON_INIT), 1);
        EXPECT_EQ(std::tuple(added.size(), added_sheet.pDlgPage->DlgTemplateID), std::tuple(pages, dialog));
        tell(PROPSHEETUI_REASON_DESTROY);
    }
}

TEST_F(Sheet, BadHeadersAndReasonsAreRefused) {
    SetLastError(0);
    EXPECT_EQ(DrvDevicePropertySheets(nullptr, 0), -1);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    const std::pair<PFNPROPSHEETUI, size_t> sheets[] = {
        {&DrvDocumentPropertySheets, sizeof(DocumentPropertyHeader)},
        {&DrvDevicePropertySheets, sizeof(DevicePropertyHeader)}};
    for (const auto& [asks, size] : sheets) {
        SCOPED_TRACE(size);
        function = asks;
        header.cbSize = static_cast<WORD>(size);
        const GuardedBuffer whole(size, &header), stump(size - 1, &header);
        auto& claimed = whole.as<DocumentPropertyHeader>()->cbSize;
        const auto init = [&](void* place) {
            info.lParamInit = reinterpret_cast<LPARAM>(place);
            return tell(PROPSHEETUI_REASON_INIT);
        };
        info.lParamInit = reinterpret_cast<LPARAM>(whole.as<>());
        for (int reason = 1; reason <= 200; ++reason)  // none of them belongs to a sheet before its INIT
            EXPECT_EQ(reason == PROPSHEETUI_REASON_SET_RESULT ? end_with(CPSUI_OK) : tell(reason), -1)
                << reason;
        EXPECT_EQ(tell(0xFFFF), -1);
        for (const size_t bad : {size_t{0}, size_t{12}, size - 1}) {
            claimed = static_cast<WORD>(bad);
            EXPECT_EQ(init(&claimed), -1);
        }
        for (void* const place : {static_cast<void*>(nullptr), reinterpret_cast<void*>(48), stump.as<void>()})
            EXPECT_EQ(init(place), -1);
        EXPECT_TRUE(added.empty());

        claimed = 0xFFFF;  // of a later system: there is more behind
        EXPECT_EQ(init(&claimed), 1);
        EXPECT_EQ(tell(PROPSHEETUI_REASON_GET_INFO_HEADER), -1);
        EXPECT_EQ(tell(PROPSHEETUI_REASON_SET_RESULT), -1);
        const SETRESULT_INFO other = {sizeof other, 0, nullptr, CPSUI_OK};
        EXPECT_EQ(tell(PROPSHEETUI_REASON_SET_RESULT, &other), -1);
        EXPECT_EQ(tell(PROPSHEETUI_REASON_DESTROY), 1);
        EXPECT_EQ(tell(PROPSHEETUI_REASON_DESTROY), -1) << "it is gone";
        added.clear();
    }
}

TEST_F(Sheet, SettingChosenJustBeforeOkIsWrittenDown) {
    EXPECT_TRUE(plotui::attach_process(GetModuleHandleW(nullptr)));
    const std::wstring library = here.folder.file(dialog_library::kFileName);
    CopyFileW(Installation::built(dialog_library::kFileName).c_str(), library.c_str(), TRUE);
    const qk::DLL dialogs(LoadLibraryW(library.c_str()));
    const ImportPatch hive("RegOpenCurrentUser", &UserRegistry::open_hive, dialogs.get());
    here.folder.write(L"Settings\\standard.ps4",
                      "\xEF\xBB\xBF"
                      R"({"PSComment": [], "PSName": "Standard", "General": {"PaperType": 1}})");
    here.folder.write(L"CustomSettings\\office.ps4",
                      "\xEF\xBB\xBF"
                      R"({"PSComment": [], "PSName": "Office", "General": {"Scale": 50}})");
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
    const auto page = [&](WPARAM index) {
        SendMessageW(sheet(), PSM_SETCURSEL, index, 0);
        return reinterpret_cast<HWND>(SendMessageW(sheet(), PSM_GETCURRENTPAGEHWND, 0, 0));
    };
    const auto in_front = [&](int control) {
        return GetDlgItem(reinterpret_cast<HWND>(SendMessageW(sheet(), PSM_GETCURRENTPAGEHWND, 0, 0)),
                          control);
    };
    for (const DWORD is_alone : {0u, 1u}) {
        SCOPED_TRACE(is_alone);
        here.set_number(HKEY_LOCAL_MACHINE, L"\\Special", L"HideSettingTab", is_alone);
        SetSettingFileName(kDefaultSettingFile, here.printer.name);
        output = {};
        const auto act = [&] {
            EXPECT_TRUE(in_front(IDC_SETTINGS_LIST)) << "at first";
            if (!is_alone) {
                const HWND options = page(0);
                EXPECT_EQ(pdf_settings::control_text(options, 8021), qk::load_string(IDS_SETTING_IN_FORCE));
                wchar_t text[100] = {};
                SendDlgItemMessageW(options, 8022, LB_GETTEXT, 0, reinterpret_cast<LPARAM>(text));
                EXPECT_STREQ(text, L"Standard");
                EXPECT_TRUE(GetDlgItem(options, 8020) && GetDlgItem(options, 8023));
            }
            const HWND list = GetDlgItem(page(1 - is_alone), IDC_SETTINGS_LIST);
            EXPECT_EQ(ListView_GetItemCount(list), 2);
            ListView_SetItemState(list, 0, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
            PostMessageW(sheet(), PSM_PRESSBUTTON, PSBTN_OK, 0);
        };
        const Later later([&] { return sheet() != nullptr; }, act);
        DWORD result = 99;
        EXPECT_EQ(compstui::show_sheet(nullptr, &DrvDocumentPropertySheets, reinterpret_cast<LPARAM>(&header),
                                       &result),
                  1);
        EXPECT_EQ(result, DWORD{CPSUI_OK});
        EXPECT_EQ(GetSettingFileName(here.printer.name), L"office.ps4");
        EXPECT_EQ(output.dm.dmScale, 50);
        EXPECT_EQ(output.dm.dmFields & (DM_PAPERWIDTH | DM_PAPERLENGTH), 0u) << "of the setting before";
    }
    for (const bool is_stored_first : {true, false}) {  // and by a service that tells once, or twice
        SetSettingFileName(kDefaultSettingFile, here.printer.name);
        output = {};
        EXPECT_EQ(tell(PROPSHEETUI_REASON_INIT), 1);
        if (!is_stored_first)
            end_with(CPSUI_OK);
        EXPECT_EQ(output.dm.dmScale, is_stored_first ? 0 : 100);
        SetSettingFileName(L"office.ps4", here.printer.name);
        end_with(CPSUI_OK);
        tell(PROPSHEETUI_REASON_DESTROY);
        EXPECT_EQ(output.dm.dmScale, 50);
        EXPECT_EQ(output.dm.dmFields & (DM_PAPERWIDTH | DM_PAPERLENGTH), 0u) << "of the setting before";
    }
    plotui::detach_process(false);
}

TEST_F(Sheet, SpoolerMayAskWhileItIsAsked) {
    const auto ask = [](DriverDevmode& out) {
        return DrvDocumentProperties(nullptr, FakePrinter::handle(), nullptr, &out.dm, nullptr, DM_COPY);
    };
    DriverDevmode inner = {};
    here.printer.while_telling = [&] { EXPECT_EQ(ask(inner), 1); };
    EXPECT_EQ(ask(output), 1);
    EXPECT_EQ(std::tuple(inner.dm.dmScale, output.dm.dmSize), std::tuple(100, 220));
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
        Asked sheet = asked(&DrvDocumentPropertySheets, &mine);
        sheet.info.pfnComPropSheet = [](HANDLE, UINT, LPARAM, LPARAM) -> LONG_PTR { return 77; };
        EXPECT_EQ(sheet.tell(PROPSHEETUI_REASON_INIT), 1);
        for (++standing; standing < 2;)
            Sleep(0);
        EXPECT_EQ(sheet.end_with(CPSUI_OK), 1);
        EXPECT_EQ(sheet.tell(PROPSHEETUI_REASON_DESTROY), 1);
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
        EXPECT_EQ(std::tuple(made.Count, made.BegCtrlID), std::tuple(kCounts[type], 8020));
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
    pdf_settings::Setting settings;
    auto& general = *settings.general();
    general.Scale = 50;
    general.PaperResolution = 1200;
    general.PaperOrientation = 1;
    general.PaperName = 11;
    general.PaperWidth = 148.0f;
    DEVMODEW dm = {};
    copy_setting(settings, forms, dm);
    const short all[] = {dm.dmScale, dm.dmPrintQuality, dm.dmOrientation, dm.dmPaperSize, dm.dmPaperWidth};
    EXPECT_TRUE(std::ranges::equal(all, std::array{50, 1200, DMORIENT_LANDSCAPE, 11, 1480}))
        << testing::PrintToString(all);
    EXPECT_STREQ(dm.dmFormName, L"A5");
    settings.addition()->Str[L"PaperName"] = L"My paper";
    copy_setting(settings, forms, dm);
    EXPECT_STREQ(dm.dmFormName, L"My paper");
    general.PaperType = 1;
    copy_setting(settings, forms, dm);
    EXPECT_EQ(dm.dmPaperSize, DMPAPER_USER);
    EXPECT_EQ(dm.dmOrientation, DMORIENT_PORTRAIT);
    EXPECT_STREQ(dm.dmFormName, L"custom");
    EXPECT_EQ(dm.dmFields, DWORD{DM_PAPERWIDTH | DM_PAPERLENGTH});
}

}  // namespace
