// What programs that were ended from outside have left, found by its name.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace companions {

using IsLeft = std::function<bool(std::wstring_view name)>;

// Deletes the files whose full paths fit the pattern (wild cards in the last part only) and whose names the
// condition holds for: the caller's own, told by a name that nothing else makes and that has the number of
// the process that made it. With a second condition folders instead: each loses the files that this one holds
// for, and goes itself when nothing else is in it.
//
// What belongs to somebody else stays: other files, and folders within such a folder. Links and mount points
// (reparse points) are neither deleted nor followed. What is in use stays, and nothing is told of it.
void delete_leftovers(const std::wstring& pattern, const IsLeft& is_left, const IsLeft& is_inside = {});

// The number that stands in a name between its start and the first `end` behind it, or the name's end where
// that is a zero; nothing where anything but digits stands there.
[[nodiscard]] std::optional<DWORD> find_process(std::wstring_view name, std::wstring_view start,
                                                wchar_t end = L'\0');

}  // namespace companions
