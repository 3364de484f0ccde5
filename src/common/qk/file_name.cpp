#include "common/qk/file_name.h"

#include <windows.h>

#include <algorithm>

#include "common/qk/text.h"

namespace qk {

namespace {

constexpr std::wstring_view kForbidden = L"<>:\"/\\|?*";
constexpr std::wstring_view kDevices[] = {L"CON", L"PRN", L"AUX", L"NUL", L"CLOCK$", L"CONIN$", L"CONOUT$"};
constexpr std::wstring_view kPorts[] = {L"COM", L"LPT"};
constexpr std::wstring_view kPortNumbers = L"0123456789\u00B9\u00B2\u00B3";

constexpr bool is_control(wchar_t unit) noexcept {
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
}

bool is_device(std::wstring_view name) noexcept {
    std::wstring_view stem = name.substr(0, name.find(L'.'));
    stem = stem.substr(0, stem.find_last_not_of(L' ') + 1);
    if (stem.size() == 4 && kPortNumbers.find(stem[3]) != std::wstring_view::npos)
        return std::ranges::any_of(
            kPorts, [stem](std::wstring_view port) { return starts_with_no_case(stem, port); });
    return std::ranges::any_of(kDevices,
                               [stem](std::wstring_view device) { return equal_no_case(stem, device); });
}

}  // namespace

std::wstring safe_file_name(std::wstring_view name, wchar_t for_controls) {
    std::wstring safe(name);
    for (size_t i = 0; i < safe.size(); ++i) {
        if (IS_HIGH_SURROGATE(safe[i]) && i + 1 < safe.size() && IS_LOW_SURROGATE(safe[i + 1]))
            ++i;  // a whole pair
        else if (IS_HIGH_SURROGATE(safe[i]) || IS_LOW_SURROGATE(safe[i]) ||
                 kForbidden.find(safe[i]) != std::wstring_view::npos)
            safe[i] = L'_';
        else if (is_control(safe[i]))
            safe[i] = for_controls;
    }
    safe.erase(safe.find_last_not_of(L" .") + 1);
    safe.erase(0, safe.find_first_not_of(L' '));
    return is_device(safe) ? L'_' + safe : safe;
}

}  // namespace qk
