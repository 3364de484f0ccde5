// What nobody touches stays: a setting that is only looked at is not written, whatever it holds, and what
// does not go together in a file is no obstacle until a person changes it.

#include <numeric>
#include <random>

#include "UI_dll/PDFSettings/setting_list.h"
#include "common/rwPDFSet_functions.h"
#include "support/profile_folder.h"
#include "support/random_settings.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;

struct Untouched : EditSheet {
    Untouched() { profiles.add(L"press.icc", "CMYK", "prtr", "Our press"); }

    ProfileFolder profiles;
};

TEST_F(Untouched, SettingsThatAreLookedAtAreNotWritten) {
    // For a longer look than a run of all tests has time for.
    const char* const wanted = std::getenv("ZR_UNTOUCHED");
    const int settings = wanted ? std::atoi(wanted) : 40;
    const std::wstring path = GetAppDataPath(true) + L"random.ps4";
    RandomSettings random(9);
    std::mt19937 engine(9);
    for (int i = 0; i < settings && !HasFailure(); ++i) {
        SCOPED_TRACE(i);
        Setting made = random.next();
        made->PSName.insert(0, std::to_wstring(i));  // a name is asked for
        if (i % 3 == 0)
            made.pdfVersion()->ICCFileName = L"press.icc";
        if (i % 5 == 0)
            made.general()->PaperName = DMPAPER_A4;
        ASSERT_TRUE(made.Save(path));
        ASSERT_TRUE(LoadSettingFile(path));
        make_old(path);
        std::array<size_t, kPageCount> order;
        std::iota(order.begin(), order.end(), size_t{0});
        std::shuffle(order.begin(), order.end(), engine);
        show(
            [&] {
                for (const size_t page : order)
                    EXPECT_TRUE(go_to(static_cast<PageIndex>(page))) << page;
                press_ok();
            },
            path);
        EXPECT_FALSE(stayed_open());
        for (const Outbox::Box& box : Outbox::boxes)
            ADD_FAILURE() << qk::to_utf8(box.text);
        EXPECT_TRUE(is_old(path));
    }
}

// A file with what `fill` puts into it is left alone, until `change` makes the page say so.
TEST_F(Untouched, WhatDoesNotGoTogetherStaysUntilItIsChanged) {
    using S = Setting;
    static const auto press = [](S& s, const wchar_t* profile) {
        s.pdfVersion()->Version = 6;
        s.pdfVersion()->ICCFileName = profile;
    };
    const struct {
        const wchar_t* label;
        PageIndex page;
        UINT message;
        int focus;
        void (*fill)(S& s);
        void (*change)();
    } rows[] = {
        {L"target above threshold", kCompressPage, IDS_CMP_TARGET_ABOVE, IDC_CMP_MONO + CMP_TARGET,
         [](S& s) { s.compression()->Mono->ResolutionTarget = 2000; },
         [] { type(kCompressPage, IDC_CMP_MONO + CMP_THRESHOLD, L"1700"); }},
        {L"watermark without text", kWaterMarkPage, IDS_MARK_NO_WORDS, IDC_MARK_WORDS,
         [](S& s) { s.watermark()->Style = 1, s.watermark()->Text = L""; },
         [] { type(kWaterMarkPage, IDC_MARK_WORDS, L" "); }},
        {L"watermark without a picture", kWaterMarkPage, IDS_MARK_LOST_FILE, IDC_MARK_FILE,
         [](S& s) { s.watermark()->Style = 2; }, [] { type(kWaterMarkPage, IDC_MARK_FILE, L"Q:\\x.png"); }},
        {L"folder of another computer", kGeneralPage, IDS_NO_OUTPUT_FOLDER, IDC_OUTPUT_FOLDER,
         [](S& s) { s.general()->SaveStyle = 1, s.general()->OutputFolder = L"Q:\\there"; },
         [] { type(kGeneralPage, IDC_OUTPUT_FOLDER, L"Q:\\"); }},
        {L"pattern of another version", kGeneralPage, IDS_BAD_FILE_NAME, IDC_FILE_NAME,
         [](S& s) { s.addition()->Str[L"FileName"] = L"{pages} {title}"; },
         [] { type(kGeneralPage, IDC_FILE_NAME, L"{title} {pages}"); }},
        {L"links for the press", kGeneralPage, IDS_NO_LINKS, IDC_URL_LINK,
         [](S& s) { s.general()->URLLink = true, press(s, L"press.icc"); }, [] { choose_version(7); }},
        {L"profile of another computer", kPDFVersionPage, IDS_PV_NO_PROFILE, IDC_PV_PROFILE,
         [](S& s) { press(s, L"gone.icc"); }, [] { choose_version(7); }},
        {L"boxes", kPDFVersionPage, IDS_PV_BAD_BOXES, IDC_PV_BLEED_LEFT,
         [](S& s) {
             press(s, L"gone.icc");
             s.pdfVersion()->UseTrimBox = s.pdfVersion()->UseBleedBox = true;
             s.pdfVersion()->TrimBox.left = 3, s.pdfVersion()->BleedBox.left = 5;
         },
         [] { type(kPDFVersionPage, IDC_PV_TRIM_LEFT, L"4"); }},
        {L"same passwords", kSecuritiesPage, IDS_SEC_SAME_PASSWORDS, IDC_SEC_OPEN_PASSWORD,
         [](S& s) { s.security()->MasterPassword = s.security()->UserPassword = L"x y"; },
         [] { choose_version(12); }},
        {L"character of another version", kSecuritiesPage, IDS_SEC_BAD_CHARACTER, IDC_SEC_OPEN_PASSWORD,
         [](S& s) { s.security()->UserPassword = L"x y"; },
         [] { type(kSecuritiesPage, IDC_SEC_OPEN_PASSWORD, L"x  y"); }}};
    for (const auto& row : rows)
        for (const bool changes : {false, true}) {
            SCOPED_TRACE(qk::to_utf8(row.label) + (changes ? " changed" : ""));
            setting() = {};
            setting()->PSName = row.label + std::wstring(changes ? L"(1)" : L"");
            row.fill(setting());
            show([&] {
                go_to(row.page);
                if (changes)
                    row.change();
                expect_check(row.page, changes ? row.message : 0, row.focus);
                press_ok();  // under a new name
            });
            EXPECT_EQ(stayed_open(), changes);
        }
}

}  // namespace
