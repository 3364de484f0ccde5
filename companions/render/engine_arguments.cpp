#include "companions/render/engine_arguments.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace companions::render {

namespace {

std::string flag(std::string_view name, bool value) {
    return "-d" + std::string(name) + (value ? "=true" : "=false");
}

// A file name is a pattern to the engine in which % stands for a page number.
std::string output_argument(const std::string& path) {
    std::string argument = "-sOutputFile=";
    for (const char c : path)
        argument.append(c == '%' ? 2 : 1, c);
    return argument;
}

// The engine takes thresholds as multiples of the target, from 1 to 10.
std::string threshold(const ps::CompressImage& image) {
    const uint64_t target = std::max(image.ResolutionTarget(), 1u);
    const uint64_t percent =
        std::clamp<uint64_t>(uint64_t{image.ResolutionThreshold()} * 100 / target, 100, 1000);
    char text[16];
    std::snprintf(text, sizeof text, "%u.%02u", static_cast<unsigned>(percent / 100),
                  static_cast<unsigned>(percent % 100));
    return text;
}

// How the engine writes the images of a kind; null: as the engine finds best.
const char* filter_of(const std::string& kind, const ps::CompressImage& image) {
    constexpr const char* kColour[] = {nullptr, "/DCTEncode", "/FlateEncode", "/FlateEncode", ""};
    constexpr const char* kMono[] = {"", "/CCITTFaxEncode", "/CCITTFaxEncode", "/FlateEncode",
                                     "/RunLengthEncode"};
    const bool mono = kind == "Mono";
    const uint32_t method = mono ? image.MonoCompressionMethod() : image.CompressionMethod();
    return method < std::size(kColour) ? (mono ? kMono : kColour)[method] : nullptr;
}

void add_image(std::vector<std::string>& arguments, const std::string& kind, const ps::CompressImage& image) {
    const char* const filter = filter_of(kind, image);
    if (filter) {
        arguments.push_back(flag("AutoFilter" + kind + "Images", false));
        arguments.push_back(flag("Encode" + kind + "Images", *filter != 0));
        if (*filter)
            arguments.push_back("-d" + kind + "ImageFilter=" + filter);
    }
    constexpr const char* kMethods[] = {nullptr, "/Subsample", "/Average", "/Bicubic"};
    const uint32_t method = image.DownSamplingMethod();
    const bool downsample = method > 0 && method < std::size(kMethods);
    arguments.push_back(flag("Downsample" + kind + "Images", downsample));
    if (!downsample)
        return;
    // Averages of two colours are no colours of a monochrome image.
    const std::string type = kind == "Mono" ? "/Subsample" : kMethods[method];
    arguments.push_back("-d" + kind + "ImageDownsampleType=" + type);
    arguments.push_back("-d" + kind + "ImageResolution=" + std::to_string(image.ResolutionTarget()));
    arguments.push_back("-d" + kind + "ImageDownsampleThreshold=" + threshold(image));
}

std::optional<std::string> find_hex_password(std::wstring_view password) {
    const std::wstring_view counted = password.substr(0, kMostLatinPassword);
    if (!is_latin(counted))
        return std::nullopt;
    std::string hex = "<";
    for (const wchar_t unit : counted) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned>(unit));
        hex += digits;
    }
    return hex + '>';
}

int32_t pdf13_permission_bits(const ps::Security_impl& security) noexcept {
    const uint32_t bits = 0xFFFFFFC0u | (security.PDF13_DisallowPrint ? 0u : kMayPrint) |
                          (security.PDF13_DisallowModify ? 0u : kMayModify) |
                          (security.PDF13_DisallowCopy ? 0u : kMayCopy) |
                          (security.PDF13_DisallowAnnotate ? 0u : kMayAnnotate);
    return static_cast<int32_t>(bits);
}

}  // namespace

std::string_view compatibility_level(uint32_t version_code) noexcept {
    constexpr struct {
        ps::PDFVer version;
        std::string_view level;
    } kLevels[] = {{ps::PDFVer::_13, "1.3"},
                   {ps::PDFVer::_14, "1.4"},
                   {ps::PDFVer::_15, "1.5"},
                   {ps::PDFVer::_16, "1.6"},
                   {ps::PDFVer::_20, "2.0"}};
    const ps::PDFVer version = ps::pdf_ver(version_code);
    const auto* found = std::ranges::find(kLevels, version, [](const auto& row) { return row.version; });
    return found == std::end(kLevels) ? "1.7" : found->level;
}

std::vector<std::string> quiet_arguments(const char* device) {
    return {"-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", std::string("-sDEVICE=") + device};
}

std::vector<std::string> engine_arguments(const ps::PrintSettings& settings, const EngineFiles& files) {
    // Pages stay as they were printed: the engine would turn them to the direction of their text.
    std::vector<std::string> arguments = quiet_arguments("pdfwrite");
    arguments.insert(
        arguments.end(),
        {"-dAutoRotatePages=/None", "-dALLOWPSTRANSPARENCY",
         // Objects in streams are for qpdf to make: of those that newer engines make it changes none.
         "-dWriteObjStms=false", "-dWriteXRefStm=false"});
    const uint32_t version = settings.pdfVersion()->Version;
    // A PDF 2.0 of the engine's own has no document information; qpdf makes one of 1.7 instead.
    const bool later = version == ps::kPDF20 && files.rewritten;
    arguments.push_back("-dCompatibilityLevel=" +
                        std::string(compatibility_level(later ? ps::kPDF17 : version)));
    const auto& compression = *settings.compression();
    // The engine crashes over pages in ASCII that are not compressed.
    arguments.push_back(flag("CompressPages", compression.TextAndLineArt || compression.ASCIIFormat));
    arguments.push_back(flag("ASCII85EncodePages", compression.ASCIIFormat));
    add_image(arguments, "Color", compression.Color);
    add_image(arguments, "Gray", compression.Gray);
    add_image(arguments, "Mono", compression.Mono);
    arguments.insert(arguments.end(), files.more.begin(), files.more.end());
    if (!files.options.empty())
        arguments.push_back('@' + files.options);
    arguments.push_back(output_argument(files.output));
    arguments.push_back(files.prologue);
    arguments.push_back(files.spool);
    arguments.push_back(files.epilogue);
    return arguments;
}

std::string image_parameters(const ps::PrintSettings& settings) {
    const auto& compression = *settings.compression();
    const auto quality = [](const char* kind, const ps::CompressImage& image) {
        const double percent = std::clamp<double>(image.JpegQuality(), 1, 99.5);
        const double factor = percent >= 50 ? 2 - percent / 50 : 50 / percent;
        char dictionary[100];
        std::snprintf(dictionary, sizeof dictionary,
                      "<< /QFactor %.3f /Blend 1 /HSamples [1 1 1 1] /VSamples [1 1 1 1] >>\n", factor);
        const std::string name = std::string("/") + kind;
        return name + "ImageDict " + dictionary + name + "ACSImageDict " + dictionary;
    };
    const bool group3 = compression.Mono.MonoCompressionMethod() == ps::CompressImage_impl::kGroup3;
    return "<<\n" + quality("Color", compression.Color) + quality("Gray", compression.Gray) +
           "/MonoImageDict << /K " + (group3 ? "0" : "-1") + " >>\n>> setdistillerparams\n";
}

bool is_latin(std::wstring_view password) noexcept {
    return std::ranges::all_of(password, [](wchar_t unit) {
        return (unit >= 0x20 && unit < 0x7F) || (unit > 0xA0 && unit < 0x100);
    });
}

const std::wstring& owner_password(const ps::Security_impl& security) noexcept {
    return security.MasterPassword.empty() ? security.UserPassword : security.MasterPassword;
}

bool wants_password(const ps::PrintSettings& settings) noexcept {
    const auto& security = *settings.security();
    return !ps::is_standard(settings.pdfVersion()->Version) &&
           !(security.MasterPassword.empty() && security.UserPassword.empty());
}

std::optional<std::string> find_password_options(const ps::PrintSettings& settings) {
    const auto& security = *settings.security();
    const bool pdf13 = ps::has_low_level(settings.pdfVersion()->Version);
    const auto owner = find_hex_password(owner_password(security));
    const auto user = find_hex_password(security.UserPassword);
    if (!owner || !user)
        return std::nullopt;
    std::string options = "-dOwnerPassword=" + *owner + '\n';
    if (!security.UserPassword.empty())
        options += "-dUserPassword=" + *user + '\n';
    options += pdf13 ? "-dEncryptionR=2\n-dKeyLength=40\n" : "-dEncryptionR=3\n-dKeyLength=128\n";
    return options + "-dPermissions=" + std::to_string(permission_bits(security, pdf13)) + '\n';
}

int32_t permission_bits(const ps::Security_impl& security, bool pdf13) noexcept {
    if (pdf13)
        return pdf13_permission_bits(security);
    constexpr uint32_t kEditing[] = {
        0,              // nothing
        kMayAssemble,   // insert, delete and turn pages
        kMayFillForms,  // fill in and sign forms
        kMayFillForms | kMayAnnotate,
        kMayFillForms | kMayAnnotate | kMayModify,  // everything but extracting pages
        kMayFillForms | kMayAnnotate | kMayModify | kMayAssemble,
    };
    constexpr uint32_t kPrinting[] = {0, kMayPrint, kMayPrint | kMayPrintFine};
    uint32_t bits = 0xFFFFF0C0u;
    bits |= kEditing[std::min<size_t>(security.EditPermission, std::size(kEditing) - 1)];
    bits |= kPrinting[std::min<size_t>(security.PrintPermission, std::size(kPrinting) - 1)];
    if (security.AllowCopyContent)
        bits |= kMayCopy | kMayReadAloud;
    if (security.AllowAccessFromScreenReader)
        bits |= kMayReadAloud;
    return static_cast<int32_t>(bits);
}

}  // namespace companions::render
