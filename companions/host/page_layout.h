// From a text to the lines of its pages. Knows nothing of devices: widths come from a function.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// How many UTF-16 units at the start of a line fit the width of the page.
using FittingUnits = std::function<size_t(std::wstring_view line)>;

struct PageLayout {
    size_t lines_per_page = 1;  // at least 1
    FittingUnits fitting_units;
};

using Page = std::vector<std::wstring>;  // the lines from top to bottom

inline constexpr size_t kTabColumns = 8;

// One line as it is drawn: tabs go to the next multiple of kTabColumns, control characters become blanks.
[[nodiscard]] std::wstring drawable_line(std::wstring_view line);

// Breaks a line into pieces that fit, behind a blank where there is one, never inside a surrogate pair. At
// least one piece; each piece holds at least one character, however narrow the page.
[[nodiscard]] std::vector<std::wstring> wrap_line(std::wstring_view line, const FittingUnits& fitting_units);

// The pages of a text: CR, LF and CR LF end a line, a form feed ends the page. Neither opens an empty page at
// the end of the text; an empty text is one empty page.
[[nodiscard]] std::vector<Page> paginate(std::wstring_view text, const PageLayout& layout);

}  // namespace host
