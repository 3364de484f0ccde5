// The user's guide, as the system shows its HTML. Without an installed guide there is no help.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace pdf_settings {

// The chapter of the list page; those of the edit sheet's pages stand in its table.
inline constexpr wchar_t kListChapter[] = L"settings";

// The full path of the page of a chapter, in the language of the texts where there is one, else in English;
// nothing where it is not installed.
[[nodiscard]] std::optional<std::wstring> find_chapter(const std::wstring& chapter);

// Opens the chapter in the program that the user has for HTML. Where that fails, says so. The dialog's
// thread.
void show_help(HWND owner, const std::wstring& chapter);

}  // namespace pdf_settings
