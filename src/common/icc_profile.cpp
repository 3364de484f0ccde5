#include "common/icc_profile.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "common/handle.h"
#include "common/trace.h"

namespace icc {

namespace {

constexpr size_t kHeaderBytes = 128;
constexpr uint32_t kMostTags = 4096;
constexpr uint32_t kMostProfileBytes = 64u << 20;
constexpr size_t kMostUnits = 260;

constexpr uint32_t tag(const char (&name)[5]) noexcept {
    uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
        value = value << 8 | static_cast<uint8_t>(name[i]);
    return value;
}

// Reads big-endian numbers of a profile; what lies outside it is not there.
class Reader {
public:
    explicit Reader(std::span<const std::byte> bytes) noexcept : bytes_(bytes) {}

    [[nodiscard]] std::optional<uint32_t> find_u32(size_t offset) const noexcept {
        if (!holds(offset, 4))
            return std::nullopt;
        uint32_t value = 0;
        for (size_t i = 0; i < 4; ++i)
            value = value << 8 | std::to_integer<uint32_t>(bytes_[offset + i]);
        return value;
    }

    [[nodiscard]] std::optional<Reader> find_part(size_t offset, size_t size) const noexcept {
        if (!holds(offset, size))
            return std::nullopt;
        return Reader(bytes_.subspan(offset, size));
    }

    [[nodiscard]] std::span<const std::byte> bytes() const noexcept { return bytes_; }

private:
    [[nodiscard]] bool holds(size_t offset, size_t size) const noexcept {
        return offset <= bytes_.size() && size <= bytes_.size() - offset;
    }

    std::span<const std::byte> bytes_;
};

std::optional<Reader> find_tag(const Reader& profile, uint32_t name) noexcept {
    const uint32_t count = std::min(profile.find_u32(kHeaderBytes).value_or(0), kMostTags);
    for (uint32_t i = 0; i < count; ++i) {
        const size_t entry = kHeaderBytes + 4 + size_t{12} * i;
        const auto signature = profile.find_u32(entry);
        if (!signature)
            return std::nullopt;
        if (*signature == name)
            return profile.find_part(profile.find_u32(entry + 4).value_or(UINT32_MAX),
                                     profile.find_u32(entry + 8).value_or(UINT32_MAX));
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
    for (const std::byte unit : text->bytes().first(std::min(text->bytes().size(), kMostUnits)))
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
    for (size_t i = 0; i + 1 < text->bytes().size() && wide.size() < kMostUnits; i += 2)
        wide += static_cast<wchar_t>(std::to_integer<unsigned>(text->bytes()[i]) << 8 |
                                     std::to_integer<unsigned>(text->bytes()[i + 1]));
    return until_zero(std::move(wide));
}

}  // namespace

std::optional<std::wstring> find_description(std::span<const std::byte> profile) {
    const auto element = find_tag(Reader(profile), tag("desc"));
    if (!element)
        return std::nullopt;
    const auto type = element->find_u32(0);
    if (type == tag("desc"))
        return find_plain_text(*element);
    if (type == tag("mluc"))
        return find_localized_text(*element);
    return std::nullopt;
}

std::optional<std::wstring> find_description(const std::wstring& path) {
    const qk::FileObj file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER size = {};
    if (!file || !GetFileSizeEx(file.get(), &size) || size.QuadPart > kMostProfileBytes)
        return std::nullopt;
    std::vector<std::byte> bytes(static_cast<size_t>(size.QuadPart));
    DWORD done = 0;
    if (!ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &done, nullptr))
        return std::nullopt;
    return find_description(std::span<const std::byte>(bytes).first(done));
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

constexpr size_t kMostIdChars = 19;

constexpr bool is_digit(wchar_t unit) noexcept {
    return unit >= L'0' && unit <= L'9';
}

// A dot of the patterns below does not match the end of a line.
bool is_one_line(std::wstring_view text) noexcept {
    return text.find_first_of(L"\n\r\x2028\x2029") == std::wstring_view::npos;
}

// Digits read as a decimal number: leading zeros go, a number too large stays at the largest.
std::string id_of(const char* prefix, std::wstring_view digits) {
    int number = 0;
    for (const wchar_t digit : digits)
        number = number > (INT_MAX - 9) / 10 ? INT_MAX : number * 10 + (digit - L'0');
    return (prefix + std::to_string(number)).substr(0, kMostIdChars);
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

// ".*Japan\sColor\s([0-9]{4}).*\s<kind>.*", the last year that fits.
std::optional<std::string> find_japan_color(std::wstring_view text, std::wstring_view kind,
                                            const char* prefix) {
    constexpr std::wstring_view kJapan = L"Japan";
    constexpr std::wstring_view kColor = L"Color";
    constexpr size_t kLength = 5 + 1 + 5 + 1 + 4;
    const size_t last_kind = [&] {
        for (size_t at = text.rfind(kind); at != std::wstring_view::npos && at > 0;
             at = text.rfind(kind, at - 1))
            if (is_space(text[at - 1]))
                return at;
        return size_t{0};
    }();
    for (size_t at = text.rfind(kJapan); at != std::wstring_view::npos;
         at = at == 0 ? std::wstring_view::npos : text.rfind(kJapan, at - 1)) {
        if (at + kLength + 1 > last_kind)
            continue;
        const std::wstring_view found = text.substr(at, kLength);
        const std::wstring_view year = found.substr(12);
        if (is_space(found[5]) && found.substr(6, 5) == kColor && is_space(found[11]) &&
            std::ranges::all_of(year, is_digit))
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
    if (is_one_line(description)) {
        if (auto id = find_fogra(description))
            return *id;
        if (auto id = find_japan_color(description, L"News", "JCN"))
            return *id;
        if (auto id = find_japan_color(description, L"Web", "JCW"))
            return *id;
    }
    return "Custom";
}
