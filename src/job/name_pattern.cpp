#include "job/name_pattern.h"

#include <algorithm>
#include <iterator>

#include "common/qk/text.h"

namespace job {

namespace {

struct Word {
    std::wstring_view name;
    std::wstring (*value)(const NameValues& values);
};

constexpr Word kWords[] = {
    {L"{title}", [](const NameValues& values) { return values.title; }},
    {L"{date}",
     [](const NameValues& values) {
         return qk::format(L"%04u-%02u-%02u", values.time.wYear, values.time.wMonth, values.time.wDay);
     }},
    {L"{time}",
     [](const NameValues& values) {
         return qk::format(L"%02u-%02u-%02u", values.time.wHour, values.time.wMinute, values.time.wSecond);
     }},
    {L"{user}", [](const NameValues& values) { return values.user; }},
    {L"{printer}", [](const NameValues& values) { return values.printer; }},
    {L"{counter}", [](const NameValues& values) { return std::to_wstring(values.counter); }},
};
constexpr const Word& kCounter = *std::rbegin(kWords);

const Word* find_word(std::wstring_view braced) noexcept {
    const auto* word = std::ranges::find_if(
        kWords, [braced](const Word& one) { return qk::equal_no_case(one.name, braced); });
    return word == std::end(kWords) ? nullptr : word;
}

// Takes the next part off the pattern: what stands between two braces, them included, or the text up to them.
std::wstring_view take_part(std::wstring_view& pattern) noexcept {
    const size_t end = pattern.starts_with(L'{') ? pattern.find(L'}') : pattern.find(L'{') - 1;
    const std::wstring_view part = pattern.substr(0, std::min(end, pattern.size() - 1) + 1);
    pattern.remove_prefix(part.size());
    return part;
}

}  // namespace

std::wstring expand_name(std::wstring_view pattern, const NameValues& values) {
    std::wstring name;
    while (!pattern.empty()) {
        const std::wstring_view part = take_part(pattern);
        const Word* word = find_word(part);
        name += word ? word->value(values) : std::wstring(part);
    }
    return name;
}

bool counts(std::wstring_view pattern) noexcept {
    while (!pattern.empty())
        if (find_word(take_part(pattern)) == &kCounter)
            return true;
    return false;
}

std::wstring_view find_pattern_fault(std::wstring_view pattern) noexcept {
    if (const size_t sign = pattern.find_first_of(L"\\/:"); sign != std::wstring_view::npos)
        return pattern.substr(sign, 1);
    while (!pattern.empty())
        if (const std::wstring_view part = take_part(pattern); part.starts_with(L'{') && !find_word(part))
            return part;
    return {};
}

}  // namespace job
