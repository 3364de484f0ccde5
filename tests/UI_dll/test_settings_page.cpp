#include <array>

#include "UI_dll/PDFSettings/setting_list.h"
#include "UI_dll/PDFSettings/list/setting_rows.h"
#include "UI_dll/PDFSettings/list/settings_page.h"
#include "common/qk/resource_dll.h"
#include "common/qk/registry.h"
#include "common/rwPDFSet_functions.h"
#include "companions/host/setting_check.h"
#include "support/profile_folder.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;
using Corvanta::Vantrix::PrintSettings::ReadName;

constexpr wchar_t kOwnFolder[] = L"Roaming\\Corvanta\\Vantrix\\8.0\\CustomSettings\\";

class SettingsPage : public EditSheet {
protected:
    SettingsPage() {
        SetThreadProp(threadprop::kPrinterName, reinterpret_cast<ULONG_PTR>(&here.printer.name));
        add(L"Settings\\standard.ps4", L"Standard");
        add(L"CustomSettings\\office.ps4", L"Office");
        ForceDirectories(here.folder.file(kOwnFolder));
        add_own(L"zeta");
        add_own(L"alpha");
    }
    ~SettingsPage() override {
        close();
        FreeThreadProp(threadprop::kPrinterName);
    }

    void add(const std::wstring& path, const std::wstring& name) const {
        Setting setting;
        setting->PSName = name;
        EXPECT_TRUE(setting.Save(here.folder.file(path)));
    }
    void add_own(const std::wstring& name) const { add(kOwnFolder + name + L".ps4", name); }
    // Another's file of the user's.
    void write_own(const std::wstring& name, const char* bytes) const {
        here.folder.write(kOwnFolder + name + L".ps4", bytes);
    }
    [[nodiscard]] std::wstring own(const std::wstring& name) const {
        return here.folder.file(kOwnFolder) + name + L".ps4";
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
        constexpr UINT kChosen = LVIS_SELECTED | LVIS_FOCUSED;
        ListView_SetItemState(list(), row, kChosen, kChosen);
    }
    [[nodiscard]] bool can_delete() const { return IsWindowEnabled(GetDlgItem(window, IDC_SETTINGS_DELETE)); }
    void press(int button) const { SendMessageW(GetDlgItem(window, button), BM_CLICK, 0, 0); }
    void press_delete(int answer) const {
        Outbox::answer = answer;
        press(IDC_SETTINGS_DELETE);
    }
    // Ends the sheet, and what the page says to it.
    LONG_PTR end(UINT code) const {
        const PSHNOTIFY notification = {{parent, 0, code}, TRUE};
        SendMessageW(window, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notification));
        return GetWindowLongPtrW(window, DWLP_MSGRESULT);
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
    static void name_it(const wchar_t* name) {
        SetWindowTextW(control(kGeneralPage, IDC_NAME), name);
        press_ok();
    }
    [[nodiscard]] std::wstring printers_setting() const { return GetSettingFileName(here.printer.name); }

    HWND parent = nullptr, window = nullptr;
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
    const CallHook<decltype(FindFirstFileExW)> denied(
        "FindFirstFileExW", [](auto original, const wchar_t* pattern, auto... rest) -> HANDLE {
            if (!std::wcsstr(pattern, L"Roaming"))
                return original(pattern, rest...);
            return SetLastError(ERROR_ACCESS_DENIED), INVALID_HANDLE_VALUE;
        });
    open();
    EXPECT_EQ(rows(), L"Office [Standard]");
    in_sheet(IDC_SETTINGS_NEW, [] { press_ok(); });  // written all the same; its row comes with the folder
    EXPECT_EQ(ReadName(own(L"Standard(1)")), L"Standard(1)");
    EXPECT_TRUE(Outbox::boxes.empty());
}

TEST_F(SettingsPage, WithoutAnInstallationTheHostsFolderIsNotListed) {
    const CurrentFolder host(here.folder.path());  // has folders of the very names
    here.machine.set_text(qk::registry::kRoot, L"PdfDllPath", L"");
    open();
    EXPECT_EQ(ListView_GetItemCount(list()), 2) << qk::to_utf8(rows());
}

TEST_F(SettingsPage, OwnFileWithoutANameGoesByItsFilesAndIsTheUsers) {
    write_own(L"beta", "\xEF\xBB\xBF{}");
    write_own(L"torn", "\xEF\xBB\xBF{");
    open();
    EXPECT_EQ(rows(), L"alpha beta torn zeta Office [Standard]");
    select(2);
    in_sheet(IDC_SETTINGS_EDIT, [] { press_ok(); });  // of what cannot be read, a copy
    EXPECT_EQ(TempFolder::read(own(L"torn")), "\xEF\xBB\xBF{");
    EXPECT_EQ(rows(), L"alpha beta torn [torn(1)] zeta Office Standard");
    for (const wchar_t* name : {L"beta", L"torn"}) {  // what else should be asked for by name
        select(1);
        press_delete(IDYES);
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
    open();
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
    open();
    EXPECT_EQ(rows(), L"alpha zeta [Office] Standard");
}

TEST_F(SettingsPage, CancelGivesAPrinterWithoutItsFileTheStandardOne) {
    SetSettingFileName(L"gone.ps4", here.printer.name);
    here.folder.write(L"gone.ps4", "");  // beside a document, say
    const CurrentFolder documents(here.folder.path());
    open();
    end(PSN_QUERYCANCEL);
    EXPECT_EQ(ReadDriverRegString(L"PDFSettingFileName", here.printer.name.c_str()), L"standard.ps4");
}

TEST_F(SettingsPage, OwnSettingIsDeletedWhenTheUserAgrees) {
    open();
    select(1);
    press_delete(IDNO);
    EXPECT_EQ(rows(), L"alpha [zeta] Office Standard");
    press_delete(IDYES);
    EXPECT_EQ(rows(), L"alpha [Office] Standard");
    ASSERT_EQ(Outbox::boxes.size(), 2u);
    EXPECT_EQ(Outbox::boxes[0].style, UINT{MB_YESNO | MB_ICONQUESTION});
    EXPECT_NE(Outbox::boxes[0].text.find(L"zeta.ps4"), std::wstring::npos);
    SendMessageW(window, WM_COMMAND, IDC_SETTINGS_DELETE, 0);  // not the user's: a greyed button's command
    EXPECT_EQ(Outbox::boxes.size(), 2u);
    select(0);
    DeleteFileW(own(L"alpha").c_str());
    press_delete(IDYES);
    EXPECT_EQ(Outbox::boxes.size(), 2u) << "it is gone already";
}

TEST_F(SettingsPage, ListOfNothingSelectsNothing) {
    for (const wchar_t* file : {L"Settings\\standard.ps4", L"CustomSettings\\office.ps4"})
        DeleteFileW(here.folder.file(file).c_str());
    DeleteFileW(own(L"zeta").c_str());
    open();
    press_delete(IDYES);
    EXPECT_EQ(rows(), L"");
    EXPECT_FALSE(can_delete());
    end(PSN_APPLY);
    end(PSN_QUERYCANCEL);
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
    ListView_SetItemState(list(), -1, 0, LVIS_SELECTED | LVIS_FOCUSED);  // the row of before is taken
    Outbox::answer = IDYES;
    in_sheet(IDC_SETTINGS_EDIT, [] { name_it(L"beta"); });
    EXPECT_EQ(rows(), L"Standard(1) [beta] zeta Office Standard");
    EXPECT_EQ(ReadName(own(L"alpha")), L"beta");
}

TEST_F(SettingsPage, FileOfANewSettingHasANameThatNoFolderHas) {
    open();
    in_sheet(IDC_SETTINGS_NEW, [] { name_it(L"office"); });  // the administrator's is "Office"
    EXPECT_EQ(rows(), L"alpha [office] zeta Office Standard");
    end(PSN_APPLY);
    EXPECT_EQ(ReadName(ResolveSettingFilePath(printers_setting())), L"office");
}

TEST_F(SettingsPage, NameForACopyIsFoundReadingEachFileOnce) {
    constexpr int kCopies = 30;
    add_own(L"Standard");
    for (int i = 1; i < kCopies; ++i)
        add_own(L"Standard(" + std::to_wstring(i) + L")");
    open();
    int opened = 0;
    const CallHook<decltype(CreateFileW)> count("CreateFileW", [&](auto original, auto path, auto... rest) {
        opened += std::wcsstr(path, L".ps4") != nullptr;
        return original(path, rest...);
    });
    in_sheet(IDC_SETTINGS_NEW, [&] {
        EXPECT_LE(opened, kCopies + 10);
        EXPECT_EQ(text(kGeneralPage, IDC_NAME), L"Standard(30)");
    });
}

TEST_F(SettingsPage, PicturesAreOutOfTheListBeforeTheyAreDestroyed) {
    open();
    static HIMAGELIST shown_at_end;
    shown_at_end = dialog_state().list.icons.images.get();
    const auto at_end = [](HWND shown, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR, DWORD_PTR) {
        if (message == WM_DESTROY)  // after its page's
            shown_at_end = ListView_GetImageList(shown, LVSIL_SMALL);
        return DefSubclassProc(shown, message, wparam, lparam);
    };
    SetWindowSubclass(list(), at_end, 1, 0);
    close();
    EXPECT_EQ(shown_at_end, nullptr);
}

TEST_F(SettingsPage, PageOpenedFromAnotherLeavesItAsItWas) {
    for (const bool inner_first : {true, false}) {
        SCOPED_TRACE(inner_first);
        open();
        select(1);
        const std::pair outer(window, parent);
        open();
        select(0);
        EXPECT_EQ(setting()->PSName, L"alpha");
        const std::pair inner(window, parent);
        DestroyWindow((inner_first ? inner : outer).second);
        std::tie(window, parent) = inner_first ? outer : inner;
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

TEST_F(SettingsPage, PicturesAreThoseOfTheKindsAndLoadedOnceMoreAfterManyMoves) {
    std::vector<WORD> loaded;
    const CallHook<decltype(LoadImageW)> load("LoadImageW", [&](auto original, auto module, auto id,
                                                                auto... rest) {
        if (const WORD number = LOWORD(id); number == IDI_CUSTOM_SETTING || number == IDI_INSTALLED_SETTING)
            loaded.push_back(number);
        return original(module, id, rest...);
    });
    open();
    std::vector<WORD> wanted = {IDI_CUSTOM_SETTING, IDI_INSTALLED_SETTING};
    for (const int image : {0, 1}) {
        LVITEMW item = {.mask = LVIF_IMAGE, .iItem = image + 2};
        ListView_GetItem(list(), &item);
        EXPECT_EQ(item.iImage, image);
    }
    for (int i = 0; i < 20; ++i)
        SendMessageW(parent, WM_MOVE, 0, 0);
    EXPECT_EQ(loaded, wanted);
    SendMessageW(parent, WM_TIMER, 1234, 0);
    wanted.insert(wanted.end(), {IDI_CUSTOM_SETTING, IDI_INSTALLED_SETTING});
    EXPECT_EQ(loaded, wanted);
    EXPECT_EQ(ImageList_GetImageCount(ListView_GetImageList(list(), LVSIL_SMALL)), 2);
    EXPECT_FALSE(KillTimer(parent, 1234));  // no second time
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

TEST_F(SettingsPage, SettingsOfOlderVersionsComeInOnceTheNewestFirst) {
    const std::array<const wchar_t*, 3> old[] = {
        {L"7", L"zeta", L"from old"},  // one of that file is there already
        {L"7", L"fresh", L"from old"},
        {L"6", L"fresh", L"from older"},
        {L"7", L"Standard", L"old standard"},  // a job would find the installed one under that name
        {L"7", L"standard(1)", L"older"}};
    for (const auto& [version, file, name] : old) {
        const auto folder = L"Roaming\\Corvanta\\Vantrix\\" + std::wstring(version) + L".0\\CustomSettings\\";
        ForceDirectories(here.folder.file(folder));
        add(folder + file + L".ps4", name);
    }
    open();
    EXPECT_EQ(rows(), L"alpha from old old standard older zeta Office [Standard]");
    close();
    EXPECT_EQ(ReadName(own(L"Standard(2)")), L"old standard");
    EXPECT_FALSE(qk::is_file(own(L"standard")));
    for (const wchar_t* name : {L"fresh", L"Standard(2)", L"standard(1)"})
        DeleteFileW(own(name).c_str());
    open();
    EXPECT_EQ(rows(), L"alpha zeta Office [Standard]");
}

// Key by key, as the list tells them.
void press_key(HWND page, WORD key) {
    NMLVKEYDOWN down = {};
    down.hdr = {GetDlgItem(page, IDC_SETTINGS_LIST), IDC_SETTINGS_LIST, LVN_KEYDOWN};
    down.wVKey = key;
    SendMessageW(page, WM_NOTIFY, IDC_SETTINGS_LIST, reinterpret_cast<LPARAM>(&down));
}

void handle_posted() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
}

TEST_F(SettingsPage, PrintersSettingIsInSightAmongMany) {
    for (int i = 10; i < 70; ++i)
        add_own(L"s" + std::to_wstring(i));
    SetSettingFileName(L"s55.ps4", here.printer.name);
    open();
    const int row = selected_row(window), top = ListView_GetTopIndex(list());
    EXPECT_EQ(selected_entry(window)->name, L"s55");
    EXPECT_TRUE(row >= top && row < top + ListView_GetCountPerPage(list())) << row << " from " << top;
    EXPECT_EQ(ListView_GetNextItem(list(), -1, LVNI_FOCUSED), row);
}

TEST_F(SettingsPage, SelectedSettingIsToldInWords) {
    Setting& told = setting();
    told->PSName = L"told";
    told.general()->PaperType = 1;
    told.general()->PaperWidth = 100;
    told.general()->PaperHeight = 50;
    told.general()->SaveStyle = 1;
    told.general()->OutputFolder = L"C:\\here";
    told.security()->UserPassword = L"secret";
    told.watermark()->Style = 1;
    told.watermark()->Text = L"DRAFT";
    EXPECT_TRUE(told.Save(own(L"told")));
    here.folder.write(L"Settings\\broken.ps4", "{");
    open();
    const struct {
        int row;
        std::vector<std::wstring> parts;
        bool can_copy;
    } rows[] = {{1,
                 {L"Paper: Custom size, 100 \u00D7 50 mm\n", L"PDF version: PDF 1.7\n",
                  L"Security: password to open\n", L"C:\\here\n", L"Watermark: DRAFT"},
                 true},
                {3, {L"Security: none\n", dialog_text(IDS_SUM_ADMINISTRATOR)}, true},
                {4, {L"asks each time\n", dialog_text(IDS_SUM_INSTALLED)}, true},
                {5, {dialog_text(IDS_SUM_UNREADABLE)}, false}};
    for (const auto& row : rows) {
        select(row.row);
        const std::wstring text = control_text(window, IDC_SETTINGS_SUMMARY);
        for (const std::wstring& part : row.parts)
            EXPECT_NE(text.find(part), std::wstring::npos)
                << qk::to_utf8(part) << " in " << qk::to_utf8(text);
        EXPECT_EQ(text.find(L"secret"), std::wstring::npos);
        EXPECT_EQ(IsWindowEnabled(GetDlgItem(window, IDC_SETTINGS_COPY)) != FALSE, row.can_copy);
    }
}

TEST_F(SettingsPage, FilesAreImportedOrRefusedInWords) {
    const std::string mark = "\xEF\xBB\xBF";
    add(L"zeta.ps4", L"zeta");  // of a name and a file that are there
    here.folder.write(L"low.ps4", mark + R"({"PSName":"low","PSComment":[],"General":{"Scale":5}})");
    here.folder.write(L"torn.ps4", mark + "{\n\"a\":");
    here.folder.write(L"bare.ps4", "{}");
    here.folder.write(L"list.ps4", mark + R"({"PSComment":[],"General":[]})");
    here.folder.write(L"old.ps4", std::string("\x09\x00\x02\x00", 4));
    open();
    const std::string before = TempFolder::read(own(L"zeta"));
    std::wstring files;
    for (const wchar_t* name : {L"torn", L"bare", L"list", L"old", L"gone", L"zeta", L"low"})
        files += here.folder.file(name) + L".ps4" + L'\0';
    const HGLOBAL memory = GlobalAlloc(GHND, sizeof(DROPFILES) + (files.size() + 1) * sizeof(wchar_t));
    auto* drop = static_cast<DROPFILES*>(GlobalLock(memory));
    drop->pFiles = sizeof *drop;
    drop->fWide = TRUE;
    std::memcpy(drop + 1, files.data(), files.size() * sizeof(wchar_t));
    GlobalUnlock(memory);
    SendMessageW(window, WM_DROPFILES, reinterpret_cast<WPARAM>(memory), 0);
    EXPECT_EQ(rows(), L"alpha [low] zeta zeta(1) Office Standard");
    EXPECT_EQ(TempFolder::read(own(L"zeta")), before);
    ASSERT_EQ(Outbox::boxes.size(), 2u);
    EXPECT_NE(Outbox::boxes[0].text.find(L"General.Scale: 5 \u2192 10"), std::wstring::npos);
    const std::pair<const wchar_t*, std::wstring> faults[] = {
        {L"torn", qk::format(dialog_text(IDS_IMPORT_DAMAGED).c_str(), 2)},
        {L"bare", dialog_text(IDS_IMPORT_NO_SETTING)},
        {L"list", dialog_text(IDS_IMPORT_WRONG_KIND)},
        {L"old", dialog_text(IDS_IMPORT_LEGACY)},
        {L"gone", dialog_text(IDS_IMPORT_UNREADABLE)}};
    for (const auto& [name, fault] : faults)
        EXPECT_NE(Outbox::boxes[1].text.find(name + (L".ps4: " + fault)), std::wstring::npos)
            << qk::to_utf8(Outbox::boxes[1].text);
}

TEST_F(SettingsPage, KeysRenameAndDelete) {
    open();
    const struct {
        int row;
        const wchar_t* typed;
        UINT box;
        const wchar_t* rows;
    } cases[] = {{0, L"gamma", 0, L"[gamma] zeta Office Standard"},
                 {0, L" ", IDS_NO_NAME, L"[gamma] zeta Office Standard"},
                 {0, L"Office", IDS_RENAME_TAKEN, L"[gamma] zeta Office Standard"},
                 {2, nullptr, 0, L"gamma zeta [Office] Standard"}};
    for (const auto& row : cases) {
        Outbox::boxes.clear();
        select(row.row);
        press_key(window, VK_F2);
        const HWND edit = ListView_GetEditControl(list());
        ASSERT_EQ(edit != nullptr, row.typed != nullptr);
        if (edit) {
            SetWindowTextW(edit, row.typed);
            SendMessageW(edit, WM_KEYDOWN, VK_RETURN, 0);
        }
        handle_posted();
        EXPECT_EQ(rows(), row.rows);
        ASSERT_EQ(Outbox::boxes.size(), row.box ? 1u : 0u);
        EXPECT_TRUE(!row.box || Outbox::boxes[0].text == dialog_text(row.box));
    }
    EXPECT_EQ(ReadName(own(L"alpha")), L"gamma") << "the printers' choice goes by the file";
    ListView_EditLabel(list(), 0);
    EXPECT_FALSE(ListView_GetEditControl(list())) << "by the key only: a second click may be half of two";
    Outbox::answer = IDYES;
    select(0);
    press_key(window, VK_DELETE);
    EXPECT_EQ(rows(), L"[zeta] Office Standard");
}

TEST_F(SettingsPage, SheetSaysWhatItMakesACopyOf) {
    open();
    const struct {
        int row, button;
        std::wstring caption;
    } cases[] = {{0, IDC_SETTINGS_EDIT, L"Print setting - alpha"},
                 {3, IDC_SETTINGS_EDIT, L"New setting: copy of Standard"},
                 {0, IDC_SETTINGS_COPY, L"New setting: copy of alpha"},
                 {0, IDC_SETTINGS_NEW, L"New setting"}};
    for (const auto& row : cases) {
        select(row.row);
        in_sheet(row.button, [&] { EXPECT_EQ(window_text(sheet()), row.caption); });
    }
}

// Those beside the standard one: sound, printable, and called what the dialog's language calls them.
TEST_F(SettingsPage, ReadySettingsComeWithTheProduct) {
    const ProfileFolder profiles;
    profiles.add(L"sRGB Color Space Profile.icm", "RGB ", "mntr", "sRGB");
    profiles.add(L"RSWOP.icm", "CMYK", "prtr", "SWOP");
    const struct {
        const wchar_t* file;
        UINT name, version;
        bool is_protected;
    } rows[] = {{L"smallest", IDS_READY_SMALLEST, 4, false}, {L"everyday", IDS_READY_EVERYDAY, 4, false},
                {L"quality", IDS_READY_QUALITY, 4, false},   {L"archive", IDS_READY_ARCHIVE, 11, false},
                {L"press", IDS_READY_PRESS, 10, false},      {L"protected", IDS_READY_PROTECTED, 4, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(qk::to_utf8(row.file));
        const std::wstring file = L"Settings\\" + std::wstring(row.file) + L".ps4";
        const std::wstring path = here.folder.file(file);
        EXPECT_TRUE(CopyFileW(Installation::built(file).c_str(), path.c_str(), TRUE));
        const host::SettingFindings found = host::check_setting(path);
        EXPECT_TRUE(found.faults.empty()) << qk::to_utf8(found.faults.front());
        Setting setting;
        EXPECT_TRUE(setting.Load(path));
        EXPECT_EQ(setting.pdfVersion()->Version, row.version);
        EXPECT_EQ(!setting.security()->MasterPassword.empty(), row.is_protected);
        EXPECT_EQ(shown_setting_name(path), dialog_text(row.name));
        EXPECT_EQ(setting->PSName, dialog_text(row.name)) << "in English it is the file's own";
        setting->PSName = L"Ours";
        EXPECT_TRUE(setting.Save(path));
        EXPECT_EQ(shown_setting_name(path), L"Ours") << "an administrator's of the same file name";
    }
}

}  // namespace
