#include "UI_dll/PDFSettings/pages/page_font_rules.h"

#include <windows.h>

#include <algorithm>

#include "common/qk/text.h"

namespace pdf_settings {

bool has_in_name(std::wstring_view name, std::wstring_view wanted) {
    wanted = qk::without_blanks(wanted);
    if (wanted.empty() || name.empty())
        return wanted.empty();
    return FindNLSStringEx(LOCALE_NAME_USER_DEFAULT, FIND_FROMSTART | LINGUISTIC_IGNORECASE, name.data(),
                           static_cast<int>(name.size()), wanted.data(), static_cast<int>(wanted.size()),
                           nullptr, nullptr, nullptr, 0) >= 0;
}

void add_names(std::vector<std::wstring>& list, std::span<const std::wstring> names) {
    for (const std::wstring& name : names) {
        const auto same = [&](const std::wstring& listed) { return qk::equal_no_case(listed, name); };
        if (std::ranges::none_of(list, same))
            list.push_back(name);
    }
}

void remove_positions(std::vector<std::wstring>& list, std::span<const size_t> positions) {
    for (auto position = positions.rbegin(); position != positions.rend(); ++position)
        if (*position < list.size())
            list.erase(list.begin() + static_cast<std::ptrdiff_t>(*position));
}

}  // namespace pdf_settings
