// The dialog template of the pages that the host makes by itself.
#pragma once

#include <windows.h>

namespace compstui {

// An empty page of the size of the system's large sheets. Lives as long as the library.
[[nodiscard]] const DLGTEMPLATE* plain_page_template() noexcept;

}  // namespace compstui
