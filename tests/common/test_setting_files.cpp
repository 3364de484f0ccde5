// Which setting file belongs to a printer, where files and folders lie, what the registry says.
#include <gtest/gtest.h>

#include <cstdint>
#include <utility>

#include "common/driver_util.h"
#include "common/qk/override_ini.h"
#include "common/qk/own_user.h"
#include "common/qk/paths.h"
#include "common/qk/registry.h"
#include "common/qk/resource_dll.h"
#include "common/rwPDFSet_functions.h"
#include "common/qk/text.h"
#include "support/fake_tessalo.h"
#include "support/installation.h"
#include "support/temp_folder.h"
#include "support/trace_capture.h"
#include "support/variable.h"

namespace {

constexpr char kJson[] = "\xEF\xBB\xBF{}";
constexpr wchar_t kRoot[] = L"SOFTWARE\\Corvanta\\Vantrix\\8.0";
constexpr wchar_t kPrinterKey[] = L"SOFTWARE\\Corvanta\\Vantrix\\8.0\\My printer";
constexpr wchar_t kValue[] = L"PDFSettingFileName";

// The thread acts for a user while this lives, whose hive is not the one of HKEY_CURRENT_USER.
class ActingForAUser {
public:
    explicit ActingForAUser(bool with_token = true) {
        EXPECT_TRUE(!with_token || ImpersonateSelf(SecurityIdentification));
    }
    ~ActingForAUser() {
        RevertToSelf();
        RegDeleteTreeW(HKEY_CURRENT_USER, kName);
    }
    ActingForAUser(const ActingForAUser&) = delete;
    ActingForAUser& operator=(const ActingForAUser&) = delete;

    static std::wstring in_hive(const std::wstring& path) { return kName + (L'\\' + path); }

private:
    static constexpr wchar_t kName[] = L"another user's";
    static LSTATUS WINAPI open_hive(REGSAM access, HKEY* key) {
        return RegCreateKeyExW(HKEY_CURRENT_USER, kName, 0, nullptr, 0, access, nullptr, key, nullptr);
    }
    const ImportPatch hive_{"RegOpenCurrentUser", reinterpret_cast<void*>(&open_hive)};
};

// What the system tells of the user, once more each time it is asked.
std::wstring told;
BOOL WINAPI tell_special_folder(HWND, wchar_t* buffer, int, BOOL) {
    qk::copy_zero_padded(buffer, MAX_PATH, told);
    return !told.empty();
}
HRESULT WINAPI tell_folder(HWND, int, HANDLE, DWORD, wchar_t* buffer) {
    return tell_special_folder(nullptr, buffer, 0, FALSE) ? S_OK : S_FALSE;
}
BOOL WINAPI tell_user_name(wchar_t* buffer, DWORD* units) {
    qk::copy_zero_padded(buffer, *units, told);
    return TRUE;
}

}  // namespace

TEST(DriverRegistry, FirstTextThatIsNotEmptyCounts) {
    struct {
        const char* label;
        const wchar_t *user, *machine, *root;  // null: not set
        const wchar_t* wanted;
    } const rows[] = {
        {"all", L"u", L"m", L"r", L"u"},         {"machine", nullptr, L"m", L"r", L"m"},
        {"user's empty", L"", L"m", L"r", L"m"}, {"root", nullptr, nullptr, L"r", L"r"},
        {"all empty", L"", L"", L"", L""},       {"none", nullptr, nullptr, nullptr, L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const Installation here;
        if (row.user)
            here.user.set_text(kPrinterKey, L"V", row.user);
        if (row.machine)
            here.machine.set_text(kPrinterKey, L"V", row.machine);
        if (row.root)
            here.machine.set_text(kRoot, L"V", row.root);
        EXPECT_EQ(ReadDriverRegString(L"V", L"My printer"), row.wanted);
        EXPECT_EQ(ReadDriverRegString(L"V", nullptr), row.root ? row.root : L"");
    }
}

TEST(DriverRegistry, UsersHiveIsThatOfTheThread) {
    for (const bool with_token : {false, true}) {
        const Installation here;
        here.user.set_text(kPrinterKey, kValue, L"process.ps4");
        const ActingForAUser user(with_token);
        EXPECT_EQ(ReadDriverRegString(kValue, L"My printer"), L"");
        SetSettingFileName(L"thread.ps4", L"My printer");
        EXPECT_EQ(ReadDriverRegString(kValue, L"My printer"), L"thread.ps4");
        here.user.set_text(std::wstring(kRoot) + L"\\Debug", L"AppDataPath", L"C:\\process\\");
        here.user.set_text(user.in_hive(std::wstring(kRoot) + L"\\Debug"), L"AppDataPath", L"C:\\thread\\");
        EXPECT_EQ(GetAppDataPath(false), L"C:\\thread\\");
        here.user.set_text(user.in_hive(kRoot), L"Language", L"kr");
        EXPECT_EQ(qk::language_code(), L"kr");
        const ImportPatch refused(
            "RegOpenCurrentUser",
            reinterpret_cast<void*>(+[](REGSAM, HKEY*) -> LSTATUS { return ERROR_ACCESS_DENIED; }));
        EXPECT_EQ(ReadDriverRegString(kValue, L"My printer"), L"process.ps4");
        for (const auto& [hive, made] : {std::pair(HKEY_CURRENT_USER, true), {HKEY_LOCAL_MACHINE, false}}) {
            EXPECT_EQ(ReadDriverRegString(kValue, L"New printer"), L"");
            EXPECT_EQ(static_cast<bool>(qk::registry::open(hive, std::wstring(kRoot) + L"\\New printer")),
                      made);
        }
    }
}

TEST(DriverRegistry, WhatIsToldOfAnotherUserIsNotKept) {
    const MachineRegistry machine;
    const UserRegistry registry;
    const ImportPatch special("SHGetSpecialFolderPathW", reinterpret_cast<void*>(&tell_special_folder)),
        folder("SHGetFolderPathW", reinterpret_cast<void*>(&tell_folder)),
        name("GetUserNameW", reinterpret_cast<void*>(&tell_user_name));
    {
        const ActingForAUser user;
        for (const std::wstring& answer :
             {std::wstring(L"C:\\one"), std::wstring(L"C:\\two"), std::wstring()}) {
            told = answer;
            EXPECT_EQ(qk::roaming_folder(), answer);
            EXPECT_EQ(qk::common_documents_folder(), answer);
            EXPECT_EQ(qk::shared_documents_folder(),
                      answer.empty() ? answer : answer + L"\\Dunmere\\Vantrix2");
            EXPECT_EQ(user_name(), answer);
        }
        EXPECT_EQ(qk::OverrideIni().path(), L"");
        EXPECT_EQ(qk::OverrideIni().message_id(), 11);
        EXPECT_EQ(GetAppDataPath(true), L"");
    }
    qk::OwnUsersText text;
    struct {
        const char* label;
        bool token;
        const wchar_t *told, *wanted;
    } const rows[] = {{"nothing yet", false, L"", L""},          {"another's", true, L"a", L"a"},
                      {"first of one's own", false, L"b", L"b"}, {"kept", false, L"c", L"b"},
                      {"another's again", true, L"d", L"d"},     {"still kept", false, L"", L"b"}};
    for (const auto& row : rows) {
        const ActingForAUser user(row.token);
        EXPECT_EQ(text.get([&] { return std::wstring(row.told); }), row.wanted) << row.label;
    }
    const ImportPatch unknown("OpenThreadToken",
                              reinterpret_cast<void*>(+[](HANDLE, DWORD, BOOL, HANDLE*) -> BOOL {
                                  SetLastError(ERROR_ACCESS_DENIED);
                                  return FALSE;
                              }));
    EXPECT_EQ(text.get([] { return std::wstring(L"e"); }), L"e") << "a user that cannot be told";
}

TEST(DriverRegistry, TextsOfAnyShapeAreRead) {
    const Installation here;
    const std::wstring longest(3000, L'x');
    const wchar_t two[] = L"one\0two";
    struct {
        const char* label;
        DWORD type;
        const void* data;
        size_t bytes;
        std::wstring wanted;
    } const rows[] = {
        {"terminated", REG_SZ, L"abc", 8, L"abc"},
        {"not terminated", REG_SZ, L"abc", 6, L"abc"},
        {"half a unit more", REG_SZ, L"abc", 7, L"abc"},
        {"one byte", REG_SZ, L"abc", 1, L""},
        {"nothing", REG_SZ, L"", 0, L""},
        {"expandable", REG_EXPAND_SZ, L"%TMP%", 12, L"%TMP%"},
        {"zero inside", REG_SZ, two, sizeof two, L"one"},
        {"number", REG_DWORD, L"ab", 4, L""},
        {"bytes", REG_BINARY, L"abc", 8, L""},
        {"long", REG_SZ, longest.c_str(), 6000, longest},
        {"260 units", REG_SZ, longest.c_str(), 520, longest.substr(0, 260)},
    };
    for (const auto& row : rows) {
        here.user.set(kPrinterKey, L"V", row.type, row.data, row.bytes);
        EXPECT_EQ(ReadDriverRegString(L"V", L"My printer"), row.wanted) << row.label;
    }
    const uint64_t wide = 5;
    here.user.set(kPrinterKey, L"N", REG_QWORD, &wide, 8);
    EXPECT_FALSE(qk::registry::find_number(HKEY_CURRENT_USER, kPrinterKey, L"N"));
    here.user.set(kPrinterKey, L"N", REG_DWORD, &wide, 2);
    EXPECT_FALSE(qk::registry::find_number(HKEY_CURRENT_USER, kPrinterKey, L"N"));
    here.user.set(kPrinterKey, L"N", REG_DWORD, &wide, 4);
    EXPECT_EQ(qk::registry::find_number(HKEY_CURRENT_USER, kPrinterKey, L"N"), 5u);
}

TEST(SettingFiles, FirstBytesTellTheKind) {
    const Installation here;
    const auto number = [](uint32_t value) { return std::string(reinterpret_cast<const char*>(&value), 4); };
    const std::string chunked = "\xF0\x5ARTKS3\xF1";
    struct {
        std::string bytes;
        SettingFormat format;
    } const rows[] = {
        {kJson, SettingFormat::kJson},
        {"\xEF\xBB\xBF ", SettingFormat::kJson},
        {"\xEF\xBB\xBF", SettingFormat::kNone},
        {"{}  ", SettingFormat::kNone},
        {"", SettingFormat::kNone},
        {chunked, SettingFormat::kBinary3},
        {chunked.substr(0, 7), SettingFormat::kNone},
        {chunked.substr(0, 4) + "XXXX", SettingFormat::kNone},
        {number(0x20001), SettingFormat::kBinary2_1},
        {number(0x20005), SettingFormat::kBinary2_5},
        {number(0x20006), SettingFormat::kNone},
        {number(0x20007), SettingFormat::kNone},
        {number(0x20008), SettingFormat::kNone},
        {number(0x20009), SettingFormat::kBinary2_9},
        {number(0x20000), SettingFormat::kNone},
        {number(0x30000), SettingFormat::kNone},
        {number(70000), SettingFormat::kNone},
        {number(0x20001).substr(0, 3), SettingFormat::kNone},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ProbeSettingFile(here.folder.write(L"probed", row.bytes)), row.format) << row.bytes;
    EXPECT_EQ(ProbeSettingFile(L""), SettingFormat::kNone);
    EXPECT_EQ(ProbeSettingFile(here.folder.path()), SettingFormat::kNone);
    const std::wstring locked = here.folder.write(L"probed", kJson);
    {
        const ImportPatch pipe("GetFileType",
                               reinterpret_cast<void*>(+[](HANDLE) -> DWORD { return FILE_TYPE_PIPE; }));
        EXPECT_EQ(ProbeSettingFile(locked), SettingFormat::kNone);
    }
    const qk::FileObj lock(CreateFileW(locked.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    const TraceCapture trace;
    EXPECT_EQ(ProbeSettingFile(locked), SettingFormat::kNone);
    EXPECT_TRUE(trace.holds(L"open error") && trace.holds(locked));
}

TEST(SettingFiles, SearchGoesByExtensionAndThenByFolder) {
    const Installation here;
    here.user.set_text(std::wstring(kRoot) + L"\\Debug", L"AppDataPath", here.folder.file(L"mine\\"));
    CreateDirectoryW(here.folder.file(L"mine").c_str(), nullptr);
    // From the last to be found to the first: each new file wins over those before it.
    const wchar_t* const files[] = {
        L"mine\\x.printSetting2",
        L"Settings\\x.printSetting2",
        L"CustomSettings\\x.printSetting3",
        L"Settings\\legacy\\x.printSetting3",
        L"mine\\x.ps4",
        L"CustomSettings\\x.ps4",
        L"Settings\\legacy\\x.ps4",
        L"Settings\\x.ps4",
        L"mine\\x",
        L"CustomSettings\\x",
        L"Settings\\legacy\\x",
        L"Settings\\x",
    };
    EXPECT_EQ(ResolveSettingFilePath(L"x"), L"");
    for (const wchar_t* file : files) {
        here.folder.write(file, kJson);
        EXPECT_EQ(ResolveSettingFilePath(L"x"), here.folder.file(file));
    }
    here.folder.write(L"Settings\\x", "no setting");
    EXPECT_EQ(ResolveSettingFilePath(L"x"), here.folder.file(L"Settings\\legacy\\x"));

    const std::wstring outside = here.folder.write(L"out\\y.ps4", kJson);
    EXPECT_EQ(ResolveSettingFilePath(outside), outside);
    EXPECT_EQ(ResolveSettingFilePath(here.folder.file(L"out\\y")), L"");  // a path gets no extension
    EXPECT_EQ(ResolveSettingFilePath(L"legacy\\x"),
              here.folder.file(L"Settings\\legacy\\x"));  // the folders come after the path
    EXPECT_EQ(ResolveSettingFilePath(std::wstring(5000, L'x')), L"");

    wchar_t name[512] = L"x.ps4";
    EXPECT_EQ(FindSettingFile(name, 512), 1);
    EXPECT_EQ(name, here.folder.file(L"Settings\\x.ps4"));
    wchar_t narrow[8] = L"x.ps4";
    EXPECT_EQ(FindSettingFile(narrow, 8), 1);
    EXPECT_EQ(narrow, here.folder.path().substr(0, 7));
    wchar_t none[8] = L"none";
    EXPECT_EQ(FindSettingFile(none, 8), 0);
    EXPECT_STREQ(none, L"none");
    EXPECT_EQ(FindSettingFile(nullptr, 8), 0);
}

TEST(SettingFiles, HostsCurrentFolderNeverCounts) {
    const Installation here;
    const TempFolder host;
    for (const wchar_t* folder : {L"sub", L"Settings"})
        CreateDirectoryW(host.file(folder).c_str(), nullptr);
    const CurrentFolder current(host.path());
    for (const std::wstring& install : {here.folder.path(), std::wstring()}) {
        here.machine.set_text(kRoot, L"PdfDllPath", install);
        for (const wchar_t* name : {L"standard.ps4", L"sub\\standard.ps4", L"Settings\\standard.ps4"}) {
            host.write(name, kJson);
            EXPECT_EQ(ResolveSettingFilePath(name), L"") << qk::to_utf8(name);
            EXPECT_EQ(SettingPathOf(name), L"") << qk::to_utf8(name);
        }
        EXPECT_EQ(ResolveSettingFilePath(L"standard"), L"");
        EXPECT_EQ(GetSettingFileName(L"My printer"), L"standard.ps4");
        EXPECT_EQ(ResolveSettingFilePath(host.file(L"standard.ps4")), host.file(L"standard.ps4"));
        EXPECT_EQ(SettingPathOf(L"C:/any.ps4"), L"C:/any.ps4");
    }
    here.user.set_text(std::wstring(kRoot) + L"\\Debug", L"AppDataPath", host.file(L"sub"));
    EXPECT_EQ(SettingPathOf(L"standard"), host.file(L"sub\\standard.ps4")) << "its backslash is added";
}

TEST(SettingFiles, ChoiceIsStoredPerPrinterWithoutTerminator) {
    const Installation here;
    const std::wstring root = here.folder.path();
    struct {
        std::wstring chosen, stored;
    } const rows[] = {
        {root + L"\\Settings\\a.ps4", L"a.ps4"},
        {root + L"\\SETTINGS\\a.ps4", L"a.ps4"},
        {root + L"\\Settings\\legacy\\b.printSetting2", L"b.printSetting2"},
        {root + L"\\CustomSettings\\a.ps4", root + L"\\CustomSettings\\a.ps4"},
        {root + L"\\Settings.ps4", root + L"\\Settings.ps4"},
        {L"bare.ps4", L"bare.ps4"},
        {L"", L""},
    };
    // Some registries add the terminator of their own accord: what is asked of them counts.
    static DWORD asked_bytes;
    const ImportPatch set_value("RegSetValueExW",
                                reinterpret_cast<void*>(+[](HKEY key, const wchar_t* value, DWORD, DWORD type,
                                                            const BYTE* data, DWORD bytes) -> LSTATUS {
                                    asked_bytes = bytes;
                                    auto* set = qk::find_export<decltype(RegSetValueExW)>(
                                        GetModuleHandleW(L"advapi32.dll"), "RegSetValueExW");
                                    return set(key, value, 0, type, data, bytes);
                                }));
    for (const auto& row : rows) {
        SetSettingFileName(row.chosen, L"My printer");
        EXPECT_EQ(asked_bytes, row.stored.size() * sizeof(wchar_t));
        EXPECT_EQ(ReadDriverRegString(kValue, L"My printer"), row.stored);
    }
}

TEST(SettingFiles, DefaultTakesOverForAFileThatIsGone) {
    const Installation here;
    struct {
        bool has_default;
        const wchar_t *stored, *wanted;
        bool differs;
        const wchar_t* trace;
    } const rows[] = {
        {false, L"gone.ps4", L"standard.ps4", false, L" [not found] ps=standard.ps4"},
        {false, L"there", L"there", false, L" [found] ps=there"},
        {true, L"gone.ps4", L"standard.ps4", true, L" [found] ps=standard.ps4"},
        {true, L"", L"standard.ps4", true, L" read ps="},
        {true, L"there", L"there", false, L">GetSettingFileName pn=My printer"},
    };
    here.folder.write(L"CustomSettings\\there.ps4", kJson);
    for (const auto& row : rows) {
        if (row.has_default)
            here.folder.write(L"Settings\\standard.ps4", kJson);
        SetSettingFileName(row.stored, L"My printer");
        const TraceCapture trace;
        EXPECT_EQ(GetSettingFileName(L"My printer"), row.wanted);
        EXPECT_EQ(trace.holds(L"!="), row.differs);
        EXPECT_TRUE(trace.holds(row.trace)) << qk::to_utf8(row.trace);
    }
}

TEST(SettingFiles, DialogLibraryNamesTheFile) {
    const Installation here;
    const TraceCapture trace;
    EXPECT_EQ(GetSettingFileNameFromFD(L"My printer"), L"");
    EXPECT_TRUE(trace.holds(L"dll not found: Tessalo80.dll"));
    const std::wstring target = here.folder.file(L"Tessalo80.dll");
    CopyFileW(Installation::built(L"Language\\zrtk_res_en.dll").c_str(), target.c_str(), FALSE);
    EXPECT_EQ(GetSettingFileNameFromFD(L"My printer"), L"");
    EXPECT_TRUE(trace.holds(L"no func"));
    CopyFileW(Installation::built(L"fake_tessalo.dll").c_str(), target.c_str(), FALSE);
    const qk::DLL library(LoadLibraryW(target.c_str()));
    auto* script = qk::find_export<FakeTessaloScriptExport>(library.get(), "Script")();
    std::fill(std::begin(script->setting), std::end(script->setting), L's');  // it forgets the terminator
    EXPECT_EQ(GetSettingFileNameFromFD(L"My printer"), std::wstring(511, L's'));
    script->setting_result = 3;
    EXPECT_EQ(GetSettingFileNameFromFD(L"My printer"), L"");
    EXPECT_TRUE(trace.holds(L"func error"));
    EXPECT_STREQ(script->misuse, "");
}

TEST(Folders, UsersFolderIsMadeOnlyOnRequest) {
    const Installation here;
    const std::wstring folder = here.folder.file(L"Roaming\\Corvanta\\Vantrix\\8.0\\CustomSettings");
    const TraceCapture trace;
    EXPECT_EQ(GetAppDataPath(false), L"");
    EXPECT_TRUE(trace.holds(L"err:GetAppDataPath. nodir"));
    EXPECT_EQ(GetAppDataPath(true), folder + L"\\");
    EXPECT_TRUE(qk::is_folder(folder));
    EXPECT_EQ(GetAppDataPath(false), folder + L"\\");
    const std::wstring other = here.folder.file(L"deep\\er\\and deeper");
    here.user.set_text(std::wstring(kRoot) + L"\\Debug", L"AppDataPath", other);
    EXPECT_EQ(GetAppDataPath(false), other);  // as it stands there
    EXPECT_FALSE(qk::is_folder(other));
    EXPECT_EQ(GetAppDataPath(true), other);
    EXPECT_TRUE(qk::is_folder(other));
}

TEST(Folders, ParentsAreMadeAndFilesInTheWayAreNot) {
    const TempFolder folder;
    const std::wstring file = folder.write(L"file", "x");
    EXPECT_TRUE(ForceDirectories(folder.file(L"a\\b\\c\\")));
    EXPECT_TRUE(qk::is_folder(folder.file(L"a\\b\\c")));
    EXPECT_TRUE(ForceDirectories(folder.file(L"a")));
    EXPECT_TRUE(ForceDirectories(L"C:\\"));
    for (const std::wstring& path :
         {file, file + L"\\below", std::wstring(), std::wstring(L"\\"), std::wstring(L"Q:\\x\\y")})
        EXPECT_FALSE(ForceDirectories(path)) << qk::to_utf8(path);
}

TEST(Folders, ScratchFolderIsTheThreadsOwn) {
    const TempFolder folder;
    const Variable temp(L"TMP", folder.path());
    const std::wstring scratch = folder.path() + qk::format(L"\\ZRTK80_temp\\%lu", GetCurrentThreadId());
    EXPECT_EQ(ZRTK_TempPath(), scratch);
    EXPECT_TRUE(qk::is_folder(scratch));
    EXPECT_EQ(ZRTK_TempPath(), scratch);
    RemoveDirectoryW(scratch.c_str());
    folder.write(L"ZRTK80_temp" + scratch.substr(scratch.rfind(L'\\')), "in the way");
    const TraceCapture trace;
    EXPECT_EQ(ZRTK_TempPath(), L"");
    EXPECT_TRUE(trace.holds(L"err:ZRTK_TempPath 4"));
    DeleteFileW(scratch.c_str());
    RemoveDirectoryW(folder.file(L"ZRTK80_temp").c_str());
    const Variable missing(L"TMP", folder.file(L"none"));
    EXPECT_EQ(ZRTK_TempPath(), L"");
    EXPECT_TRUE(trace.holds(L"err:ZRTK_TempPath 3"));
}
