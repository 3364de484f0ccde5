#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <string>

#include "print_settings/PrintSettings.h"
#include "print_settings/json.h"
#include "support/random_settings.h"
#include "support/temp_folder.h"

namespace ps = Corvanta::Vantrix::PrintSettings;

namespace {

// The number, boolean or text at `path` ("General/Scale") of what a setting would write.
std::string value_at(const ps::PrintSettings& settings, const std::string& path) {
    picojson::value value;
    EXPECT_TRUE(ps::json::try_parse(std::string_view(settings.Serialise()).substr(3), value));
    for (size_t start = 0; start <= path.size();) {
        const size_t end = std::min(path.find('/', start), path.size());
        const picojson::value next = value.get(path.substr(start, end - start));
        value = next;
        start = end + 1;
    }
    return value.serialize();
}

// A document that holds `text` at `path` and, where `path` leads, nothing else.
std::string document(const std::string& path, const std::string& text) {
    std::string json = text;
    for (size_t end = path.size(); end != std::string::npos;) {
        const size_t slash = end == 0 ? std::string::npos : path.rfind('/', end - 1);
        const size_t start = slash == std::string::npos ? 0 : slash + 1;
        json = "{\"" + path.substr(start, end - start) + "\": " + json + "}";
        end = slash;
    }
    return R"({"PSComment": [], )" + json.substr(1);
}

std::string read_back(const std::string& path, const std::string& text) {
    ps::PrintSettings settings;
    EXPECT_EQ(settings.LoadPS4(document(path, text), false), ps::kLoaded) << path << " " << text;
    return value_at(settings, path);
}

}  // namespace

TEST(Ps4Read, NumbersComeIntoRange) {
    struct {
        const char* path;
        int low, high;
    } const rows[] = {
        {"General/OpenPDF", 0, 3},
        {"General/WhenSameName", 0, 3},
        {"General/SaveStyle", 0, 1},
        {"General/PaperType", 0, 1},
        {"General/PaperOrientation", 0, 1},
        {"General/PaperName", 1, 32767},
        {"General/PaperResolution", 72, 3600},
        {"General/Scale", 10, 400},
        {"Compression/Color/DownSamplingMethod", 0, 3},
        {"Compression/Gray/CompressionMethod", 0, 4},
        {"Compression/Mono/MonoCompressionMethod", 0, 4},
        {"Compression/Mono/ResolutionThreshold", 10, 24000},
        {"Compression/Color/ResolutionTarget", 10, 24000},
        {"Font/EmbedFontStyle", 0, 1},
        {"Font/WhenFailedToEmbed", 0, 1},
        {"OpenAction/PageLayout", 0, 4},
        {"OpenAction/PageAdjust", 0, 4},
        {"OpenAction/Binding", 0, 2},
        {"OpenAction/PageMode", 0, 3},
        {"PDFVersion/Version", 0, 12},
        {"PDFVersion/WhenErroredPDFAX", 0, 1},
        {"Security/EditPermission", 0, 5},
        {"Security/Level", 0, 5},
        {"Security/PrintPermission", 0, 2},
        {"Watermark/Style", 0, 2},
        {"Watermark/PictureScale", 0, 6400},
        {"Watermark/ZOrder", 0, 1},
        {"Watermark/VerticalPosition", 0, 2},
        {"Watermark/HorizontalPosition", 0, 2},
        {"Watermark/Transparency", 0, 100},
        {"Color/ColorMode", 0, 2},
        {"Color/GrayDecreasingMethod", 0, 2},
        {"Color/MonoDecreasingMethod", 0, 1},
        {"Color/MonoImageFilter", 0, 4},
        {"Color/MonoTextAndPassThreshold", 0, 255},
    };
    for (const auto& row : rows) {
        const std::string low = std::to_string(row.low);
        const std::string high = std::to_string(row.high);
        EXPECT_EQ(read_back(row.path, low), low) << row.path;
        EXPECT_EQ(read_back(row.path, high + ".99"), high) << row.path;
        EXPECT_EQ(read_back(row.path, std::to_string(row.low - 1)), low) << row.path;
        EXPECT_EQ(read_back(row.path, std::to_string(row.high + 1)), high) << row.path;
        EXPECT_EQ(read_back(row.path, "-1e300"), low) << row.path;
        EXPECT_EQ(read_back(row.path, "1e300"), high) << row.path;
        EXPECT_EQ(read_back(row.path, "\"7\""), value_at({}, row.path)) << row.path;  // the fallback
    }
}

TEST(Ps4Read, SingleValuesFollowTheirRules) {
    struct {
        const char* path;
        const char* text;
        const char* expected;
    } const rows[] = {
        {"General/OpenPDF", "2.9", "2"},
        {"General/OpenPDF", "-0.9", "0"},
        {"General/PaperWidth", "10", "25.399999618530273"},
        {"General/PaperHeight", "1e39", "3276.699951171875"},
        {"General/PaperHeight", "25.5", "25.5"},
        {"General/Linearize", "false", "false"},
        {"General/Linearize", "\"yes\"", "true"},
        {"General/Linearize", "0", "true"},
        {"General/OutputFolder", "5", "\"\""},
        {"General/OutputFolder", R"("C:\\\u00e9\uD83D\uDDA8")", "\"C:\\\\\u00e9\U0001F5A8\""},
        {"Compression/Color/JpegQuality", "300", "44"},
        {"Compression/Color/JpegQuality", "101", "100"},
        {"Compression/Gray/JpegQuality", "-1", "100"},
        {"Compression/Gray/JpegQuality", "1e300", "100"},
        {"OpenAction/StartPage", "-1", "4294967295"},
        {"OpenAction/StartPage", "4294967295", "4294967295"},
        {"OpenAction/StartPage", "-2", "4294967295"},
        {"OpenAction/StartPage", "4294967294", "1000000"},
        {"OpenAction/StartPage", "1e300", "1000000"},
        {"Watermark/PictureScale", "4294967295", "4294967295"},
        {"Watermark/PictureScale", "1e300", "6400"},
        {"Watermark/TextColor", "16777471", "255"},
        {"Watermark/TextColor", "-1", "16777215"},
        {"Watermark/TextColor", "1e300", "16777215"},
        {"Watermark/FontSize", "-5", "0"},
        {"Watermark/FontSize", "0.5", "0"},
        {"Watermark/FontSize", "1", "8"},
        {"Watermark/FontSize", "501", "500"},
        {"Color/MonoImageThreshold", "300", "44"},
        {"Color/MonoImageThreshold", "-1", "255"},
        {"PDFVersion/TrimBox/left", "-1e300", "-3.4028234663852886e+38"},
        {"PDFVersion/BleedBox/top", "-2.5", "-2.5"},
        {"Notification/ID", "1e300", "2147483647"},
        {"Notification/ID", "-2.5", "-2"},
        {"Notification/V6/ID_Low", "4294967295", "-1"},
        {"Notification/V6/ID_High", "-2147483648", "-2147483648"},
        {"PSVersion", "\"x\"", "70000"},
        {"PSVersion", "-1e300", "-2147483648"},
        {"PSName", "7", "\"\""},
        {"Font/Fonts", R"(["a", ""])", R"(["a",""])"},
        {"Addition/Int", R"({"a": -2.9, "b": 1e300})", R"({"a":-2,"b":2147483647})"},
        {"Addition/Float", R"({"x": 1e300})", R"({"x":1.0000000000000001e+300})"},
        {"Addition/Str_Array", R"({"": [], "n": ["1"]})", R"({"":[],"n":["1"]})"},
        {"Addition/Bool_Array", R"({"n": [true, false]})", R"({"n":[true,false]})"},
        {"PSComment", R"([[1, "a"], [1, "b"], [2], [-3.9, "c", 0], [-3.9, "d"]])", R"([[-3,"d"],[1,"b"]])"},
        // A key given twice: the last one counts, whole.
        {"General/Scale", R"(50, "Scale": 60)", "60"},
        {"Compression/Color", R"({"JpegQuality": 1}, "Color": {"CompressionMethod": 1})",
         R"({"CompressionMethod":1,"DownSamplingMethod":2,"JpegQuality":95,"ResolutionTarget":150,)"
         R"("ResolutionThreshold":225})"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(read_back(row.path, row.text), row.expected) << row.path << " " << row.text;
}

TEST(Ps4Read, WhatIsMissingTakesItsDefault) {
    RandomSettings random(2);
    ps::PrintSettings settings = random.next();
    settings->PSComment = {{1, L"kept"}};
    ASSERT_EQ(settings.LoadPS4(R"({"PSComment": [[2, "new"]], "Unknown": {"General": 1}})", false),
              ps::kLoaded);
    const ps::PrintSettings_impl::Comment both = {{1, L"kept"}, {2, L"new"}};  // comments are only ever added
    EXPECT_EQ(settings->PSComment, both);
    settings->PSComment.clear();
    EXPECT_EQ(settings, ps::PrintSettings());
}

TEST(Ps4Read, KeptValuesYieldOnlyToWhatTheFileNames) {
    RandomSettings random(3);
    ps::PrintSettings settings = random.next();
    settings.font()->Fonts = {L"one", L"two"};
    settings.addition()->Int = {{L"a", 1}, {L"b", 2}};
    settings.notification()->V6->PrintError = L"error";
    ps::PrintSettings expected = settings;

    EXPECT_EQ(settings.LoadPS4("{}", true), ps::kLoaded);
    EXPECT_EQ(settings, expected);

    expected.watermark()->Text = L"forced";
    expected.compression()->Gray->JpegQuality = 50;
    expected.font()->Fonts = {L"three"};
    expected.addition()->Int[L"b"] = 3;
    EXPECT_EQ(
        settings.LoadPS4(R"({"Watermark": {"Text": "forced", "Style": "x"}, "Font": {"Fonts": ["three"]},
                                   "Compression": {"Gray": {"JpegQuality": 50}}, "PSName": 1,
                                   "Addition": {"Int": {"b": 3}}, "Notification": {"V6": {}}})",
                         true),
        ps::kLoaded);
    EXPECT_EQ(settings, expected);
}

TEST(Ps4Read, ErrorTextIsTheEndTextAndItsOwnKeyIsNeverRead) {
    ps::PrintSettings settings;
    ASSERT_EQ(
        settings.LoadPS4(document("Notification/V6", R"({"PrintEnd": "end", "PrintError": "error"})"), false),
        ps::kLoaded);
    EXPECT_EQ(settings.notification()->V6->PrintEnd, L"end");
    EXPECT_EQ(settings.notification()->V6->PrintError, L"end");
}

TEST(Ps4Read, AFailureLeavesThePartsAfterIt) {
    ps::PrintSettings settings;
    settings.general()->Scale = 50;
    settings.font()->EmbedBase14 = false;
    settings.summary()->Title = L"kept";
    EXPECT_EQ(settings.LoadPS4(R"({"PSName": "new", "PSComment": [], "General": {"Scale": 60},
                                   "Font": {"EmbedBase14": true, "Fonts": [1]}, "Summary": {"Title": "new"}})",
                               false),
              ps::kUnreadable);
    EXPECT_EQ(settings->PSName, L"new");
    EXPECT_EQ(settings.general()->Scale, 60);
    EXPECT_FALSE(settings.font()->EmbedBase14);
    EXPECT_EQ(settings.summary()->Title, L"kept");
}

TEST(Ps4Read, KindIsToldByTheFirstBytes) {
    using namespace std::string_literals;
    const TempFolder folder;
    struct {
        const char* label;
        std::string bytes;
        int kind;
    } const rows[] = {
        {"empty", "", ps::kUnknownKind},
        {"mark only", "\xEF\xBB\xBF", ps::kPS4},
        {"mark cut", "\xEF\xBB", ps::kUnknownKind},
        {"no mark", "{\"PSComment\": []}", ps::kUnknownKind},
        {"first generation", "\x09\x00\x02\x00"s, ps::kLegacyFirst},
        {"first generation cut", "\x09\x00\x02"s, ps::kUnknownKind},
        {"first generation, other version", "\x08\x00\x02\x00"s, ps::kUnknownKind},
        {"chunks", "\xF0\x5ARTKS3\xF1", ps::kLegacyChunked},
        {"chunks, eighth byte", "\xF0\x5ARTKS3\x01 and more", ps::kLegacyChunked},
        {"chunks cut", "\xF0\x5ARTKS", ps::kUnknownKind},
        {"large", "\xEF\xBB\xBF" + std::string(ps::kMostFileBytes, ' '), ps::kPS4},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ps::Recognise(folder.write(L"file", row.bytes)), row.kind) << row.label;
    EXPECT_EQ(ps::Recognise(L""), ps::kUnknownKind);
    EXPECT_EQ(ps::Recognise(folder.path()), ps::kUnknownKind);
    EXPECT_EQ(ps::Recognise(folder.file(L"missing")), ps::kUnknownKind);
}

TEST(Ps4Read, DecimalCommaOfTheHostProgramDoesNotMatter) {
    ps::PrintSettings settings;
    settings.general()->PaperWidth = 100.5f;
    settings.addition()->Float[L"n"] = 0.1;
    const std::string expected = settings.Serialise();
    ASSERT_NE(std::setlocale(LC_ALL, "German"), nullptr);
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");
    const std::string written = settings.Serialise();
    ps::PrintSettings read;
    const int result = read.LoadPS4(std::string_view(expected).substr(3), false);
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(written, expected);
    EXPECT_EQ(result, ps::kLoaded);
    EXPECT_EQ(read, settings);
}
