// The dialog templates of pages.
#pragma once

#include <windows.h>

namespace compstui {

// The page that the host makes by itself: an empty one of the size of the system's large sheets. Lives as
// long as the library.
[[nodiscard]] const DLGTEMPLATE* plain_page_template() noexcept;

// The dialog template `name` (a text or a number) of `instance`; null when it has none. Lives as long as
// `instance` is loaded.
[[nodiscard]] const DLGTEMPLATE* find_template(HINSTANCE instance, const wchar_t* name) noexcept;

}  // namespace compstui
