#include "companions/render/web_links.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "common/qk/text.h"

namespace companions::render {

namespace {

constexpr size_t kMostLine = 1000;
constexpr size_t kMostWord = 2000;

// The value of an attribute, as it stands.
std::string_view attribute(std::string_view line, std::string_view name) {
    const size_t at = line.find(name);
    if (at == std::string_view::npos)
        return {};
    line.remove_prefix(at + name.size());
    return line.substr(0, line.find('"'));
}

// The one character of an address that an attribute stands for, a zero for anything else.
wchar_t character_of(std::string_view value) {
    constexpr std::pair<std::string_view, char> kNames[] = {
        {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&apos;", '\''}};
    for (const auto& [name, character] : kNames)
        if (value == name)
            return static_cast<wchar_t>(character);
    if (value.size() == 1)
        return value[0] > ' ' && value[0] < '\x7F' ? static_cast<wchar_t>(value[0]) : L'\0';
    constexpr std::string_view kCode = "&#x";
    uint16_t code = 0;
    if (!value.starts_with(kCode))
        return L'\0';
    const auto [end, error] =
        std::from_chars(value.data() + kCode.size(), value.data() + value.size(), code, 16);
    const bool whole = error == std::errc() && end + 1 == value.data() + value.size() && *end == ';';
    return whole && is_address_letter(code) ? code : L'\0';
}

std::string as_uri(std::wstring_view address) {
    std::string uri;
    for (const char byte : qk::to_utf8(address)) {
        if ((byte & 0x80) == 0) {
            uri += byte;
            continue;
        }
        char escape[4];
        std::snprintf(escape, sizeof escape, "%%%02X",
                      static_cast<unsigned>(static_cast<unsigned char>(byte)));
        uri += escape;
    }
    return uri;
}

}  // namespace

bool read_numbers(std::string_view text, std::span<double> numbers) {
    constexpr size_t kMostText = 200;
    const std::string copy(text.substr(0, kMostText));
    const char* at = copy.c_str();
    for (double& number : numbers) {
        char* after = nullptr;
        number = std::strtod(at, &after);
        if (after == at)
            return false;
        at = after;
    }
    return true;
}

bool is_address_letter(wchar_t character) noexcept {
    constexpr std::pair<int, int> kLetters[] = {{0xC0, 0xD6},   {0xD8, 0xF6},   {0xF8, 0x36F},
                                                {0x386, 0x386}, {0x388, 0x52F}, {0x1E00, 0x1FFF}};
    return std::ranges::any_of(kLetters, [character](const auto& range) {
        return character >= range.first && character <= range.second;
    });
}

std::optional<WebAddress> find_address(const std::wstring& word) {
    constexpr std::wstring_view kBare = L"www.";
    constexpr size_t kLeast = 8;  // "www.a.de"
    size_t first = std::wstring::npos;
    bool bare = false;
    if (word.size() < kLeast)
        return std::nullopt;
    for (const std::wstring_view start :
         {std::wstring_view(L"http://"), std::wstring_view(L"https://"), std::wstring_view(L"ftp://"),
          std::wstring_view(L"mailto:"), kBare}) {
        const size_t at = word.find(start);
        if (at >= first)
            continue;
        first = at;
        bare = start == kBare;
    }
    if (first == std::wstring::npos)
        return std::nullopt;
    size_t end = std::min(word.find_first_of(L"<>\"", first), word.size());
    const auto has = [&](wchar_t sign) {
        const auto* from = word.data();
        return std::count(from + first, from + end, sign);
    };
    // A parenthesis that the address itself has opened is its own.
    while (end > first && std::wstring_view(L".,;:!?')]}").find(word[end - 1]) != std::wstring_view::npos &&
           (word[end - 1] != L')' || has(L'(') < has(L')')))
        --end;
    if (end - first < kLeast)
        return std::nullopt;
    return WebAddress{first, end, (bare ? "http://" : "") + as_uri(word.substr(first, end - first))};
}

void WebLinkReader::feed(std::string_view bytes) {
    for (const char byte : bytes) {
        if (byte != '\n') {
            if (rest_.size() < kMostLine)
                rest_ += byte;
            continue;
        }
        take_line(rest_);
        rest_.clear();
    }
}

void WebLinkReader::take_line(std::string_view line) {
    if (line.starts_with("<page")) {
        end_word();
        pages_.emplace_back();
    } else if (line.starts_with("<span")) {
        size_ =
            std::clamp(std::strtod(std::string(attribute(line, "size=\"")).c_str(), nullptr), 1.0, 1000.0);
    } else if (line.starts_with("<char")) {
        take_character(line);
    }
}

void WebLinkReader::take_character(std::string_view line) {
    std::array<double, 4> corners = {};  // left, baseline, right, and where the box ends
    if (!read_numbers(attribute(line, "bbox=\""), corners))
        return;
    const auto [left, baseline, right, end] = corners;
    // Boxes are whole points: a word goes on where the last letter ended, or nearly so.
    const bool goes_on = !word_.empty() && std::fabs(baseline - baseline_) < 0.5 &&
                         std::fabs(left - word_.back().right) <= std::max(1.5, size_ / 5);
    const wchar_t character = character_of(attribute(line, "c=\""));
    if (!goes_on || character == 0 || word_.size() == kMostWord)
        end_word();
    baseline_ = baseline;
    if (character != 0)
        word_.push_back({left, right, character});
}

void WebLinkReader::end_word() {
    std::wstring word;
    for (const Glyph& glyph : word_)
        word += glyph.character;
    if (const auto address = find_address(word); address && !pages_.empty())
        pages_.back().push_back({word_[address->first].left, baseline_ - size_ * 0.8,
                                 word_[address->end - 1].right, baseline_ + size_ * 0.2, address->uri});
    word_.clear();
}

std::vector<std::vector<WebLink>> WebLinkReader::take() {
    take_line(rest_);
    end_word();
    return std::move(pages_);
}

}  // namespace companions::render
