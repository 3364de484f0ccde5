// What nobody touches stays: a setting that is only looked at is not written, whatever it holds, and what
// does not go together in a file is no obstacle until a person changes it.

#include <numeric>

#include "UI_dll/PDFSettings/setting_list.h"
#include "common/rwPDFSet_functions.h"
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
        const auto look = [&] {
            for (const size_t page : order)
                EXPECT_TRUE(go_to(static_cast<PageIndex>(page))) << page;
            press_ok();
        };
        show(look, path);
        EXPECT_FALSE(stayed_open());
        for (const Outbox::Box& box : Outbox::boxes)
            ADD_FAILURE() << qk::to_utf8(box.text);
        EXPECT_TRUE(is_old(path));
    }
}

// A file with what does not go together is left alone, until a change makes the page say so.
TEST_F(Untouched, WhatDoesNotGoTogetherStaysUntilItIsChanged) {
    const struct {
        const wchar_t* label;
        PageIndex page;
        UINT message;
        int focus;
        const char* holds;
        const wchar_t* typed;  // into `control`; where there is none the PDF version is changed to it
        int control = 0;
    } rows[] = {
        {L"target above threshold", kCompressPage, IDS_CMP_TARGET_ABOVE, IDC_CMP_MONO + CMP_TARGET,
         R"({"Compression": {"Mono": {"ResolutionTarget": 2000}}})", L"1700", IDC_CMP_MONO + CMP_THRESHOLD},
        {L"watermark without text", kWaterMarkPage, IDS_MARK_NO_WORDS, IDC_MARK_WORDS,
         R"({"Watermark": {"Style": 1, "Text": ""}})", L" ", IDC_MARK_WORDS},
        {L"watermark without a picture", kWaterMarkPage, IDS_MARK_LOST_FILE, IDC_MARK_FILE,
         R"({"Watermark": {"Style": 2}})", L"Q:\\x.png", IDC_MARK_FILE},
        {L"folder of another computer", kGeneralPage, IDS_NO_OUTPUT_FOLDER, IDC_OUTPUT_FOLDER,
         R"({"General": {"SaveStyle": 1, "OutputFolder": "Q:\\there"}})", L"Q:\\", IDC_OUTPUT_FOLDER},
        {L"pattern of another version", kGeneralPage, IDS_BAD_FILE_NAME, IDC_FILE_NAME,
         R"({"Addition": {"Str": {"FileName": "{pages} {title}"}}})", L"{title} {pages}", IDC_FILE_NAME},
        {L"links for the press", kGeneralPage, IDS_NO_LINKS, IDC_URL_LINK,
         R"({"General": {"URLLink": true}, "PDFVersion": {"Version": 6, "ICCFileName": "press.icc"}})", L"7"},
        {L"profile of another computer", kPDFVersionPage, IDS_PV_NO_PROFILE, IDC_PV_PROFILE,
         R"({"PDFVersion": {"Version": 6, "ICCFileName": "gone.icc"}})", L"7"},
        {L"boxes", kPDFVersionPage, IDS_PV_BAD_BOXES, IDC_PV_BLEED_LEFT,
         R"({"PDFVersion": {"Version": 6, "ICCFileName": "gone.icc", "UseTrimBox": true, "UseBleedBox": true,
             "TrimBox": {"left": 3}, "BleedBox": {"left": 5}}})",
         L"4", IDC_PV_TRIM_LEFT},
        {L"same passwords", kSecuritiesPage, IDS_SEC_SAME_PASSWORDS, IDC_SEC_OPEN_PASSWORD,
         R"({"Security": {"MasterPassword": "x y", "UserPassword": "x y"}})", L"12"},
        {L"character of another version", kSecuritiesPage, IDS_SEC_BAD_CHARACTER, IDC_SEC_OPEN_PASSWORD,
         R"({"Security": {"UserPassword": "x y"}})", L"x  y", IDC_SEC_OPEN_PASSWORD}};
    for (const auto& row : rows)
        for (const bool changes : {false, true}) {
            SCOPED_TRACE(qk::to_utf8(row.label) + (changes ? " changed" : ""));
            setting() = {};
            ASSERT_EQ(setting().LoadPS4(row.holds, true), ps::kLoaded);
            setting()->PSName = row.label + std::wstring(changes ? L"(1)" : L"");
            show([&] {
                go_to(row.page);
                if (changes && row.control)
                    type(row.page, row.control, row.typed);
                else if (changes)
                    choose_version(std::stoul(row.typed));
                expect_check(row.page, changes ? row.message : 0, row.focus);
                press_ok();  // under a new name
            });
            EXPECT_EQ(stayed_open(), changes);
        }
}

}  // namespace
