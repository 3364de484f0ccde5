// Default values that come back on request, and profiles that are looked up where they lie.

#include "UI_dll/PDFSettings/pages/page_pdf_version.h"
#include "support/random_settings.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;

struct RestoreDefaults : EditSheet {
    static HWND question() {
        const HWND popup = GetLastActivePopup(sheet());
        return popup != sheet() && GetDlgItem(popup, IDC_RESTORE_ALL) ? popup : nullptr;
    }
    static void restore(WPARAM answer) {
        const Later later([] { return question() != nullptr; },
                          [=] { SendMessageW(question(), WM_COMMAND, answer, 0); });
        SendMessageW(GetDlgItem(sheet(), IDC_RESTORE), BM_CLICK, 0, 0);
    }
    ProfileFolder profiles;
};

TEST_F(RestoreDefaults, PagesThatAreMeantShowThemAndTheRestStays) {
    RandomSettings random(7);
    const Setting fresh;
    for (size_t meant = 0; meant <= kPageCount + 1; ++meant) {  // each page, all of them, none
        SCOPED_TRACE(meant);
        setting() = random.next();
        setting()->PSName = L"Restored " + std::to_wstring(meant);
        auto& texts = *setting().summary();
        texts.Title = texts.Subject = texts.Author = texts.Keywords = texts.Creator = L"text";
        setting().security()->UserPassword = L"a", setting().security()->MasterPassword = L"b";
        setting().general()->OutputFolder = setting().watermark()->PictureFileName = L"other";
        setting().addition()->Str = {{L"FileName", L"{date}"}, {L"OutputCondition", L"Ours"}};
        Setting wanted = setting();
        wanted.security()->AllowAccessFromScreenReader |= wanted.security()->AllowCopyContent;
        const auto take = [&](PageIndex page, auto& to, const auto& from, const wchar_t* key = L"") {
            if (meant == page || meant == kPageCount)
                to = from, wanted.addition()->Str.erase(key);
        };
        take(kGeneralPage, wanted->general, fresh->general, L"FileName");
        take(kPDFVersionPage, wanted->pdfVersion, fresh->pdfVersion, L"OutputCondition");
        take(kColorPage, wanted->color, fresh->color);
        take(kCompressPage, wanted->compression, fresh->compression);
        take(kFontPage, wanted->font, fresh->font);
        take(kSecuritiesPage, wanted->security, fresh->security);
        take(kWaterMarkPage, wanted->watermark, fresh->watermark);
        take(kOpenActionPage, wanted->openAction, fresh->openAction);
        take(kInfoPage, wanted->summary, fresh->summary);
        wanted.security()->Level = 1;  // as always
        show([&] {
            EXPECT_TRUE(go_to(static_cast<PageIndex>(meant % kPageCount)));
            restore(meant < kPageCount ? IDC_RESTORE_PAGE : meant == kPageCount ? IDC_RESTORE_ALL : IDCANCEL);
            press_ok();
        });
        EXPECT_FALSE(stayed_open());
        setting().addition()->Str.erase(L"PaperName");  // that of the list
        EXPECT_EQ(setting().Serialise(), wanted.Serialise());
    }
}

TEST_F(RestoreDefaults, ProfileIsTakenFromWhereItsFileLies) {
    const FileDialog dialog;
    const auto file = [&](const char* space) { return ProfileFolder::profile(space, "prtr", "Ours"); };
    const std::wstring listed = profiles.add(L"listed.icc", "CMYK", "prtr", "Listed"),
                       own = profiles.files.write(L"own.icc", file("CMYK")),
                       rgb = profiles.files.write(L"rgb.icc", file("RGB "));
    const std::pair<std::wstring, std::wstring> rows[] = {{own, own}, {rgb, own}, {listed, L"listed.icc"}};
    show([&] {
        go_to(kPDFVersionPage);
        choose_version(6);
        for (const auto& [looked_up, named] : rows) {
            FileDialog::answer = looked_up;
            click(kPDFVersionPage, IDC_PV_BROWSE);
            EXPECT_EQ(read_PDFVersion(page(kColorPage)).ICCFileName, named);
        }
    });
    EXPECT_EQ(Outbox::boxes.size(), 1u);  // one does not fit the version
}

}  // namespace
