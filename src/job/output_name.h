// What a job is called: the default name of its PDF file and the PDF's title. UTF-16; any thread.
#pragma once

#include <string>
#include <string_view>

// The default output file name for a document name (may be null), as it is offered in the save dialog. Reads
// the registry value "Cutoff_by_period", which replaces the document's extension instead of appending to it.
[[nodiscard]] std::wstring SetPDFname(const wchar_t* document_name);

// The same for a switch already read.
[[nodiscard]] std::wstring pdf_name(std::wstring_view document_name, bool cut_off_by_period);

// The document name without the prefix that some applications put before it; "no_name" for an empty one.
[[nodiscard]] std::wstring CleanJobTitle(std::wstring_view document_name);
