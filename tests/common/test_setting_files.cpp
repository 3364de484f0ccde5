// Which setting file belongs to a printer, where files and folders lie, what the registry says.
#include "common/driver_util.h"
#include "common/qk/override_ini.h"
#include "common/qk/own_user.h"
#include "common/rwPDFSet_functions.h"
#include "support/fake_tessalo.h"

using namespace std::string_literals;

namespace {

constexpr char kJson[] = "\xEF\xBB\xBF{}";
const std::wstring kRoot = Installation::kKey;
const std::wstring kPrinterKey = kRoot + L"\\My printer", kDebug = kRoot + L"\\Debug";
constexpr wchar_t kValue[] = L"PDFSettingFileName";

// The thread acts for a user while this lives, whose hive is not the one of HKEY_CURRENT_USER.
class ActingForAUser {
public:
    explicit ActingForAUser(bool with_token = true) {
        EXPECT_TRUE(!with_token || ImpersonateSelf(SecurityIdentification));
    }
    ~ActingForAUser() { RevertToSelf(), RegDeleteTreeW(HKEY_CURRENT_USER, kName); }
    ActingForAUser(ActingForAUser&&) = delete;

    static std::wstring in_hive(const std::wstring& path) { return kName + (L'\\' + path); }

private:
    static constexpr wchar_t kName[] = L"another user's";
    const Intercept<decltype(RegOpenCurrentUser)> hive_{
        "RegOpenCurrentUser", [](REGSAM access, HKEY* key) {
            return RegCreateKeyExW(HKEY_CURRENT_USER, kName, 0, nullptr, 0, access, nullptr, key, nullptr);
        }};
};

}  // namespace

TEST(DriverRegistry, FirstTextThatIsNotEmptyCounts) {
    // Of the user, the machine, its root (null: not set); what is wanted.
    const wchar_t* const rows[][4] = {{L"u", L"m", L"r", L"u"}, {nullptr, L"m", L"r", L"m"},
                                      {L"", L"m", L"r", L"m"},  {nullptr, nullptr, L"r", L"r"},
                                      {L"", L"", L"", L""},     {nullptr, nullptr, nullptr, L""}};
    for (const auto& [user, machine, root, wanted] : rows) {
        const Installation here;
        if (user)
            here.user.set_text(kPrinterKey, L"V", user);
        if (machine)
            here.machine.set_text(kPrinterKey, L"V", machine);
        if (root)
            here.machine.set_text(kRoot, L"V", root);
        EXPECT_EQ(ReadDriverRegString(L"V", nullptr), root ? root : L"");
        here.user.set_text(kRoot, L"V", L"for the root alone");
        EXPECT_EQ(ReadDriverRegString(L"V", L"My printer"), wanted);
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
        here.user.set_text(kDebug, L"AppDataPath", L"C:\\process\\");
        here.user.set_text(user.in_hive(kDebug), L"AppDataPath", L"C:\\thread\\");
        EXPECT_EQ(GetAppDataPath(false), L"C:\\thread\\");
        here.user.set_text(user.in_hive(kRoot), L"Language", L"kr");
        EXPECT_EQ(qk::language_code(), L"kr");
        const ImportPatch refused("RegOpenCurrentUser", always<LSTATUS{ERROR_ACCESS_DENIED}>());
        EXPECT_EQ(ReadDriverRegString(kValue, L"My printer"), L"process.ps4");
        EXPECT_EQ(ReadDriverRegString(kValue, L"New printer"), L"");
        EXPECT_TRUE(qk::registry::open(HKEY_CURRENT_USER, kRoot + L"\\New printer") &&
                    !qk::registry::open(HKEY_LOCAL_MACHINE, kRoot + L"\\New printer"));
    }
}

TEST(DriverRegistry, WhatIsToldOfAnotherUserIsNotKept) {
    const MachineRegistry machine;
    const UserRegistry registry;
    registry.set_text(L"SOFTWARE\\Dunmere\\Common\\SpecialFolder", L"CSIDL_COMMON_DOCUMENTS", L"C:\\user");
    std::wstring told;  // of the user, once more each time that the system is asked
    const auto tell = [&](wchar_t* buffer, DWORD units) {
        qk::copy_zero_padded(buffer, units, told);
        return !told.empty();
    };
    const Intercept<decltype(SHGetSpecialFolderPathW)> special(
        "SHGetSpecialFolderPathW", [&](HWND, auto* buffer, auto...) { return tell(buffer, MAX_PATH); });
    const Intercept<decltype(SHGetFolderPathW)> folder(
        "SHGetFolderPathW",
        [&](HWND, int, HANDLE, DWORD, auto* buffer) { return tell(buffer, MAX_PATH) ? S_OK : S_FALSE; });
    const Intercept<decltype(GetUserNameW)> name(
        "GetUserNameW", [&](auto* buffer, DWORD* units) { return tell(buffer, *units), TRUE; });
    {
        const ActingForAUser user;
        for (const std::wstring answer : {L"C:\\one", L"C:\\two", L""}) {
            told = answer;
            for (const std::wstring& seen : {qk::roaming_folder(), qk::default_roaming_folder(),
                                             qk::common_documents_folder(), user_name()})
                EXPECT_EQ(seen, answer);
        }
        EXPECT_EQ(qk::shared_documents_folder() + qk::OverrideIni().path() + GetAppDataPath(true), L"");
        EXPECT_EQ(qk::OverrideIni().message_id(), 11);
    }
    qk::OwnUsersText text;
    // For another user or one's own: what is told, what is wanted.
    const std::tuple<bool, const wchar_t*, const wchar_t*> rows[] = {{false, L"", L""},   {true, L"a", L"a"},
                                                                     {false, L"b", L"b"}, {false, L"c", L"b"},
                                                                     {true, L"d", L"d"},  {false, L"", L"b"}};
    for (const auto& [token, answer, wanted] : rows) {
        const ActingForAUser user(token);
        EXPECT_EQ(text.get([&answer = answer] { return std::wstring(answer); }), wanted) << wanted;
    }
    const ImportPatch unknown("OpenThreadToken", always<FALSE, ERROR_ACCESS_DENIED>());
    EXPECT_EQ(text.get([] { return std::wstring(L"e"); }), L"e") << "a user that cannot be told";
}

TEST(DriverRegistry, ValuesOfAnyShapeAreRead) {
    const Installation here;
    const std::wstring longest(3000, L'x');
    const uint64_t wide = 5;
    const std::wstring most = longest.substr(0, 260);
    const std::tuple<DWORD, const void*, size_t, std::wstring> rows[] = {
        {REG_SZ, L"abc", 8, L"abc"}, {REG_SZ, longest.c_str(), 6000, longest},
        {REG_SZ, L"abc", 6, L"abc"}, {REG_EXPAND_SZ, L"%TMP%", 12, L"%TMP%"},
        {REG_SZ, L"abc", 7, L"abc"}, {REG_SZ, L"one\0two", 16, L"one"},
        {REG_SZ, L"abc", 1, L""},    {REG_SZ, most.c_str(), 520, most},
        {REG_DWORD, &wide, 4, L""},  {REG_DWORD, &wide, 2, L""},
        {REG_QWORD, &wide, 8, L""},  {REG_BINARY, L"abc", 8, L""}};
    for (const auto& [type, data, bytes, wanted] : rows) {
        SCOPED_TRACE(testing::Message() << bytes << " bytes of type " << type);
        here.user.set(kPrinterKey, L"V", type, data, bytes);
        EXPECT_EQ(ReadDriverRegString(L"V", L"My printer"), wanted);
        EXPECT_EQ(qk::registry::find_number(HKEY_CURRENT_USER, kPrinterKey, L"V"),
                  type == REG_DWORD && bytes == 4 ? std::optional<DWORD>(5) : std::nullopt);
    }
}

TEST(SettingFiles, FirstBytesTellTheKind) {
    const Installation here;
    const std::string chunked = "\xF0\x5ARTKS3\xF1";
    std::vector<std::pair<SettingFormat, std::vector<std::string>>> rows = {
        {SettingFormat::kJson, {kJson, "\xEF\xBB\xBF "}},
        {SettingFormat::kBinary3, {chunked}},
        {SettingFormat::kNone,
         {"", "\xEF\xBB\xBF", "{}  ", chunked.substr(0, 7), chunked.substr(0, 4) + "XXXX", {"\1\0\2", 3}}}};
    for (const uint32_t version : {0x20001u, 0x20002u, 0x20003u, 0x20004u, 0x20005u, 0x20009u})
        rows.push_back({SettingFormat{version}, {raw_bytes(version)}});
    for (const uint32_t other : {0x20000u, 0x20006u, 0x20007u, 0x20008u, 0x2000Au, 0x30000u, 70000u})
        rows.push_back({SettingFormat::kNone, {raw_bytes(other)}});
    for (const auto& [format, starts] : rows)
        for (const std::string& start : starts)
            EXPECT_EQ(ProbeSettingFile(here.folder.write(L"probed", start)), format) << start;
    const std::wstring saved = here.folder.write(L"probed", kJson);
    qk::FileObj in_place = hold(saved, FILE_SHARE_READ, GENERIC_WRITE);
    const CallHook<decltype(Sleep)> pause("Sleep", [&](auto, DWORD) { in_place.reset(); });
    EXPECT_EQ(ProbeSettingFile(saved), SettingFormat::kJson) << "who just saves it is waited for";
    EXPECT_EQ(ProbeSettingFile(L""), SettingFormat::kNone);
    EXPECT_EQ(ProbeSettingFile(here.folder.path()), SettingFormat::kNone);
}

TEST(SettingFiles, SearchGoesByExtensionAndThenByFolder) {
    const Installation here;
    here.user.set_text(kDebug, L"AppDataPath", here.folder.file(L"mine\\"));
    CreateDirectoryW(here.folder.file(L"mine").c_str(), nullptr);
    EXPECT_EQ(ResolveSettingFilePath(L"x"), L"");
    // From the last to be found to the first: each new file wins over those before it.
    for (const wchar_t* file :
         {L"mine\\x.printSetting2", L"Settings\\x.printSetting2", L"CustomSettings\\x.printSetting3",
          L"Settings\\legacy\\x.printSetting3", L"mine\\x.ps4", L"CustomSettings\\x.ps4",
          L"Settings\\legacy\\x.ps4", L"Settings\\x.ps4", L"mine\\x", L"CustomSettings\\x",
          L"Settings\\legacy\\x", L"Settings\\x"}) {
        here.folder.write(file, kJson);
        EXPECT_EQ(ResolveSettingFilePath(L"x"), here.folder.file(file));
    }
    here.folder.write(L"Settings\\x", "no setting");
    const std::wstring outside = here.folder.write(L"out\\y.ps4", kJson),
                       below = here.folder.file(L"Settings\\legacy\\x");
    const std::pair<std::wstring, std::wstring> rows[] = {
        {L"x", below},
        {outside, outside},
        {here.folder.file(L"out\\y"), L""},  // a path gets no extension
        {L"legacy\\x", below},               // the folders come after the path
        {std::wstring(5000, L'x'), L""}};
    for (const auto& [name, path] : rows)
        EXPECT_EQ(ResolveSettingFilePath(name), path);
    wchar_t narrow[8] = L"x.ps4", none[8] = L"none";
    EXPECT_EQ(FindSettingFile(narrow, 8), 1);
    EXPECT_EQ(narrow, here.folder.path().substr(0, 7));
    EXPECT_EQ(FindSettingFile(none, 8) + FindSettingFile(nullptr, 8), 0);
    EXPECT_STREQ(none, L"none");
}

TEST(SettingFiles, HostsCurrentFolderNeverCounts) {
    const Installation here;
    const TempFolder host;
    for (const wchar_t* folder : {L"sub", L"Settings"})
        ForceDirectories(host.file(folder));
    const CurrentFolder current(host.path());
    for (const std::wstring& install : {here.folder.path(), std::wstring()}) {
        here.machine.set_text(kRoot, L"PdfDllPath", install);
        for (const wchar_t* name : {L"standard.ps4", L"sub\\standard.ps4", L"Settings\\standard.ps4"}) {
            host.write(name, kJson);
            EXPECT_EQ(ResolveSettingFilePath(name) + SettingPathOf(name), L"");
        }
        EXPECT_EQ(ResolveSettingFilePath(L"standard"), L"");
        EXPECT_EQ(GetSettingFileName(L"My printer"), L"standard.ps4");
        EXPECT_EQ(ResolveSettingFilePath(host.file(L"standard.ps4")), host.file(L"standard.ps4"));
    }
    here.machine.set_text(kRoot, L"PdfDllPath", here.folder.path());
    here.folder.write(L"Settings\\.ps4", kJson);
    EXPECT_EQ(GetSettingFileName(L"My printer"), L"standard.ps4") << "an extension is no name";
    for (const wchar_t* elsewhere : {L"sub", L"\\\\.\\pipe\\"}) {
        here.user.set_text(kDebug, L"AppDataPath", elsewhere);
        EXPECT_EQ(ResolveSettingFilePath(L"standard") + GetAppDataPath(false), L"") << elsewhere;
    }
}

TEST(SettingFiles, ChoiceIsStoredPerPrinterWithoutTerminator) {
    const Installation here;
    const std::wstring root = here.folder.path();
    const std::pair<std::wstring, std::wstring> rows[] = {
        {root + L"\\Settings\\a.ps4", L"a.ps4"},
        {root + L"\\SETTINGS\\a.ps4", L"a.ps4"},
        {root + L"\\Settings\\legacy\\b.printSetting2", L"b.printSetting2"},
        {root + L"\\CustomSettings\\a.ps4", root + L"\\CustomSettings\\a.ps4"},
        {root + L"\\Settings.ps4", root + L"\\Settings.ps4"},
        {L"", L""}};
    // Some registries add the terminator of their own accord: what is asked of them counts.
    DWORD asked = 0;
    const Intercept<decltype(RegSetValueExW)> set(
        "RegSetValueExW", [&](HKEY, auto*, DWORD, DWORD type, auto*, DWORD bytes) {
            return asked = type == REG_SZ ? bytes : MAXDWORD, std::nullopt;
        });
    for (const auto& [chosen, stored] : rows) {
        SetSettingFileName(chosen, L"My printer");
        EXPECT_EQ(asked, stored.size() * sizeof(wchar_t));
        EXPECT_EQ(ReadDriverRegString(kValue, L"My printer"), stored);
    }
}

TEST(SettingFiles, DefaultTakesOverForAFileThatIsGone) {
    const Installation here;
    const std::tuple<bool, const wchar_t*, const wchar_t*, const wchar_t*> rows[] = {
        {false, L"gone.ps4", L"standard.ps4", L" [not found] ps=standard.ps4"},
        {false, L"there", L"there", L" [found] ps=there"},
        {true, L"gone.ps4", L"standard.ps4", L" s=gone.ps4"},
        {true, L"", L"standard.ps4", L"!="}};
    here.folder.write(L"CustomSettings\\there.ps4", kJson);
    for (const auto& [has_default, stored, wanted, record] : rows) {
        if (has_default)
            here.folder.write(L"Settings\\standard.ps4", kJson);
        SetSettingFileName(stored, L"My printer");
        const TraceCapture trace;
        EXPECT_EQ(GetSettingFileName(L"My printer"), wanted);
        EXPECT_TRUE(trace.holds(record)) << qk::to_utf8(record);
    }
}

TEST(SettingFiles, DialogLibraryNamesTheFile) {
    const Installation here;
    const TraceCapture trace;
    const auto ask = [] { return GetSettingFileNameFromFD(L"My printer"); };
    EXPECT_EQ(ask(), L"");
    here.copy_built(L"Language\\zrtk_res_en.dll", L"Tessalo80.dll");
    EXPECT_EQ(ask(), L"");
    EXPECT_TRUE(trace.holds(L"dll not found: Tessalo80.dll") && trace.holds(L"no func"));
    here.copy_built(L"fake_tessalo.dll", L"Tessalo80.dll");
    const qk::DLL library(LoadLibraryW(here.folder.file(L"Tessalo80.dll").c_str()));
    auto* script = qk::find_export<FakeTessaloScriptExport>(library.get(), "Script")();
    std::fill(std::begin(script->setting), std::end(script->setting), L's');  // it forgets the terminator
    EXPECT_EQ(ask(), std::wstring(511, L's'));
    script->setting_result = 3;
    EXPECT_TRUE(ask().empty() && *script->misuse == '\0') << script->misuse;
}

TEST(Folders, UsersFolderIsMadeOnlyOnRequest) {
    const Installation here;
    const std::wstring folder = here.folder.file(L"Roaming\\Corvanta\\Vantrix\\8.0\\CustomSettings"),
                       other = here.folder.file(L"deep\\er\\and deeper");
    here.machine.set_text(kDebug, L"AppDataPath", L"C:\\machine\\");  // is the user's to say
    EXPECT_EQ(GetAppDataPath(false), L"");
    EXPECT_EQ(GetAppDataPath(true), folder + L"\\");
    EXPECT_EQ(GetAppDataPath(false), folder + L"\\");
    here.user.set_text(kDebug, L"AppDataPath", other);
    for (const bool make : {false, true}) {
        EXPECT_EQ(GetAppDataPath(make), other);  // as it stands there
        EXPECT_EQ(qk::is_folder(other), make);
    }
}

TEST(Folders, ParentsAreMadeAndFilesInTheWayAreNot) {
    const TempFolder folder;
    const std::wstring file = folder.write(L"file", "x");
    EXPECT_TRUE(ForceDirectories(folder.file(L"a\\b\\c\\")) && qk::is_folder(folder.file(L"a\\b\\c")));
    for (const std::wstring& path : {file, file + L"\\below", L""s, L"\\"s, L"Q:\\x\\y"s})
        EXPECT_FALSE(ForceDirectories(path)) << qk::to_utf8(path);
}

TEST(Folders, ScratchFolderIsTheThreadsOwn) {
    const TempFolder folder;
    const Variable temp(L"TMP", folder.path());
    const std::wstring scratch = folder.path() + qk::format(L"\\ZRTK80_temp\\%lu", GetCurrentThreadId());
    for (int i = 0; i < 2; ++i)
        EXPECT_TRUE(ZRTK_TempPath() == scratch && qk::is_folder(scratch));
    RemoveDirectoryW(scratch.c_str());
    folder.write(L"ZRTK80_temp" + scratch.substr(scratch.rfind(L'\\')), "in the way");
    EXPECT_EQ(ZRTK_TempPath(), L"");
    const Variable missing(L"TMP", folder.file(L"none"));
    EXPECT_EQ(ZRTK_TempPath(), L"");
}
