// Where a job's print data lies until it is a PDF.
#pragma once

#include <string>

namespace host {

// The path of a new, empty file in the temporary folder; `start` begins its name, before this process's
// number and a '_'. The print system writes into what is there without cutting it, so a file that an ended
// job has left is never taken. Throws HostError (job failed) when the folder takes no file.
[[nodiscard]] std::wstring make_spool_file(const wchar_t* start);

}  // namespace host
