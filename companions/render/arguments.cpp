#include "companions/render/arguments.h"

#include <CLI/CLI.hpp>

#include <algorithm>

#include "companions/command_line.h"

namespace companions::render {

namespace {

void add_options(CLI::App& app, Arguments& to, std::vector<uint64_t>& arena) {
    app.add_option("--thread", to.thread, "thread of the printing process, which names the job's records")
        ->required()
        ->check(above_zero);
    auto* discard = app.add_flag("--discard", to.discard,
                                 "only remove the empty file that was reserved for a job which is aborted");
    const CLI::Option* needed[] = {
        add_text(app, "--printer", to.printer, "printer whose setting applies when --setting names none"),
        add_text(app, "--spool", to.spool, "PostScript of the job; deleted after success")};
    add_text(app, "--setting", to.setting,
             "setting file of the job: a path, or a name to look up in the settings folders");
    app.add_option("--notify", arena,
                   "memory of the printing process for the texts of the result record: PID:ADDRESS:BYTES")
        ->delimiter(':')
        ->expected(3)
        ->multi_option_policy(CLI::MultiOptionPolicy::Throw)
        ->check(above_zero);
    add_text(app, "--cancel", to.cancel, "event that is set when the job is to be given up");
    app.add_flag("--keep-spool", to.keep_spool, "leave the spooled file where it is");
    app.callback([discard, printer = needed[0], spool = needed[1]] {
        for (const CLI::Option* option : {printer, spool})
            if (discard->count() == 0 && option->count() == 0)
                throw CLI::RequiredError(option->get_name());
    });
}

}  // namespace

ParsedArguments parse_arguments(std::span<const wchar_t* const> words) {
    ParsedArguments parsed;
    std::vector<uint64_t> arena;
    CLI::App app("Turns the spooled PostScript of a job into the PDF that the job's start record names.",
                 "zr_render");
    app.footer("exit codes: 0 done, 1 failed (see the result record), 2 wrong arguments, 3 no such job");
    prepare(app);
    add_options(app, parsed.arguments, arena);
    ReadWords read = read_words(app, words);
    parsed.help = std::move(read.help);
    parsed.fault = std::move(read.fault);
    if (parsed.fault.empty() && arena.size() == 3)
        parsed.arguments.arena = {static_cast<DWORD>(arena[0]), arena[1],
                                  static_cast<size_t>(std::min<uint64_t>(arena[2], kMostArenaBytes))};
    return parsed;
}

}  // namespace companions::render
