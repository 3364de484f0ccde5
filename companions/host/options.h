// The command line of zr_print.exe.
#pragma once

#include <windows.h>

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace host {

enum class Command { kInstall, kUninstall, kStatus, kPrint, kProperties, kCheck, kDiff };

struct Options {
    Command command = Command::kStatus;
    bool json = false;

    // install
    std::wstring from;                     // folder to install from; empty: the program's own
    std::optional<DWORD> notify_channels;  // also print
    bool make_default = false;

    // properties
    bool printer_sheet = false;
    bool direct = false;
    bool no_permission = false;
    std::optional<int> button;  // PSBTN_*: pressed without a user

    // check, diff
    std::vector<std::wstring> setting_files;

    // print; the setting and the trace also properties
    std::wstring file;
    std::wstring title;    // empty: the file's name
    std::wstring output;   // PDF file or folder; empty: the dialog library decides
    std::wstring setting;  // name or path of a print setting; empty: the printer's
    std::optional<DWORD> trace_level;
    std::optional<size_t> abort_after_page;
    bool render = true;
    bool keep_spool = false;
};

struct ParsedOptions {
    Options options;
    std::wstring fault;  // what is wrong, in one sentence; empty when nothing is
    std::wstring help;   // when the words ask for that: lines, or with --json a JSON object
};

// What the words behind the program's name ask for.
[[nodiscard]] ParsedOptions parse_options(std::span<const wchar_t* const> words);

}  // namespace host
