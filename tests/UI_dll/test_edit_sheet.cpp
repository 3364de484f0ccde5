#include "UI_dll/PDFSettings/setting_list.h"
#include "common/rwPDFSet_functions.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;
using namespace Corvanta::Vantrix::PrintSettings;

struct Saving : EditSheet {
    // A file of the user's with what setting() holds.
    std::wstring own_file(const wchar_t* name) {
        setting()->PSName = name;
        const std::wstring path = GetAppDataPath(true) + name + L".ps4";
        EXPECT_TRUE(setting().Save(path));
        return path;
    }
    static void rename(const wchar_t* name) { SetWindowTextW(control(kGeneralPage, IDC_NAME), name); }
    static bool says(const std::wstring& text) {
        return !text.empty() && Outbox::boxes.back().text.find(text) != std::wstring::npos;
    }
};

TEST_F(Saving, SheetHoldsNinePagesAndTheCheckButtonSavesNothing) {
    show([] {
        EXPECT_EQ(GetFocus(), control(kGeneralPage, IDC_NAME));
        for (size_t i = 0; i < kPageCount; ++i)
            EXPECT_TRUE(go_to(static_cast<PageIndex>(i))) << i;
        const HWND button = GetDlgItem(sheet(), kApplyButton);
        EXPECT_TRUE(IsWindowVisible(button) && IsWindowEnabled(button));
        EXPECT_TRUE(Outbox::boxes.empty());
        press_apply();
    });
    ASSERT_EQ(Outbox::boxes.size(), 1u);
    EXPECT_TRUE(stayed_open());
    EXPECT_EQ(Outbox::boxes[0].style, UINT{MB_OK | MB_ICONINFORMATION});
    EXPECT_FALSE(is_name_taken(setting()->PSName, {}));
}

TEST_F(Saving, ChangesAreListedAndSavedWhenTheUserAgrees) {
    const std::wstring path = own_file(L"Before");
    make_old(path);
    Outbox::answer = IDNO;
    const auto edit = [] {
        rename(L"After");
        press_ok();
    };
    show(edit, path);
    EXPECT_TRUE(stayed_open());
    ASSERT_EQ(Outbox::boxes.size(), 1u);
    EXPECT_EQ(Outbox::boxes[0].style, UINT{MB_YESNO | MB_ICONEXCLAMATION});
    EXPECT_EQ(Outbox::boxes[0].caption, dialog_text(IDS_CONFIRM_CAPTION));
    EXPECT_TRUE(says(L"After"));
    EXPECT_TRUE(is_old(path));

    Outbox::answer = IDYES;
    LoadSettingFile(path);
    show(edit, path);
    EXPECT_EQ(ReadName(path), L"After");
    EXPECT_FALSE(is_old(path));
}

TEST_F(Saving, EditsSurviveAFileThatCannotBeWritten) {
    const std::wstring path = own_file(L"Locked");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    Outbox::answer = IDYES;
    const auto look = [&] {
        rename(L"Other");
        press_ok();
        EXPECT_EQ(text(kGeneralPage, IDC_NAME), L"Other");
        SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        press_ok();
    };
    show(look, path);
    ASSERT_EQ(Outbox::boxes.size(), 3u);  // confirmed, refused with the reason, confirmed
    EXPECT_NE(Outbox::boxes[1].text.find(path), std::wstring::npos);
    EXPECT_EQ(ReadName(path), L"Other");
}

TEST_F(Saving, EditsSurviveAFolderThatTakesNoFile) {
    bool denies = false;
    const CallHook<decltype(CreateFileW)> denied(
        "CreateFileW",
        [&](auto original, auto path, DWORD access, DWORD share, auto* security, DWORD creation,
            auto... rest) -> HANDLE {
            if (!denies || creation != CREATE_NEW)
                return original(path, access, share, security, creation, rest...);
            return SetLastError(ERROR_ACCESS_DENIED), INVALID_HANDLE_VALUE;
        });
    const std::wstring obstacle = here.folder.write(L"Roaming\\Corvanta", "");  // for the folder itself
    show([&] {
        rename(L"My: new");
        press_ok();
        DeleteFileW(obstacle.c_str());
        denies = true;
        press_ok();
        denies = false;
        EXPECT_EQ(text(kGeneralPage, IDC_NAME), L"My: new");
        EXPECT_FALSE(is_name_taken(L"My: new", {}));
        press_ok();
    });
    EXPECT_FALSE(stayed_open());
    ASSERT_EQ(Outbox::boxes.size(), 2u);
    EXPECT_NE(Outbox::boxes[0].text.find(dialog_text(IDS_NO_USER_FOLDER)), std::wstring::npos);
    EXPECT_NE(Outbox::boxes[1].text.find(L":\n" + GetAppDataPath(false)), std::wstring::npos);
    EXPECT_EQ(dialog_state().file.path, GetAppDataPath(false) + L"My_ new.ps4");
    EXPECT_EQ(ReadName(dialog_state().file.path), L"My: new");
}

TEST_F(Saving, FailureOnAPageKeepsTheSheetOpenAndItsEdits) {
    bool fails = false;
    const CallHook<decltype(GetWindowTextLengthW)> texts(
        "GetWindowTextLengthW",
        [&](auto original, HWND window) { return fails ? throw std::bad_alloc() : original(window); });
    show([&] {
        rename(L"Typed");
        fails = true;
        EXPECT_FALSE(go_to(kInfoPage));
        press_ok();
        fails = false;
        EXPECT_TRUE(go_to(kInfoPage));
        fails = true;
        press_ok();
        fails = false;
        EXPECT_EQ(text(kGeneralPage, IDC_NAME), L"Typed");
        ASSERT_EQ(Outbox::boxes.size(), 3u);
        for (const Outbox::Box& box : Outbox::boxes)
            EXPECT_EQ(box.text, dialog_text(IDS_FAILED));
        press_ok();
    });
    EXPECT_EQ(ReadName(GetAppDataPath(false) + L"Typed.ps4"), L"Typed");
}

TEST_F(Saving, LongListOfChangesIsWholeInABoxThatScrolls) {
    const std::wstring path = own_file(L"Many");
    make_old(path);
    const auto box = [] {
        const HWND popup = GetLastActivePopup(sheet());
        return popup != sheet() && GetDlgItem(popup, IDC_CHANGES) ? popup : nullptr;
    };
    const auto answer = [&](int button) {
        const auto act = [&] {
            const std::wstring list = control_text(box(), IDC_CHANGES);
            for (const wchar_t* key : {L"key100", L"key139"})
                EXPECT_NE(list.find(key), std::wstring::npos) << list.size();
            SendMessageW(box(), WM_COMMAND, static_cast<WPARAM>(button), 0);
        };
        const Later later([&] { return box() != nullptr; }, act);
        press_ok();
    };
    const auto look = [&] {
        for (int i = 100; i < 140; ++i)
            setting().addition()->Int[L"key" + std::to_wstring(i)] = i;
        answer(IDCANCEL);
        EXPECT_TRUE(is_old(path));
        answer(IDYES);
    };
    show(look, path);
    EXPECT_FALSE(stayed_open());
    EXPECT_FALSE(is_old(path));
}

TEST_F(Saving, FileThatSomebodyElseHasWrittenStaysAndACopyIsMade) {
    const std::wstring path = own_file(L"mine");
    Outbox::answer = IDYES;
    const auto look = [&] {
        dialog_state().file.mark = file_mark(path);
        here.folder.write(path.substr(here.folder.path().size() + 1), "theirs");
        type(kGeneralPage, IDC_SCALE, L"50");
        press_ok();
    };
    show(look, path);
    EXPECT_EQ(TempFolder::read(path), "theirs");
    ASSERT_EQ(Outbox::boxes.size(), 2u) << "the changes, and whose file it is";
    EXPECT_TRUE(says(path));
    EXPECT_EQ(ReadName(dialog_state().file.path), L"mine(1)");
}

TEST_F(Saving, CheckButtonTellsEveryFaultAtOnce) {
    show([] {
        go_to(kColorPage);
        const auto check = [] {
            Outbox::boxes.clear();
            SendMessageW(sheet(), WM_COMMAND, MAKEWPARAM(kApplyButton, BN_CLICKED),
                         reinterpret_cast<LPARAM>(GetDlgItem(sheet(), kApplyButton)));
            EXPECT_EQ(Outbox::boxes.size(), 1u);
        };
        check();
        EXPECT_TRUE(says(dialog_text(IDS_CHECKED)));
        type(kGeneralPage, IDC_RESOLUTION, L"71");
        type(kGeneralPage, IDC_SCALE, L"9");
        click(kWaterMarkPage, IDC_MARK_TEXT);
        type(kWaterMarkPage, IDC_MARK_WORDS, L"\u00A0 ");
        type(kWaterMarkPage, IDC_MARK_SIZE, L"7");
        for (const int edit : {CMP_THRESHOLD, CMP_TARGET})
            type(kCompressPage, IDC_CMP_GREY + edit, L"9");
        for (const int box : {IDC_SEC_USE_OPEN, IDC_SEC_USE_PERMISSIONS})
            click(kSecuritiesPage, box);
        check();
        const std::tuple<std::wstring, UINT> faults[] = {
            {L"General – Resolution", IDS_BAD_RESOLUTION},
            {L"General – Scaling", IDS_BAD_SCALE},
            {L"Compression – Grey images – Images above", IDS_CMP_BAD_RESOLUTION},
            {L"Compression – Grey images – Reduced to", IDS_CMP_BAD_RESOLUTION},
            {L"Security – Opening the document – Password to open", IDS_SEC_NO_OPEN_PASSWORD},
            {L"Security – Permissions – Permissions password", IDS_SEC_NO_PASSWORD},
            {L"Watermark – Text – Text", IDS_MARK_NO_WORDS},
            {L"Watermark – Text – Size", IDS_MARK_BAD_SIZE}};
        for (const auto& [place, fault] : faults)
            EXPECT_TRUE(says(place + L": " + dialog_text(fault))) << qk::to_utf8(place);
        EXPECT_TRUE(is_in_front(kGeneralPage));
        type(kGeneralPage, IDC_RESOLUTION, L"72x");
        expect_check(kGeneralPage, IDS_BAD_RESOLUTION, IDC_RESOLUTION);
    });
}

TEST_F(Saving, PasswordsAreShownUntilThePageIsLeftAndGoWithTheirCheckBox) {
    setting().security()->MasterPassword = L"secret";
    show([] {
        const auto mark = [] {
            return SendMessageW(control(kSecuritiesPage, IDC_SEC_PASSWORD), EM_GETPASSWORDCHAR, 0, 0);
        };
        go_to(kSecuritiesPage);
        EXPECT_TRUE(mark() != 0 && text(kSecuritiesPage, IDC_SEC_PASSWORD) == L"secret");
        click(kSecuritiesPage, IDC_SEC_SHOW);
        EXPECT_EQ(mark(), 0);
        go_to(kColorPage);
        go_to(kSecuritiesPage);
        EXPECT_NE(mark(), 0);
        click(kSecuritiesPage, IDC_SEC_USE_PERMISSIONS);
        EXPECT_EQ(text(kSecuritiesPage, IDC_SEC_PASSWORD), L"");
    });
}

}  // namespace
