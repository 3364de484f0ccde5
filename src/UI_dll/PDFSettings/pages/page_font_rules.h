// The rules of the Fonts page's two lists of names; pure.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pdf_settings {

// Whether `name` has `wanted` in it, without regard to case and to blanks around `wanted`.
[[nodiscard]] bool has_in_name(std::wstring_view name, std::wstring_view wanted);

// Appends those of `names` that are not in the list yet; case does not tell names apart.
void add_names(std::vector<std::wstring>& list, std::span<const std::wstring> names);

// Removes the entries at these positions, which ascend.
void remove_positions(std::vector<std::wstring>& list, std::span<const size_t> positions);

}  // namespace pdf_settings
