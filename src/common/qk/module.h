// This module as the loader sees it.
#pragma once

#include <windows.h>

namespace qk {

// The instance of the module (or test program) that this code is linked into.
[[nodiscard]] HINSTANCE module_instance() noexcept;

inline constexpr wchar_t kProductName[] = L"Corvanta Vantrix 8.0";

}  // namespace qk
