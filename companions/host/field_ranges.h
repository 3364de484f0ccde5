// Which numbers the fields of a setting take, in words.
#pragma once

#include <map>
#include <string>

namespace host {

// By the field's place, "General.Scale": "10 to 400". Fields that take every number of their type are left
// out when that is no whole number.
[[nodiscard]] const std::map<std::wstring, std::wstring>& field_ranges();

}  // namespace host
