#include "common/qk/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace qk {

std::wstring to_wide(std::string_view utf8) {
    if (utf8.empty())
        return {};
    const int size = static_cast<int>(std::min<size_t>(utf8.size(), INT_MAX));
    const int units = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0);
    std::wstring wide(static_cast<size_t>(std::max(units, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, wide.data(), units);
    return wide;
}

std::string to_utf8(std::wstring_view utf16) {
    if (utf16.empty())
        return {};
    const int size = static_cast<int>(std::min<size_t>(utf16.size(), INT_MAX));
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, utf16.data(), size, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<size_t>(std::max(bytes, 0)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, utf16.data(), size, utf8.data(), bytes, nullptr, nullptr);
    return utf8;
}

std::wstring format(const wchar_t* pattern, ...) {
    va_list arguments;
    va_start(arguments, pattern);
    va_list again;
    va_copy(again, arguments);
    const int units = _vscwprintf(pattern, arguments);
    va_end(arguments);
    std::wstring text(static_cast<size_t>(std::max(units, 0)), L'\0');
    if (units > 0)
        _vsnwprintf(text.data(), text.size() + 1, pattern, again);
    va_end(again);
    return text;
}

void format_into(wchar_t* buffer, size_t capacity, const wchar_t* pattern, ...) noexcept {
    va_list arguments;
    va_start(arguments, pattern);
    const int units = _vsnwprintf(buffer, capacity, pattern, arguments);
    va_end(arguments);
    if (units < 0 || static_cast<size_t>(units) >= capacity)
        buffer[capacity - 1] = L'\0';
}

std::wstring_view cut(std::wstring_view text, size_t most) noexcept {
    if (text.size() <= most)
        return text;
    return text.substr(0, most > 0 && IS_HIGH_SURROGATE(text[most - 1]) ? most - 1 : most);
}

void copy_zero_padded(wchar_t* buffer, size_t capacity, std::wstring_view text) noexcept {
    const std::wstring_view copied = cut(text, capacity - 1);
    std::ranges::copy(copied, buffer);
    std::memset(buffer + copied.size(), 0, (capacity - copied.size()) * sizeof(wchar_t));
}

std::optional<double> find_number(std::wstring_view text) noexcept {
    while (!text.empty() && (text.front() == L' ' || text.front() == L'\t'))
        text.remove_prefix(1);
    char digits[64];
    size_t count = 0;
    for (; count < std::min(text.size(), sizeof digits) && text[count] < 0x80; ++count)
        digits[count] = static_cast<char>(text[count]);
    double number = 0;
    const auto [end, error] = std::from_chars(digits, digits + count, number);
    if (error != std::errc{} || !std::isfinite(number))
        return std::nullopt;
    return number;
}

std::optional<int32_t> find_integer(std::wstring_view text) noexcept {
    constexpr int64_t kMost = 1'000'000'000;
    size_t at = std::min(text.find_first_not_of(L" \t"), text.size());
    const bool negative = at < text.size() && text[at] == L'-';
    if (negative || (at < text.size() && text[at] == L'+'))
        ++at;
    const size_t first = at;
    int64_t number = 0;
    for (; at < text.size() && text[at] >= L'0' && text[at] <= L'9'; ++at)
        number = std::min(number * 10 + (text[at] - L'0'), kMost);
    if (at == first)
        return std::nullopt;
    return static_cast<int32_t>(negative ? -number : number);
}

// std::to_chars would do it, with a hundred kilobytes of tables.
std::wstring fixed_text(double number, int decimals) {
    constexpr double kMost = 1e9;
    long long scale = 1;
    for (int i = 0; i < decimals; ++i)
        scale *= 10;
    const long long scaled = std::llround(std::clamp(std::isfinite(number) ? number : 0, -kMost, kMost) *
                                          static_cast<double>(scale));
    const long long digits = std::abs(scaled);
    std::wstring text = (scaled < 0 ? L"-" : L"") + std::to_wstring(digits / scale);
    if (decimals > 0) {
        const std::wstring behind = std::to_wstring(digits % scale);
        text += L'.' + std::wstring(static_cast<size_t>(decimals) - behind.size(), L'0') + behind;
    }
    return text;
}

bool equal_no_case(std::wstring_view a, std::wstring_view b) noexcept {
    return a.size() == b.size() && CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(),
                                                        static_cast<int>(b.size()), TRUE) == CSTR_EQUAL;
}

bool starts_with_no_case(std::wstring_view text, std::wstring_view prefix) noexcept {
    return text.size() >= prefix.size() && equal_no_case(text.substr(0, prefix.size()), prefix);
}

bool ends_with_no_case(std::wstring_view text, std::wstring_view suffix) noexcept {
    return text.size() >= suffix.size() && equal_no_case(text.substr(text.size() - suffix.size()), suffix);
}

std::wstring_view without_blanks(std::wstring_view text) noexcept {
    constexpr std::wstring_view kBlanks = L" \t\r\n\u00A0\u202F\u3000";
    const size_t first = std::min(text.find_first_not_of(kBlanks), text.size());
    text.remove_prefix(first);
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::wstring_view file_part(std::wstring_view path) noexcept {
    const size_t slash = path.rfind(L'\\');
    return slash == std::wstring_view::npos ? path : path.substr(slash + 1);
}

std::wstring_view file_stem(std::wstring_view path) noexcept {
    const std::wstring_view file = file_part(path);
    return file.substr(0, file.rfind(L'.'));
}

std::wstring_view without_trailing_backslashes(std::wstring_view path) noexcept {
    while (!path.empty() && path.back() == L'\\')
        path.remove_suffix(1);
    return path;
}

}  // namespace qk
