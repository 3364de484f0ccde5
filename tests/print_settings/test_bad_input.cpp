#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "UI_dll/PDFSettings/setting_list.h"
#include "print_settings/PrintSettings.h"
#include "print_settings/json.h"
#include "print_settings/legacy_reader.h"
#include "support/installation.h"
#include "support/temp_folder.h"
#include "support/trace_capture.h"

namespace ps = Corvanta::Vantrix::PrintSettings;

namespace {

constexpr char kMark[] = "\xEF\xBB\xBF";

std::string repeat(std::string_view text, size_t times) {
    std::string all;
    for (size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

std::string chunk(std::string_view id, std::string_view data, int size_lie = 0) {
    const auto size = static_cast<uint32_t>(static_cast<int>(data.size()) + size_lie);
    std::string bytes(reinterpret_cast<const char*>(&size), 4);
    return bytes.append(id).append(data);
}

std::string chunked(const std::string& chunks, char version = 3, char last_of_magic = '\xF1') {
    std::string head = std::string("\xF0\x5ARTKS3") + last_of_magic + version;
    head.resize(48);
    return head + chunks;
}

// Whether loading gets past the JSON, so that only what it says can be wrong.
bool is_object(std::string_view text) {
    try {
        picojson::value document;
        return text.size() <= ps::kMostFileBytes - 3 && ps::json::try_parse(text, document) &&
               document.is<picojson::object>();
    } catch (const std::overflow_error&) {
        return false;
    }
}

}  // namespace

TEST(BadSetting, TextThatIsNoSettingIsUnreadable) {
    const std::string nested = R"({"PSComment": [], "X": )";
    struct {
        const char* label;
        std::string text;
        int result;
    } const rows[] = {
        {"nothing", "", ps::kUnreadable},
        {"empty object", "{}", ps::kUnreadable},
        {"comments only", R"({"PSComment": []})", ps::kLoaded},
        {"array", "[]", ps::kUnreadable},
        {"number", "5", ps::kUnreadable},
        {"comments null", R"({"PSComment": null})", ps::kUnreadable},
        {"comments object", R"({"PSComment": {}})", ps::kUnreadable},
        {"comment no pair", R"({"PSComment": [1]})", ps::kUnreadable},
        {"comment key text", R"({"PSComment": [["1", "a"]]})", ps::kUnreadable},
        {"comment text number", R"({"PSComment": [[1, 2]]})", ps::kUnreadable},
        {"section number", R"({"PSComment": [], "General": 1})", ps::kUnreadable},
        {"section null", R"({"PSComment": [], "Addition": null})", ps::kUnreadable},
        {"nested section array", R"({"PSComment": [], "Compression": {"Mono": []}})", ps::kUnreadable},
        {"box number", R"({"PSComment": [], "PDFVersion": {"TrimBox": 1}})", ps::kUnreadable},
        {"V6 text", R"({"PSComment": [], "Notification": {"V6": ""}})", ps::kUnreadable},
        {"fonts text", R"({"PSComment": [], "Font": {"Fonts": "a"}})", ps::kUnreadable},
        {"font number", R"({"PSComment": [], "Font": {"Fonts": ["a", 1]}})", ps::kUnreadable},
        {"added text for a number", R"({"PSComment": [], "Addition": {"Int": {"a": "1"}}})", ps::kUnreadable},
        {"added array", R"({"PSComment": [], "Addition": {"Str": []}})", ps::kUnreadable},
        {"added mixed array", R"({"PSComment": [], "Addition": {"Bool_Array": {"a": [1]}}})",
         ps::kUnreadable},
        {"NaN", R"({"PSComment": [], "General": {"Scale": NaN}})", ps::kUnreadable},
        {"-Infinity", R"({"PSComment": [], "General": {"Scale": -Infinity}})", ps::kUnreadable},
        {"1e999", R"({"PSComment": [], "General": {"Scale": 1e999}})", ps::kUnreadable},
        {"two points", R"({"PSComment": [], "General": {"Scale": 1.2.3}})", ps::kUnreadable},
        {"lone low surrogate", R"({"PSComment": [], "PSName": "\uDC00"})", ps::kUnreadable},
        {"lone high surrogate", R"({"PSComment": [], "PSName": "\uD800x"})", ps::kUnreadable},
        {"surrogate cut", R"({"PSComment": [], "PSName": "\uD800\u)", ps::kUnreadable},
        {"control character", "{\"PSComment\": [], \"PSName\": \"a\nb\"}", ps::kUnreadable},
        {"open text", R"({"PSComment": [], "PSName": "a)", ps::kUnreadable},
        {"not UTF-8", "{\"PSComment\": [], \"PSName\": \"\xFF\xC0\x80\xE2\x82\"}", ps::kLoaded},
        {"zero in a text", R"({"PSComment": [], "PSName": "a\u0000b"})", ps::kLoaded},
        {"what follows", R"({"PSComment": []} and more)", ps::kLoaded},
        {"99 deep", nested + repeat("[", 99) + repeat("]", 99) + "}", ps::kLoaded},
        {"100 deep", nested + repeat("[", 100) + repeat("]", 100) + "}", ps::kUnreadable},
        {"objects 99 deep", nested + repeat("{\"a\":", 98) + "{}" + repeat("}", 99), ps::kLoaded},
        {"150 empty objects in a list", nested + "[" + repeat("{},", 150) + "{}]}", ps::kLoaded},
        {"infinite name", R"({"PSComment": [], "PSName": 1e999})", ps::kUnreadable},
        {"infinite number that is not asked for", R"({"PSComment": [], "X": [1e999]})", ps::kUnreadable},
        {"objects 100 deep", nested + repeat("{\"a\":", 99) + "{}" + repeat("}", 100), ps::kUnreadable},
        {"20,000 objects", nested + repeat("{\"a\":", 20000), ps::kUnreadable},
        {"bomb of objects", nested + repeat("{\"a\":", 1000000), ps::kUnreadable},
        {"bomb of both", nested + repeat("[{\"a\":", 1000000), ps::kUnreadable},
    };
    const Installation here;
    for (const auto& row : rows) {
        const std::wstring path =
            here.folder.write(L"CustomSettings\\" + qk::to_wide(row.label) + L".ps4", kMark + row.text);
        EXPECT_EQ(ps::ReadName(path).has_value(), is_object(row.text)) << row.label;
        ps::PrintSettings settings;
        EXPECT_EQ(settings.LoadPS4(row.text, false), row.result) << row.label;
        ps::PrintSettings kept;
        const int result = row.text == "{}" ? ps::kLoaded : row.result;  // comments need not be there then
        EXPECT_EQ(kept.LoadPS4(row.text, true), result) << row.label;
    }
    EXPECT_EQ(pdf_settings::ListUpPSFiles().size(), std::size(rows)) << "one file costs the list no other";
}

TEST(BadSetting, FilesThatCannotBeLoadedSayWhy) {
    const TempFolder folder;
    const std::string good = ps::PrintSettings().Serialise();
    const std::wstring locked = folder.write(L"locked.ps4", good);
    const HANDLE writer = CreateFileW(locked.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, 0, nullptr);
    struct {
        const char* label;
        std::wstring path;
        int result;
    } const rows[] = {
        {"good", folder.write(L"good.ps4", good), ps::kLoaded},
        {"no path", L"", ps::kMissing},
        {"missing", folder.file(L"missing.ps4"), ps::kMissing},
        {"missing folder", folder.file(L"none\\missing.ps4"), ps::kMissing},
        {"folder", folder.path(), ps::kMissing},
        {"empty", folder.write(L"empty.ps4", ""), ps::kUnreadable},
        {"mark and {}", folder.write(L"mark.ps4", std::string(kMark) + "{}"), ps::kUnreadable},
        {"no mark", folder.write(L"bare.ps4", good.substr(3)), ps::kUnreadable},
        {"being written", locked, ps::kUnreadable},
        {"device", L"NUL", ps::kUnreadable},
        {"at the limit", folder.write(L"full.ps4", good + std::string(ps::kMostFileBytes - good.size(), ' ')),
         ps::kLoaded},
        {"too large", folder.write(L"huge.ps4", good + std::string(ps::kMostFileBytes, ' ')),
         ps::kUnreadable},
    };
    for (const auto& row : rows) {
        ps::PrintSettings settings;
        settings->PSName = L"before";
        EXPECT_EQ(settings.Load(row.path, false), row.result) << row.label;
        EXPECT_EQ(settings->PSName == L"before",
                  row.result != ps::kLoaded && row.label != std::string_view("mark and {}"))
            << row.label;
    }
    CloseHandle(writer);
}

TEST(BadSetting, LegacyFilesAreCheckedAndNeverHalfRead) {
    const std::string data = chunk("DAT3", "payload");
    const std::string end = chunk("CEND", "");
    struct {
        const char* label;
        std::string bytes;
        int result;
        const wchar_t* traced = L"read_legacy";
    } const rows[] = {
        {"first generation", std::string("\x09\x00\x02\x00 and more", 13), ps::kLegacyPayload},
        {"sound", chunked(data + end), ps::kLegacyPayload},
        {"other chunk", chunked(chunk("XXXX", "x") + data + end), ps::kLegacyPayload, L"unknown chunk"},
        {"its identifier", chunked(data + chunk("AXXX", "") + end), ps::kLegacyPayload,
         L"header.d=0x58585841"},
        {"other magic", chunked(data + end, 3, '\xF2'), ps::kUnreadable, L"bad magic number"},
        {"other version", chunked(data + end, 4), ps::kUnreadable, L"bad major version"},
        {"header cut", chunked("").substr(0, 47), ps::kUnreadable, L"bad magic number"},
        {"magic only", chunked("").substr(0, 8), ps::kUnreadable, L"bad magic number"},
        {"no chunks", chunked(""), ps::kUnreadable, L"bad chunk list"},
        {"no data chunk", chunked(end), ps::kUnreadable},
        {"no end", chunked(data), ps::kUnreadable},
        {"end cut", chunked(data + end.substr(0, 7)), ps::kUnreadable},
        {"size beyond the file", chunked(chunk("DAT3", "payload", 100) + end), ps::kUnreadable},
        {"size that wraps", chunked(chunk("XXXX", "", -1) + end), ps::kUnreadable},
    };
    const TempFolder folder;
    const ps::PrintSettings defaults;
    for (const auto& row : rows) {
        ps::PrintSettings settings;
        const TraceCapture capture;
        EXPECT_EQ(settings.Load(folder.write(L"file.printSetting3", row.bytes), false), row.result)
            << row.label;
        EXPECT_TRUE(TraceCapture::holds(row.traced)) << row.label;
        EXPECT_EQ(settings, defaults) << row.label;
    }
}
