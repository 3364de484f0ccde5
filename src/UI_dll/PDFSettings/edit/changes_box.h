// Asks whether what a person has changed in a print setting is to be saved.
#pragma once

#include <windows.h>

#include <span>
#include <string>

namespace pdf_settings {

// Shows every change, each a sentence, and asks: in a message box, or in a box of its own that scrolls when
// they are more than a screen may hold. True without a change. `owner` is a page of the edit sheet.
[[nodiscard]] bool confirm_changes(HWND owner, std::span<const std::wstring> changes);

}  // namespace pdf_settings
