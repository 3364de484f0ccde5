// What nobody touches stays: a setting that is only looked at is not written, whatever it holds, and what
// does not go together in a file is no obstacle until a person changes it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <numeric>
#include <random>

#include "UI_dll/PDFSettings/setting_list.h"
#include "common/rwPDFSet_functions.h"
#include "resources/ids.h"
#include "support/profile_folder.h"
#include "support/random_settings.h"
#include "support/sheet_driver.h"

namespace {

using namespace pdf_settings;

class Untouched : public EditSheet {
protected:
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

TEST_F(Untouched, WhatDoesNotGoTogetherStaysUntilItIsChanged) {
    // A file with what `fill` puts into it is left alone, until `change` makes the page say so.
    const auto expect = [&](const char* label, PageIndex page, const std::function<void(Setting&)>& fill,
                            const std::function<void()>& change, UINT message, int focus) {
        SCOPED_TRACE(label);
        Setting filled;
        filled->PSName = qk::to_wide(label);
        fill(filled);
        setting() = filled;
        show([&] {
            go_to(page);
            expect_check(page, 0);
            press_ok();  // under a new name
        });
        EXPECT_FALSE(stayed_open());
        setting() = filled;
        setting()->PSName += L"(1)";
        show([&] {
            go_to(page);
            change();
            expect_check(page, message, focus);
        });
    };
    const auto press = [](auto& s, const wchar_t* profile) {
        s.pdfVersion()->Version = 6;
        s.pdfVersion()->ICCFileName = profile;
    };
    expect(
        "target above threshold", kCompressPage,
        [](auto& s) { s.compression()->Mono->ResolutionTarget = 2000; },
        [] { type(kCompressPage, IDC_CMP_MONO + CMP_THRESHOLD, L"1700"); }, IDS_CMP_TARGET_ABOVE,
        IDC_CMP_MONO + CMP_TARGET);
    expect(
        "watermark without text", kWaterMarkPage,
        [](auto& s) { s.watermark()->Style = 1, s.watermark()->Text = L""; },
        [] { type(kWaterMarkPage, IDC_MARK_WORDS, L" "); }, IDS_MARK_NO_WORDS, IDC_MARK_WORDS);
    expect(
        "watermark without a picture", kWaterMarkPage, [](auto& s) { s.watermark()->Style = 2; },
        [] { type(kWaterMarkPage, IDC_MARK_FILE, L"Q:\\x.png"); }, IDS_MARK_LOST_FILE, IDC_MARK_FILE);
    expect(
        "folder of another computer", kGeneralPage,
        [](auto& s) { s.general()->SaveStyle = 1, s.general()->OutputFolder = L"Q:\\there"; },
        [] { type(kGeneralPage, IDC_OUTPUT_FOLDER, L"Q:\\"); }, IDS_NO_OUTPUT_FOLDER, IDC_OUTPUT_FOLDER);
    expect(
        "pattern of another version", kGeneralPage,
        [](auto& s) { s.addition()->Str[L"FileName"] = L"{pages} {title}"; },
        [] { type(kGeneralPage, IDC_FILE_NAME, L"{title} {pages}"); }, IDS_BAD_FILE_NAME, IDC_FILE_NAME);
    expect(
        "links for the press", kGeneralPage,
        [&](auto& s) { s.general()->URLLink = true, press(s, L"press.icc"); }, [] { choose_version(7); },
        IDS_NO_LINKS, IDC_URL_LINK);
    expect(
        "profile of another computer", kPDFVersionPage, [&](auto& s) { press(s, L"gone.icc"); },
        [] { choose_version(7); }, IDS_PV_NO_PROFILE, IDC_PV_PROFILE);
    expect(
        "boxes", kPDFVersionPage,
        [&](auto& s) {
            press(s, L"gone.icc");
            s.pdfVersion()->UseTrimBox = s.pdfVersion()->UseBleedBox = true;
            s.pdfVersion()->TrimBox.left = 3, s.pdfVersion()->BleedBox.left = 5;
        },
        [] { type(kPDFVersionPage, IDC_PV_TRIM_LEFT, L"4"); }, IDS_PV_BAD_BOXES, IDC_PV_BLEED_LEFT);
    expect(
        "same passwords", kSecuritiesPage,
        [](auto& s) { s.security()->MasterPassword = s.security()->UserPassword = L"x y"; },
        [] { choose_version(12); }, IDS_SEC_SAME_PASSWORDS, IDC_SEC_OPEN_PASSWORD);
    expect(
        "character of another version", kSecuritiesPage, [](auto& s) { s.security()->UserPassword = L"x y"; },
        [] { type(kSecuritiesPage, IDC_SEC_OPEN_PASSWORD, L"x  y"); }, IDS_SEC_BAD_CHARACTER,
        IDC_SEC_OPEN_PASSWORD);
}

}  // namespace
