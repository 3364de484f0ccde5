#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "common/qk/resource_dll.h"
#include "print_settings/differences.h"
#include "print_settings/display.h"
#include "print_settings/field_tables.h"

namespace ps = Corvanta::Vantrix::PrintSettings;

TEST(SettingDifferences, AreSentencesForAPerson) {
    using Settings = ps::PrintSettings&;
    const struct {
        std::function<void(ps::PrintSettings&)> change;
        std::vector<std::wstring> sentences;
    } rows[] = {
        {[](Settings) {}, {}},
        {[](Settings s) { s.watermark()->Text = L"DRAFT"; },
         {L"Watermark \u2013 Text: \"CONFIDENTIAL\" \u2192 \"DRAFT\""}},
        {[](Settings s) {
             s.general()->Linearize = false;
             s.general()->OpenPDF = 3;
             s.general()->PaperName = 11;
             s.general()->PaperWidth = 100.5f;  // comes with the paper
             s.general()->PaperOrientation = 1;
         },
         {L"General \u2013 Optimise for web viewing: yes \u2192 no",
          L"General \u2013 Open the PDF afterwards: yes \u2192 yes, in another way (3)",
          L"General \u2013 Paper: A4 \u2192 11", L"General \u2013 Orientation: Portrait \u2192 Landscape"}},
        {[](Settings s) {
             s.general()->PaperType = 1;
             s.general()->PaperWidth = 100.5f;
         },
         {L"General \u2013 Kind of paper: Standard paper \u2192 Custom size",
          L"General \u2013 Width (mm): 210 \u2192 100.5"}},
        {[](Settings s) {
             s.addition()->Str = {{L"PaperName", L"Mine"}};
         },
         {L"General \u2013 Paper: A4 \u2192 Mine"}},
        {[](Settings s) { s.compression()->Mono->ResolutionTarget = 600; },
         {L"Compression \u2013 Monochrome images \u2013 Reduced to (dpi): 1200 \u2192 600"}},
        {[](Settings s) {
             s.pdfVersion()->Version = 6;
             s.pdfVersion()->TrimBox.left = 3;
         },
         {L"PDF version \u2013 PDF version: PDF 1.7 \u2192 PDF/X-1a:2001",
          L"PDF version \u2013 Trim box \u2013 Left (mm): 0 \u2192 3"}},
        {[](Settings s) {
             s.watermark()->TextColor = 0x123456;
             s.watermark()->PictureScale = 50;
             s.watermark()->FontSize = 12;
         },
         {L"Watermark \u2013 Scale (%): automatic \u2192 50",
          L"Watermark \u2013 Colour: #FF0000 \u2192 #563412",
          L"Watermark \u2013 Size (pt): automatic \u2192 12"}},
        {[](Settings s) {
             s.openAction()->StartPage = ps::OpenAction_impl::kNoStartPage;
             s.font()->Fonts = {L"A", L"B"};
         },
         {L"Fonts \u2013 Listed fonts: (empty) \u2192 \"A\", \"B\"",
          L"Opening \u2013 Start at a certain page: 1 \u2192 no"}},
        {[](Settings s) {
             s.security()->MasterPassword = L"secret1";
             s.security()->UserPassword = L"secret2";
         },
         {L"Security \u2013 Permissions password: changed", L"Security \u2013 Password to open: changed"}},
        {[](Settings s) {
             s.general()->PaperName = 120;
             s.addition()->Str = {{L"PaperName", L"Mine"}, {L"OutputCondition", L"X"}};
         },
         {L"General \u2013 Paper: A4 \u2192 Mine",
          L"Additional values \u2013 Output condition: (empty) \u2192 \"X\""}},
        {[](Settings s) {
             s->PSName = std::wstring(79, L'x') + L"\U0001F5A8 and more";
             s.summary()->Title = L"%1\r\n%3";
         },
         {L"Name of the setting: (empty) \u2192 \"" + std::wstring(79, L'x') + L"\u2026\"",
          L"Document \u2013 Title: (empty) \u2192 \"%1  %3\""}},
    };
    const ps::PrintSettings older;
    for (const auto& row : rows) {
        ps::PrintSettings newer;
        row.change(newer);
        EXPECT_EQ(ps::Changed2Str(older, newer, [](int32_t number) { return number == 9 ? L"A4" : L""; }),
                  row.sentences);
    }
}

TEST(SettingDifferences, NamedValuesOfAMapAreToldOneByOne) {
    ps::PrintSettings older, newer;
    older.addition()->Int = {{L"gone", 1}, {L"other", 2}, {L"same", 3}};
    newer.addition()->Int = {{L"other", 4}, {L"same", 3}, {L"new", 5}};
    older->PSComment = {{-1, L"a"}};
    EXPECT_EQ(ps::Changed2Str(older, newer),
              (std::vector<std::wstring>{L"Comment \u2013 -1: \"a\" \u2192 (empty)",
                                         L"Additional values \u2013 gone: 1 \u2192 (empty)",
                                         L"Additional values \u2013 other: 2 \u2192 4",
                                         L"Additional values \u2013 new: (empty) \u2192 5"}));
}

TEST(SettingDifferences, CodesAreListedByName) {
    ps::PrintSettings settings;
    settings.watermark()->Style = 2;
    const std::vector<std::wstring> lines = ps::Types2Str(settings);
    EXPECT_EQ(lines.front(), L"General \u2013 Open the PDF afterwards: yes");
    EXPECT_EQ(std::ranges::count(lines, L"Watermark \u2013 Kind: Picture"), 1);
}

namespace {

// Every name of a section in the English library, once each.
template <class Section>
void check_names() {
    std::set<UINT> fields;
    ps::for_each_field<Section>([&]<class Owner, class Value>(const ps::Field<Owner, Value>& field) {
        EXPECT_TRUE(field.name == 0 || fields.insert(field.name).second)
            << field.key << " has another's name";
        // A short range from 0 on is one of codes, and each has a name.
        if (std::is_integral_v<Value> && field.rule.bounded && field.rule.low == 0 && field.rule.high < 50) {
            EXPECT_EQ(field.value_count, field.rule.high + 1) << field.key;
        }
        std::set<std::wstring> texts;
        for (UINT i = 0; i < field.value_count; ++i)
            EXPECT_TRUE(texts.insert(qk::load_string(field.first_value + i)).second) << field.key;
        if (field.name != 0)
            texts.insert(qk::load_string(field.name));
        for (const std::wstring& text : texts)
            EXPECT_TRUE(!text.empty() && !text.starts_with(L"ERROR!")) << field.key;
        if constexpr (ps::SectionHandle<Value>)
            check_names<typename Value::impl_type>();
        else if constexpr (std::is_same_v<Value, ps::Box>)
            check_names<ps::Box>();
    });
}

}  // namespace

TEST(SettingDifferences, EveryFieldAndCodeHasANameOfItsOwn) {
    check_names<ps::PrintSettings_impl>();
}

TEST(SettingDifferences, NamesAreThePagesTextsWithoutTheirMarks) {
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"&Width: (mm)", L"Width (mm)"},
        {L"\u5E45(&W): (mm)", L"\u5E45 (mm)"},
        {L"\u5E45(&W)\uFF1A", L"\u5E45"},
        {L"Co&lour...", L"Colour"},
        {L"Hidden: Men&u", L"Hidden: Menu"},
        {L"&ASCII (larger)", L"ASCII (larger)"},
        {L"PDF 1.3", L"PDF 1.3"},
        {L"", L""},
    };
    for (const auto& [text, name] : rows)
        EXPECT_EQ(ps::display::plain(text), name);
}
