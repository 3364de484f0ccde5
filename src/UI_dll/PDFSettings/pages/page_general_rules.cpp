#include "UI_dll/PDFSettings/pages/page_general_rules.h"

#include <algorithm>
#include <array>
#include <utility>

#include "UI_dll/PDFSettings/pages/whole_number.h"
#include "common/qk/text.h"
#include "job/output_name.h"
#include "print_settings/field_tables.h"

namespace pdf_settings {

namespace {

// The sizes that people ask for most, as DMPAPER_* counts: A2 to A6, B4 to B6, Letter and its like,
// envelopes.
constexpr std::array<uint16_t, 23> kCommonPapers = {66, 8,  9,  11, 70, 12, 13, 88, 1,  3,  5, 7,
                                                    16, 17, 43, 53, 69, 71, 72, 73, 74, 91, 34};

using ps::General_impl;

template <class Value>
constexpr ps::Rule range_of(Value General_impl::*member) noexcept {
    return ps::field_of(member).rule;
}

std::optional<double> within(std::optional<double> number, const ps::Rule& range) noexcept {
    return number && *number >= range.low && *number <= range.high ? number : std::nullopt;
}

}  // namespace

std::wstring length_text(double millimetres) {
    return qk::fixed_text(millimetres, 2);
}

std::wstring plain_length(std::wstring_view text) {
    constexpr std::wstring_view kUnit = L"mm";
    text = qk::without_blanks(text);
    const size_t number = text.size() - std::min(text.size(), kUnit.size());
    if (qk::equal_no_case(text.substr(number), kUnit))
        text = qk::without_blanks(text.substr(0, number));
    std::wstring plain(text);
    std::ranges::replace(plain, L',', L'.');
    return plain;
}

std::optional<double> find_plain_number(std::wstring_view text) noexcept {
    const bool plain = std::ranges::all_of(
        text, [](wchar_t unit) { return unit == L'.' || (unit >= L'0' && unit <= L'9'); });
    if (!plain || std::ranges::count(text, L'.') > 1)
        return std::nullopt;
    return qk::find_number(text);
}

std::optional<double> find_paper_length(std::wstring_view text) noexcept {
    return within(find_plain_number(text), range_of(&General_impl::PaperWidth));
}

std::optional<double> find_scale(std::wstring_view text) noexcept {
    return within(find_plain_number(text.substr(0, kScaleUnits)), range_of(&General_impl::Scale));
}

bool is_good_resolution(std::wstring_view text) noexcept {
    const ps::Rule range = range_of(&General_impl::PaperResolution);
    return whole_number(text, static_cast<uint32_t>(range.low), static_cast<uint32_t>(range.high))
        .has_value();
}

std::optional<int32_t> find_resolution(std::wstring_view text) noexcept {
    const auto number = qk::find_integer(text);
    return number && *number >= 0 ? number : std::nullopt;
}

std::wstring name_now(std::wstring_view pattern, const job::NameValues& values) {
    return safe_stem(pattern.empty() ? values.title : job::expand_name(pattern, values)) + L".pdf";
}

float paper_length(double millimetres) noexcept {
    const ps::Rule range = range_of(&General_impl::PaperWidth);
    return static_cast<float>(std::clamp(millimetres, range.low, range.high));
}

std::vector<FormRecord> in_list_order(std::vector<FormRecord> forms) {
    std::vector<FormRecord> ordered;
    ordered.reserve(forms.size());
    const auto take = [&](const auto& wanted, auto member) {
        const auto form = std::ranges::find(forms, wanted, member);
        if (form == forms.end())
            return;
        ordered.push_back(std::move(*form));
        forms.erase(form);
    };
    for (const std::wstring_view name : {L"A0", L"A1"})
        take(name, &FormRecord::name);
    for (const uint16_t number : kCommonPapers)
        take(number, &FormRecord::paper_number);
    for (const std::wstring_view name : {L"ISO A0 841 x 1189 mm", L"ISO A1 594 x 841 mm"})
        take(name, &FormRecord::name);
    std::ranges::move(forms, std::back_inserter(ordered));
    return ordered;
}

std::optional<size_t> find_list_position(const std::vector<FormRecord>& forms,
                                         int32_t paper_number) noexcept {
    const auto form = std::ranges::find_if(forms, [paper_number](const FormRecord& record) {
        return record.paper_number == paper_number || record.driver_paper_id == paper_number;
    });
    if (form == forms.end())
        return std::nullopt;
    return static_cast<size_t>(form - forms.begin());
}

}  // namespace pdf_settings
