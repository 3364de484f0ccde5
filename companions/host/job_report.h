// What one job was and how it went, for people and for machines.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "companions/host/event_player.h"
#include "companions/host/record_fields.h"

namespace host {

enum class Outcome {
    kPrinted,    // the PDF is there
    kSpooled,    // the PostScript is there; no PDF was asked for
    kRefused,    // the module refused the start of the job
    kCancelled,  // the dialog was cancelled
    kAborted,    // given up as asked
    kFailed,     // the print system, the renderer or the module reported an error
};

struct JobReport {
    std::wstring file;
    std::wstring encoding;
    std::wstring title;
    std::wstring printer;
    std::wstring module;  // path
    std::wstring font;
    DWORD thread = 0;
    int job = 0;       // the print system's number
    size_t pages = 0;  // of the text
    size_t printed_pages = 0;
    std::vector<std::wstring> notes;
    std::vector<PlayedEvent> events;
    std::optional<Fields> start_record;
    std::optional<Fields> result_record;
    std::optional<DWORD> renderer_exit_code;
    std::wstring spool;  // empty: not kept
    std::wstring pdf;    // empty: none
    Outcome outcome = Outcome::kFailed;
    DWORD last_error = 0;  // of the thread, as the last important event left it
    std::wstring fault;    // what went wrong, in words; empty when nothing did
    std::wstring caption;  // what the module tells the user of a refusal or failure
    std::wstring message;
    std::vector<std::wstring> trace;
};

[[nodiscard]] bool succeeded(Outcome outcome) noexcept;
[[nodiscard]] const wchar_t* outcome_name(Outcome outcome) noexcept;

// Lines for a person. Page events that went alike are summed up in one line.
[[nodiscard]] std::vector<std::wstring> report_lines(const JobReport& report);

// One JSON object, in UTF-8, with a line feed at its end.
[[nodiscard]] std::string report_json(const JobReport& report);

}  // namespace host
