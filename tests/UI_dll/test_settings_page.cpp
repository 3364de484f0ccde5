#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include <functional>

#include "UI_dll/PDFSettings/setting_list.h"
#include "UI_dll/PDFSettings/list/setting_rows.h"
#include "UI_dll/PDFSettings/list/settings_page.h"
#include "common/qk/resource_dll.h"
#include "common/qk/registry.h"
#include "common/rwPDFSet_functions.h"
#include "resources/ids.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;
using Corvanta::Vantrix::PrintSettings::ReadName;

class SettingsPage : public EditSheet {
protected:
    SettingsPage() {
        SetThreadProp(threadprop::kPrinterName, reinterpret_cast<ULONG_PTR>(&here.printer.name));
        add(L"Settings\\standard.ps4", L"Standard");
        add(L"CustomSettings\\office.ps4", L"Office");
        add_own(L"zeta");
        add_own(L"alpha");
    }
    ~SettingsPage() override {
        close();
        FreeThreadProp(threadprop::kPrinterName);
    }

    void add(const std::wstring& path, const wchar_t* name) const {
        Setting setting;
        setting->PSName = name;
        EXPECT_TRUE(setting.Save(here.folder.file(path)));
    }
    static std::wstring add_own(const std::wstring& name) {
        Setting setting;
        setting->PSName = name;
        std::wstring path = GetAppDataPath(true) + name + L".ps4";
        EXPECT_TRUE(setting.Save(path));
        return path;
    }

    void open() {
        parent = CreateWindowExW(WS_EX_CONTEXTHELP, L"STATIC", L"", WS_POPUP, 0, 0, 600, 500, nullptr,
                                 nullptr, nullptr, nullptr);
        window = CreateDialogParamW(qk::resource_module(), MAKEINTRESOURCEW(IDD_SETTINGS), parent,
                                    &settings_page_proc, 0);
        ASSERT_TRUE(window);
    }
    void close() {
        if (parent)
            DestroyWindow(std::exchange(parent, nullptr));
    }

    [[nodiscard]] HWND list() const { return GetDlgItem(window, IDC_SETTINGS_LIST); }
    [[nodiscard]] std::wstring rows() const {  // "name name [selected] name"
        std::wstring all;
        for (int row = 0; row < ListView_GetItemCount(list()); ++row) {
            wchar_t text[200];
            ListView_GetItemText(list(), row, 0, text, 200);
            all += (row > 0 ? L" " : L"") +
                   (row == selected_row(window) ? L'[' + std::wstring(text) + L']' : text);
        }
        return all;
    }
    void select(int row) const {
        ListView_SetItemState(list(), row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    }
    [[nodiscard]] bool can_delete() const { return IsWindowEnabled(GetDlgItem(window, IDC_SETTINGS_DELETE)); }
    void press(int button) const { SendMessageW(GetDlgItem(window, button), BM_CLICK, 0, 0); }
    void end(UINT code) const {
        const PSHNOTIFY notification = {{parent, 0, code}, TRUE};
        SendMessageW(window, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notification));
    }
    // Presses a button that opens the edit sheet, and runs the script there.
    void in_sheet(int button, const std::function<void()>& script) const {
        const Later later([] { return sheet() != nullptr; },
                          [&] {
                              script();
                              cancel();
                          });
        press(button);
    }

    HWND parent = nullptr;
    HWND window = nullptr;
};

TEST_F(SettingsPage, ListsAllFoldersAndSelectsThePrintersSetting) {
    here.folder.write(L"Settings\\legacy\\old.printSetting2", "\x09\x00\x02\x00");
    here.folder.write(L"Settings\\broken.ps4", "{");
    ForceDirectories(here.folder.file(L"Settings\\folder.ps4"));
    open();
    EXPECT_EQ(rows(), L"alpha zeta Office [Standard] broken old");
    EXPECT_FALSE(can_delete());
    EXPECT_FALSE(GetWindowLongPtrW(parent, GWL_EXSTYLE) & WS_EX_CONTEXTHELP);
    select(0);
    EXPECT_TRUE(can_delete());
    EXPECT_EQ(setting()->PSName, L"alpha");
}

TEST_F(SettingsPage, FolderThatCannotBeReadHidesItsOwnFilesOnly) {
    const ImportPatch denied(
        "FindFirstFileExW",
        reinterpret_cast<void*>(+[](const wchar_t* pattern, FINDEX_INFO_LEVELS level, void* data,
                                    FINDEX_SEARCH_OPS op, void* filter, DWORD flags) -> HANDLE {
            using Function = decltype(FindFirstFileExW);
            if (!std::wcsstr(pattern, L"Roaming"))
                return qk::find_export<Function>(GetModuleHandleW(L"kernel32.dll"), "FindFirstFileExW")(
                    pattern, level, data, op, filter, flags);
            SetLastError(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        }));
    ASSERT_TRUE(denied.found());
    open();
    EXPECT_EQ(rows(), L"Office [Standard]");
    in_sheet(IDC_SETTINGS_NEW, [] { press_ok(); });  // written all the same; its row comes with the folder
    EXPECT_EQ(ReadName(GetAppDataPath(false) + L"Standard(1).ps4"), L"Standard(1)");
    EXPECT_TRUE(Outbox::boxes.empty());
}

TEST_F(SettingsPage, WithoutAnInstallationTheHostsFolderIsNotListed) {
    const CurrentFolder host(here.folder.path());  // has folders of the very names
    here.machine.set_text(qk::registry::kRoot, L"PdfDllPath", L"");
    open();
    EXPECT_EQ(ListView_GetItemCount(GetDlgItem(window, IDC_SETTINGS_LIST)), 2) << qk::to_utf8(rows());
}

TEST_F(SettingsPage, OwnFileWithoutANameGoesByItsFilesAndIsTheUsers) {
    here.folder.write(L"Roaming\\Corvanta\\Vantrix\\8.0\\CustomSettings\\beta.ps4", "\xEF\xBB\xBF{}");
    here.folder.write(L"Roaming\\Corvanta\\Vantrix\\8.0\\CustomSettings\\torn.ps4", "\xEF\xBB\xBF{");
    open();
    EXPECT_EQ(rows(), L"alpha beta torn zeta Office [Standard]");
    select(2);
    in_sheet(IDC_SETTINGS_EDIT, [] { press_ok(); });  // of what cannot be read, a copy
    EXPECT_EQ(TempFolder::read(GetAppDataPath(false) + L"torn.ps4"), "\xEF\xBB\xBF{");
    EXPECT_EQ(rows(), L"alpha beta torn [torn(1)] zeta Office Standard");
    Outbox::boxes.clear();
    for (const wchar_t* name : {L"beta", L"torn"}) {  // what else should be asked for by name
        select(1);
        Outbox::answer = IDYES;
        press(IDC_SETTINGS_DELETE);
        ASSERT_FALSE(Outbox::boxes.empty());
        EXPECT_NE(Outbox::boxes.back().text.find(L'"' + std::wstring(name) + L'"'), std::wstring::npos);
    }
    EXPECT_EQ(rows(), L"alpha [torn(1)] zeta Office Standard");
}

TEST_F(SettingsPage, ChosenSettingBecomesThePrintersOnOkOnly) {
    open();
    select(2);
    end(PSN_QUERYCANCEL);
    EXPECT_EQ(GetSettingFileName(here.printer.name), L"standard.ps4");
    EXPECT_EQ(rows(), L"alpha zeta [Office] Standard");
    end(PSN_APPLY);
    EXPECT_EQ(GetSettingFileName(here.printer.name), L"office.ps4");
    close();
    open();
    EXPECT_EQ(rows(), L"alpha zeta [Office] Standard");
}

TEST_F(SettingsPage, CancelGivesAPrinterWithoutItsFileTheStandardOne) {
    SetSettingFileName(L"gone.ps4", here.printer.name);
    here.folder.write(L"gone.ps4", "");  // beside a document, say
    wchar_t before[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, before);
    SetCurrentDirectoryW(here.folder.path().c_str());
    open();
    end(PSN_QUERYCANCEL);
    SetCurrentDirectoryW(before);
    EXPECT_EQ(ReadDriverRegString(L"PDFSettingFileName", here.printer.name.c_str()), L"standard.ps4");
}

TEST_F(SettingsPage, ChoiceThatCannotBeStoredKeepsTheSheetOpen) {
    open();
    select(2);
    {
        const ImportPatch store("RegSetValueExW",
                                reinterpret_cast<void*>(+[]() -> LSTATUS { throw std::bad_alloc(); }));
        end(PSN_APPLY);
    }
    EXPECT_EQ(GetWindowLongPtrW(window, DWLP_MSGRESULT), PSNRET_INVALID_NOCHANGEPAGE);
    ASSERT_EQ(Outbox::boxes.size(), 1u);
    EXPECT_EQ(Outbox::boxes[0].text, dialog_text(IDS_FAILED));
    end(PSN_APPLY);
    EXPECT_EQ(GetWindowLongPtrW(window, DWLP_MSGRESULT), PSNRET_NOERROR);
    EXPECT_EQ(GetSettingFileName(here.printer.name), L"office.ps4");
}

TEST_F(SettingsPage, OwnSettingIsDeletedWhenTheUserAgrees) {
    open();
    select(1);
    Outbox::answer = IDNO;
    press(IDC_SETTINGS_DELETE);
    EXPECT_EQ(rows(), L"alpha [zeta] Office Standard");
    Outbox::answer = IDYES;
    press(IDC_SETTINGS_DELETE);
    EXPECT_EQ(rows(), L"alpha [Office] Standard");
    ASSERT_EQ(Outbox::boxes.size(), 2u);
    EXPECT_EQ(Outbox::boxes[0].style, UINT{MB_YESNO | MB_ICONQUESTION});
    EXPECT_NE(Outbox::boxes[0].text.find(L"zeta.ps4"), std::wstring::npos);
    SendMessageW(window, WM_COMMAND, IDC_SETTINGS_DELETE, 0);  // not the user's: a greyed button's command
    EXPECT_EQ(Outbox::boxes.size(), 2u);
}

TEST_F(SettingsPage, ListOfNothingSelectsNothing) {
    for (const wchar_t* file : {L"Settings\\standard.ps4", L"CustomSettings\\office.ps4"})
        DeleteFileW(here.folder.file(file).c_str());
    for (const wchar_t* name : {L"alpha", L"zeta"})
        DeleteFileW((GetAppDataPath(false) + name + L".ps4").c_str());
    add_own(L"only");
    open();
    Outbox::answer = IDYES;
    press(IDC_SETTINGS_DELETE);
    EXPECT_EQ(rows(), L"");
    EXPECT_FALSE(can_delete());
    static int changes;
    changes = 0;
    SetWindowSubclass(
        parent,
        [](HWND sheet, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR, DWORD_PTR) {
            changes += message == PSM_CHANGED;
            return DefSubclassProc(sheet, message, wparam, lparam);
        },
        1, 0);
    end(PSN_APPLY);
    end(PSN_QUERYCANCEL);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(ReadDriverRegString(L"PDFSettingFileName", here.printer.name.c_str()), L"");
}

TEST_F(SettingsPage, NewAndReadOnlySettingsAreCopiesAndOwnOnesAreEditedInPlace) {
    open();
    in_sheet(IDC_SETTINGS_EDIT, [] {
        EXPECT_EQ(text(kGeneralPage, IDC_NAME), L"Standard(1)");
        press_ok();
    });
    EXPECT_EQ(rows(), L"[Standard(1)] alpha zeta Office Standard");
    in_sheet(IDC_SETTINGS_NEW, [] { EXPECT_EQ(text(kGeneralPage, IDC_NAME), L"Standard(2)"); });
    EXPECT_EQ(rows(), L"[Standard(1)] alpha zeta Office Standard");
    select(1);
    Outbox::answer = IDYES;
    in_sheet(IDC_SETTINGS_EDIT, [] {
        SetWindowTextW(control(kGeneralPage, IDC_NAME), L"beta");
        press_ok();
    });
    EXPECT_EQ(rows(), L"Standard(1) [beta] zeta Office Standard");
    EXPECT_EQ(ReadName(GetAppDataPath(false) + L"alpha.ps4"), L"beta");
}

TEST_F(SettingsPage, EditWithNothingSelectedTakesTheRowOfBefore) {
    open();
    select(0);
    ListView_SetItemState(list(), -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    in_sheet(IDC_SETTINGS_EDIT, [] { EXPECT_EQ(text(kGeneralPage, IDC_NAME), L"alpha"); });
    EXPECT_EQ(rows(), L"[alpha] zeta Office Standard");
}

TEST_F(SettingsPage, FileOfANewSettingHasANameThatNoFolderHas) {
    open();
    in_sheet(IDC_SETTINGS_NEW, [] {
        SetWindowTextW(control(kGeneralPage, IDC_NAME), L"office");  // the administrator's is "Office"
        press_ok();
    });
    EXPECT_EQ(rows(), L"alpha [office] zeta Office Standard");
    end(PSN_APPLY);
    EXPECT_EQ(ReadName(ResolveSettingFilePath(GetSettingFileName(here.printer.name))), L"office");
}

TEST_F(SettingsPage, NameForACopyIsFoundReadingEachFileOnce) {
    constexpr int kCopies = 30;
    add_own(L"Standard");
    for (int i = 1; i < kCopies; ++i)
        add_own(L"Standard(" + std::to_wstring(i) + L")");
    open();
    static int opened;
    opened = 0;
    const ImportPatch count(
        "CreateFileW", reinterpret_cast<void*>(+[](const wchar_t* path, DWORD access, DWORD share,
                                                   SECURITY_ATTRIBUTES* security, DWORD creation, DWORD flags,
                                                   HANDLE original) -> HANDLE {
            opened += std::wcsstr(path, L".ps4") != nullptr;
            return qk::find_export<decltype(CreateFileW)>(GetModuleHandleW(L"kernel32.dll"), "CreateFileW")(
                path, access, share, security, creation, flags, original);
        }));
    int opened_for_name = 0;
    in_sheet(IDC_SETTINGS_NEW, [&] {
        opened_for_name = opened;
        EXPECT_EQ(text(kGeneralPage, IDC_NAME), L"Standard(30)");
    });
    EXPECT_LE(opened_for_name, kCopies + 10);
}

TEST_F(SettingsPage, PicturesAreOutOfTheListBeforeTheyAreDestroyed) {
    open();
    static HIMAGELIST shown_at_end, made_then;
    shown_at_end = dialog_state().list.icons.images.get();
    SetWindowSubclass(
        list(),
        [](HWND control_window, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR, DWORD_PTR) {
            if (message == WM_DESTROY) {  // after its page's
                shown_at_end = ListView_GetImageList(control_window, LVSIL_SMALL);
                made_then = ImageList_Create(16, 16, ILC_COLOR32, 1, 0);
            }
            return DefSubclassProc(control_window, message, wparam, lparam);
        },
        1, 0);
    close();
    EXPECT_EQ(shown_at_end, nullptr);
    EXPECT_TRUE(ImageList_Destroy(made_then));
}

TEST_F(SettingsPage, PageOpenedFromAnotherLeavesItAsItWas) {
    for (const bool inner_first : {true, false}) {
        SCOPED_TRACE(inner_first);
        open();
        select(1);
        const HWND outer = window, outer_parent = parent;
        open();
        select(0);
        EXPECT_EQ(setting()->PSName, L"alpha");
        const HWND inner = window, inner_parent = parent;
        DestroyWindow(inner_first ? inner_parent : outer_parent);
        window = inner_first ? outer : inner;
        parent = inner_first ? outer_parent : inner_parent;
        EXPECT_EQ(dialog_state().list.page, window);
        EXPECT_EQ(setting()->PSName, inner_first ? L"zeta" : L"alpha");
        const HIMAGELIST images = ListView_GetImageList(list(), LVSIL_SMALL);
        EXPECT_EQ(images, dialog_state().list.icons.images.get());
        EXPECT_EQ(ImageList_GetImageCount(images), 2);
        in_sheet(IDC_SETTINGS_EDIT,
                 [&] { EXPECT_EQ(text(kGeneralPage, IDC_NAME), inner_first ? L"zeta" : L"alpha"); });
        SendMessageW(parent, WM_TIMER, 1234, 0);
        EXPECT_EQ(ImageList_GetImageCount(ListView_GetImageList(list(), LVSIL_SMALL)), 2);
        close();
    }
}

TEST_F(SettingsPage, FileThatVanishesOrBreaksWhileListedCostsNothing) {
    open();
    const std::wstring zeta = GetAppDataPath(false) + L"zeta.ps4";
    DeleteFileW(zeta.c_str());
    select(1);  // "zeta", gone
    press(IDC_SETTINGS_DELETE);
    EXPECT_TRUE(Outbox::boxes.empty());
    const std::wstring alpha = GetAppDataPath(false) + L"alpha.ps4";
    here.folder.write(L"Roaming\\Corvanta\\Vantrix\\8.0\\CustomSettings\\alpha.ps4", "no setting");
    select(0);
    in_sheet(IDC_SETTINGS_EDIT, [] { press_ok(); });  // a new one from standard values
    ASSERT_EQ(Outbox::boxes.size(), 1u);
    EXPECT_EQ(TempFolder::read(alpha), "no setting");
    EXPECT_NE(rows().find(L"[alpha"), std::wstring::npos);
}

TEST_F(SettingsPage, PicturesAreLoadedOnceAfterManyMoves) {
    open();
    const HIMAGELIST before = dialog_state().list.icons.images.get();
    for (int i = 0; i < 20; ++i)
        SendMessageW(parent, WM_MOVE, 0, 0);
    EXPECT_EQ(dialog_state().list.icons.images.get(), before);
    SendMessageW(parent, WM_TIMER, 1234, 0);
    EXPECT_NE(dialog_state().list.icons.images.get(), nullptr);
    EXPECT_FALSE(KillTimer(parent, 1234));  // no second time
}

TEST_F(SettingsPage, SettingsOfAnOlderVersionComeInOnce) {
    const std::wstring old = here.folder.file(L"Roaming\\Corvanta\\Vantrix\\7.0\\CustomSettings\\");
    ForceDirectories(old);
    Setting setting;
    setting->PSName = L"from old";
    EXPECT_TRUE(setting.Save(old + L"zeta.ps4"));  // one of that file is there already
    EXPECT_TRUE(setting.Save(old + L"fresh.ps4"));
    setting->PSName = L"old standard";  // a job would find the installed one under that name
    EXPECT_TRUE(setting.Save(old + L"Standard.ps4"));
    setting->PSName = L"older";
    EXPECT_TRUE(setting.Save(old + L"standard(1).ps4"));
    open();
    EXPECT_EQ(rows(), L"alpha from old old standard older zeta Office [Standard]");
    close();
    const std::wstring own = GetAppDataPath(false);
    EXPECT_EQ(ReadName(own + L"Standard(2).ps4"), L"old standard");
    EXPECT_FALSE(qk::is_file(own + L"standard.ps4"));
    for (const wchar_t* name : {L"fresh.ps4", L"Standard(2).ps4", L"standard(1).ps4"})
        DeleteFileW((own + name).c_str());
    open();
    EXPECT_EQ(rows(), L"alpha zeta Office [Standard]");
}

}  // namespace
