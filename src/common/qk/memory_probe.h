// Memory that somebody else vouches for: callers' DEVMODEs, shared records, pointers found in them.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>

namespace qk {

// Whether `size` bytes from `address` can be read, or written, now. Never faults; a null address or a range
// that wraps around cannot, nor can a guard page, which stays one. Another thread may still change the
// mapping afterwards.
[[nodiscard]] bool is_readable(const void* address, size_t size) noexcept;
[[nodiscard]] bool is_writable(void* address, size_t size) noexcept;

// Copies `size` bytes out of or into memory that may not be there, or may go while it is copied; false when a
// byte could not be, with some of the others copied. Never faults. The two may overlap.
[[nodiscard]] bool try_copy(void* target, const void* source, size_t size) noexcept;

// As many of `units` units from `address` on as can be read.
[[nodiscard]] std::wstring copy_while_readable(const wchar_t* address, size_t units);

// The zero-terminated text at `address`, at most `most` units of it; empty for a null address.
[[nodiscard]] std::wstring text_at(const wchar_t* address, size_t most = 32767);

}  // namespace qk
