// Colour profiles for output intents: what they describe and which printing condition they stand for.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace icc {

// The description in a profile's 'desc' tag (text description or multi-localized Unicode), at most 260 units.
// Nothing when the bytes are not such a profile; every offset in them is checked.
[[nodiscard]] std::optional<std::wstring> find_description(std::span<const std::byte> profile);

// The same of a file, of which only the tag table and that tag are read.
[[nodiscard]] std::optional<std::wstring> find_description(const std::wstring& path);

}  // namespace icc

// The identifier of the printing condition that a profile's description stands for; "Custom" when it is not a
// known one, never empty.
[[nodiscard]] std::string icc_ConditionIdFromDesc(const std::wstring& description);
