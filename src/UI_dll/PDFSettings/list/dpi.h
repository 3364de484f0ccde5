// What the dialog does for the DPI of its window.
#pragma once

#include <windows.h>

#include "UI_dll/PDFSettings/dialog_state.h"

// Dots per inch of a window: GetDpiForWindow, else of the screen; 96 when the answer is 0 or above 1000.
[[nodiscard]] UINT qk_GetWindowDPI(HWND window) noexcept;

// Calls SetThreadDpiAwarenessContext where the system has it; the previous context, or null.
HANDLE qk_SetThreadDpiAwarenessContext(HANDLE context) noexcept;

namespace pdf_settings {

[[nodiscard]] constexpr UINT usable_dpi(UINT dpi) noexcept {
    return dpi == 0 || dpi > 1000 ? 96 : dpi;
}

// The pictures of the list page at that DPI. What cannot be loaded stays empty.
[[nodiscard]] PageIcons load_page_icons(UINT dpi);

}  // namespace pdf_settings
