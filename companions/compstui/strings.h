// Texts and icons that callers give as a pointer or as the number of a resource.
#pragma once

#include <string>

#include "companions/compstui/interface.h"

namespace compstui {

// What the caller means by `text`: the text itself, or by its number a string of `instance`.
// Empty for null, for a number without string and for memory that cannot be read.
[[nodiscard]] std::wstring text_of(const wchar_t* text, HINSTANCE instance);

// Whether `instance` has an icon of this number; loading one that is not there would leave a sheet without
// any.
[[nodiscard]] bool has_icon(HINSTANCE instance, ULONG_PTR id) noexcept;

}  // namespace compstui
