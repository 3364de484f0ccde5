// File names made of document titles, which may hold anything.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace companions {

struct NameLimits {
    size_t name_units = 255;       // UTF-16 units of a file name
    size_t name_bytes = SIZE_MAX;  // bytes of a file name in UTF-8, which is what Unix file systems count
    size_t path_units = 259;       // UTF-16 units of a whole path, without its terminating zero
};

// The limits of the running system.
[[nodiscard]] NameLimits system_name_limits() noexcept;

// "<folder>\<safe_stem(title)>.pdf", or "<folder>\<safe stem>(<number>).pdf" for a number above 0. The stem
// is cut, never inside a surrogate pair, so that name and path keep the limits; nothing when the folder
// leaves no room.
[[nodiscard]] std::optional<std::wstring> find_safe_path(std::wstring_view folder, std::wstring_view title,
                                                         unsigned number, const NameLimits& limits);

}  // namespace companions
