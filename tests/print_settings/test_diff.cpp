#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "common/resource_dll.h"
#include "print_settings/display.h"
#include "print_settings/field_tables.h"

namespace ps = Corvanta::Vantrix::PrintSettings;

TEST(SettingDifferences, AreSentencesForAPerson) {
    struct {
        std::function<void(ps::PrintSettings&)> change;
        std::vector<std::wstring> sentences;
    } const rows[] = {
        {[](auto&) {}, {}},
        {[](auto& s) { s.watermark()->Text = L"DRAFT"; },
         {L"Watermark \u2013 Text: \"CONFIDENTIAL\" \u2192 \"DRAFT\""}},
        {[](auto& s) { s.general()->Linearize = false; },
         {L"General \u2013 Optimise for viewing over a network: yes \u2192 no"}},
        {[](auto& s) { s.general()->PaperOrientation = 1; },
         {L"General \u2013 Orientation: portrait \u2192 landscape"}},
        {[](auto& s) { s.general()->PaperWidth = 100.5f; },
         {L"General \u2013 Paper width (mm): 210 \u2192 100.5"}},
        {[](auto& s) { s.general()->OpenPDF = 3; },
         {L"General \u2013 Open the PDF after creation: yes \u2192 3"}},
        {[](auto& s) { s.pdfVersion()->Version = 6; },
         {L"PDF version \u2013 Version: PDF 1.7 \u2192 PDF/X-1a:2001"}},
        {[](auto& s) { s.compression()->Mono->ResolutionTarget = 600; },
         {L"Compression \u2013 Monochrome images \u2013 Downsample to (dpi): 1200 \u2192 600"}},
        {[](auto& s) { s.pdfVersion()->TrimBox.left = 3; },
         {L"PDF version \u2013 Trim box \u2013 Left (mm): 0 \u2192 3"}},
        {[](auto& s) {
             s.watermark()->TextColor = 0x123456;
             s.watermark()->PictureScale = 50;
             s.watermark()->FontSize = 12;
         },
         {L"Watermark \u2013 Picture scale (%): automatic \u2192 50",
          L"Watermark \u2013 Text colour: #FF0000 \u2192 #563412",
          L"Watermark \u2013 Font size: automatic \u2192 12"}},
        {[](auto& s) { s.openAction()->StartPage = ps::OpenAction_impl::kNoStartPage; },
         {L"Opening the document \u2013 First page shown: 1 \u2192 -1"}},
        {[](auto& s) {
             s.font()->Fonts = {L"A", L"B"};
         },
         {L"Fonts \u2013 Listed fonts: \"\" \u2192 \"A\", \"B\""}},
        {[](auto& s) { s.addition()->Str[L"PaperName"] = L"A4"; },
         {L"Additional values \u2013 PaperName: (none) \u2192 \"A4\""}},
        {[](auto& s) { s.summary()->Title = L"%1\r\n%3"; },
         {L"Document information \u2013 Title: \"\" \u2192 \"%1  %3\""}},
        {[](auto& s) { s->PSName = std::wstring(79, L'x') + L"\U0001F5A8 and more"; },
         {L"Name: \"\" \u2192 \"" + std::wstring(79, L'x') + L"\u2026\""}},
    };
    const ps::PrintSettings older;
    for (const auto& row : rows) {
        ps::PrintSettings newer;
        row.change(newer);
        EXPECT_EQ(ps::Changed2Str(older, newer), row.sentences);
    }
}

TEST(SettingDifferences, NeverShowAPassword) {
    ps::PrintSettings older;
    ps::PrintSettings newer;
    older.security()->MasterPassword = L"secret1";
    newer.security()->MasterPassword = L"secret2";
    newer.security()->UserPassword = L"secret3";
    const std::vector<std::wstring> sentences = {L"Security \u2013 Permissions password: changed",
                                                 L"Security \u2013 Password to open the document: changed"};
    EXPECT_EQ(older.security().DiffStr(newer.security()), sentences);
    EXPECT_EQ(ps::Changed2Str(older, newer), sentences);
}

TEST(SettingDifferences, NamedValuesOfAMapAreToldOneByOne) {
    ps::PrintSettings older;
    ps::PrintSettings newer;
    older.addition()->Int = {{L"gone", 1}, {L"other", 2}, {L"same", 3}};
    newer.addition()->Int = {{L"other", 4}, {L"same", 3}, {L"new", 5}};
    older->PSComment = {{-1, L"a"}};
    const std::vector<std::wstring> sentences = {
        L"Comment \u2013 -1: \"a\" \u2192 (none)",
        L"Additional values \u2013 gone: 1 \u2192 (none)",
        L"Additional values \u2013 other: 2 \u2192 4",
        L"Additional values \u2013 new: (none) \u2192 5",
    };
    EXPECT_EQ(ps::Changed2Str(older, newer), sentences);
}

TEST(SettingDifferences, CodesAreListedByName) {
    ps::PrintSettings settings;
    settings.watermark()->Style = 2;
    const std::vector<std::wstring> lines = ps::Types2Str(settings);
    EXPECT_EQ(lines.size(), 26u);
    EXPECT_EQ(lines.front(), L"General \u2013 Open the PDF after creation: yes");
    EXPECT_NE(std::find(lines.begin(), lines.end(), L"Watermark \u2013 Kind: picture"), lines.end());
}

namespace {

template <class Section>
void collect_names(std::set<UINT>& ids) {
    ps::for_each_field<Section>([&]<class Owner, class Value>(const ps::Field<Owner, Value>& field) {
        if (field.name != 0)
            ids.insert(field.name);
        for (UINT i = 0; i < field.value_count; ++i)
            ids.insert(field.first_value + i);
        if constexpr (ps::SectionHandle<Value>)
            collect_names<typename Value::impl_type>(ids);
        else if constexpr (std::is_same_v<Value, ps::Box>)
            collect_names<ps::Box>(ids);
    });
}

}  // namespace

TEST(SettingDifferences, EveryNameIsInTheLanguageLibrary) {
    std::set<UINT> ids;
    collect_names<ps::PrintSettings_impl>(ids);
    EXPECT_GT(ids.size(), 120u);
    for (const UINT id : ids)
        EXPECT_NE(qk::load_string(id).front(), L'(') << id;
}
