// The command line of the renderer.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace companions::render {

// Memory of the printing process that the renderer may write texts into.
struct TextArena {
    DWORD process = 0;
    uint64_t address = 0;
    size_t bytes = 0;  // at most kMostArenaBytes are used
};
inline constexpr size_t kMostArenaBytes = 1u << 20;

struct Arguments {
    DWORD thread = 0;  // of the printing process; names the job's records
    std::wstring printer;
    std::wstring spool;
    std::wstring setting;  // empty: the printer's
    std::optional<TextArena> arena;
    std::wstring cancel;  // event that whoever waits sets when the job is to be given up; may be empty
    bool keep_spool = false;
    bool discard = false;  // only take back what was reserved for a job that ends without a PDF
};

// What a command line asks for.
struct ParsedArguments {
    Arguments arguments;
    std::wstring fault;  // what is wrong with it, in one sentence; empty when nothing is
    std::wstring help;   // when it asks for that
};

// Numbers are decimal, or hexadecimal after "0x".
[[nodiscard]] ParsedArguments parse_arguments(std::span<const wchar_t* const> words);

}  // namespace companions::render
