// Patterns for the name of the PDF: text with words in braces, "{date} {title}", that each job puts its own
// values for. UTF-16; any thread.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace job {

// The text of a setting's `Addition` that holds the pattern. An administrator's `PDFFileName` is one too.
inline constexpr wchar_t kFileNameKey[] = L"FileName";
inline constexpr size_t kPatternUnits = 200;  // as many can be typed
// Every word there is, as they are told.
inline constexpr wchar_t kNameWords[] = L"{title} {date} {time} {user} {printer} {counter}";

struct NameValues {
    std::wstring title;    // of the document, without ".pdf"
    SYSTEMTIME time = {};  // {date} is 2026-11-22, {time} 06-10-05
    std::wstring user, printer;
    unsigned counter = 1;  // the caller's to raise until the name is free
};

// The name with the words' values, which may have any characters; other braces stay as they are.
[[nodiscard]] std::wstring expand_name(std::wstring_view pattern, const NameValues& values);

// Whether the pattern has a {counter}.
[[nodiscard]] bool counts(std::wstring_view pattern) noexcept;

// What is wrong with a pattern: the word in braces that there is none of, or the sign of a folder or drive;
// empty for a sound one.
[[nodiscard]] std::wstring_view find_pattern_fault(std::wstring_view pattern) noexcept;

}  // namespace job
