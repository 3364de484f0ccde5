#include "companions/render/standards.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "common/icc_folder.h"
#include "common/qk/handle.h"
#include "common/qk/text.h"
#include "companions/render/ascii85.h"

namespace companions::render {

namespace {

constexpr LONGLONG kMostProfile = 16 << 20;  // bytes

std::vector<uint8_t> read_file(const std::wstring& path) {
    const qk::FileObj file(
        CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    LARGE_INTEGER size = {};
    if (!file || !GetFileSizeEx(file.get(), &size) || size.QuadPart > kMostProfile)
        return {};
    std::vector<uint8_t> bytes(static_cast<size_t>(size.QuadPart));
    DWORD read = 0;
    if (!ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr) ||
        read != bytes.size())
        bytes.clear();
    return bytes;
}

std::string output_intent(const ps::PrintSettings& settings, const char* kind, int parts,
                          const std::vector<uint8_t>& profile) {
    const auto& texts = settings.addition()->Str;
    const auto condition = texts.find(L"OutputCondition");
    const std::wstring name =
        condition == texts.end() || condition->second.empty() ? L"Custom" : condition->second;
    return "[ /_objdef {ZRprofile} /type /stream /OBJ pdfmark\n[ {ZRprofile} << /N " + std::to_string(parts) +
           " >> /PUT pdfmark\n[ {ZRprofile} currentfile /ASCII85Decode filter /PUT pdfmark\n" +
           to_ascii85(profile) +
           "\n[ {ZRprofile} /CLOSE pdfmark\n[ /_objdef {ZRintent} /type /dict /OBJ pdfmark\n"
           "[ {ZRintent} << /Type /OutputIntent /S " +
           kind + " /DestOutputProfile {ZRprofile} /RegistryName (http://www.color.org) /Info " +
           postscript_text(name) + " /OutputConditionIdentifier " + postscript_text(name) +
           " >> /PUT pdfmark\n[ {Catalog} << /OutputIntents [ {ZRintent} ] >> /PUT pdfmark\n";
}

// How PDF/X files say which of them they are.
std::string press_identification(uint32_t version) {
    const std::string trapped = "[ /Trapped /False ";
    switch (version) {
        case ps::kPDFX1a2001:
            return trapped +
                   "/GTS_PDFXVersion (PDF/X-1:2001) /GTS_PDFXConformance (PDF/X-1a:2001) /DOCINFO pdfmark\n";
        case ps::kPDFX1a2003:
            return trapped + "/GTS_PDFXVersion (PDF/X-1a:2003) /DOCINFO pdfmark\n";
        case ps::kPDFX32002:
            return trapped + "/GTS_PDFXVersion (PDF/X-3:2002) /DOCINFO pdfmark\n";
        case ps::kPDFX32003:
            return trapped + "/GTS_PDFXVersion (PDF/X-3:2003) /DOCINFO pdfmark\n";
        case ps::kPDFX4:
            return trapped +
                   "/DOCINFO pdfmark\n[ /XML (<rdf:Description rdf:about='' "
                   "xmlns:pdfxid='http://www.npes.org/pdfx/ns/id/' pdfxid:GTS_PDFXVersion='PDF/X-4'/>"
                   "<rdf:Description rdf:about='' xmlns:xmpMM='http://ns.adobe.com/xap/1.0/mm/' "
                   "xmpMM:VersionID='1' xmpMM:RenditionClass='default'/>"
                   "<rdf:Description rdf:about='' xmlns:pdf='http://ns.adobe.com/pdf/1.3/' "
                   "pdf:Trapped='False'/>) /Ext_Metadata pdfmark\n";
        default:
            return {};
    }
}

}  // namespace

std::optional<Standard> find_standard(const ps::PrintSettings& settings) {
    Standard standard;
    const auto& asked = *settings.pdfVersion();
    if (!ps::is_standard(asked.Version))
        return standard;
    const auto path = icc::find_profile(asked.ICCFileName);
    const auto profile = path ? icc::read_profile(*path) : std::nullopt;
    const std::vector<uint8_t> bytes = profile ? read_file(*path) : std::vector<uint8_t>();
    if (bytes.empty())
        return std::nullopt;
    const bool cmyk = profile->colour_space == icc::kCMYK;
    const char* colours = cmyk ? "CMYK" : "RGB";
    if (settings.color()->ColorMode != ps::Color_impl::kColour)
        colours = "Gray";
    // 2: the engine gives up over what cannot be kept; 0: it writes an ordinary PDF then.
    const bool stops = asked.WhenErroredPDFAX == ps::PDFVersion_impl::kStop;
    standard.arguments = {std::string("-sColorConversionStrategy=") + colours,
                          std::string("-dPDFACompatibilityPolicy=") + (stops ? "2" : "0")};
    if (ps::is_archive(asked.Version))
        standard.arguments.push_back(asked.Version == ps::kPDFA1b ? "-dPDFA=1" : "-dPDFA=2");
    else if (asked.Version != ps::kPDFX4)  // of that one the engine knows nothing
        standard.arguments.push_back("-dPDFX");
    standard.definition = output_intent(settings, ps::is_archive(asked.Version) ? "/GTS_PDFA1" : "/GTS_PDFX",
                                        cmyk ? 4 : 3, bytes) +
                          press_identification(asked.Version);
    if (std::string_view(colours) == "CMYK")
        standard.cmyk.assign(bytes.begin(), bytes.end());
    return standard;
}

DocumentInfo standard_texts(DocumentInfo info) {
    for (const auto& row : kDocumentTexts) {
        std::wstring& text = info.*row.text;
        text = qk::to_wide(qk::to_utf8(text));  // whole pairs only
        std::erase_if(text, [](wchar_t unit) { return IS_LOW_SURROGATE(unit); });
        std::ranges::replace_if(
            text, [](wchar_t unit) { return IS_HIGH_SURROGATE(unit); }, L'\uFFFD');
    }
    return info;
}

std::string standard_information(const DocumentInfo& info) {
    std::string entries;
    for (const auto& row : kDocumentTexts) {
        const std::wstring& text = info.*row.text;
        const bool ascii =
            std::ranges::all_of(text, [](wchar_t unit) { return unit >= 0x20 && unit < 0x7F; });
        if (!text.empty())
            entries += std::string(row.key) + ' ' +
                       (ascii ? postscript_literal(qk::to_utf8(text)) : postscript_text(text)) + '\n';
    }
    // In a form that is the same date to every reader; the engine's own for Greenwich's is not.
    SYSTEMTIME now = {};
    GetSystemTime(&now);
    char date[40];
    std::snprintf(date, sizeof date, "Date (D:%04u%02u%02u%02u%02u%02uZ)\n", now.wYear, now.wMonth, now.wDay,
                  now.wHour, now.wMinute, now.wSecond);
    return "[ {DocInfo} <<\n" + entries + "/Creation" + date + "/Mod" + date + ">> /PUT pdfmark\n";
}

}  // namespace companions::render
