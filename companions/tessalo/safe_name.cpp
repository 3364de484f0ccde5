#include "companions/tessalo/safe_name.h"

#include <algorithm>

#include "common/qk/text.h"
#include "companions/wine_layer.h"

namespace companions {

namespace {

constexpr std::wstring_view kExtension = L".pdf";
constexpr std::wstring_view kNoName = L"no_name";
constexpr std::wstring_view kDevices[] = {L"CON", L"PRN", L"AUX", L"NUL", L"CLOCK$", L"CONIN$", L"CONOUT$"};
constexpr std::wstring_view kPorts[] = {L"COM", L"LPT"};
constexpr std::wstring_view kPortNumbers = L"0123456789\u00B9\u00B2\u00B3";

constexpr bool is_high(wchar_t unit) noexcept {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool is_low(wchar_t unit) noexcept {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

constexpr bool is_control(wchar_t unit) noexcept {
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
}

constexpr bool is_forbidden(wchar_t unit) noexcept {
    return std::wstring_view(L"<>:\"/\\|?*").find(unit) != std::wstring_view::npos;
}

void trim(std::wstring& text) {
    text.erase(0, std::min(text.find_first_not_of(L' '), text.size()));
    text.erase(text.find_last_not_of(L" .") + 1);
}

bool ends_in_pdf(std::wstring_view text) noexcept {
    return text.size() >= kExtension.size() &&
           qk::equal_no_case(text.substr(text.size() - kExtension.size()), kExtension);
}

// Windows takes a device's name for the device whatever extension stands behind it.
bool is_device(std::wstring_view stem) noexcept {
    std::wstring_view base = stem.substr(0, stem.find(L'.'));
    base = base.substr(0, base.find_last_not_of(L' ') + 1);
    const auto same = [base](std::wstring_view name) { return qk::equal_no_case(base, name); };
    if (std::ranges::any_of(kDevices, same))
        return true;
    return base.size() == 4 && kPortNumbers.find(base[3]) != std::wstring_view::npos &&
           std::ranges::any_of(
               kPorts, [base](std::wstring_view port) { return qk::equal_no_case(base.substr(0, 3), port); });
}

std::wstring without_bad_units(std::wstring_view title) {
    std::wstring text(title);
    for (size_t i = 0; i < text.size(); ++i) {
        if (is_high(text[i]) && i + 1 < text.size() && is_low(text[i + 1]))
            ++i;  // a whole pair
        else if (is_high(text[i]) || is_low(text[i]) || is_forbidden(text[i]))
            text[i] = L'_';
        else if (is_control(text[i]))
            text[i] = L' ';
    }
    return text;
}

std::wstring finished(std::wstring stem) {
    trim(stem);
    if (stem.empty())
        return std::wstring(kNoName);
    return is_device(stem) ? L'_' + stem : stem;
}

size_t utf8_bytes(wchar_t unit) noexcept {
    if (is_high(unit) || is_low(unit))
        return 2;  // a pair takes four
    return unit < 0x80 ? 1 : unit < 0x800 ? 2 : 3;
}

std::wstring_view cut(std::wstring_view stem, size_t units, size_t bytes) noexcept {
    size_t kept = 0;
    for (size_t used = 0; kept < std::min(units, stem.size()); ++kept) {
        used += utf8_bytes(stem[kept]);
        if (used > bytes)
            break;
    }
    if (kept > 0 && kept < stem.size() && is_high(stem[kept - 1]))
        --kept;
    return stem.substr(0, kept);
}

}  // namespace

NameLimits system_name_limits() noexcept {
    NameLimits limits;
    if (wine::present())
        limits.name_bytes = 255;
    return limits;
}

std::wstring safe_stem(std::wstring_view title) {
    std::wstring stem = without_bad_units(title);
    trim(stem);
    if (ends_in_pdf(stem))
        stem.resize(stem.size() - kExtension.size());
    return finished(std::move(stem));
}

std::optional<std::wstring> find_safe_path(std::wstring_view folder, std::wstring_view title, unsigned number,
                                           const NameLimits& limits) {
    const std::wstring start = std::wstring(qk::without_trailing_backslashes(folder)) + L'\\';
    const std::wstring end = number > 0 ? qk::format(L"(%u).pdf", number) : std::wstring(kExtension);
    const size_t room =
        std::min(limits.path_units - std::min(limits.path_units, start.size()), limits.name_units);
    if (room <= end.size() || limits.name_bytes <= end.size())
        return std::nullopt;
    const auto fitted = [&](std::wstring_view stem) {
        return cut(stem, room - end.size(), limits.name_bytes - end.size());
    };
    const std::wstring whole = safe_stem(title);
    std::wstring stem(fitted(whole));
    if (stem.size() < whole.size()) {
        // The cut may have uncovered a blank or a full stop, or left just a device's name.
        stem = std::wstring(fitted(finished(stem)));
        if (stem.empty())
            return std::nullopt;
    }
    return start + stem + end;
}

}  // namespace companions
