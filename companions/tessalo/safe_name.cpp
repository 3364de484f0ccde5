#include "companions/tessalo/safe_name.h"

#include <windows.h>

#include <algorithm>

#include "common/qk/text.h"
#include "companions/wine_layer.h"
#include "job/output_name.h"

namespace companions {

namespace {

size_t utf8_bytes(wchar_t unit) noexcept {
    if (IS_HIGH_SURROGATE(unit) || IS_LOW_SURROGATE(unit))
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
    return qk::cut(stem, kept);
}

}  // namespace

NameLimits system_name_limits() noexcept {
    NameLimits limits;
    if (wine::present())
        limits.name_bytes = 255;
    return limits;
}

std::optional<std::wstring> find_safe_path(std::wstring_view folder, std::wstring_view title, unsigned number,
                                           const NameLimits& limits) {
    const std::wstring start = std::wstring(qk::without_trailing_backslashes(folder)) + L'\\';
    const std::wstring end = number > 0 ? qk::format(L"(%u).pdf", number) : std::wstring(kPdfExtension);
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
        stem = std::wstring(fitted(safe_stem(stem)));
        if (stem.empty())
            return std::nullopt;
    }
    return start + stem + end;
}

}  // namespace companions
