// What nobody touches stays: a setting that is only looked at is not written, whatever it holds, and what
// does not go together in a file is no obstacle until a person changes it.
#include <gtest/gtest.h>

#include <algorithm>
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

// How many settings: the environment variable ZR_UNTOUCHED, for a longer look than a run of all tests has
// time for.
unsigned settings_to_try() {
    wchar_t number[10] = {};
    GetEnvironmentVariableW(L"ZR_UNTOUCHED", number, static_cast<DWORD>(std::size(number)));
    return number[0] ? static_cast<unsigned>(_wtoi(number)) : 40;
}

TEST_F(Untouched, SettingsThatAreLookedAtAreNotWritten) {
    const unsigned settings = settings_to_try();
    constexpr DWORD kOld = 0x01C00000;
    const std::wstring path = GetAppDataPath(true) + L"random.ps4";
    RandomSettings random(9);
    std::mt19937 engine(9);
    for (unsigned i = 0; i < settings && !HasFailure(); ++i) {
        SCOPED_TRACE(i);
        Setting made = random.next();
        made->PSName.insert(0, std::to_wstring(i));  // a name is asked for
        if (i % 3 == 0)
            made.pdfVersion()->ICCFileName = L"press.icc";
        if (i % 5 == 0)
            made.general()->PaperName = DMPAPER_A4;
        ASSERT_TRUE(made.Save(path));
        ASSERT_TRUE(LoadSettingFile(path));
        const qk::FileObj file(CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES,
                                           FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                           OPEN_EXISTING, 0, nullptr));
        const FILETIME old = {0, kOld};
        ASSERT_TRUE(SetFileTime(file.get(), nullptr, nullptr, &old));
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
        WIN32_FILE_ATTRIBUTE_DATA now = {};
        GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &now);
        EXPECT_EQ(now.ftLastWriteTime.dwHighDateTime, kOld);
    }
}

TEST_F(Untouched, WhatDoesNotGoTogetherStaysUntilItIsChanged) {
    using Fill = std::function<void(Setting&)>;
    struct {
        const char* label;
        Fill fill;
        PageIndex page;
        std::function<void()> change;
        UINT message;
        int focus;
    } const rows[] = {
        {"target above threshold", [](auto& s) { s.compression()->Mono->ResolutionTarget = 2000; },
         kCompressPage, [] { type(kCompressPage, IDC_CMP_MONO + CMP_THRESHOLD, L"1700"); },
         IDS_CMP_TARGET_ABOVE, IDC_CMP_MONO + CMP_TARGET},
        {"watermark without text",
         [](auto& s) {
             s.watermark()->Style = 1;
             s.watermark()->Text = L"";
         },
         kWaterMarkPage, [] { type(kWaterMarkPage, IDC_MARK_WORDS, L" "); }, IDS_MARK_NO_WORDS,
         IDC_MARK_WORDS},
        {"watermark without a picture", [](auto& s) { s.watermark()->Style = 2; }, kWaterMarkPage,
         [] { type(kWaterMarkPage, IDC_MARK_FILE, L"Q:\\x.png"); }, IDS_MARK_LOST_FILE, IDC_MARK_FILE},
        {"folder of another computer",
         [](auto& s) {
             s.general()->SaveStyle = 1;
             s.general()->OutputFolder = L"Q:\\there";
         },
         kGeneralPage, [] { type(kGeneralPage, IDC_OUTPUT_FOLDER, L"Q:\\"); }, IDS_NO_OUTPUT_FOLDER,
         IDC_OUTPUT_FOLDER},
        {"links for the press",
         [](auto& s) {
             s.general()->URLLink = true;
             s.pdfVersion()->Version = 6;
             s.pdfVersion()->ICCFileName = L"press.icc";
         },
         kGeneralPage, [] { choose_version(7); }, IDS_NO_LINKS, IDC_URL_LINK},
        {"profile of another computer",
         [](auto& s) {
             s.pdfVersion()->Version = 6;
             s.pdfVersion()->ICCFileName = L"gone.icc";
         },
         kPDFVersionPage, [] { choose_version(7); }, IDS_PV_NO_PROFILE, IDC_PV_PROFILE},
        {"boxes",
         [](auto& s) {
             s.pdfVersion()->Version = 6;
             s.pdfVersion()->ICCFileName = L"gone.icc";
             s.pdfVersion()->UseTrimBox = s.pdfVersion()->UseBleedBox = true;
             s.pdfVersion()->TrimBox.left = 3;
             s.pdfVersion()->BleedBox.left = 5;
         },
         kPDFVersionPage, [] { type(kPDFVersionPage, IDC_PV_TRIM_LEFT, L"4"); }, IDS_PV_BAD_BOXES,
         IDC_PV_BLEED_LEFT},
        {"same passwords",
         [](auto& s) { s.security()->MasterPassword = s.security()->UserPassword = L"x y"; }, kSecuritiesPage,
         [] { choose_version(12); }, IDS_SEC_SAME_PASSWORDS, IDC_SEC_OPEN_PASSWORD},
        {"character of another version", [](auto& s) { s.security()->UserPassword = L"x y"; },
         kSecuritiesPage, [] { type(kSecuritiesPage, IDC_SEC_OPEN_PASSWORD, L"x  y"); },
         IDS_SEC_BAD_CHARACTER, IDC_SEC_OPEN_PASSWORD},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        Setting filled;
        filled->PSName = qk::to_wide(row.label);
        row.fill(filled);
        setting() = filled;
        show([&] {
            go_to(row.page);
            expect_check(row.page, 0);
            press_ok();  // under a new name
        });
        EXPECT_FALSE(stayed_open());
        setting() = filled;
        setting()->PSName += L"(1)";
        show([&] {
            go_to(row.page);
            row.change();
            expect_check(row.page, row.message, row.focus);
        });
    }
}

}  // namespace
