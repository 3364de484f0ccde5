// Who is told of a failure, the external-call feature, colour profiles.
#include <regex>

#include "UI_dll/PDFSettings/messages.h"
#include "common/ErrorNotify.h"
#include "common/icc_folder.h"
#include "common/icc_profile.h"
#include "common/teskel_custom_2021.h"
#include "resources/ids.h"

namespace {

using pd_tk::TeskelCustom2021;

void expect_box() {
    const auto& [text, caption, style] = Outbox::boxes.at(0);
    EXPECT_EQ(text + caption, L"what failedtitle");
    EXPECT_EQ(style, UINT{MB_ICONERROR | MB_SETFOREGROUND | MB_TOPMOST});
}

int notify(const wchar_t* pdf = nullptr) {
    return ZRTK_ErrorNotify(L"caption", pdf, 164, 0, L"what failed", L"title");
}

// An installation whose administrator has chosen these channels.
struct Notified : Installation {
    explicit Notified(DWORD channels) {
        set_number(HKEY_LOCAL_MACHINE, L"\\Notification", L"Error", channels);
        set_number(HKEY_CURRENT_USER, L"\\Notification", L"Error", 0x10);  // is nobody's to choose
    }
};

std::wstring log_text(const std::string& bytes) {
    return {reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / sizeof(wchar_t)};
}
bool holds(const std::string& log, std::wstring_view part) {
    return log.find(raw_bytes(part)) != std::string::npos;
}

}  // namespace

TEST(ErrorNotify, ChannelsAreChosenByTheAdministrator) {
    // The channels (-1: no key); whether somebody watches, else the event log gets what a box would say;
    // boxes, events, whether it is logged, the result.
    const std::tuple<int, bool, size_t, size_t, bool, int> rows[] = {
        {-1, true, 1, 0, false, IDOK}, {0, true, 0, 0, false, 0},  {2, true, 0, 1, false, 0},
        {15, true, 1, 1, true, IDOK},  {8, true, 0, 0, true, 0},   {16, true, 0, 0, false, 0},
        {4, true, 0, 0, false, 0},     {1, false, 0, 1, false, 0}, {3, false, 0, 1, false, 0}};
    const HWINSTA own = GetProcessWindowStation();
    const HWINSTA hidden = CreateWindowStationW(L"zr_test_hidden", 0, GENERIC_ALL, nullptr);
    for (const auto& [channels, watched, boxes, events, logs, result] : rows) {
        SCOPED_TRACE(testing::Message() << channels << watched);
        const Notified here(static_cast<DWORD>(channels));
        if (channels < 0)
            RegDeleteTreeW(HKEY_LOCAL_MACHINE, Installation::kKey);
        const TraceCapture trace(0);
        ASSERT_TRUE(SetProcessWindowStation(watched ? own : hidden));
        EXPECT_EQ(notify(), result);
        if (!watched) {
            EXPECT_EQ(pdf_settings::show_message(nullptr, L"sure?", IDS_REFUSED, MB_YESNO), 0);
        }
        SetProcessWindowStation(own);
        ASSERT_EQ(Outbox::boxes.size(), boxes);
        if (boxes)
            expect_box();
        EXPECT_EQ(Outbox::events, std::vector<std::wstring>(events, L"what failed"));
        EXPECT_EQ(holds(here.log(), L"\r\nErrorMessage=what failed\r\n"), logs);
        EXPECT_EQ(trace.holds(L"mes:not yet implemented"), channels == 4 || channels == 15);
        EXPECT_NE(trace.holds(L"title: what failed"), watched);
    }
    CloseWindowStation(hidden);
}

TEST(ErrorNotify, LogLiesWhereTheAdministratorSaysAndNamesTheJob) {
    const Notified here(8);
    const std::wstring own = here.folder.file(L"out\\"), usual = here.folder.file(L"Dunmere\\Vantrix2\\");
    const auto of_units = [&](size_t units) {
        return own + std::wstring(units - 1 - own.size(), L'x') + L"\\";
    };
    const char* const ini = "PrintID=12\r\nPDFFileName=C:\\i.pdf";
    // "ErrFile", the ini file's version and lines, the PDF, the log (empty: none), the PDF that it names.
    const std::tuple<std::wstring, const char*, const char*, const wchar_t*, std::wstring, const wchar_t*>
        rows[] = {
            {own, "2.5", ini, nullptr, own + L"Error_12.log", L"C:\\i.pdf"},
            {L"", "2.5", ini, L"C:\\j.pdf", usual + L"Error_12.log", L"C:\\j.pdf"},
            {L"", "2.5", "PrintID=-4\r\nPDFFileName=C:\\i.pdf", L"", usual + L"Error_-4.log", L"C:\\i.pdf"},
            {L"", "4", ini, nullptr, usual + L"Error_0.log", L""},
            {L"", "2.5", "PrintID=rubbish", L"%s%n.pdf", usual + L"Error_0.log", L"%s%n.pdf"},
            {own.substr(0, own.size() - 1), "2.5", "", nullptr, L"", L""},
            {of_units(130), "2.5", "", nullptr, usual + L"Error_0.log", L""},
            {of_units(129), "2.5", "", nullptr, L"", L""}};
    for (const auto& [err_file, version, lines, pdf, log, named] : rows) {
        here.machine.set_text(std::wstring(Installation::kKey) + L"\\Notification", L"ErrFile", err_file);
        here.write_ini(lines, version);
        DeleteFileW(log.c_str());
        SCOPED_TRACE(qk::to_utf8(err_file));
        EXPECT_EQ(notify(pdf), log.empty() ? -2 : 0);
        const std::wstring line = qk::format(L"PDFFileName=%s\r\nTime=", named);
        EXPECT_NE(holds(TempFolder::read(log), line), log.empty());
    }
}

TEST(ErrorNotify, LogTakesTextsOfOneLineAndLinksNothing) {
    const Notified here(8);
    EXPECT_EQ(ZRTK_ErrorNotify(L"", L"a\r\nb.pdf", 0, 0, L"1\r2\n3\u2028[7]\r\n4\x85", L""), 0);
    EXPECT_TRUE(std::regex_match(log_text(here.log()),
                                 std::wregex(L"\\[0\\]\r\nPDFFileName=a  b.pdf\r\nTime=[0-9d]+\r\n"
                                             L"ErrorMessage=1 2 3 \\[7\\]  4 \r\n")));
    const std::wstring log = here.folder.file(L"Dunmere\\Vantrix2\\Error_0.log"),
                       other = here.folder.write(L"other.txt", "another's");
    DeleteFileW(log.c_str());
    ASSERT_TRUE(CreateHardLinkW(log.c_str(), other.c_str(), nullptr));
    EXPECT_EQ(notify(), -2);
    EXPECT_EQ(TempFolder::read(other), "another's");
    DeleteFileW(log.c_str());
    const Intercept<decltype(GetFileInformationByHandle)> link(
        "GetFileInformationByHandle", [](HANDLE, auto* told) {
            *told = {.dwFileAttributes = FILE_ATTRIBUTE_REPARSE_POINT, .nNumberOfLinks = 1};
            return TRUE;
        });
    EXPECT_EQ(notify(), -2);
}

TEST(ErrorNotify, RecordsOfManyProcessesStayWhole) {
    const TempFolder folder;
    const Variable place(L"ZR_LOG_FOLDER", folder.path() + L"\\");
    std::vector<companions::Thread> processes;
    for (int i = 0; i < 3; ++i)
        processes.emplace_back([] { EXPECT_EQ(run_helper(L"ErrorNotifyHelper.DISABLED_FailedJobs"), 0); });
    processes.clear();  // waits for them
    const std::wstring text = log_text(TempFolder::read(folder.file(L"Error_0.log")));
    const std::wregex record(L"\\[0\\]\r\nPDFFileName=C:\\\\1\\.pdf\r\nTime=[0-9d]+\r\nErrorMessage=x+\r\n");
    EXPECT_EQ(std::distance(std::wsregex_iterator(text.begin(), text.end(), record), {}), 3 * 160);
    EXPECT_TRUE(std::regex_replace(text, record, L"").empty()) << "a record is broken";
}

// Not a test but the program of the one above.
TEST(ErrorNotifyHelper, DISABLED_FailedJobs) {
    const Notified here(8);
    wchar_t folder[MAX_PATH] = {};
    GetEnvironmentVariableW(L"ZR_LOG_FOLDER", folder, MAX_PATH);
    here.machine.set_text(std::wstring(Installation::kKey) + L"\\Notification", L"ErrFile", folder);
    for (size_t units = 20; units < 180; ++units)
        EXPECT_EQ(ZRTK_ErrorNotify(L"", L"C:\\1.pdf", 0, 0, std::wstring(units, L'x'), L""), 0);
}

TEST(ErrorNotify, PrintingHostGetsTheBoxFromItsOwnLoop) {
    const Installation here;
    const Intercept<decltype(GetModuleFileNameW)> program(
        "GetModuleFileNameW", [](HMODULE, auto* buffer, DWORD units) {
            qk::copy_zero_padded(buffer, units, L"C:\\Windows\\SPLWOW64.exe");
            return 23;
        });
    MSG message;
    PeekMessageW(&message, nullptr, WM_USER, WM_USER, PM_NOREMOVE);  // the thread has a queue
    PostThreadMessageW(GetCurrentThreadId(), WM_USER, 1, 2);         // is drained and dispatched
    PostThreadMessageW(GetCurrentThreadId(), 0x800E, 0, 0);          // like the box's own, but not it
    const TraceCapture trace;
    EXPECT_EQ(notify(), 0);
    expect_box();
    EXPECT_TRUE(trace.holds(L"in splwow64") && trace.holds(L"mb") && trace.holds(L"closed"));
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));  // nothing is left in the queue
}

TEST(ExternalCalls, ProgramsAreReadByStage) {
    const Installation here;
    EXPECT_FALSE(TeskelCustom2021::IsActive());
    const std::string program = qk::to_utf8(here.folder.write(L"p.exe", ""));
    here.write_external_calls("[PageStart]\r\nApp=" + program + "\r\n[DocEnd]\r\nApp=" +
                              std::string(5000, 'x') + "\r\n[Output]\r\nOutputFolder=C:\\o\\\r\n");
    EXPECT_TRUE(TeskelCustom2021::IsActive());
    const TeskelCustom2021 call(L"document", L"");
    const TraceCapture trace;
    const std::wstring programs[] = {L"", qk::to_wide(program), L"", std::wstring(4095, L'x'), L""};
    for (size_t stage = 0; stage < 5; ++stage) {
        EXPECT_EQ(call.getExeName(stage), programs[stage]);
        EXPECT_EQ(call.HasExe(stage), stage == 1);
    }
    EXPECT_EQ(call.getExeName(SIZE_MAX), L"");
    EXPECT_TRUE(trace.holds(qk::to_wide(program)) && call.HasAnyExe());
    EXPECT_EQ(call.GetOutputFolder(), L"C:\\o\\");
    qk::MMF<pd_tk::TKFileNames> list;
    list.open(pd_tk::file_list_name());
    EXPECT_EQ(list.view(), nullptr) << "asking takes no part in the list";
}

namespace {

// Every account may open it; at low integrity, when it bears a label.
bool admits_everybody(const SECURITY_ATTRIBUTES* attributes, BOOL labelled) {
    BOOL given = FALSE, marked = FALSE, defaulted;
    ACL *dacl = nullptr, *sacl = nullptr;
    GetSecurityDescriptorDacl(attributes->lpSecurityDescriptor, &given, &dacl, &defaulted);
    GetSecurityDescriptorSacl(attributes->lpSecurityDescriptor, &marked, &sacl, &defaulted);
    return attributes->nLength == sizeof *attributes && attributes->bInheritHandle == labelled && given &&
           !dacl && marked == labelled && (!labelled || (sacl && sacl->AceCount == 1));
}

}  // namespace

// The list comes and goes under its lock, and the lock goes last.
TEST(ExternalCalls, EverybodyMayOpenTheListAndItsLock) {
    const Installation here;
    std::string steps;
    const auto step = [&](const char* name, bool good = true) {
        steps += good ? name : "<wrong> ";
        return std::nullopt;
    };
    const Intercept<decltype(CreateMutexW)> lock("CreateMutexW", [&](auto* attributes, BOOL owned, auto) {
        return step("lock ", owned && admits_everybody(attributes, FALSE));
    });
    const Intercept<decltype(CreateFileMappingW)> make(
        "CreateFileMappingW",
        [&](auto, auto* attributes, auto...) { return step("make ", admits_everybody(attributes, TRUE)); });
    const Intercept<decltype(UnmapViewOfFile)> leave("UnmapViewOfFile", [&](auto) { return step("leave "); });
    const Intercept<decltype(ReleaseMutex)> unlock("ReleaseMutex", [&](auto) { return step("unlock "); });
    { TeskelCustom2021(L"a", L"C:\\zr_a.pdf"); }
    EXPECT_EQ(steps, "lock make unlock lock leave unlock ");
}

TEST(ExternalCalls, ListHoldsTheFilesInProgress) {
    const Installation here;
    const qk::MMF<pd_tk::TKFileNames> list(pd_tk::file_list_name());
    ASSERT_TRUE(list.view());
    const auto count = [&](const std::wstring& name) -> size_t {
        size_t entries = 0;
        for (const auto& entry : list.view()->names)
            entries += entry == name;
        return entries;
    };
    const size_t free_entries = count(L"");
    const std::wstring long_name(300, L'n');
    const TraceCapture trace;
    {
        TeskelCustom2021 first(L"a", L"C:\\zr_a.pdf"), second(L"b", L"C:\\zr_a.pdf"), third(L"c", L""),
            fourth(L"d", long_name);
        EXPECT_TRUE(count(L"C:\\zr_a.pdf") == 2 && count(long_name.substr(0, 259)) == 1);
        first.set_output_path(L"C:\\zr_b.pdf");
        EXPECT_TRUE(count(L"C:\\zr_a.pdf") == 1 && count(L"C:\\zr_b.pdf") == 1);
        std::vector<std::unique_ptr<TeskelCustom2021>> more;
        for (size_t i = 0; i < free_entries - 3; ++i)
            more.push_back(std::make_unique<TeskelCustom2021>(L"m", L"C:\\zr_m.pdf"));
        EXPECT_EQ(count(L""), 0u);
        const TeskelCustom2021 one_too_many(L"x", L"C:\\zr_x.pdf");
        EXPECT_EQ(trace.count(L"pd_tk::TeskelCustom2021: the list is full"), 1u);
    }
    EXPECT_EQ(count(L""), free_entries);
}

TEST(ColourProfile, DescriptionStandsForACondition) {
    const std::pair<const char*, std::vector<std::wstring>> rows[] = {
        {"JC200103", {L"Japan Color 2001 Coated"}},
        {"JCN2002",
         {L"Japan Color 2002 Newspaper", L"Japan Color 20023 x News", L"Japan\nColor\r2002 x\nNewspaper"}},
        {"FOGRA4", {L"Euroscale Uncoated v2"}},
        {"CGATS TR 001", {L"SWOP (Publication) printing in USA."}},
        {"CGART TR 001", {L"U.S. Web Coated (SWOP) v2"}},
        {"FOGRA39", {L"Coated FOGRA39 (ISO 12647-2:2004)", L"FOGRA39 FOGRA", L"FOGRA1 and FOGRA0039L"}},
        {"FOGRA2147483647", {L"FOGRA2147483648", L"FOGRA99999999999999999999999"}},
        {"JCW2013", {L"x Japan Color 2013 y Web z", L"Japan Color 2001 Japan Color 2013 Web"}},
        {"Custom",
         {L"", L"FOGRA", L"Fogra39", L"a\nFOGRA39", L"Japan Color 2002 aNews", L"Japan Color 201 News",
          L"News Japan Color 2001", L"japan color 2001 coated", L"Japan Color 2002 x\ny News"}}};
    for (const auto& [id, descriptions] : rows)
        for (const std::wstring& description : descriptions)
            EXPECT_EQ(icc_ConditionIdFromDesc(description), id) << qk::to_utf8(description);
}

TEST(ColourProfile, DescriptionIsReadFromTheProfile) {
    const auto number = &ProfileFolder::number;
    const auto plain = [&](uint32_t length, const std::string& text) {
        return "desc" + number(0) + number(length) + text;
    };
    const auto localized = [&](uint32_t records, uint32_t offset) {
        return "mluc" + number(0) + number(records) + number(12) + "enUS" + number(6) + number(offset) +
               std::string("\0A\x65\xE5\0C", 6);
    };
    // A profile with two tags, of which the second is named "desc" as a rule.
    const auto profile = [&](const std::string& element, const std::string& name = "desc") {
        return std::string(128, 'h') + number(2) + "cprt" + number(156) + number(4) + name + number(160) +
               number(static_cast<uint32_t>(element.size())) + "text" + element;
    };
    const std::string good = plain(5, std::string("Desc\0", 5));
    const std::tuple<const char*, std::string, std::optional<std::wstring>> rows[] = {
        {"plain", profile(good), L"Desc"},
        {"localized", profile(localized(1, 28)), L"A\u65E5C"},
        {"long", profile(plain(300, std::string(300, 'x'))), std::wstring(260, L'x')},
        {"no such tag", profile(good, "dmnd"), {}},
        {"another type", profile("text" + good.substr(4)), {}},
        {"no record", profile(localized(0, 28)), {}},
        {"text of 4 GiB", profile(plain(UINT32_MAX, "Desc")), {}},
        {"offset of 4 GiB", profile(localized(1, UINT32_MAX - 1)), {}},
        {"header only", std::string(128, 'h'), {}},
        {"cut in the tag", profile(good).substr(0, 165), {}}};
    for (const auto& [label, bytes, wanted] : rows) {
        const GuardedBuffer guarded(bytes.size(), bytes.data());
        const std::span<const std::byte> seen(guarded.as<>(), bytes.size());
        EXPECT_EQ(icc::find_description(seen), wanted) << label;
    }
    const TempFolder folder;
    DWORD bytes_read = 0;
    const Intercept<decltype(ReadFile)> read(
        "ReadFile", [&](auto, auto, DWORD size, auto...) { return bytes_read += size, std::nullopt; });
    const std::string large = profile(good) + std::string(1 << 20, 'x');
    EXPECT_EQ(icc::find_description(folder.write(L"large.icc", large)), L"Desc");
    EXPECT_LT(bytes_read, 200u) << "its tables are of no interest";
}

TEST(ColourProfile, FileIsLookedForInTheMachinesFolder) {
    const std::wstring real = icc::profile_folder();
    EXPECT_TRUE(real.ends_with(L"\\spool\\drivers\\color\\")) << qk::to_utf8(real);
    const ProfileFolder profiles;
    const std::wstring there = profiles.add(L"a.icc", "CMYK", "prtr", "Desc"),
                       own = profiles.files.write(L"bare.icc", "");
    EXPECT_EQ(icc::find_profile(own), own);
    EXPECT_EQ(icc::find_profile(L"a.icc"), there);
    EXPECT_EQ(icc::find_profile(L"Q:\\gone\\a.icc"), there);
    const CurrentFolder in(profiles.files.path());
    for (const std::wstring& missing : std::vector<std::wstring>{
             L"", L"none.icc", L"bare.icc", L".\\bare.icc", own.substr(0, 2) + L"bare.icc",
             profiles.files.path(), profiles.files.path() + L"\\", L"..\\a.iccx"})
        EXPECT_EQ(icc::find_profile(missing), std::nullopt) << qk::to_utf8(missing);
}
