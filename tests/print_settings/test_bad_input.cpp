#include "UI_dll/PDFSettings/setting_list.h"

namespace {

constexpr char kMark[] = "\xEF\xBB\xBF";

std::string repeat(std::string_view text, size_t times) {
    std::string all;
    while (all.size() < text.size() * times)
        all += text;
    return all;
}

std::string deep(size_t arrays, size_t objects) {
    return repeat("[", arrays) + repeat("{\"a\":", objects) + (objects ? "0" : "") + repeat("}", objects) +
           repeat("]", arrays);
}

std::string chunk(std::string_view id, std::string_view data, int size_lie = 0) {
    return raw_bytes(static_cast<int>(data.size()) + size_lie).append(id).append(data);
}

std::string chunked(const std::string& chunks, char version = 3, char last_of_magic = '\xF1') {
    std::string head = std::string("\xF0\x5ARTKS3") + last_of_magic + version;
    head.resize(48);
    return head + chunks;
}

}  // namespace

TEST(BadSetting, TextThatIsNoSettingIsUnreadable) {
    using Values = std::vector<std::string>;
    const std::tuple<std::string, Values, Values> rows[] = {
        // unreadable, loaded
        {"PSComment", {"null", "{}", "[1]", R"([["1", "a"]])", "[[1, 2]]"}, {"[]"}},
        {"General", {"1", R"({"Scale": NaN})", R"({"Scale": 1e999})", R"({"Scale": 1.2.3})"}, {}},
        {"Font", {R"({"Fonts": "a"})", R"({"Fonts": ["a", 1]})"}, {}},
        {"Addition",
         {"null", R"({"Int": {"a": "1"}})", R"({"Str": []})", R"({"Bool_Array": {"a": [1]}})"},
         {}},
        {"PSName",
         {R"("\uDC00")", R"("\uD800x")", R"("\uD800\u)", "\"a\nb\"", "\"a", "1e999"},
         {"\"\xFF\xC0\x80\xE2\x82\"", R"("a\u0000b")", "\"\"} and more"}},
        {"X",
         {deep(100, 0), deep(0, 100), deep(50, 50), repeat("{\"a\":", 1000000), repeat("[{\"a\":", 1000000)},
         {deep(99, 0), deep(0, 99), deep(50, 49), "[" + repeat("{},", 150) + "{}]"}}};
    const Installation here;
    int files = 0;
    const auto load = [&](const std::string& text, bool loads, bool loads_on_top) {
        SCOPED_TRACE(text.substr(0, 100));
        const std::wstring name = qk::format(L"CustomSettings\\%d.ps4", ++files);
        EXPECT_TRUE(ps::ReadName(here.folder.write(name, kMark + text)) || !loads_on_top);
        EXPECT_EQ(ps::PrintSettings().LoadPS4(text, false), loads ? ps::kLoaded : ps::kUnreadable);
        EXPECT_EQ(ps::PrintSettings().LoadPS4(text, true), loads_on_top ? ps::kLoaded : ps::kUnreadable);
    };
    for (const auto& [key, unreadable, loaded] : rows)
        for (const bool loads : {false, true})
            for (const std::string& value : loads ? loaded : unreadable)
                load("{\"PSComment\": [], \"" + key + "\": " + value + "}", loads, loads);
    for (const char* text : {"", "[]", "5"})
        load(text, false, false);
    load("{}", false, true);  // comments need not be there then
    EXPECT_EQ(std::ssize(pdf_settings::ListUpPSFiles()), files) << "one file costs the list no other";
}

TEST(BadSetting, FilesThatCannotBeLoadedSayWhy) {
    const TempFolder folder;
    const std::string good = ps::PrintSettings().Serialise();
    const std::wstring locked = folder.write(L"locked.ps4", good);
    const qk::FileObj writer = hold(locked, FILE_SHARE_READ | FILE_SHARE_WRITE, GENERIC_WRITE);
    const std::pair<std::wstring, ps::LoadResult> rows[] = {
        {folder.write(L"good.ps4", good), ps::kLoaded},
        {L"", ps::kMissing},
        {folder.file(L"missing.ps4"), ps::kMissing},
        {folder.path(), ps::kMissing},
        {folder.write(L"empty.ps4", ""), ps::kUnreadable},
        {locked, ps::kUnreadable},
        {folder.write(L"full.ps4", good + std::string(ps::kMostFileBytes - good.size(), ' ')), ps::kLoaded},
        {folder.write(L"too large.ps4", good + std::string(ps::kMostFileBytes + 1 - good.size(), ' ')),
         ps::kUnreadable}};
    for (const auto& [path, result] : rows) {
        ps::PrintSettings settings;
        settings->PSName = L"before";
        EXPECT_EQ(settings.Load(path, false), result) << qk::to_utf8(path);
        EXPECT_EQ(settings->PSName == L"before", result != ps::kLoaded) << qk::to_utf8(path);
    }
}

TEST(BadSetting, LegacyFilesAreCheckedAndNeverHalfRead) {
    const std::string data = chunk("DAT3", "payload"), end = chunk("CEND", "");
    const auto bad = L"bad chunk list";
    const std::tuple<std::string, ps::LoadResult, const wchar_t*> rows[] = {
        {std::string("\x09\x00\x02\x00 and more", 13), ps::kLegacyPayload, L"read_legacy"},
        {chunked(data + end), ps::kLegacyPayload, L"read_legacy"},
        {chunked(data + chunk("AXXX", "x") + end), ps::kLegacyPayload, L"header.d=0x58585841"},
        {chunked(data + end, 3, '\xF2'), ps::kUnreadable, L"bad magic number"},
        {chunked(data + end, 4), ps::kUnreadable, L"bad major version"},
        {chunked("").substr(0, 47), ps::kUnreadable, L"bad magic number"},
        {chunked(end), ps::kUnreadable, bad},
        {chunked(data), ps::kUnreadable, bad},
        {chunked(data + end.substr(0, 7)), ps::kUnreadable, bad},
        {chunked(chunk("DAT3", "payload", 100) + end), ps::kUnreadable, bad},  // beyond the file
        {chunked(chunk("XXXX", "", -1) + end), ps::kUnreadable, bad}};         // wraps around
    const TempFolder folder;
    for (const auto& [bytes, result, traced] : rows) {
        ps::PrintSettings settings;
        const TraceCapture capture;
        EXPECT_EQ(settings.Load(folder.write(L"file.printSetting3", bytes), false), result) << bytes;
        EXPECT_TRUE(capture.holds(traced) && settings == ps::PrintSettings()) << bytes;
    }
}
