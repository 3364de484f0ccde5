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

// Whether a path names a PDF by its extension, of any case.
inline constexpr std::wstring_view kPdfExtension = L".pdf";
[[nodiscard]] bool ends_in_pdf(std::wstring_view path) noexcept;

// The stem of a file name (without ".pdf") that every Windows file system takes, of any length (see
// qk::safe_file_name). A ".pdf" at the title's end is dropped, control characters become blanks, and what is
// left empty becomes "no_name".
[[nodiscard]] std::wstring safe_stem(std::wstring_view title);
