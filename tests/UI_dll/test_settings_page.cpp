#include "UI_dll/settings_page_fixture.h"

using namespace pdf_settings;
using ps::ReadName;

TEST_F(SettingsPage, ListsAllFoldersAndSelectsThePrintersSetting) {
    here.folder.write(L"Settings\\legacy\\old.printSetting2", "\x09\x00\x02\x00");
    here.folder.write(L"Settings\\broken.ps4", "{");
    ForceDirectories(here.folder.file(L"Settings\\folder.ps4"));
    EXPECT_EQ(rows(), L"alpha zeta Office [Standard] broken old");
    EXPECT_FALSE(can_press(IDC_SETTINGS_DELETE));
    select(0);
    EXPECT_TRUE(can_press(IDC_SETTINGS_DELETE));
    EXPECT_EQ(setting()->PSName, L"alpha");
}

TEST_F(SettingsPage, FolderThatCannotBeReadHidesItsOwnFilesOnly) {
    const CallHook<decltype(FindFirstFileExW)> denied(
        "FindFirstFileExW", [](auto original, const wchar_t* pattern, auto... rest) -> HANDLE {
            if (!std::wcsstr(pattern, L"Roaming"))
                return original(pattern, rest...);
            return SetLastError(ERROR_ACCESS_DENIED), INVALID_HANDLE_VALUE;
        });
    EXPECT_EQ(rows(), L"Office [Standard]");
    in_sheet(IDC_SETTINGS_NEW, [] { press_ok(); });  // written all the same; its row comes with the folder
    EXPECT_EQ(ReadName(own(L"Standard(1)")), L"Standard(1)");
    EXPECT_TRUE(Outbox::boxes.empty());
}

TEST_F(SettingsPage, WithoutAnInstallationTheHostsFolderIsNotListed) {
    const CurrentFolder host(here.folder.path());  // has folders of the very names
    here.machine.set_text(qk::registry::kRoot, L"PdfDllPath", L"");
    EXPECT_EQ(ListView_GetItemCount(list()), 2) << qk::to_utf8(rows());
}

TEST_F(SettingsPage, OwnFileWithoutANameGoesByItsFilesAndIsTheUsers) {
    write_own(L"beta", "\xEF\xBB\xBF{}");
    write_own(L"torn", "\xEF\xBB\xBF{");
    EXPECT_EQ(rows(), L"alpha beta torn zeta Office [Standard]");
    select(2);
    in_sheet(IDC_SETTINGS_EDIT, [] { press_ok(); });  // of what cannot be read, a copy
    EXPECT_EQ(TempFolder::read(own(L"torn")), "\xEF\xBB\xBF{");
    EXPECT_EQ(rows(), L"alpha beta torn [torn(1)] zeta Office Standard");
    for (const wchar_t* name : {L"beta", L"torn"}) {  // what else should be asked for by name
        select(1);
        press(IDC_SETTINGS_DELETE, IDYES);
        EXPECT_NE(Outbox::boxes.back().text.find(L'"' + std::wstring(name) + L'"'), std::wstring::npos);
    }
    EXPECT_EQ(rows(), L"alpha [torn(1)] zeta Office Standard");
    Outbox::boxes.clear();
    write_own(L"alpha", "no setting");  // breaks while it is listed
    select(0);
    in_sheet(IDC_SETTINGS_EDIT, [] { press_ok(); });  // a new one from standard values
    EXPECT_EQ(Outbox::boxes.size(), 1u);
    EXPECT_EQ(TempFolder::read(own(L"alpha")), "no setting");
    EXPECT_NE(rows().find(L"[alpha"), std::wstring::npos);
}

TEST_F(SettingsPage, ChosenSettingBecomesThePrintersOnOkOnly) {
    select(2);
    end(PSN_QUERYCANCEL);
    EXPECT_EQ(printers_setting(), L"standard.ps4");
    EXPECT_EQ(rows(), L"alpha zeta [Office] Standard");
    {
        const ImportPatch store("RegSetValueExW", []() -> LSTATUS { throw std::bad_alloc(); });
        EXPECT_EQ(end(PSN_APPLY), PSNRET_INVALID_NOCHANGEPAGE);
    }
    ASSERT_EQ(Outbox::boxes.size(), 1u);
    EXPECT_EQ(Outbox::boxes[0].text, dialog_text(IDS_FAILED));
    EXPECT_EQ(printers_setting(), L"standard.ps4");
    EXPECT_EQ(end(PSN_APPLY), PSNRET_NOERROR);
    EXPECT_EQ(printers_setting(), L"office.ps4");
    close();
    EXPECT_EQ(rows(), L"alpha zeta [Office] Standard");
}

TEST_F(SettingsPage, CancelGivesAPrinterWithoutItsFileTheStandardOne) {
    here.folder.write(L"gone.ps4", "");  // beside a document, say
    const CurrentFolder documents(here.folder.path());
    std::wstring there = own(L"zeta");
    std::ranges::replace(there, L'\\', L'/');
    for (const std::wstring& setting : {there, std::wstring(L"gone.ps4")}) {
        SetSettingFileName(setting, here.printer.name);
        end(PSN_QUERYCANCEL);
        EXPECT_EQ(ReadDriverRegString(L"PDFSettingFileName", here.printer.name.c_str()),
                  setting == there ? there : L"standard.ps4");
    }
}

TEST_F(SettingsPage, OwnSettingIsDeletedWhenTheUserAgrees) {
    select(1);
    press(IDC_SETTINGS_DELETE, IDNO);
    EXPECT_EQ(rows(), L"alpha [zeta] Office Standard");
    press(IDC_SETTINGS_DELETE, IDYES);
    EXPECT_EQ(rows(), L"alpha [Office] Standard");
    ASSERT_EQ(Outbox::boxes.size(), 2u);
    EXPECT_EQ(Outbox::boxes[0].style, UINT{MB_YESNO | MB_ICONQUESTION});
    EXPECT_NE(Outbox::boxes[0].text.find(L"zeta.ps4"), std::wstring::npos);
    SendMessageW(window(), WM_COMMAND, IDC_SETTINGS_DELETE, 0);  // not the user's: a greyed button's command
    select(0);
    DeleteFileW(own(L"alpha").c_str());
    press(IDC_SETTINGS_DELETE, IDYES);
    EXPECT_EQ(Outbox::boxes.size(), 2u) << "it is gone already";
}

TEST_F(SettingsPage, ListOfNothingSelectsNothing) {
    for (const std::wstring& file : {here.folder.file(L"Settings\\standard.ps4"), own(L"zeta"),
                                     here.folder.file(L"CustomSettings\\office.ps4")})
        DeleteFileW(file.c_str());
    press(IDC_SETTINGS_DELETE, IDYES);
    EXPECT_EQ(rows(), L"");
    EXPECT_FALSE(can_press(IDC_SETTINGS_DELETE));
    end(PSN_APPLY);
    end(PSN_QUERYCANCEL);
    EXPECT_EQ(ReadDriverRegString(L"PDFSettingFileName", here.printer.name.c_str()), L"");
}

TEST_F(SettingsPage, NewAndReadOnlySettingsAreCopiesAndOwnOnesAreEditedInPlace) {
    const auto edit_a_copy = [] {
        EXPECT_EQ(name(), L"Standard(1)");
        press_ok();
    };
    in_sheet(IDC_SETTINGS_EDIT, edit_a_copy, L"New setting: copy of Standard");
    EXPECT_EQ(rows(), L"[Standard(1)] alpha zeta Office Standard");
    in_sheet(
        IDC_SETTINGS_NEW, [] { EXPECT_EQ(name(), L"Standard(2)"); }, L"New setting");
    EXPECT_EQ(rows(), L"[Standard(1)] alpha zeta Office Standard");
    select(1);
    in_sheet(
        IDC_SETTINGS_COPY, [] {}, L"New setting: copy of alpha");
    ListView_SetItemState(list(), -1, 0, LVIS_SELECTED | LVIS_FOCUSED);  // the row of before is taken
    in_sheet(
        IDC_SETTINGS_EDIT, [] { name_it(L"beta"); }, L"Print setting - alpha");
    EXPECT_EQ(rows(), L"Standard(1) [beta] zeta Office Standard");
    EXPECT_EQ(ReadName(own(L"alpha")), L"beta");
    in_sheet(IDC_SETTINGS_NEW, [] { name_it(L"office"); });  // the administrator's is "Office"
    EXPECT_EQ(rows(), L"Standard(1) beta [office] zeta Office Standard");
    end(PSN_APPLY);
    EXPECT_EQ(ReadName(ResolveSettingFilePath(printers_setting())), L"office") << "a name that no folder has";
}

TEST_F(SettingsPage, ListLearnsOfNewColoursAndIsRidOfItsPicturesBeforeTheyAreDestroyed) {
    open();
    static HIMAGELIST shown_at_end;
    static int told;
    shown_at_end = dialog_state().list.icons.images.get();
    told = 0;
    const auto at_end = [](HWND shown, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR, DWORD_PTR) {
        if (message == WM_DESTROY)  // after its page's
            shown_at_end = ListView_GetImageList(shown, LVSIL_SMALL);
        told += message == WM_SYSCOLORCHANGE;
        return DefSubclassProc(shown, message, wparam, lparam);
    };
    SetWindowSubclass(list(), at_end, 1, 0);
    SendMessageW(parent, WM_SYSCOLORCHANGE, 0, 0);
    EXPECT_EQ(told, 1);
    close();
    EXPECT_EQ(shown_at_end, nullptr);
}

TEST_F(SettingsPage, PageOpenedFromAnotherLeavesItAsItWas) {
    for (const bool inner_first : {true, false}) {
        SCOPED_TRACE(inner_first);
        open();
        select(1);
        const std::pair outer(made, parent);
        open();
        select(0);
        EXPECT_EQ(setting()->PSName, L"alpha");
        const std::pair inner(made, parent);
        DestroyWindow((inner_first ? inner : outer).second);
        std::tie(made, parent) = inner_first ? outer : inner;
        const std::wstring left = inner_first ? L"zeta" : L"alpha";
        EXPECT_EQ(dialog_state().list.page, made);
        EXPECT_EQ(setting()->PSName, left);
        const HIMAGELIST pictures = dialog_state().list.icons.images.get();
        EXPECT_EQ(ListView_GetImageList(list(), LVSIL_SMALL), pictures);
        in_sheet(IDC_SETTINGS_EDIT, [&] { EXPECT_EQ(name(), left); });
        SendMessageW(parent, WM_TIMER, 1234, 0);
        EXPECT_NE(ListView_GetImageList(list(), LVSIL_SMALL), pictures);
        EXPECT_EQ(ImageList_GetImageCount(ListView_GetImageList(list(), LVSIL_SMALL)), 2);
        close();
    }
}

TEST_F(SettingsPage, ThreadHasItsDpiAwarenessBackAfterwards) {
    static std::vector<HANDLE> set;
    set.clear();
    const CallHook<decltype(GetProcAddress)> system(
        "GetProcAddress", [](auto original, HMODULE module, const char* name) -> FARPROC {
            if (std::strcmp(name, "SetThreadDpiAwarenessContext") != 0)
                return original(module, name);
            return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(+[](HANDLE context) {
                return set.push_back(context), reinterpret_cast<HANDLE>(INT_PTR{7});
            }));
        });
    open();
    close();
    EXPECT_EQ(set, (std::vector{reinterpret_cast<HANDLE>(INT_PTR{2}), reinterpret_cast<HANDLE>(INT_PTR{7})}));
}
