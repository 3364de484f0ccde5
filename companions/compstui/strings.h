// Texts and icons that callers give as a pointer or as the number of a resource, and the host's own texts.
#pragma once

#include <string>
#include <string_view>

#include "companions/compstui/interface.h"

namespace compstui {

// The host's own text for an IDS_CPSUI_* number; empty for a number that it has none for.
[[nodiscard]] std::wstring_view own_string(UINT id) noexcept;

// What the caller means by `text`: the text itself, or by its number a string of the host or of `instance`.
// Empty for null, for a number without string and for memory that cannot be read.
[[nodiscard]] std::wstring text_of(const wchar_t* text, HINSTANCE instance);

// Whether `instance` has an icon of this number; loading one that is not there would leave a sheet without
// any.
[[nodiscard]] bool has_icon(HINSTANCE instance, ULONG_PTR id) noexcept;

}  // namespace compstui
