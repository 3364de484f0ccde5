// One job as the print system hands it over, and its data.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>
#include <vector>

namespace processor {

struct SpooledJob {
    std::wstring name;      // "<printer>, Job <number>", by which its data is read
    std::wstring printer;   // whose port the job goes to
    std::wstring document;  // its title; may be empty
    std::wstring datatype;
    std::wstring output;  // a file of the program's own choice, or the printer's port; empty: the port
    std::vector<std::byte> mode;  // its DEVMODEW; may be empty
    DWORD number = 0;
};

// Writes the job's data as PostScript into the file `target`, which is cut first: plain text is laid out on
// pages, EMF is drawn by the system's own processor, the rest is copied as it is. Shows nothing. False, with
// the last error, when that fails; a file that was cut is then gone.
[[nodiscard]] bool write_postscript(const SpooledJob& job, const std::wstring& target);

// Whether this job's data is to become a PDF: it goes to the printer's own port.
[[nodiscard]] bool goes_to_port(const SpooledJob& job);

}  // namespace processor
