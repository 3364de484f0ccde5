// File names made of names that may hold anything.
#pragma once

#include <string>
#include <string_view>

namespace qk {

// The name as every Windows file system takes it, of any length: <>:"/\|?* and surrogates without their other
// half become underscores, control characters `for_controls`; blanks at both ends and full stops at the end
// go; a device's name, whatever extension stands behind it, gets an underscore in front. Empty when nothing
// is left.
[[nodiscard]] std::wstring safe_file_name(std::wstring_view name, wchar_t for_controls);

}  // namespace qk
