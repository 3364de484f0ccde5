#include <clocale>

#include "print_settings/json.h"
#include "support/random_settings.h"

namespace {

// What a setting would write at `path` ("General/Scale").
std::string value_at(const ps::PrintSettings& settings, std::string path) {
    picojson::value value;
    EXPECT_TRUE(ps::json::try_parse(std::string_view(settings.Serialise()).substr(3), value));
    for (path += '/'; !path.empty(); path.erase(0, path.find('/') + 1))
        value = picojson::value(value.get(path.substr(0, path.find('/'))));
    return value.serialize();
}

// A document that holds `text` at `path` and, where `path` leads, nothing else.
std::string document(std::string path, const std::string& text) {
    std::string start = R"({"PSComment": [], ")", end = "}";
    for (; path.find('/') != std::string::npos; path.erase(0, path.find('/') + 1)) {
        start += path.substr(0, path.find('/')) + "\": {\"";
        end += '}';
    }
    return start + path + "\": " + text + end;
}

std::string read_back(const std::string& path, const std::string& text) {
    ps::PrintSettings settings;
    EXPECT_EQ(settings.LoadPS4(document(path, text), false), ps::kLoaded) << path << " " << text;
    return value_at(settings, path);
}

}  // namespace

TEST(Ps4Read, NumbersComeIntoRange) {
    const std::tuple<int, int, const char*> rows[] = {
        {0, 1,
         "General/SaveStyle General/PaperType General/PaperOrientation Font/EmbedFontStyle Watermark/ZOrder "
         "Font/WhenFailedToEmbed PDFVersion/WhenErroredPDFAX Color/MonoDecreasingMethod"},
        {0, 2,
         "OpenAction/Binding Security/PrintPermission Watermark/Style Watermark/VerticalPosition "
         "Watermark/HorizontalPosition Color/ColorMode Color/GrayDecreasingMethod"},
        {0, 3,
         "General/OpenPDF General/WhenSameName OpenAction/PageMode Compression/Color/DownSamplingMethod "
         "Compression/Gray/DownSamplingMethod Compression/Mono/DownSamplingMethod"},
        {0, 4,
         "Compression/Color/CompressionMethod Compression/Gray/CompressionMethod OpenAction/PageLayout "
         "Compression/Mono/MonoCompressionMethod OpenAction/PageAdjust Color/MonoImageFilter"},
        {0, 5, "Security/EditPermission Security/Level"},
        {0, 12, "PDFVersion/Version"},
        {0, 100, "Watermark/Transparency"},
        {0, 255, "Color/MonoTextAndPassThreshold"},
        {0, 6400, "Watermark/PictureScale"},
        {1, 32767, "General/PaperName"},
        {10, 400, "General/Scale"},
        {10, 24000,
         "Compression/Color/ResolutionThreshold Compression/Gray/ResolutionThreshold "
         "Compression/Mono/ResolutionThreshold Compression/Color/ResolutionTarget "
         "Compression/Gray/ResolutionTarget Compression/Mono/ResolutionTarget"},
        {72, 3600, "General/PaperResolution"}};
    std::string path;
    for (const auto& [lowest, highest, paths] : rows)
        for (std::istringstream words(paths); words >> path;) {
            const std::string low = std::to_string(lowest), high = std::to_string(highest);
            for (const std::string& least : {low, std::to_string(lowest - 1), std::string("-1e300")})
                EXPECT_EQ(read_back(path, least), low) << path;
            for (const std::string& most : {high + ".99", std::to_string(highest + 1), std::string("1e300")})
                EXPECT_EQ(read_back(path, most), high) << path;
            EXPECT_EQ(read_back(path, "\"7\""), value_at({}, path));  // the default
        }
}

TEST(Ps4Read, SingleValuesFollowTheirRules) {
    // The values of each path: read, and written again.
    const std::pair<const char*, std::vector<std::pair<const char*, const char*>>> rows[] = {
        {"General/OpenPDF", {{"2.9", "2"}, {"-0.9", "0"}}},
        {"General/PaperWidth", {{"10", "25.399999618530273"}, {"1e39", "3276.699951171875"}}},
        {"General/PaperHeight", {{"3277", "3276.699951171875"}, {"25.5", "25.5"}}},
        {"General/Linearize", {{"false", "false"}, {"\"yes\"", "true"}, {"0", "true"}}},
        {"General/OutputFolder",
         {{"5", "\"\""}, {R"("C:\\\u00e9\uD83D\uDDA8")", "\"C:\\\\\u00e9\U0001F5A8\""}}},
        {"Compression/Color/JpegQuality", {{"300", "44"}, {"101", "100"}, {"-1", "100"}, {"1e300", "100"}}},
        {"OpenAction/StartPage",
         {{"-1", "4294967295"}, {"-2", "4294967295"}, {"4294967294", "1000000"}, {"1e300", "1000000"}}},
        {"Watermark/PictureScale", {{"4294967295", "4294967295"}}},
        {"Watermark/TextColor", {{"16777471", "255"}, {"-1", "16777215"}, {"1e300", "16777215"}}},
        {"Watermark/FontSize", {{"-5", "0"}, {"0.5", "0"}, {"1", "8"}, {"500", "500"}, {"501", "500"}}},
        {"Color/MonoImageThreshold", {{"300", "44"}, {"-1", "255"}}},
        {"PDFVersion/TrimBox/left", {{"-1e300", "-3.4028234663852886e+38"}}},
        {"Notification/ID", {{"1e300", "2147483647"}, {"-2.5", "-2"}}},
        {"Notification/V6/ID_Low", {{"4294967295", "-1"}}},
        {"Notification/V6",
         {{R"({"PrintEnd": "end", "PrintError": "error"})",  // an error's text is the end's
           R"({"ID_High":0,"ID_Low":0,"PageEnd":"","PageStart":"","PrintEnd":"end","PrintError":"end","PrintStart":""})"}}},
        {"PSVersion", {{"\"x\"", "70000"}, {"-1e300", "-2147483648"}}},
        {"Addition/Int", {{R"({"a": -2.9, "b": 1e300})", R"({"a":-2,"b":2147483647})"}}},
        {"Addition/Float", {{R"({"x": 1e300})", R"({"x":1.0000000000000001e+300})"}}},
        {"PSComment",
         {{R"([[1, "a"], [1, "b"], [2], [-3.9, "c", 0], [-3.9, "d"]])", R"([[-3,"d"],[1,"b"]])"}}},
        // A key given twice: the last one counts, whole.
        {"Compression/Color",
         {{R"({"JpegQuality": 1}, "Color": {"CompressionMethod": 1})",
           R"({"CompressionMethod":1,"DownSamplingMethod":2,"JpegQuality":95,"ResolutionTarget":150,"ResolutionThreshold":225})"}}}};
    for (const auto& [path, values] : rows)
        for (const auto& [text, expected] : values)
            EXPECT_EQ(read_back(path, text), expected) << path << " " << text;
}

TEST(Ps4Read, WhatIsMissingTakesItsDefaultAndAFailureLeavesThePartsAfterIt) {
    ps::PrintSettings settings = RandomSettings(2).next(), expected;
    settings->PSComment = {{1, L"kept"}};
    ASSERT_EQ(settings.LoadPS4(R"({"PSComment": [[2, "new"]], "Unknown": {"General": 1}})", false),
              ps::kLoaded);
    expected->PSComment = {{1, L"kept"}, {2, L"new"}};  // comments are only ever added
    EXPECT_EQ(settings, expected);
    settings.general()->Scale = 50;
    settings.font()->EmbedBase14 = expected.font()->EmbedBase14 = false;
    settings.summary()->Title = expected.summary()->Title = L"kept";
    expected->PSName = L"new";
    expected.general()->Scale = 60;
    EXPECT_EQ(settings.LoadPS4(R"({"PSName": "new", "PSComment": [], "General": {"Scale": 60},
                                   "Font": {"EmbedBase14": true, "Fonts": [1]}, "Summary": {"Title": "new"}})",
                               false),
              ps::kUnreadable);
    EXPECT_EQ(settings, expected);
}

TEST(Ps4Read, DecimalCommaOfTheHostProgramDoesNotMatter) {
    ps::PrintSettings settings, read;
    settings.general()->PaperWidth = 100.5f;
    settings.addition()->Float[L"n"] = 0.1;
    const std::string expected = settings.Serialise();
    ASSERT_NE(std::setlocale(LC_ALL, "German"), nullptr);
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");
    EXPECT_EQ(settings.Serialise(), expected);
    EXPECT_EQ(read.LoadPS4(std::string_view(expected).substr(3), false), ps::kLoaded);
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(read, settings);
}
