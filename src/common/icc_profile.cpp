#include "common/icc_profile.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cwctype>
#include <functional>
#include <utility>
#include <vector>

#include "common/qk/disk_file.h"
#include "common/qk/trace.h"

namespace icc {

namespace {

constexpr uint32_t kHeaderBytes = 128;
constexpr size_t kTagBytes = 12;  // signature, offset and size of the element
constexpr uint32_t kMostTags = 4096;
constexpr uint32_t kMostElementBytes = 1u << 20;
constexpr size_t kMostUnits = 260;

constexpr uint32_t tag(const char (&name)[5]) noexcept {
    uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
        value = value << 8 | static_cast<uint8_t>(name[i]);
    return value;
}

// Reads big-endian numbers of bytes; what lies outside them is not there.
class Reader {
public:
    explicit Reader(std::span<const std::byte> bytes) noexcept : bytes_(bytes) {}

    [[nodiscard]] std::optional<uint32_t> find_u32(size_t offset) const noexcept {
        const auto part = find_part(offset, 4);
        if (!part)
            return std::nullopt;
        uint32_t value = 0;
        for (const std::byte byte : *part)
            value = value << 8 | std::to_integer<uint32_t>(byte);
        return value;
    }

    [[nodiscard]] std::optional<std::span<const std::byte>> find_part(size_t offset,
                                                                      size_t size) const noexcept {
        if (offset > bytes_.size() || size > bytes_.size() - offset)
            return std::nullopt;
        return bytes_.subspan(offset, size);
    }

private:
    std::span<const std::byte> bytes_;
};

// Where the bytes of a profile come from: as many of the wanted ones as there are.
using Source = std::function<std::vector<std::byte>(uint32_t offset, size_t size)>;

// The bytes of the element that a tag names. Only the tag table and the element are read.
std::optional<std::vector<std::byte>> find_element(const Source& read, uint32_t name) {
    const std::vector<std::byte> counted = read(kHeaderBytes, 4);
    const uint32_t count = std::min(Reader(counted).find_u32(0).value_or(0), kMostTags);
    const std::vector<std::byte> table = read(kHeaderBytes + 4, kTagBytes * count);
    const Reader tags(table);
    for (size_t at = 0; at < table.size(); at += kTagBytes) {
        if (tags.find_u32(at) != name)
            continue;
        const auto offset = tags.find_u32(at + 4);
        const auto size = tags.find_u32(at + 8);
        if (!offset || !size || *size > kMostElementBytes)
            return std::nullopt;
        auto element = read(*offset, *size);
        return element.size() == *size ? std::optional(std::move(element)) : std::nullopt;
    }
    return std::nullopt;
}

std::wstring until_zero(std::wstring text) {
    text.resize(std::min({text.find(L'\0'), text.size(), kMostUnits}));
    return text;
}

// Type 'desc': a counted 7-bit text.
std::optional<std::wstring> find_plain_text(const Reader& element) {
    const auto length = element.find_u32(8);
    const auto text = length ? element.find_part(12, *length) : std::nullopt;
    if (!text)
        return std::nullopt;
    std::wstring wide;
    for (const std::byte unit : text->first(std::min(text->size(), kMostUnits)))
        wide += static_cast<wchar_t>(unit);
    return until_zero(std::move(wide));
}

// Type 'mluc': texts by language in big-endian UTF-16; the first record is the profile's own choice.
std::optional<std::wstring> find_localized_text(const Reader& element) {
    const auto count = element.find_u32(8);
    const auto length = element.find_u32(20);
    const auto offset = element.find_u32(24);
    if (!count || *count == 0 || !length || !offset)
        return std::nullopt;
    const auto text = element.find_part(*offset, *length);
    if (!text)
        return std::nullopt;
    std::wstring wide;
    for (size_t i = 0; i + 1 < text->size() && wide.size() < kMostUnits; i += 2)
        wide += static_cast<wchar_t>(std::to_integer<unsigned>((*text)[i]) << 8 |
                                     std::to_integer<unsigned>((*text)[i + 1]));
    return until_zero(std::move(wide));
}

std::optional<std::wstring> find_description(const Source& read) {
    const auto bytes = find_element(read, tag("desc"));
    if (!bytes)
        return std::nullopt;
    const Reader element(*bytes);
    const auto type = element.find_u32(0);
    if (type == tag("desc"))
        return find_plain_text(element);
    if (type == tag("mluc"))
        return find_localized_text(element);
    return std::nullopt;
}

}  // namespace

std::optional<std::wstring> find_description(std::span<const std::byte> profile) {
    return find_description([profile](uint32_t offset, size_t size) {
        const auto part = profile.subspan(std::min<size_t>(offset, profile.size()));
        const auto there = part.first(std::min(size, part.size()));
        return std::vector<std::byte>(there.begin(), there.end());
    });
}

std::optional<std::wstring> find_description(const std::wstring& path) {
    const qk::FileObj file = qk::open_disk_file(path, GENERIC_READ, FILE_SHARE_READ);
    if (!file)
        return std::nullopt;
    return find_description([&file](uint32_t offset, size_t size) {
        std::vector<std::byte> bytes(size);
        OVERLAPPED place = {};
        place.Offset = offset;
        DWORD done = 0;
        if (!ReadFile(file.get(), bytes.data(), static_cast<DWORD>(size), &done, &place))
            done = 0;
        bytes.resize(done);
        return bytes;
    });
}

}  // namespace icc

namespace {

struct Condition {
    std::wstring_view description;
    const char* id;
};

// "CGART TR 001" is spelt so on purpose: existing output names it.
constexpr Condition kConditions[] = {
    {L"Japan Color 2001 Coated", "JC200103"},
    {L"Japan Color 2001 Uncoated", "JC200104"},
    {L"Japan Color 2002 for Newspaper Printing", "JCN2002"},
    {L"Japan Color 2003 for Web Offset", "JCW2003"},
    {L"Euroscale Uncoated v2", "FOGRA4"},
    {L"Euroscale Coated v2", "FOGRA1"},
    {L"Coated FOGRA27 (ISO 12647-2:2004)", "FOGRA27"},
    {L"SWOP (Publication) printing in USA.", "CGATS TR 001"},
    {L"Eurostandard 15% Coated", "EUROSB104"},
    {L"Eurostandard 15% Webcoated", "EUROSB204"},
    {L"Japan Color 2011", "JCS2011"},
    {L"Japan Color 2011 Coated", "JCS2011"},
    {L"U.S. Web Coated (SWOP) v2", "CGART TR 001"},
};

constexpr bool is_digit(wchar_t unit) noexcept {
    return unit >= L'0' && unit <= L'9';
}

// A dot of the patterns below does not match the end of a line.
bool is_one_line(std::wstring_view text) noexcept {
    return text.find_first_of(L"\n\r\x2028\x2029") == std::wstring_view::npos;
}

// Digits read as a decimal number: leading zeros go, a number too large becomes the largest. So an identifier
// has at most fifteen characters, of nineteen that are allowed.
std::string id_of(const char* prefix, std::wstring_view digits) {
    int64_t number = 0;
    for (const wchar_t digit : digits)
        number = std::min<int64_t>(number * 10 + (digit - L'0'), INT_MAX);
    return prefix + std::to_string(number);
}

// ".*FOGRA([0-9]+).*": greedy, so the last FOGRA that digits follow counts.
std::optional<std::string> find_fogra(std::wstring_view text) {
    constexpr std::wstring_view kWord = L"FOGRA";
    for (size_t at = text.rfind(kWord); at != std::wstring_view::npos;
         at = at == 0 ? std::wstring_view::npos : text.rfind(kWord, at - 1)) {
        size_t end = at + kWord.size();
        while (end < text.size() && is_digit(text[end]))
            ++end;
        if (end > at + kWord.size())
            return id_of("FOGRA", text.substr(at + kWord.size(), end - at - kWord.size()));
    }
    return std::nullopt;
}

bool is_space(wchar_t unit) noexcept {
    return iswspace(unit) != 0;
}

// ".*\s<kind>.*", from the start of `text` on.
bool names_kind(std::wstring_view text, std::wstring_view kind) {
    for (size_t at = text.find(kind); at != std::wstring_view::npos; at = text.find(kind, at + 1))
        if (at > 0 && is_space(text[at - 1]) && is_one_line(text.substr(0, at - 1)) &&
            is_one_line(text.substr(at)))
            return true;
    return false;
}

// ".*Japan\sColor\s([0-9]{4}).*\s<kind>.*", the last year that fits. A line may end where a \s stands.
std::optional<std::string> find_japan_color(std::wstring_view text, std::wstring_view kind,
                                            const char* prefix) {
    constexpr std::wstring_view kJapan = L"Japan";
    constexpr std::wstring_view kColor = L"Color";
    constexpr size_t kLength = 5 + 1 + 5 + 1 + 4;
    for (size_t at = text.rfind(kJapan); at != std::wstring_view::npos;
         at = at == 0 ? std::wstring_view::npos : text.rfind(kJapan, at - 1)) {
        const std::wstring_view found = text.substr(at, kLength);
        if (found.size() < kLength)
            continue;
        const std::wstring_view year = found.substr(12);
        if (is_space(found[5]) && found.substr(6, 5) == kColor && is_space(found[11]) &&
            std::ranges::all_of(year, is_digit) && is_one_line(text.substr(0, at)) &&
            names_kind(text.substr(at + kLength), kind))
            return id_of(prefix, year);
    }
    return std::nullopt;
}

}  // namespace

std::string icc_ConditionIdFromDesc(const std::wstring& description) {
    TRACE("icc_ConditionIdFromDesc");
    const auto known =
        std::ranges::find(kConditions, std::wstring_view(description), &Condition::description);
    if (known != std::end(kConditions))
        return known->id;
    if (is_one_line(description))
        if (auto id = find_fogra(description))
            return *id;
    if (auto id = find_japan_color(description, L"News", "JCN"))
        return *id;
    if (auto id = find_japan_color(description, L"Web", "JCW"))
        return *id;
    return "Custom";
}
