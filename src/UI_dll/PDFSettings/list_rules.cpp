#include "UI_dll/PDFSettings/list_rules.h"

#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <array>

#include "common/qk/text.h"

namespace pdf_settings {

namespace {

bool is_digit(wchar_t unit) noexcept {
    return unit >= L'0' && unit <= L'9';
}

void lower(std::wstring& text) noexcept {
    CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
}

// "con", "con.txt": devices, whatever their extension.
bool is_device(std::wstring_view name) noexcept {
    constexpr std::array<std::wstring_view, 4> kDevices = {L"CON", L"PRN", L"AUX", L"NUL"};
    const std::wstring_view stem = name.substr(0, name.find(L'.'));
    if (stem.size() == 4 && is_digit(stem[3]))
        return qk::starts_with_no_case(stem, L"COM") || qk::starts_with_no_case(stem, L"LPT");
    return std::any_of(kDevices.begin(), kDevices.end(),
                       [&](std::wstring_view device) { return qk::equal_no_case(stem, device); });
}

}  // namespace

int row_image(int32_t kind) noexcept {
    if (kind == SettingEntry::kOwn)
        return I_IMAGENONE;
    return kind == SettingEntry::kInstalled ? 1 : 0;
}

bool sorts_before(const SettingEntry& a, const SettingEntry& b) noexcept {
    return a.kind != b.kind ? a.kind < b.kind : a.name < b.name;
}

size_t row_to_select(std::span<const SettingEntry> rows, std::wstring path) {
    lower(path);
    for (size_t row = rows.size(); row-- > 0;) {
        std::wstring candidate = rows[row].path;
        lower(candidate);
        if (candidate == path)
            return row;
    }
    return 0;
}

int row_after_removal(int removed, int left) noexcept {
    return left > 0 ? std::min(left - 1, removed) : 0;
}

std::wstring_view base_name(std::wstring_view name) noexcept {
    if (!name.ends_with(L')'))
        return name;
    size_t start = name.size() - 1;
    while (start > 0 && is_digit(name[start - 1]))
        --start;
    return start > 0 && name[start - 1] == L'(' ? name.substr(0, start - 1) : name;
}

std::wstring free_name(std::wstring_view base, const std::function<bool(const std::wstring&)>& is_taken) {
    std::wstring name(base);
    for (unsigned number = 1; is_taken(name); ++number)
        name = std::wstring(base) + L'(' + std::to_wstring(number) + L')';
    return name;
}

std::wstring file_name_of(std::wstring_view name) {
    constexpr std::wstring_view kForbidden = L"<>:\"/\\|?*";
    std::wstring safe(qk::cut(name, kNameUnits));
    for (size_t i = 0; i < safe.size(); ++i) {
        const bool paired =
            (IS_HIGH_SURROGATE(safe[i]) && i + 1 < safe.size() && IS_LOW_SURROGATE(safe[i + 1])) ||
            (IS_LOW_SURROGATE(safe[i]) && i > 0 && IS_HIGH_SURROGATE(safe[i - 1]));
        const bool lone = (IS_HIGH_SURROGATE(safe[i]) || IS_LOW_SURROGATE(safe[i])) && !paired;
        if (safe[i] < L' ' || lone || kForbidden.find(safe[i]) != std::wstring_view::npos)
            safe[i] = L'_';
    }
    while (safe.ends_with(L' ') || safe.ends_with(L'.'))
        safe.pop_back();
    while (safe.starts_with(L' '))
        safe.erase(0, 1);
    if (safe.empty() || is_device(safe))
        safe.insert(0, L"_");
    return safe;
}

}  // namespace pdf_settings
