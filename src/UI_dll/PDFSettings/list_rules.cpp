#include "UI_dll/PDFSettings/list_rules.h"

#include <windows.h>

#include <commctrl.h>

#include <algorithm>

#include "common/qk/file_name.h"
#include "common/qk/text.h"

namespace pdf_settings {

namespace {

bool is_digit(wchar_t unit) noexcept {
    return unit >= L'0' && unit <= L'9';
}

void lower(std::wstring& text) noexcept {
    CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
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
    const std::wstring safe = qk::safe_file_name(qk::cut(name, kNameUnits), L'_');
    return safe.empty() ? L"_" : safe;
}

}  // namespace pdf_settings
