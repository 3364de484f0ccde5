// Where the passwords of a setting show: in its file and nowhere else.
#include "companions/host/report_parts.h"
#include "companions/host/setting_check.h"
#include "print_settings/display.h"

namespace {

// Each test has a password of its own: the memory that one has freed is not looked at by the next.
size_t first_letter = 0;
constexpr size_t kLength = 20;
char letter(size_t at) {
    return static_cast<char>('A' + (at * 7 + first_letter) % 26);
}

// Made anew each time, so that no copy of it stands in the program.
std::wstring password() {
    std::wstring text(kLength, L'\0');
    for (size_t i = 0; i < text.size(); ++i)
        text[i] = letter(i);
    return text;
}

// How often it stands in the memory that the process writes to, whole.
template <class Unit>
size_t count_in_memory() {
    size_t found = 0;
    for_each_region([&](const MEMORY_BASIC_INFORMATION& region) {
        if (region.State != MEM_COMMIT || region.Protect != PAGE_READWRITE)
            return;
        const auto* units = static_cast<const Unit*>(region.BaseAddress);
        for (size_t i = 0, same = 0; i < region.RegionSize / sizeof(Unit); ++i) {
            same = units[i] == Unit(letter(same)) ? same + 1 : units[i] == Unit(letter(0));
            found += same == kLength;
            same %= kLength;
        }
    });
    return found;
}

ps::PrintSettings secret_setting() {
    ps::PrintSettings settings;
    settings.security()->MasterPassword = settings.security()->UserPassword = password();
    return settings;
}

}  // namespace

// Each key of a setting in turn is broken, and has a value of another type.
TEST(Passwords, NoTraceAndNoReportShowsThem) {
    const TempFolder folder;
    const std::wstring whole = folder.file(L"whole.ps4");
    ASSERT_TRUE(secret_setting().Save(whole));
    std::string text = TempFolder::read(whole).substr(3);
    std::erase(text, '\n');  // in one line, so that all that follows a fault stands with it
    size_t keys = 0, shown = 0;
    const TraceCapture trace;
    const auto look = [&](const std::wstring& line) { shown += line.find(password()) != std::wstring::npos; };
    const auto try_setting = [&](std::string_view bytes) {
        for (const wchar_t* name : {L"damaged.ps4", L"damaged.ps4a"}) {
            const std::wstring path = folder.write(name, "\xEF\xBB\xBF" + std::string(bytes));
            const host::SettingFindings findings[] = {host::check_setting(path)};
            look(qk::to_wide(host::report_json(findings)));
            for (const std::wstring& line : host::report_lines(findings[0]))
                look(line);
            ps::PrintSettings other;
            if (other.Load(path))
                for (const std::wstring& line : ps::Changed2Str(secret_setting(), other))
                    look(line);
            static_cast<void>(ps::PrintSettingsAdmin().Load(path));
            static_cast<void>(ps::ReadName(path));
        }
    };
    for (size_t at = text.find("\":"); at != std::string::npos; at = text.find("\":", at + 1), ++keys)
        for (const char* instead : {"\"", "\":\"another\",\"more\":"})
            try_setting(text.substr(0, at) + instead + text.substr(at + 2));
    EXPECT_GT(keys, 118u);  // sections have theirs, too
    for (const std::wstring& record : trace.records())
        look(record);
    EXPECT_EQ(shown, 0u);
    EXPECT_GT(trace.records().size(), keys);
}

TEST(Passwords, NoMemoryKeepsThem) {
    first_letter = 5;
    const TempFolder folder;
    const std::wstring path = folder.file(L"secret.ps4");
    ASSERT_TRUE(secret_setting().Save(path));
    {
        ps::PrintSettings loaded;
        ASSERT_TRUE(loaded.Load(path));
        const ps::PrintSettings copy = loaded;
        EXPECT_GT(count_in_memory<wchar_t>(), 3u) << "what is looked for is not found";
        ps::PrintSettingsAdmin job;
        ASSERT_TRUE(job.Load(path));
        EXPECT_TRUE(ps::ReadName(path));
    }
    EXPECT_EQ(count_in_memory<wchar_t>(), 0u);
    EXPECT_EQ(count_in_memory<char>(), 0u);
}
