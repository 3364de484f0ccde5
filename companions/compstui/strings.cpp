#include "companions/compstui/strings.h"

#include <algorithm>
#include <iterator>

#include "common/qk/memory_probe.h"

namespace compstui {

namespace {

struct OwnString {
    UINT id;
    std::wstring_view text;
};

constexpr OwnString kStrings[] = {
    {IDS_CPSUI_COLON_SEP, L": "}, {IDS_CPSUI_LBCB_NOSEL, L"(None)"}, {IDS_CPSUI_DEFAULT, L"Default"}};

}  // namespace

std::wstring_view own_string(UINT id) noexcept {
    const auto* found = std::find_if(std::begin(kStrings), std::end(kStrings),
                                     [id](const auto& own) { return own.id == id; });
    return found == std::end(kStrings) ? std::wstring_view() : found->text;
}

std::wstring text_of(const wchar_t* text, HINSTANCE instance) {
    if (!IS_INTRESOURCE(text))
        return qk::text_at(text, 4096);
    const auto id = static_cast<UINT>(reinterpret_cast<ULONG_PTR>(text));
    if (const std::wstring_view own = own_string(id); !own.empty())
        return std::wstring(own);
    const wchar_t* found = nullptr;
    const int units =
        id != 0 && instance ? LoadStringW(instance, id, reinterpret_cast<wchar_t*>(&found), 0) : 0;
    return units > 0 ? std::wstring(found, static_cast<size_t>(units)) : std::wstring();
}

bool has_icon(HINSTANCE instance, ULONG_PTR id) noexcept {
    return instance && id != 0 && IS_INTRESOURCE(id) &&
           FindResourceW(instance, MAKEINTRESOURCEW(id), RT_GROUP_ICON) != nullptr;
}

}  // namespace compstui
