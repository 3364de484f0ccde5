// The language library: which is chosen, its private copy, what is said of a missing text.
#include "UI_dll/plotui.h"
#include "common/qk/module.h"
#include "companions/wine_layer.h"
#include "resources/ids.h"

namespace {

// The module in a folder "module" of an installation, with the user's folders in the installation too.
struct Moved : Installation {
    Moved() {
        qk::finalize_resource_library(false);
        for (const wchar_t* sub : {L"module\\Language", L"Language", L"temp", L"low", L"elsewhere"})
            ForceDirectories(folder.file(sub));
        module = folder.file(L"module\\x.dll");
        low = folder.file(L"low");
        creations = 0;
        user.set_text(kKey, L"Language", L"kr");
    }
    ~Moved() { qk::finalize_resource_library(false); }

    static inline bool read_only = false;  // there can be no new file
    static inline unsigned creations;
    static inline std::wstring module, low;

    const std::wstring built = Installation::built(L"Language\\zrtk_res_en.dll");
    const Variable temp{L"TMP", folder.file(L"temp")};
    const Intercept<decltype(CreateFileW)> create{
        "CreateFileW", [](auto, DWORD, DWORD, auto, DWORD how, auto...) -> std::optional<HANDLE> {
            creations += how == CREATE_NEW;
            if (how != CREATE_NEW || !read_only)
                return std::nullopt;
            SetLastError(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        }};
    const Intercept<decltype(SHGetKnownFolderPath)> known{
        "SHGetKnownFolderPath", [](auto&, DWORD, HANDLE, wchar_t** text) {
            *text = static_cast<wchar_t*>(SHAlloc((low.size() + 1) * sizeof(wchar_t)));
            qk::copy_zero_padded(*text, low.size() + 1, low);
            return S_OK;
        }};
    const Intercept<decltype(GetModuleFileNameW)> path{"GetModuleFileNameW",
                                                       [](HMODULE, wchar_t* buffer, DWORD units) {
                                                           qk::copy_zero_padded(buffer, units, module);
                                                           return static_cast<DWORD>(module.size());
                                                       }};
};

}  // namespace

TEST(Resources, LanguageIsTheUsersChoiceBeforeTheSystems) {
    const Installation here;
    // The machine's, the user's, which is chosen.
    const wchar_t* const rows[][3] = {{L"", L"", L"en"},     {L"ja", L"kr", L"kr"},
                                      {L"ja", L"", L"ja"},   {L"", L"CHT", L"cht"},
                                      {L"ja", L"fr", L"ja"}, {L"", L"..\\..\\x", L"en"}};
    for (const auto& [machine, user, code] : rows) {
        here.machine.set_text(Installation::kKey, L"Language", machine);
        here.user.set_text(Installation::kKey, L"Language", user);
        EXPECT_EQ(qk::language_code(), code);
    }
    const std::pair<LANGID, const wchar_t*> systems[] = {{0x0004, L"chs"}, {0x0411, L"ja"},  {0x0412, L"kr"},
                                                         {0x0C04, L"chs"}, {0x7C04, L"cht"}, {0x0804, L"en"}};
    for (const auto& [language, code] : systems)
        EXPECT_STREQ(qk::language_code_of(language), code) << language;
}

TEST(Resources, MissingLanguageFallsBackToEnglishThenJapanese) {
    const Moved here;
    {
        const CurrentFolder in(here.folder.path());  // never below the host's
        here.folder.write(L"Language\\zrtk_res_kr.dll", "not to be found");
        here.machine.set_text(Installation::kKey, L"PdfDllPath", L"");
        here.user.set_text(Installation::kKey, L"PdfDllPath", here.folder.path());
        ImpersonateSelf(SecurityImpersonation);  // nor out of the folder of whom the thread acts for
        for (const std::wstring& module : {std::wstring(), Moved::module}) {
            Moved::module = module;
            EXPECT_EQ(qk::load_string(IDS_JOB_FAILED), L"ERROR! no resource dll.");
            EXPECT_EQ(qk::resource_library_path(true), L"");
            EXPECT_EQ(qk::ResourceDLL().load_string(1), L"(no resource dll)");
        }
        RevertToSelf();
        DeleteFileW(L"Language\\zrtk_res_kr.dll");
    }
    // From the last to be chosen to the first.
    for (const std::wstring code : {L"ja", L"en", L"kr"})
        for (const std::wstring folder : {L"", L"module\\"}) {
            const std::wstring file = folder + L"Language\\zrtk_res_" + code + L".dll";
            ForceDirectories(here.folder.file(file));  // is no library
            EXPECT_NE(TempFolder::read(qk::resource_library_path(false)), qk::to_utf8(file));
            RemoveDirectoryW(here.folder.file(file).c_str());
            qk::finalize_resource_library(false);
            EXPECT_EQ(qk::resource_library_path(true), L"");
            here.folder.write(file, qk::to_utf8(file));
            EXPECT_EQ(TempFolder::read(qk::resource_library_path(false)), qk::to_utf8(file));
            qk::finalize_resource_library(false);
        }
}

TEST(Resources, ModuleLoadsWhateverTheTemporaryFolderIs) {
    // The files that have a folder's name, a link, no new file anywhere; the place, refusals of those before
    // it.
    const std::tuple<std::vector<const wchar_t*>, bool, bool, std::wstring, int> rows[] = {
        {{}, false, false, L"temp\\ZRTK80_temp", 0},
        {{}, false, false, L"low\\ZRTK80_temp", 0},  // the system tells of no temporary folder
        {{L"temp\\ZRTK80_temp"}, false, false, L"low\\ZRTK80_temp", 1},
        {{L"temp\\ZRTK80_temp", L"low\\ZRTK80_temp"}, false, false, L"temp", 2},
        {{}, true, false, L"low\\ZRTK80_temp", 1},
        {{}, false, true, L"module\\Language", 4}};
    for (const auto& [files, link, read_only, place, refusals] : rows) {
        SCOPED_TRACE(qk::to_utf8(place) + " after " + std::to_string(refusals));
        const Moved here;
        const auto run = [&](std::vector<std::string> words) {
            words.push_back(*companions::wine::find_unix_path(here.folder.file(L"temp")) + "/ZRTK80_temp");
            return companions::wine::run_unix_program(words) == 0;
        };
        const std::wstring installed = here.folder.file(L"module\\Language\\zrtk_res_en.dll");
        CopyFileW(here.built.c_str(), installed.c_str(), FALSE);
        const std::wstring other = here.folder.write(L"other.dll", "another library");
        for (const wchar_t* file : files)
            here.folder.write(file, "");
        ASSERT_TRUE(!link || run({"/bin/ln", "-s", "../elsewhere"}));
        Moved::read_only = read_only;
        std::optional<ImportPatch> no_temp;
        if (refusals == 0 && place[0] == L'l')
            no_temp.emplace("GetTempPathW", always<DWORD{0}>());
        const TraceCapture trace(0);
        EXPECT_TRUE(plotui::attach_process(qk::module_instance()));
        Moved::read_only = false;
        const auto is_refusal = [](auto& text) { return text.find(L"cant open tmp lr:") != text.npos; };
        EXPECT_EQ(std::ranges::count_if(trace.records(), is_refusal), refusals);
        EXPECT_LE(Moved::creations, 4u) << "a place that cannot serve is tried again";
        const std::wstring copy = qk::resource_library_path(true);
        EXPECT_EQ(copy.substr(0, copy.rfind(L'\\')), here.folder.file(place));
        EXPECT_EQ(TempFolder::read(copy), TempFolder::read(here.built));
        if (copy != installed) {  // it is nobody else's, and keeps nobody from the installed file
            EXPECT_FALSE(DeleteFileW(copy.c_str()) || MoveFileW(copy.c_str(), (copy + L"_").c_str()) ||
                         MoveFileExW(other.c_str(), copy.c_str(), MOVEFILE_REPLACE_EXISTING));
            EXPECT_FALSE(hold(copy, FILE_SHARE_READ, GENERIC_WRITE));
            EXPECT_TRUE(MoveFileW(installed.c_str(), (installed + L"_").c_str()));
        }
        EXPECT_NE(qk::load_string(IDS_JOB_FAILED).find(L"PDF"), std::wstring::npos);
        plotui::detach_process(false);
        EXPECT_EQ(qk::is_file(copy), copy == installed);
        EXPECT_TRUE(!link || run({"/bin/rm"}));
        EXPECT_TRUE(RemoveDirectoryW(here.folder.file(L"elsewhere").c_str())) << "something is in it";
    }
}

TEST(Resources, OnlyCopiesOfDeadProcessesAreRemoved) {
    const Moved here;
    const std::wstring start = L"temp\\ZRTK80_temp\\zrtk_res_", dead = L"4294967292";
    const std::wstring own = std::to_wstring(GetCurrentProcessId());
    ForceDirectories(here.folder.file(L"temp\\ZRTK80_temp"));
    here.folder.write(L"Language\\zrtk_res_en.dll", "");
    const std::pair<std::wstring, bool> rows[] = {
        {dead + L".dll", false},  {dead + L"(7).dll", false}, {L"9" + own + L".dll", false},
        {own + L"(5).dll", true}, {L"en.dll", true},          {dead + L"x.dll", true},
        {dead + L"().dll", true}, {dead + L".dll.exe", true}, {L"99999999999.dll", true}};
    for (const auto& [name, stays] : rows)
        here.folder.write(start + name, "");
    const qk::FileObj in_use = hold(here.folder.write(start + own + L".dll", ""));
    EXPECT_EQ(qk::resource_library_path(false), here.folder.file(start + own + L"(1).dll"));
    qk::finalize_resource_library(false);
    for (const auto& [name, stays] : rows)
        EXPECT_EQ(qk::is_file(here.folder.file(start + name)), stays) << qk::to_utf8(name);
}

TEST(Resources, MissingStringsSayWhichTheyAre) {
    const TraceCapture trace(0);
    const std::wstring text = qk::load_string(IDS_JOB_FAILED);
    EXPECT_EQ(qk::load_string(12345), L"ERROR! no resource string id=12345d");
    EXPECT_TRUE(trace.holds(L"ERROR! no resource string id=12345d"));
    EXPECT_EQ(qk::ResourceDLL(8).load_string(IDS_JOB_FAILED), text.substr(0, 7));
    EXPECT_EQ(qk::ResourceDLL().load_string(12345), L"(no resource string:ID=12345)");
    qk::finalize_resource_library(false);
}
