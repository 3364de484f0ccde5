#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "print_settings/display.h"
#include "support/random_settings.h"
#include "support/trace_capture.h"

namespace ps = Corvanta::Vantrix::PrintSettings;

TEST(PrintSettingsModel, CopiesShareNothing) {
    RandomSettings random(1);
    const ps::PrintSettings original = random.next();
    ps::PrintSettings copy(original);
    ps::PrintSettings assigned;
    assigned = original;
    EXPECT_EQ(copy, original);
    EXPECT_EQ(assigned, original);

    for (ps::PrintSettings* other : {&copy, &assigned}) {
        other->compression()->Mono->ResolutionTarget += 1;
        other->notification()->V6->PageEnd += L"x";
        EXPECT_FALSE(*other == original);
    }
    EXPECT_NE(copy.compression()->Mono->ResolutionTarget, original.compression()->Mono->ResolutionTarget);
    const ps::PrintSettings& same = copy;
    copy = same;
    EXPECT_EQ(copy.notification()->V6->PageEnd, original.notification()->V6->PageEnd + L"x");
}

TEST(PrintSettingsModel, NotificationNumberIsItsTwoHalves) {
    ps::Notification_V6 v6;
    for (const uint64_t id :
         {uint64_t{0}, uint64_t{1}, uint64_t{0xFFFFFFFF}, uint64_t{1} << 32, ~uint64_t{0}}) {
        v6->set_ID(id);
        EXPECT_EQ(v6->ID(), id);
    }
    v6->set_ID(0x80000000FFFFFFFEu);
    EXPECT_EQ(v6->ID_High, INT32_MIN);
    EXPECT_EQ(v6->ID_Low, -2);
}

TEST(PrintSettingsModel, VersionCodesNameTheirPdfVersion) {
    struct {
        uint32_t code;
        const wchar_t* text;
    } const rows[] = {
        {0, L"ZRPS::PDFVer::_13"},  {1, L"ZRPS::PDFVer::_14"},      {2, L"ZRPS::PDFVer::_15"},
        {3, L"ZRPS::PDFVer::_16"},  {4, L"ZRPS::PDFVer::_17"},      {5, L"ZRPS::PDFVer::_14"},
        {12, L"ZRPS::PDFVer::_20"}, {13, L"ZRPS::PDFVer::Unknown"}, {0xFFFFFFFF, L"ZRPS::PDFVer::Unknown"},
    };
    for (const auto& row : rows)
        EXPECT_STREQ(ps::Types2Str(ps::pdf_ver(row.code)), row.text) << row.code;
}

TEST(PrintSettingsModel, ComparingTracesEveryPartThatDiffers) {
    ps::PrintSettings a;
    ps::PrintSettings b;
    b->PSVersion = 1;
    b->PSComment[3] = L"text";
    b.compression()->Gray->JpegQuality = 1;
    b.addition()->Bool[L"flag"] = true;

    EXPECT_FALSE(a == b);  // the trace is off
    const TraceCapture capture;
    EXPECT_FALSE(a == b);
    const std::vector<std::wstring> traced = TraceCapture::records();

    const wchar_t* const parts[] = {L"PSVersion", L"PSComment", L"Compression", L"Addition"};
    ASSERT_EQ(traced.size(), std::size(parts));
    for (size_t i = 0; i < std::size(parts); ++i)
        EXPECT_NE(traced[i].find(parts[i]), std::wstring::npos) << i;
}

namespace {

// Changes each value of a setting in turn, as the field tables list them, and hands the result over.
template <class Section, class Visit>
void change_each(Section& section, Visit visit, const std::string& path = {});

template <class Value, class Visit>
void change(Value& value, Visit visit, const std::string& path) {
    if constexpr (ps::SectionHandle<Value>) {
        change_each(*value, visit, path);
    } else if constexpr (std::is_same_v<Value, ps::Box>) {
        change_each(value, visit, path);
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

template <class Section, class Visit>
void change_each(Section& section, Visit visit, const std::string& path) {
    ps::for_each_field<Section>(
        [&](const auto& field) { change(section.*field.member, visit, path + "/" + field.key); });
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
