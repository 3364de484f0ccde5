// The command line of the renderer.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

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
    bool keep_spool = false;
    bool discard = false;  // only take back what was reserved for a job that ends without a PDF
};

// What a command line asks for; `fault` says in one sentence what is wrong with it and is empty when nothing
// is.
struct ParsedArguments {
    Arguments arguments;
    std::wstring fault;
    bool help = false;
};

// Numbers are decimal, or hexadecimal after "0x".
[[nodiscard]] ParsedArguments parse_arguments(std::span<const wchar_t* const> words);

// Several lines, the last with its line end.
inline constexpr std::string_view kUsage =
    "usage: zr_render --thread ID --printer NAME --spool FILE [--setting PATH]\n"
    "                 [--notify PID:ADDRESS:BYTES] [--keep-spool]\n"
    "       zr_render --thread ID --discard\n"
    "Turns the spooled PostScript of a job into the PDF that the job's start record names.\n"
    "  --thread   thread of the printing process, which names the job's records\n"
    "  --printer  printer whose setting applies when --setting names none\n"
    "  --spool    PostScript of the job; deleted after success\n"
    "  --setting  setting file of the job: a path, or a name to look up in the settings folders\n"
    "  --notify   memory of the printing process for the texts of the result record\n"
    "  --keep-spool  leave the spooled file where it is\n"
    "  --discard  remove the empty file that was reserved for a job which is aborted\n"
    "exit codes: 0 done, 1 failed (see the result record), 2 wrong arguments, 3 no such job\n";

}  // namespace companions::render
