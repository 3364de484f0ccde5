#include "companions/render/spool_pictures.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "companions/render/ascii85.h"

namespace companions::render {

namespace {

constexpr std::string_view kStart = "<<\n /ImageType 1\n";
constexpr std::string_view kSource =
    " /DataSource currentfile /ASCII85Decode filter /RunLengthDecode filter\n>>\nimage\n";
constexpr uint64_t kMostPixels = 100'000'000;

uint8_t grey_of(unsigned red, unsigned green, unsigned blue, uint32_t method) {
    const auto [least, most] = std::minmax({red, green, blue});
    if (method == ps::Color_impl::kMean)
        return static_cast<uint8_t>((red + green + blue + 1) / 3);
    if (method == ps::Color_impl::kMidway)
        return static_cast<uint8_t>((least + most) / 2);
    return static_cast<uint8_t>((red * 299 + green * 587 + blue * 114 + 500) / 1000);
}

std::vector<uint8_t> from_run_length(const std::vector<uint8_t>& bytes, size_t size) {
    std::vector<uint8_t> samples;
    samples.reserve(size);
    for (size_t at = 0; at < bytes.size() && bytes[at] != 128 && samples.size() < size;) {
        const size_t count = bytes[at] < 128 ? bytes[at] + size_t{1} : 257 - size_t{bytes[at]};
        if (bytes[at] < 128) {
            const size_t end = std::min(at + 1 + count, bytes.size());
            samples.insert(samples.end(), bytes.begin() + static_cast<ptrdiff_t>(at + 1),
                           bytes.begin() + static_cast<ptrdiff_t>(end));
            at += 1 + count;
        } else {
            samples.insert(samples.end(), count, at + 1 < bytes.size() ? bytes[at + 1] : uint8_t{0});
            at += 2;
        }
    }
    samples.resize(size);
    return samples;
}

size_t number_after(std::string_view head, std::string_view key) {
    const size_t at = head.find(key);
    return at == std::string_view::npos
               ? 0
               : static_cast<size_t>(std::max(
                     0L, std::strtol(std::string(head.substr(at + key.size(), 12)).c_str(), nullptr, 10)));
}

// The palette of the colour space that a picture's block follows; empty when that is none of red, green,
// blue.
std::vector<uint8_t> palette_before(std::string_view before) {
    constexpr size_t kFarthest = 4096;  // 256 colours and some lines
    before = before.substr(before.size() - std::min(before.size(), kFarthest));
    const size_t at = before.rfind("[/Indexed /DeviceRGB");
    const size_t first = at == std::string_view::npos ? at : before.find('<', at);
    std::vector<uint8_t> bytes;
    if (first == std::string_view::npos)
        return bytes;
    unsigned digits = 0;
    unsigned value = 0;
    for (size_t i = first + 1; i < before.size() && before[i] != '>'; ++i) {
        const char c = before[i];
        const int digit = c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
        if (digit < 0)
            continue;
        value = value << 4 | static_cast<unsigned>(digit);
        if (++digits % 2 == 0)
            bytes.push_back(static_cast<uint8_t>(value));
    }
    return bytes;
}

// Three bytes a pixel; empty when the block is of another kind.
std::vector<uint8_t> colours_of(std::string_view head, std::string_view before, std::string_view data,
                                size_t width, size_t height) {
    const size_t bits = number_after(head, "/BitsPerComponent ");
    const bool direct = head.find("/Decode [0 1 0 1 0 1]") != std::string_view::npos;
    if (direct)
        return bits == 8 ? from_run_length(from_ascii85(data), width * height * 3) : std::vector<uint8_t>();
    const std::vector<uint8_t> palette = palette_before(before);
    if (palette.size() < 6 || (bits != 8 && bits != 4 && bits != 1))
        return {};
    const size_t row = (width * bits + 7) / 8;
    const std::vector<uint8_t> packed = from_run_length(from_ascii85(data), row * height);
    std::vector<uint8_t> colours;
    colours.reserve(width * height * 3);
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x) {
            const size_t bit = x * bits;
            const unsigned byte = packed[y * row + bit / 8];
            const size_t index = byte >> (8 - bits - bit % 8) & ((1u << bits) - 1);
            for (size_t part = 0; part < 3; ++part)
                colours.push_back(palette[std::min(index * 3 + part, palette.size() - 1)]);
        }
    return colours;
}

bool has_colour(const std::vector<uint8_t>& colours) {
    for (size_t at = 0; at + 2 < colours.size(); at += 3)
        if (colours[at] != colours[at + 1] || colours[at] != colours[at + 2])
            return true;
    return false;
}

std::string block_of(const GreyPicture& picture, std::string_view matrix) {
    const bool two =
        std::ranges::all_of(picture.pixels, [](uint8_t grey) { return grey == 0 || grey == 255; });
    std::vector<uint8_t> packed;
    if (two) {
        const size_t row = (picture.width + 7) / 8;
        packed.resize(row * picture.height);
        for (size_t y = 0; y < picture.height; ++y)
            for (size_t x = 0; x < picture.width; ++x)
                if (picture.pixels[y * picture.width + x] != 0)
                    packed[y * row + x / 8] |= static_cast<uint8_t>(0x80 >> x % 8);
    }
    char head[200];
    std::snprintf(
        head, sizeof head,
        "gsave /DeviceGray setcolorspace\n<< /ImageType 1 /Width %zu /Height %zu /BitsPerComponent %d\n",
        picture.width, picture.height, two ? 1 : 8);
    return head + std::string(matrix) +
           "/Decode [0 1] /DataSource currentfile /ASCII85Decode filter >>\nimage\n" +
           to_ascii85(two ? packed : picture.pixels) + "\ngrestore\n";
}

// The block anew, nothing when it stays. `head` begins where the picture's dictionary does.
std::optional<std::string> changed(std::string_view head, std::string_view before, std::string_view data,
                                   const PictureWork& work) {
    GreyPicture picture{number_after(head, "/Width "), number_after(head, "/Height "), {}};
    const size_t matrix = head.find(" /ImageMatrix [");
    if (picture.width == 0 || picture.height == 0 || matrix == std::string_view::npos ||
        uint64_t{picture.width} * picture.height > kMostPixels)
        return std::nullopt;
    const std::vector<uint8_t> colours = colours_of(head, before, data, picture.width, picture.height);
    if (colours.empty() || (work.to == PictureWork::To::kAsTheyAre && has_colour(colours)))
        return std::nullopt;
    picture.pixels.reserve(colours.size() / 3);
    for (size_t at = 0; at + 2 < colours.size(); at += 3)
        picture.pixels.push_back(grey_of(colours[at], colours[at + 1], colours[at + 2], work.method));
    if (work.to == PictureWork::To::kBlackAndWhite)
        make_black_and_white(picture, work);
    return block_of(picture, head.substr(matrix, head.find('\n', matrix) + 1 - matrix));
}

// Each pixel anew from the nine around it.
template <class Rule>
void filter(GreyPicture& picture, Rule rule) {
    const std::vector<uint8_t> old = picture.pixels;
    const auto clamped = [](size_t at, int step, size_t size) {
        return static_cast<size_t>(
            std::clamp<int64_t>(static_cast<int64_t>(at) + step, 0, static_cast<int64_t>(size) - 1));
    };
    for (size_t y = 0; y < picture.height; ++y)
        for (size_t x = 0; x < picture.width; ++x) {
            std::array<int, 9> around;
            for (int i = 0; i < 9; ++i)
                around[static_cast<size_t>(i)] = old[clamped(y, i / 3 - 1, picture.height) * picture.width +
                                                     clamped(x, i % 3 - 1, picture.width)];
            picture.pixels[y * picture.width + x] = static_cast<uint8_t>(std::clamp(rule(around), 0, 255));
        }
}

void apply_filter(GreyPicture& picture, uint32_t kind) {
    using Around = std::array<int, 9>;
    const auto sum = [](const Around& around) {
        int all = 0;
        for (const int grey : around)
            all += grey;
        return all;
    };
    if (kind == ps::Color_impl::kSmooth)
        filter(picture, [&](const Around& around) { return sum(around) / 9; });
    else if (kind == ps::Color_impl::kSharpen)
        filter(picture, [&](const Around& around) { return 2 * around[4] - sum(around) / 9; });
    else if (kind == ps::Color_impl::kEmphasiseEdges)
        filter(picture, [&](const Around& around) { return 10 * around[4] - sum(around); });
    else if (kind == ps::Color_impl::kRemoveSpecks)  // the middle of the nine
        filter(picture, [](Around around) {
            std::nth_element(around.begin(), around.begin() + 4, around.end());
            return around[4];
        });
}

}  // namespace

void make_black_and_white(GreyPicture& picture, const PictureWork& work) {
    apply_filter(picture, work.filter);
    if (!work.dithers) {
        for (uint8_t& grey : picture.pixels)
            grey = grey >= work.threshold ? 255 : 0;
        return;
    }
    // The error of each pixel goes on to the right and into the row below, in sixteenths.
    std::vector<int> here(picture.width + 2), below(picture.width + 2);
    for (size_t y = 0; y < picture.height; ++y) {
        std::ranges::fill(below, 0);
        for (size_t x = 0; x < picture.width; ++x) {
            uint8_t& grey = picture.pixels[y * picture.width + x];
            const int wanted = grey + here[x + 1] / 16;
            grey = wanted >= 128 ? 255 : 0;
            const int error = wanted - grey;
            here[x + 2] += error * 7;
            below[x] += error * 3;
            below[x + 1] += error * 5;
            below[x + 2] += error;
        }
        std::swap(here, below);
    }
}

bool wants_picture_work(const ps::PrintSettings& settings, PictureWork& work) {
    const auto& colour = *settings.color();
    work.method = colour.GrayDecreasingMethod;
    if (colour.ColorMode == ps::Color_impl::kMonochrome) {
        work.to = PictureWork::To::kBlackAndWhite;
        work.dithers = colour.MonoDecreasingMethod == ps::Color_impl::kDither;
        work.threshold = colour.MonoImageThreshold;
        work.filter = colour.MonoImageFilter;
        return true;
    }
    if (colour.ColorMode == ps::Color_impl::kGrey) {
        work.to = PictureWork::To::kGrey;
        return work.method != ps::Color_impl::kLuminance;  // the engine's own is the first
    }
    const ps::CompressImage& coloured = settings.compression()->Color;
    const ps::CompressImage& grey = settings.compression()->Gray;
    return coloured.CompressionMethod() != grey.CompressionMethod() ||
           coloured.JpegQuality() != grey.JpegQuality() ||
           coloured.DownSamplingMethod() != grey.DownSamplingMethod() ||
           coloured.ResolutionThreshold() != grey.ResolutionThreshold() ||
           coloured.ResolutionTarget() != grey.ResolutionTarget();
}

std::string change_pictures(std::string_view document, const PictureWork& work) {
    std::string result;
    size_t done = 0;
    for (size_t at = document.find(kStart); at != std::string_view::npos;
         at = document.find(kStart, at + 1)) {
        constexpr size_t kMostHead = 400;
        const size_t source = document.substr(at, kMostHead).find(kSource);
        const size_t data = at + source + kSource.size();
        const size_t end = source == std::string_view::npos ? source : document.find("~>", data);
        if (end == std::string_view::npos)
            continue;
        const auto block = changed(document.substr(at, source), document.substr(0, at),
                                   document.substr(data, end - data), work);
        if (!block)
            continue;
        result.append(document.substr(done, at - done)).append(*block);
        done = end + 2;
    }
    return result.append(document.substr(done));
}

std::string colour_work(const ps::PrintSettings& settings) {
    const auto& colour = *settings.color();
    const bool mono = colour.ColorMode == ps::Color_impl::kMonochrome;
    constexpr const char* kMethods[] = {
        ".114 mul exch .587 mul add exch .299 mul add", "add add 3 div",
        ("3 copy 2 copy lt { exch } if pop 2 copy lt { exch } if pop 4 1 roll\n"
         "2 copy gt { exch } if pop 2 copy gt { exch } if pop add 2 div")};
    if (mono || (colour.ColorMode == ps::Color_impl::kGrey &&
                 colour.GrayDecreasingMethod != ps::Color_impl::kLuminance)) {
        const std::string grey = kMethods[std::min(colour.GrayDecreasingMethod, 2u)];
        std::string step;
        if (mono)
            step = " " + std::to_string(colour.MonoTextAndPassThreshold) + " 255 div lt { 0 } { 1 } ifelse";
        // A colour of three parts, since pictures take its kind over.
        return "userdict /setrgbcolor { " + grey + step +
               " dup dup systemdict /setrgbcolor get exec } put\n" +
               (mono ? "userdict /setgray {" + step + " systemdict /setgray get exec } put\n" : "");
    }
    if (!colour.BlackToK100 || colour.ColorMode != ps::Color_impl::kColour)
        return {};
    return "userdict /setrgbcolor { 3 copy add add 0 eq { pop pop pop 0 systemdict /setgray get exec }\n"
           "{ systemdict /setrgbcolor get exec } ifelse } put\n"
           "userdict /image { dup type /dicttype eq { dup /Decode known { dup /Decode get length 6 eq\n"
           "{ /DeviceRGB setcolorspace } if } if } if systemdict /image get exec } put\n";
}

}  // namespace companions::render
