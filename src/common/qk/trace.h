// The call trace: every function of the module says where it is, when the trace switch is on.
//
// The switch is a block of shared memory that another tool of the product makes; its first 32-bit word is the
// level. 0 writes nothing, 1 to 4 only the ">>" and "<<" of the larger entry points, 5 and above everything.
#pragma once

#include <windows.h>

#include <string>

namespace qk::trace {

inline constexpr DWORD kScopeLevel = 1;
inline constexpr DWORD kPlainLevel = 5;

// A plain word on purpose: a stale read only changes what is traced, and an off call is one comparison.
inline DWORD level = 0;

// Reads the level from the trace switch; 0 when there is none. Called at process attach and by the
// property-sheet and printer-event entry points.
void read_level() noexcept;

// Writes one record, cut at 1,000 characters: ".<thread> <file>(<line>)  <text>", without "(<line>)" when the
// line is 0. Any thread; keeps the last error.
[[gnu::cold]] void write(const wchar_t* text, const char* source, unsigned line) noexcept;
[[gnu::cold]] void write(const char* text, const char* source, unsigned line) noexcept;

[[gnu::cold]] inline void write(const std::wstring& text, const char* source, unsigned line) noexcept {
    write(text.c_str(), source, line);
}

// The same of a text made of a wide pattern and its values; needs no memory.
[[gnu::cold]] void write_formatted(const char* source, unsigned line, const wchar_t* pattern, ...) noexcept;

// ">>" and the function's name while it is entered, "<<" and the name when it is left.
class Scope {
public:
    Scope(const char* function, const char* source, unsigned line) noexcept
        : function_(function), source_(source) {
        if (level >= kScopeLevel)
            mark(">>", line);
    }
    ~Scope() {
        if (level >= kScopeLevel)
            mark("<<", 0);
    }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

private:
    [[gnu::cold]] void mark(const char* arrow, unsigned line) const noexcept;

    const char* function_;
    const char* source_;
};

// Formats and writes a text to the debug output whatever the level, for faults that nobody else is told of.
void debug_output(const wchar_t* pattern, ...) noexcept;

}  // namespace qk::trace

// The trace's macros add the source file and line. TRACE takes a text (narrow, wide or a string object);
// TRACE_F a wide pattern and its values (%s is a wide text, %S a narrow one). What they are given is computed
// only when the level asks for it.
#define ZR_TRACE_WITH(write, ...)                                        \
    do {                                                                 \
        if (::qk::trace::level >= ::qk::trace::kPlainLevel) [[unlikely]] \
            ::qk::trace::write(__VA_ARGS__);                             \
    } while (false)
#define TRACE(text) ZR_TRACE_WITH(write, text, __FILE__, __LINE__)
#define TRACE_F(...) ZR_TRACE_WITH(write_formatted, __FILE__, __LINE__, __VA_ARGS__)
#define TRACE_SCOPE(function) const ::qk::trace::Scope trace_scope_(function, __FILE__, __LINE__)
