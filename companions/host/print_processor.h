// The part of the print system that takes the spooled document to the printer's port.
#pragma once

#include <string>

namespace host {

struct PrintProcessor {
    std::wstring name;      // as it is registered
    std::wstring datatype;  // of the documents that it takes
    std::wstring meaning;   // in words, for the installation's report
};

// The print processor that a printer has to name on this print system so that documents arrive as
// PostScript. Wine from version 10 on spools documents as EMF, and a processor of its own turns them into
// PostScript; earlier ones spool PostScript, which is handed on as it is.
[[nodiscard]] PrintProcessor needed_print_processor();

// What the name of a printer's processor means; the name alone where it is none of ours.
[[nodiscard]] std::wstring print_processor_text(const std::wstring& name);

}  // namespace host
