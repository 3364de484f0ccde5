#include "UI_dll/PDFSettings/setting_list.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;

struct SheetSafety : EditSheet {
    static bool says(const std::wstring& text) {
        return Outbox::boxes.back().text.find(text) != std::wstring::npos;
    }
};

TEST_F(SheetSafety, FileThatSomebodyElseHasWrittenStaysAndACopyIsMade) {
    const std::wstring file = L"Roaming\\Corvanta\\Vantrix\\8.0\\CustomSettings\\mine.ps4",
                       path = here.folder.file(file);
    ForceDirectories(path.substr(0, path.rfind(L'\\')));
    setting()->PSName = L"mine";
    EXPECT_TRUE(setting().Save(path));
    Outbox::answer = IDYES;
    const auto look = [&] {
        dialog_state().file.mark = file_mark(path);
        here.folder.write(file, "theirs");
        type(kGeneralPage, IDC_SCALE, L"50");
        press_ok();
    };
    show(look, path);
    EXPECT_EQ(TempFolder::read(path), "theirs");
    ASSERT_EQ(Outbox::boxes.size(), 2u) << "the changes, and whose file it is";
    EXPECT_TRUE(says(path));
    EXPECT_EQ(ps::ReadName(dialog_state().file.path), L"mine(1)");
}

TEST_F(SheetSafety, CheckButtonTellsEveryFaultAtOnce) {
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
        type(kWaterMarkPage, IDC_MARK_SIZE, L"7");
        check();
        for (const UINT fault : {IDS_BAD_RESOLUTION, IDS_BAD_SCALE, IDS_MARK_BAD_SIZE})
            EXPECT_TRUE(says(dialog_text(fault))) << fault;
        EXPECT_TRUE(is_in_front(kGeneralPage));
        for (const wchar_t* bad : {L"3601", L"", L"72x"}) {
            type(kGeneralPage, IDC_RESOLUTION, bad);
            expect_check(kGeneralPage, IDS_BAD_RESOLUTION, IDC_RESOLUTION);
        }
        type(kGeneralPage, IDC_RESOLUTION, L"72");
        expect_check(kGeneralPage, 0);
    });
}

TEST_F(SheetSafety, ArrowsStepOverSizesThatCannotBe) {
    show([] {
        // The size before, the step, the size then.
        for (const auto& [from, delta, to] :
             {std::tuple{0, 1, 8}, {8, -1, 0}, {8, 1, 9}, {9, -1, 8}, {10, -5, 0}}) {
            NMUPDOWN set = {
                {control(kWaterMarkPage, IDC_MARK_SIZE_SPIN), IDC_MARK_SIZE_SPIN, UDN_DELTAPOS}, from, delta};
            SendMessageW(page(kWaterMarkPage), WM_NOTIFY, IDC_MARK_SIZE_SPIN, reinterpret_cast<LPARAM>(&set));
            EXPECT_EQ(set.iPos + set.iDelta, to) << from;
        }
    });
}

TEST_F(SheetSafety, PasswordsAreShownUntilThePageIsLeft) {
    setting().security()->MasterPassword = L"secret";
    show([] {
        const auto mark = [] {
            return SendMessageW(control(kSecuritiesPage, IDC_SEC_PASSWORD), EM_GETPASSWORDCHAR, 0, 0);
        };
        go_to(kSecuritiesPage);
        EXPECT_NE(mark(), 0);
        click(kSecuritiesPage, IDC_SEC_SHOW);
        EXPECT_EQ(mark(), 0);
        go_to(kColorPage);
        go_to(kSecuritiesPage);
        EXPECT_NE(mark(), 0);
        EXPECT_FALSE(checked(kSecuritiesPage, IDC_SEC_SHOW));
    });
}

}  // namespace
