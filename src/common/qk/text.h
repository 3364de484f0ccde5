// UTF-8 and UTF-16, the one formatting wrapper, numbers, and the two-call dance.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qk {

// UTF-8 to UTF-16. Bytes that are not UTF-8 become U+FFFD; never fails but for memory.
[[nodiscard]] std::wstring to_wide(std::string_view utf8);

// UTF-16 to UTF-8. A lone surrogate becomes U+FFFD; never fails but for memory.
[[nodiscard]] std::string to_utf8(std::wstring_view utf16);

// printf with the Windows meaning of its letters (%s is a wide text, %S a narrow one).
[[nodiscard]] std::wstring format(const wchar_t* pattern, ...);

// The same into a buffer of `capacity` units, cut to fit and always terminated.
void format_into(wchar_t* buffer, size_t capacity, const wchar_t* pattern, ...) noexcept;

// `text` of at most `most` UTF-16 units; a surrogate pair is not cut in half.
[[nodiscard]] std::wstring_view cut(std::wstring_view text, size_t most) noexcept;

// Copies `text`, cut to capacity - 1 units, and fills the rest of the buffer with zeros. A surrogate pair is
// never cut in half. `capacity` must be at least 1.
void copy_zero_padded(wchar_t* buffer, size_t capacity, std::wstring_view text) noexcept;

// A decimal number at the start of `text` (blanks before it allowed), independent of the C locale; nothing
// when there is none or it is not finite.
[[nodiscard]] std::optional<double> find_number(std::wstring_view text) noexcept;

// A decimal integer at the start of `text`: blanks, a sign, digits; what follows them is not looked at. Of
// numbers beyond a thousand million that one. Nothing when there is no digit.
[[nodiscard]] std::optional<int32_t> find_integer(std::wstring_view text) noexcept;

// A number with so many decimals (at most 6), rounded, with a point whatever the C locale. Of numbers beyond
// a thousand million that one.
[[nodiscard]] std::wstring fixed_text(double number, int decimals);

// Equal without regard to case, as file and registry names are compared.
[[nodiscard]] bool equal_no_case(std::wstring_view a, std::wstring_view b) noexcept;
[[nodiscard]] bool starts_with_no_case(std::wstring_view text, std::wstring_view prefix) noexcept;
[[nodiscard]] bool ends_with_no_case(std::wstring_view text, std::wstring_view suffix) noexcept;

// `text` without the blanks around it, of every kind that people type and paste.
[[nodiscard]] std::wstring_view without_blanks(std::wstring_view text) noexcept;

// The part behind the last backslash; the whole text when it has none.
[[nodiscard]] std::wstring_view file_part(std::wstring_view path) noexcept;

// That part without its extension, which begins at its last point.
[[nodiscard]] std::wstring_view file_stem(std::wstring_view path) noexcept;

[[nodiscard]] std::wstring_view without_trailing_backslashes(std::wstring_view path) noexcept;

// Calls `fill(buffer, units)` with growing buffers until the text fits. `fill` follows the Windows habit of
// GetModuleFileName and GetPrivateProfileString: it returns the units written, a number of at least
// units - `slack` when the buffer was too small, 0 for nothing.
template <class Fill>
[[nodiscard]] std::wstring grow_until_it_fits(Fill fill, size_t slack = 1, size_t most = 32768) {
    for (std::wstring text(260, L'\0');; text.resize(text.size() * 2)) {
        const size_t written = fill(text.data(), static_cast<DWORD>(text.size()));
        if (written + slack < text.size() || text.size() >= most) {
            text.resize(written < text.size() ? written : 0);
            return text;
        }
    }
}

// What a function tells that first says how large its answer is.
struct SizedAnswer {
    std::unique_ptr<std::byte[]> bytes;  // null: no answer, or no memory for it
    DWORD size = 0;                      // as it was told first, which `bytes` has room for
    DWORD stored = 0;  // as it was told with the answer; both agree unless it has just changed
};

// Calls `ask(buffer, bytes, told)`, a nonzero result being success, without a buffer and again with one; no
// answer when it is below `least` bytes.
template <class Ask>
[[nodiscard]] SizedAnswer read_sized(Ask ask, size_t least = 1) {
    SizedAnswer answer;
    ask(nullptr, DWORD{0}, &answer.size);
    if (answer.size < least)
        return {};
    answer.bytes.reset(new (std::nothrow) std::byte[answer.size]());
    if (!answer.bytes || !ask(reinterpret_cast<BYTE*>(answer.bytes.get()), answer.size, &answer.stored))
        return {};
    return answer;
}

}  // namespace qk
