#include "print_settings/display.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "common/qk/resource_dll.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "print_settings/differences.h"

namespace Corvanta::Vantrix::PrintSettings {

namespace display {
namespace {

constexpr size_t kMostShown = 80;  // units of one text in a sentence

// Puts the values in the place of %1, %2, ...: a language may order them as it needs.
std::wstring fill_in(std::wstring_view pattern, std::initializer_list<std::wstring_view> values) {
    std::wstring text;
    for (size_t i = 0; i < pattern.size(); ++i) {
        const size_t number = pattern[i] == L'%' && i + 1 < pattern.size()
                                  ? static_cast<size_t>(pattern[i + 1] - L'1')
                                  : values.size();
        if (number < values.size()) {
            text += values.begin()[number];
            ++i;
        } else {
            text += pattern[i];
        }
    }
    return text;
}

// One line, not too long.
std::wstring shortened(std::wstring text) {
    for (wchar_t& unit : text)
        if (unit < L' ')
            unit = L' ';
    if (text.size() > kMostShown) {
        text.resize(qk::cut(text, kMostShown).size());
        text += L'\u2026';
    }
    return text;
}

// Additional values that the settings dialog writes.
constexpr struct {
    std::wstring_view key;
    UINT name;
} kNamedKeys[] = {{L"OutputCondition", IDS_PS_CONDITION}, {L"FileName", IDS_PS_FILE_NAME}};

std::wstring name_text(UINT id) {
    return plain(qk::load_string(id));
}

// The paper's name as the setting has it, else as it is known here.
std::wstring paper_of(const PrintSettings& settings, const PaperNames& paper_name) {
    const auto& texts = settings.addition()->Str;
    if (const auto own = texts.find(Addition_impl::kPaperName); own != texts.end() && !own->second.empty())
        return shortened(own->second);
    return paper_name ? paper_name(settings.general()->PaperName) : std::wstring();
}

// A paper is told in one line: of another one, neither the size that comes with it nor the name kept beside
// it.
void leave_paper_to_its_line(PrintSettings& older, PrintSettings& newer) {
    auto& before = *older.general();
    const auto& after = *newer.general();
    if (before.PaperName != after.PaperName && before.PaperType == General_impl::kForm &&
        after.PaperType == General_impl::kForm) {
        before.PaperWidth = after.PaperWidth;
        before.PaperHeight = after.PaperHeight;
    }
    for (PrintSettings* settings : {&older, &newer})
        settings->addition()->Str.erase(Addition_impl::kPaperName);
}

}  // namespace

// Where a language's letters are none of the keyboard, the mark stands in brackets behind the text: "(&W)".
std::wstring plain(std::wstring text) {
    if (const size_t mark = text.find(L"(&");
        mark != std::wstring::npos && mark + 3 < text.size() && text[mark + 3] == L')')
        text.erase(mark, 4);
    std::erase(text, L'&');
    const size_t end = std::min(text.find(L" ("), text.size());
    const size_t last = text.find_last_not_of(L":\uFF1A. ", end - 1);
    return last == std::wstring::npos ? text : text.substr(0, last + 1) + text.substr(end);
}

std::wstring in_words(const FieldInfo&, bool value) {
    return qk::load_string(value ? IDS_PS_YES : IDS_PS_NO);
}

std::wstring in_words(const FieldInfo& field, int64_t value) {
    constexpr int64_t kAllOnes = 0xFFFFFFFF;
    if (field.shown == Shown::kNamed && value >= 0 && value < field.value_count)
        return name_text(field.first_value + static_cast<UINT>(value));
    if (field.shown == Shown::kColour) {
        const auto colour = static_cast<COLORREF>(value);
        return qk::format(L"#%02X%02X%02X", colour & 0xFF, colour >> 8 & 0xFF, colour >> 16 & 0xFF);
    }
    if ((field.shown == Shown::kZeroIsAuto && value == 0) ||
        (field.shown == Shown::kOnesAreAuto && value == kAllOnes))
        return qk::load_string(IDS_PS_AUTO);
    if (field.shown == Shown::kOnesAreNone && value == kAllOnes)
        return qk::load_string(IDS_PS_NO);
    return std::to_wstring(value);
}

std::wstring in_words(const FieldInfo&, double value) {
    return qk::format(L"%g", value);
}
std::wstring in_words(const FieldInfo&, const std::wstring& value) {
    return value.empty() ? nothing() : L"\"" + shortened(value) + L"\"";
}
std::wstring key_in_words(const std::wstring& name) {
    for (const auto& known : kNamedKeys)
        if (name == known.key)
            return name_text(known.name);
    return shortened(name);
}
std::wstring nothing() {
    return qk::load_string(IDS_PS_NOTHING);
}
std::wstring secret_change(const std::wstring& what) {
    return fill_in(qk::load_string(IDS_PS_SECRET_CHANGED), {what});
}

std::wstring join(const std::wstring& path, const std::wstring& name) {
    return path.empty() ? name : fill_in(qk::load_string(IDS_PS_PATH), {path, name});
}
std::wstring join(const std::wstring& path, const FieldInfo& field) {
    return field.name == 0 ? path : join(path, name_text(field.name));
}

namespace {

template <class Section>
void list_names(std::vector<std::wstring>& lines, const std::wstring& path, const Section& section);

template <class Value>
void list_name(std::vector<std::wstring>& lines, const std::wstring& path, const FieldInfo& field,
               const Value& value) {
    if constexpr (SectionHandle<Value>)
        list_names(lines, path, *value);
    else if constexpr (std::is_integral_v<Value>)
        if (field.shown == Shown::kNamed)
            lines.push_back(fill_in(qk::load_string(IDS_PS_VALUE), {path, in_words(field, value)}));
}

template <class Section>
void list_names(std::vector<std::wstring>& lines, const std::wstring& path, const Section& section) {
    for_each_field<Section>(
        [&](const auto& field) { list_name(lines, join(path, field), field, section.*field.member); });
}

}  // namespace
}  // namespace display

std::vector<std::wstring> Changed2Str(const PrintSettings& older, const PrintSettings& newer,
                                      const PaperNames& paper_name) {
    TRACE("Changed2Str");
    std::vector<std::wstring> lines;
    PrintSettings before = older;
    PrintSettings after = newer;
    display::leave_paper_to_its_line(before, after);
    display::Differences(lines, display::paper_of(older, paper_name), display::paper_of(newer, paper_name))
        .compare({}, *before, *after);
    return lines;
}

std::wstring Changed2Str(const std::wstring& what, const std::wstring& older, const std::wstring& newer) {
    return display::fill_in(qk::load_string(IDS_PS_CHANGED), {what, older, newer});
}

std::vector<std::wstring> Types2Str(const PrintSettings& settings) {
    TRACE("Types2Str");
    std::vector<std::wstring> lines;
    display::list_names(lines, {}, *settings);
    return lines;
}

const wchar_t* Types2Str(PDFVer version) noexcept {
    switch (version) {
        case PDFVer::_13:
            return L"ZRPS::PDFVer::_13";
        case PDFVer::_14:
            return L"ZRPS::PDFVer::_14";
        case PDFVer::_15:
            return L"ZRPS::PDFVer::_15";
        case PDFVer::_16:
            return L"ZRPS::PDFVer::_16";
        case PDFVer::_17:
            return L"ZRPS::PDFVer::_17";
        case PDFVer::_20:
            return L"ZRPS::PDFVer::_20";
        case PDFVer::Unknown:
            break;
    }
    return L"ZRPS::PDFVer::Unknown";
}

}  // namespace Corvanta::Vantrix::PrintSettings
