#include "companions/render/fonts.h"

#include <windows.h>

#include <picojson.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <set>
#include <vector>

#include "common/qk/gdi_handle.h"
#include "common/qk/text.h"

namespace companions::render {

namespace {

constexpr const char* kBase14[] = {
    "Courier",        "Courier-Bold",      "Courier-Oblique", "Courier-BoldOblique",   "Helvetica",
    "Helvetica-Bold", "Helvetica-Oblique", "Symbol",          "Helvetica-BoldOblique", "Times-Roman",
    "Times-Bold",     "Times-Italic",      "ZapfDingbats",    "Times-BoldItalic"};

unsigned word_at(const std::vector<std::byte>& table, size_t at) {
    return at + 2 <= table.size()
               ? std::to_integer<unsigned>(table[at]) << 8 | std::to_integer<unsigned>(table[at + 1])
               : 0;
}

// The PostScript name in a font's table of names; empty when there is none.
std::string postscript_name(const std::vector<std::byte>& table) {
    constexpr unsigned kPostScriptName = 6;
    constexpr unsigned kWindows = 3;
    const size_t texts = word_at(table, 4);
    for (size_t i = 0; i < word_at(table, 2); ++i) {
        const size_t entry = 6 + 12 * i;
        if (word_at(table, entry) != kWindows || word_at(table, entry + 6) != kPostScriptName)
            continue;
        std::string name;
        const size_t start = texts + word_at(table, entry + 10);
        for (size_t at = start; at + 1 < table.size() && at < start + word_at(table, entry + 8); at += 2)
            if (const unsigned unit = word_at(table, at); unit > ' ' && unit < 0x7F)
                name += static_cast<char>(unit);
        return name;
    }
    return {};
}

// The names of a family's four usual faces.
void add_names(std::set<std::string>& names, HDC dc, const std::wstring& family) {
    constexpr DWORD kNameTable = 0x656D616E;  // "name"
    for (const LONG weight : {FW_NORMAL, FW_BOLD})
        for (const BYTE italic : {BYTE{0}, BYTE{1}}) {
            LOGFONTW wanted = {};
            wanted.lfHeight = -100;
            wanted.lfWeight = weight;
            wanted.lfItalic = italic;
            wanted.lfCharSet = DEFAULT_CHARSET;
            qk::copy_zero_padded(wanted.lfFaceName, std::size(wanted.lfFaceName), family);
            const qk::Font font(CreateFontIndirectW(&wanted));
            const qk::Selected selected(dc, font.get());
            const DWORD size = GetFontData(dc, kNameTable, 0, nullptr, 0);
            if (size == GDI_ERROR)
                continue;
            std::vector<std::byte> table(size);
            if (GetFontData(dc, kNameTable, 0, table.data(), size) == size)
                names.insert(postscript_name(table));
        }
}

std::string list(const char* key, const std::set<std::string>& names) {
    std::string text = std::string("/") + key + " [";
    for (const std::string& name : names)
        if (name.find_first_of("()<>[]{}/% \t\n\f\r") == std::string::npos && !name.empty())
            text += " /" + name;
    return text + " ]\n";
}

}  // namespace

std::string font_parameters(const ps::Font_impl& fonts, bool all) {
    std::set<std::string> names;
    qk::DeviceContext dc;  // only for names: with it the display's driver is loaded
    if (!fonts.Fonts.empty())
        dc.reset(CreateCompatibleDC(nullptr));
    for (const std::wstring& family : fonts.Fonts) {
        // Fonts of the document itself may have the name with or without its blanks.
        std::string own = qk::to_utf8(family);
        names.insert(own.find(' ') == std::string::npos ? own : std::string());
        std::erase(own, ' ');
        names.insert(own);
        add_names(names, dc.get(), family);
    }
    const bool listed_only = fonts.EmbedFontStyle == ps::Font_impl::kListedOnly && !all;
    std::set<std::string> never;
    if (!all && !listed_only)
        never = names;
    // Newer engines embed what is not listed, too, unless it is named here.
    if (!all && (listed_only || !fonts.EmbedBase14))
        std::ranges::copy_if(kBase14, std::inserter(never, never.end()),
                             [&](const char* name) { return !listed_only || !names.contains(name); });
    return std::string("<<\n/EmbedAllFonts ") + (listed_only ? "false\n" : "true\n") +
           list("NeverEmbed", never) + list("AlwaysEmbed", listed_only ? names : std::set<std::string>()) +
           ">> setdistillerparams\n";
}

std::string missing_font(const std::string& json, const std::string& parameters) {
    picojson::value all;
    if (!picojson::parse(all, json).empty() || !all.get("qpdf").get(1).is<picojson::object>())
        return {};
    const bool listed_only = parameters.find("/EmbedAllFonts false") != std::string::npos;
    std::string listed = parameters.substr(parameters.find(listed_only ? "/AlwaysEmbed" : "/NeverEmbed"));
    listed.resize(std::min(listed.find(']'), listed.size()));
    for (const auto& [name, object] : all.get("qpdf").get(1).get<picojson::object>()) {
        const picojson::value& font = object.get("value");
        if (!font.is<picojson::object>())
            continue;
        const std::string type = font.get("/Type").to_str();
        const std::string kind = font.get("/Subtype").to_str();
        const bool described = type == "/FontDescriptor";
        const bool held =
            font.contains("/FontFile") || font.contains("/FontFile2") || font.contains("/FontFile3");
        const bool bare =
            type == "/Font" && !font.contains("/FontDescriptor") && kind != "/Type0" && kind != "/Type3";
        const std::string own = font.get(described ? "/FontName" : "/BaseFont").to_str();
        if (((described && !held) || bare) && (listed.find(own + ' ') != std::string::npos) == listed_only)
            return own.substr(std::min<size_t>(own.size(), 1));
    }
    return {};
}

}  // namespace companions::render
