// A document that becomes a PDF inside the program that prints it.
#pragma once

#include <string>

#include "companions/print_processor/spooled_job.h"

namespace processor {

// Sends the document events of `job` to the printer's user-interface module, loaded as the print system loads
// it, and runs the renderer over `spool` between them. Blocks the calling thread, whose program's windows are
// painted meanwhile. A failure is told as the administrator has chosen, once, by whoever finds it; a
// cancelled job says nothing. Needs nothing from the caller but that the spool outlives it. Throws for want
// of memory.
void make_pdf(const SpooledJob& job, const std::wstring& spool);

}  // namespace processor
