// The program's two streams: what was asked for goes to the standard output, progress and faults to the
// standard error stream.
#pragma once

#include <string_view>

namespace host {

// Writes one line of UTF-16: as it is to a console, in UTF-8 with a line feed to anything else. Any thread;
// lines of two threads do not mix.
void print_line(std::wstring_view line);
void report_progress(std::wstring_view line);

// Makes print_line write to the standard error stream too, so that the standard output holds nothing but
// JSON.
void keep_output_for_json() noexcept;

// A text that is complete (JSON, the usage text), to the standard output.
void print_document(std::wstring_view document);

}  // namespace host
