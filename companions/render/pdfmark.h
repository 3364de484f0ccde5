// What the renderer tells the engine in PostScript: the document information and a count of the pages.
#pragma once

#include <string>
#include <string_view>

#include "print_settings/PrintSettings.h"

namespace companions::render {

// Texts of the PDF's document information, UTF-16; empty ones are left as the spooled document has them.
struct DocumentInfo {
    std::wstring title;
    std::wstring author;
    std::wstring subject;
    std::wstring keywords;
    std::wstring creator;
    std::wstring setting_name;  // under the key "PrintSetting"

    friend bool operator==(const DocumentInfo&, const DocumentInfo&) = default;
};

// Where each text stands: the key of the information, the element of the metadata.
inline constexpr struct {
    std::wstring DocumentInfo::*text;
    const char* key;
    const char* element;  // null: only in the information
} kDocumentTexts[] = {{&DocumentInfo::title, "/Title", "dc:title"},
                      {&DocumentInfo::author, "/Author", "dc:creator"},
                      {&DocumentInfo::subject, "/Subject", "dc:description"},
                      {&DocumentInfo::keywords, "/Keywords", "pdf:Keywords"},
                      {&DocumentInfo::creator, "/Creator", "xmp:CreatorTool"},
                      {&DocumentInfo::setting_name, "/PrintSetting", nullptr}};

// The setting's summary; the title of the job where the setting has none.
[[nodiscard]] DocumentInfo document_info(const ps::PrintSettings& settings, std::wstring_view job_title);

// The digits of a text in UTF-16BE with its byte-order mark, which every language fits into; U+FFFD stands in
// the place of each surrogate without its other half. And the same as a hexadecimal PostScript string.
[[nodiscard]] std::string utf16_digits(std::wstring_view text);
[[nodiscard]] std::string postscript_text(std::wstring_view text);

// Bytes as a PostScript string in parentheses, whatever stands in them.
[[nodiscard]] std::string postscript_literal(std::string_view bytes);

// The PostScript that runs before the spooled document and the one that runs after it. The engine takes the
// title of the document's own comments over the first, so the second gives the information again.
[[nodiscard]] std::string prologue(const DocumentInfo& info, bool landscape = false);
[[nodiscard]] std::string epilogue(const DocumentInfo& info);

// Wine's PostScript driver names itself so at the head of a document; from the end of the line before.
inline constexpr std::string_view kWineCreator = "\n%%Creator: Wine PostScript Driver";

// Whether the comments at the head of a spooled document say that its pages lie on their side.
[[nodiscard]] bool is_landscape(std::string_view head) noexcept;

// The marks in the engine's output: a page that is done, and the count at the end, each before a number.
inline constexpr std::string_view kPageMark = "zr:page ";
inline constexpr std::string_view kPagesMark = "zr:pages ";

}  // namespace companions::render
