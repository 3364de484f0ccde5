#include "print_settings/differences.h"
#include "print_settings/display.h"
#include "print_settings/field_tables.h"

TEST(SettingDifferences, AreSentencesForAPerson) {
    const std::wstring most(79, L'x');
    const std::pair<std::string, std::vector<std::wstring>> rows[] = {
        {"{}", {}},
        {R"({"General": {"Linearize": false, "OpenPDF": 3, "PaperName": 11, "PaperWidth": 100.5,
                         "PaperOrientation": 1}})",  // the width comes with the paper
         {L"General \u2013 Optimise for web viewing: yes \u2192 no",
          L"General \u2013 Open the PDF afterwards: yes \u2192 yes, in another way (3)",
          L"General \u2013 Paper: A4 \u2192 11", L"General \u2013 Orientation: Portrait \u2192 Landscape"}},
        {R"({"PDFVersion": {"Version": 6, "TrimBox": {"left": 3}}})",
         {L"PDF version \u2013 PDF version: PDF 1.7 \u2192 PDF/X-1a:2001",
          L"PDF version \u2013 Trim box \u2013 Left (mm): 0 \u2192 3"}},
        {R"({"Watermark": {"TextColor": 1193046, "PictureScale": 50, "FontSize": 12}})",
         {L"Watermark \u2013 Scale (%): automatic \u2192 50",
          L"Watermark \u2013 Colour: #FF0000 \u2192 #563412",
          L"Watermark \u2013 Size (pt): automatic \u2192 12"}},
        {R"({"OpenAction": {"StartPage": 4294967295}, "Font": {"Fonts": ["A", "B"]}})",
         {L"Fonts \u2013 Listed fonts: (empty) \u2192 \"A\", \"B\"",
          L"Opening \u2013 Start at a certain page: 1 \u2192 no"}},
        {R"({"Security": {"MasterPassword": "secret1", "UserPassword": "secret2"}})",
         {L"Security \u2013 Permissions password: changed", L"Security \u2013 Password to open: changed"}},
        {R"({"General": {"PaperName": 120}, "PSComment": [[-1, "a"]],
             "Addition": {"Str": {"PaperName": "Mine", "OutputCondition": "X"}, "Int": {"new": 5}}})",
         {L"Comment \u2013 -1: (empty) \u2192 \"a\"", L"General \u2013 Paper: A4 \u2192 Mine",
          L"Additional values \u2013 new: (empty) \u2192 5",
          L"Additional values \u2013 Output condition: (empty) \u2192 \"X\""}},
        {R"({"PSName": ")" + qk::to_utf8(most) +
             R"(\uD83D\uDDA8 and more", "Summary": {"Title": "%1\r\n%3"}})",
         {L"Name of the setting: (empty) \u2192 \"" + most + L"\u2026\"",
          L"Document \u2013 Title: (empty) \u2192 \"%1  %3\""}}};
    for (const auto& [change, sentences] : rows) {
        ps::PrintSettings newer;
        EXPECT_EQ(newer.LoadPS4(change, true), ps::kLoaded);
        EXPECT_EQ(ps::Changed2Str({}, newer, [](int32_t number) { return number == 9 ? L"A4" : L""; }),
                  sentences);
    }
}

namespace {

// Every name of a section in the English library, once each.
template <class Section>
void check_names() {
    std::set<UINT> fields;
    ps::for_each_field<Section>([&]<class Owner, class Value>(const ps::Field<Owner, Value>& field) {
        // Additional values have names of their own.
        const bool named = !std::is_same_v<Section, ps::Addition_impl>;
        EXPECT_TRUE(named ? field.name && fields.insert(field.name).second : field.name == 0)
            << field.key << " has no name or another's";
        // A short range from 0 on is one of codes, and each has a name.
        const auto& rule = field.rule;
        const bool coded = std::is_integral_v<Value> && rule.bounded && rule.low == 0 && rule.high < 50;
        EXPECT_TRUE(!coded || field.value_count == rule.high + 1) << field.key;
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
    EXPECT_EQ(ps::display::plain(L"\u5E45(&W)\uFF1A"), L"\u5E45");
    EXPECT_EQ(ps::Types2Str(ps::PrintSettings()).at(0), L"General \u2013 Open the PDF afterwards: yes");
}
