#include "companions/compstui/strings.h"

#include "common/qk/memory_probe.h"

namespace compstui {

std::wstring text_of(const wchar_t* text, HINSTANCE instance) {
    if (!IS_INTRESOURCE(text))
        return qk::text_at(text, 4096);
    const auto id = static_cast<UINT>(reinterpret_cast<ULONG_PTR>(text));
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
