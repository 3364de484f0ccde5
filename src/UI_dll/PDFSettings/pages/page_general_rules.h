// The rules of the General page: what its texts mean and in which order it lists the papers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "job/name_pattern.h"
#include "lib/forms.h"

namespace pdf_settings {

// Two decimals, with a point whatever the locale.
[[nodiscard]] std::wstring length_text(double millimetres);

// A length as the pages write it: without blanks around it and the unit behind it, with a point for a comma.
[[nodiscard]] std::wstring plain_length(std::wstring_view text);

// The number that digits with at most one "." stand for; nothing for any other text.
[[nodiscard]] std::optional<double> find_plain_number(std::wstring_view text) noexcept;

// A paper's width or height in millimetres; nothing when the text is none or out of range.
[[nodiscard]] std::optional<double> find_paper_length(std::wstring_view text) noexcept;

// A scale in percent, of which the first `kScaleUnits` units count; nothing when the text is none or out of
// range.
inline constexpr size_t kScaleUnits = 8;
[[nodiscard]] std::optional<double> find_scale(std::wstring_view text) noexcept;

// Whether the text is a resolution in dots per inch within the range.
[[nodiscard]] bool is_good_resolution(std::wstring_view text) noexcept;

// A resolution in dots per inch, not limited to a range; nothing when the text does not start with a number
// of at least 0.
[[nodiscard]] std::optional<int32_t> find_resolution(std::wstring_view text) noexcept;

// The file name that a pattern gives with these values, "Document.pdf"; an empty pattern is the title.
[[nodiscard]] std::wstring name_now(std::wstring_view pattern, const job::NameValues& values);

// Brings a length into the range of paper sizes.
[[nodiscard]] float paper_length(double millimetres) noexcept;

// The papers in the order of the page's list: the common ones first, each once.
[[nodiscard]] std::vector<FormRecord> in_list_order(std::vector<FormRecord> forms);

// The position of the first paper with that number, be it the form's or the driver's own.
[[nodiscard]] std::optional<size_t> find_list_position(const std::vector<FormRecord>& forms,
                                                       int32_t paper_number) noexcept;

}  // namespace pdf_settings
