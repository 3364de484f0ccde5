#include "companions/render/metadata.h"

#include <algorithm>
#include <string_view>

#include "common/qk/text.h"

namespace companions::render {

namespace {

std::string xml_text(std::wstring_view text) {
    std::string xml;
    for (const char byte : qk::to_utf8(text))
        if (byte == '&' || byte == '<')
            xml += byte == '&' ? "&amp;" : "&lt;";
        else if (static_cast<unsigned char>(byte) >= ' ')  // others cannot stand in it
            xml += byte;
    return xml;
}

// The text may lie in the one item of a list: "<dc:title><rdf:Alt><rdf:li
// xml:lang='x-default'>Text</rdf:li>".
void replace_text(std::string& metadata, const std::string& element, const std::string& text) {
    const size_t start = metadata.find('<' + element + '>');
    const size_t end = metadata.find("</" + element + '>', std::min(start, metadata.size()));
    if (end == std::string::npos)
        return;
    size_t from = start + element.size() + 2;
    if (const size_t item = metadata.find("<rdf:li", from); item < end)
        from = metadata.find('>', item) + 1;
    metadata.replace(from, std::min(metadata.find("</rdf:li>", from), end) - from, text);
}

}  // namespace

bool has_hard_texts(const DocumentInfo& info) {
    return std::ranges::any_of(kDocumentTexts, [&info](const auto& row) {
        return std::ranges::any_of(info.*row.text, [](wchar_t unit) { return unit >= 0x800; });
    });
}

std::string with_texts(std::string metadata, const DocumentInfo& info) {
    for (const auto& row : kDocumentTexts)
        if (row.element && !(info.*row.text).empty())
            replace_text(metadata, row.element, xml_text(info.*row.text));
    return metadata;
}

picojson::object with_texts(picojson::object information, const DocumentInfo& info) {
    // As bytes: U+FFFD, of a text that qpdf puts into bytes itself, it would write as one without a meaning.
    for (const auto& row : kDocumentTexts)
        if (!(info.*row.text).empty())
            information[row.key] = picojson::value("b:" + utf16_digits(info.*row.text));
    return information;
}

}  // namespace companions::render
