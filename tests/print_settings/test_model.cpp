#include "print_settings/display.h"
#include "support/random_settings.h"

TEST(PrintSettingsModel, CopiesShareNothing) {
    RandomSettings random(1);
    const ps::PrintSettings original = random.next();
    ps::PrintSettings copy(original), assigned;
    assigned = original;
    for (ps::PrintSettings* other : {&copy, &assigned}) {
        EXPECT_EQ(*other, original);
        other->notification()->V6->PageEnd += L"x";
        EXPECT_FALSE(*other == original);
    }
}

TEST(PrintSettingsModel, NotificationNumberIsItsTwoHalves) {
    ps::Notification_V6 v6;
    v6->set_ID(0x80000000FFFFFFFE);
    EXPECT_TRUE(v6->ID() == 0x80000000FFFFFFFE && v6->ID_High == INT32_MIN && v6->ID_Low == -2);
}

TEST(PrintSettingsModel, VersionCodesNameTheirPdfVersion) {
    const wchar_t* const names[] = {L"13", L"14", L"15", L"16", L"17", L"14", L"13",
                                    L"14", L"13", L"14", L"16", L"17", L"20"};
    for (uint32_t code = 0; code < std::size(names); ++code)
        EXPECT_EQ(ps::Types2Str(ps::pdf_ver(code)), std::wstring(L"ZRPS::PDFVer::_") + names[code]) << code;
    for (const uint32_t code : {13u, UINT32_MAX})
        EXPECT_STREQ(ps::Types2Str(ps::pdf_ver(code)), L"ZRPS::PDFVer::Unknown");
}

namespace {

// Changes each value of a setting in turn, as the field tables list them, and hands the result over.
template <class Value, class Visit>
void change_each(Value& value, Visit visit, const std::string& path = {}) {
    if constexpr (ps::SectionHandle<Value>) {
        change_each(*value, visit, path);
    } else if constexpr (std::is_class_v<Value> && !requires { value.size(); }) {
        ps::for_each_field<Value>(
            [&](const auto& field) { change_each(value.*field.member, visit, path + "/" + field.key); });
    } else {
        const Value before = value;
        if constexpr (std::is_same_v<Value, bool>)
            value = !value;
        else if constexpr (std::is_arithmetic_v<Value>)
            value = static_cast<Value>(value == 100 ? 99 : value + 1);
        else if constexpr (std::is_same_v<Value, std::wstring>)
            value += L"x";
        else if constexpr (requires { typename Value::mapped_type; })
            value[{}] = {};
        else
            value.emplace_back();
        visit(path);
        value = before;
    }
}

}  // namespace

TEST(PrintSettingsModel, EveryValueIsComparedWrittenAndDescribed) {
    const ps::PrintSettings defaults;
    ps::PrintSettings changed;
    size_t count = 0;
    const std::string before = defaults.Serialise();
    change_each(*changed, [&](const std::string& path) {
        ++count;
        EXPECT_FALSE(changed == defaults) << path;
        EXPECT_EQ(ps::Changed2Str(defaults, changed).size(), 1u) << path;
        EXPECT_NE(changed.Serialise(), before) << path;
    });
    EXPECT_EQ(count, 118u);
    EXPECT_EQ(changed, defaults);
}
