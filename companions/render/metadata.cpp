#include "companions/render/metadata.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "common/qk/text.h"

namespace companions::render {

namespace {

// Where the texts stand: the key of the information, the element of the metadata.
constexpr struct {
    std::wstring DocumentInfo::*text;
    const char* key;
    const char* element;  // null: only in the information
} kTexts[] = {{&DocumentInfo::title, "/Title", "dc:title"},
              {&DocumentInfo::author, "/Author", "dc:creator"},
              {&DocumentInfo::subject, "/Subject", "dc:description"},
              {&DocumentInfo::keywords, "/Keywords", "pdf:Keywords"},
              {&DocumentInfo::creator, "/Creator", "xmp:CreatorTool"},
              {&DocumentInfo::setting_name, "/PrintSetting", nullptr}};

std::string xml_text(std::wstring_view text) {
    std::string xml;
    for (const char byte : qk::to_utf8(text))
        if (byte == '&' || byte == '<')
            xml += byte == '&' ? "&amp;" : "&lt;";
        else if (static_cast<unsigned char>(byte) >= ' ')  // others cannot stand in it
            xml += byte;
    return xml;
}

// The bytes as qpdf takes them. It would write U+FFFD, of a text that qpdf puts into bytes itself, as one
// that has no meaning.
std::string utf16_text(const std::wstring& text) {
    std::string bytes = "b:feff";
    for (const wchar_t unit : qk::to_wide(qk::to_utf8(text)))  // half a pair becomes U+FFFD
        for (int shift = 12; shift >= 0; shift -= 4)
            bytes += "0123456789abcdef"[unit >> shift & 0xF];
    return bytes;
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
    return std::ranges::any_of(kTexts, [&info](const auto& row) {
        return std::ranges::any_of(info.*row.text, [](wchar_t unit) { return unit >= 0x800; });
    });
}

std::string with_texts(std::string metadata, const DocumentInfo& info) {
    for (const auto& row : kTexts)
        if (row.element && !(info.*row.text).empty())
            replace_text(metadata, row.element, xml_text(info.*row.text));
    return metadata;
}

picojson::object with_texts(picojson::object information, const DocumentInfo& info) {
    for (const auto& row : kTexts)
        if (!(info.*row.text).empty())
            information[row.key] = picojson::value(utf16_text(info.*row.text));
    return information;
}

}  // namespace companions::render
