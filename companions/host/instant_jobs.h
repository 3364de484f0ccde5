// Many jobs at once without pages: only the road from STARTDOCPRE to ENDDOCPOST.
#pragma once

#include <string>
#include <vector>

#include "companions/host/driver_module.h"
#include "companions/host/held.h"
#include "companions/host/options.h"

namespace host {

struct InstantReport {
    size_t jobs = 0;
    size_t right = 0;                 // whose start record held the job's own title and path
    std::vector<std::wstring> wrong;  // the first few others, in words
    Held before;                      // after rounds to warm up
    Held after;
    double milliseconds = 0;  // of all threads together, from the first start to the last end
};

// options.threads threads run options.jobs jobs each. The dialog library asks nobody; its files are removed.
[[nodiscard]] InstantReport run_instant_jobs(const Options& options, const DriverModule& module);

[[nodiscard]] bool succeeded(const InstantReport& report) noexcept;

// The wrong ones, a line each, then "400 right records of 400; …".
[[nodiscard]] std::vector<std::wstring> report_lines(const InstantReport& report);
[[nodiscard]] std::string report_json(const InstantReport& report);

}  // namespace host
