// One print job: a text file through GDI, with the print system's part played around it.
#pragma once

#include "companions/host/driver_module.h"
#include "companions/host/job_report.h"
#include "companions/host/options.h"
#include "companions/host/output_target.h"

namespace host {

// Prints options.file; what happened is in the report. Progress goes to the standard error stream. Throws
// HostError when the job cannot even begin: the text file cannot be read, the installation is incomplete.
[[nodiscard]] JobReport print_file(const Options& options, const DriverModule& module);

}  // namespace host
