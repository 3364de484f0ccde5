#include "companions/render/pdfmark.h"

#include <algorithm>

#include "common/qk/text.h"

namespace companions::render {

namespace {

std::string information(const DocumentInfo& info) {
    std::string entries;
    for (const auto& row : kDocumentTexts)
        if (const std::wstring& text = info.*row.text; !text.empty())
            entries += std::string("  ") + row.key + ' ' + postscript_text(text) + '\n';
    return entries.empty() ? std::string() : "mark\n" + entries + "/DOCINFO pdfmark\n";
}

std::string print_count(std::string_view mark) {
    return '(' + std::string(mark) + ") print currentpagedevice /PageCount get =";
}

}  // namespace

DocumentInfo document_info(const ps::PrintSettings& settings, std::wstring_view job_title) {
    const auto& summary = *settings.summary();
    return {summary.Title.empty() ? std::wstring(job_title) : summary.Title,
            summary.Author,
            summary.Subject,
            summary.Keywords,
            summary.Creator,
            summary.EmbedPSFileName ? settings->PSName : std::wstring()};
}

std::string utf16_digits(std::wstring_view text) {
    std::string digits = "FEFF";
    for (const wchar_t unit : qk::to_wide(qk::to_utf8(text)))  // whole pairs only
        for (int shift = 12; shift >= 0; shift -= 4)
            digits += "0123456789ABCDEF"[unit >> shift & 0xF];
    return digits;
}

std::string postscript_text(std::wstring_view text) {
    return '<' + utf16_digits(text) + '>';
}

std::string postscript_literal(std::string_view bytes) {
    std::string quoted = "(";
    for (const char byte : bytes) {
        if (byte == '(' || byte == ')' || byte == '\\')
            quoted += '\\';
        quoted += byte;
    }
    return quoted + ')';
}

bool is_landscape(std::string_view head) noexcept {
    const auto has = [](std::string_view text, std::string_view line) {
        return text.find(line) != std::string_view::npos;
    };
    const size_t end = std::min(head.find("\n%%EndComments"), head.size());
    const std::string_view comments = head.substr(0, end);
    // A spool that the system has drawn once more from its own records says it of each page only.
    const bool each_page = !has(comments, "\n%%Orientation:") && has(comments, kWineCreator);
    return has(each_page ? head.substr(end) : comments,
               each_page ? "\n%%PageOrientation: Landscape" : "\n%%Orientation: Landscape");
}

std::string prologue(const DocumentInfo& info, bool landscape) {
    // In the user's dictionary, where the document's look-up of the name finds it before the operator.
    return "%!PS\nuserdict /showpage {\n  systemdict /showpage get exec\n  " + print_count(kPageMark) +
           " flush\n} bind put\n" + (landscape ? "<</Orientation 3>> setpagedevice\n" : "") +
           information(info);
}

std::string epilogue(const DocumentInfo& info) {
    return "%!PS\n" + information(info) + print_count(kPagesMark) + " flush\n";
}

}  // namespace companions::render
