// Who is told of a failure, the external-call feature, colour profiles.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <memory>
#include <regex>

#include "common/ErrorNotify.h"
#include "common/icc_folder.h"
#include "common/icc_profile.h"
#include "common/teskel_custom_2021.h"
#include "companions/thread.h"
#include "support/child_process.h"
#include "support/guarded_buffer.h"
#include "support/installation.h"
#include "support/profile_folder.h"
#include "support/trace_capture.h"
#include "support/variable.h"

namespace {

using pd_tk::TeskelCustom2021;

int notify(const wchar_t* pdf = nullptr) {
    return ZRTK_ErrorNotify(L"caption", pdf, 164, 0, L"what failed", L"title");
}

size_t lines_with(const std::string& log, std::wstring_view line) {
    const std::string wanted(reinterpret_cast<const char*>(line.data()), line.size() * sizeof(wchar_t));
    size_t found = 0;
    for (size_t at = log.find(wanted); at != std::string::npos; at = log.find(wanted, at + 1))
        ++found;
    return found;
}

struct TagEntry {
    const char* name;
    std::string data;
};

std::string profile(const std::vector<TagEntry>& tags) {
    std::string bytes = std::string(128, 'h') + ProfileFolder::number(static_cast<uint32_t>(tags.size()));
    size_t at = bytes.size() + tags.size() * 12;
    for (const TagEntry& tag : tags) {
        bytes += tag.name + ProfileFolder::number(static_cast<uint32_t>(at)) +
                 ProfileFolder::number(static_cast<uint32_t>(tag.data.size()));
        at += tag.data.size();
    }
    for (const TagEntry& tag : tags)
        bytes += tag.data;
    return bytes;
}

std::optional<std::wstring> description_of(const std::string& bytes) {
    const GuardedBuffer guarded(bytes.size(), bytes.data());
    return icc::find_description(std::span<const std::byte>(guarded.as<>(), bytes.size()));
}

const std::string kPlain =
    "desc" + ProfileFolder::number(0) + ProfileFolder::number(5) + std::string("Desc\0", 5);
const std::string kLocalized = "mluc" + ProfileFolder::number(0) + ProfileFolder::number(1) +
                               ProfileFolder::number(12) + "enUS" + ProfileFolder::number(6) +
                               ProfileFolder::number(28) + std::string("\0A\x65\xE5\0C", 6);

}  // namespace

TEST(ErrorNotify, ChannelsAreChosenByTheAdministrator) {
    struct {
        int channels;  // -1: no key
        size_t boxes, events, logs;
        int result;
    } const rows[] = {{-1, 1, 0, 0, IDOK}, {0, 0, 0, 0, 0},     {1, 1, 0, 0, IDOK},
                      {2, 0, 1, 0, 0},     {4, 0, 0, 0, 0},     {8, 0, 0, 1, 0},
                      {10, 0, 1, 1, 0},    {15, 1, 1, 1, IDOK}, {16, 0, 0, 0, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.channels);
        const Installation here;
        if (row.channels >= 0)
            here.set_number(HKEY_LOCAL_MACHINE, L"\\Notification", L"Error",
                            static_cast<DWORD>(row.channels));
        const TraceCapture trace;
        EXPECT_EQ(notify(), row.result);
        EXPECT_EQ(Outbox::boxes.size(), row.boxes);
        EXPECT_EQ(Outbox::events, std::vector<std::wstring>(row.events, L"what failed"));
        EXPECT_EQ(lines_with(here.log(), L"ErrorMessage=what failed\r\n"), row.logs);
        EXPECT_EQ(trace.holds(L"mes:not yet implemented"), row.channels > 0 && (row.channels & 4));
        EXPECT_FALSE(trace.holds(L"ErrorCode=164"));
        for (const auto& box : Outbox::boxes) {
            EXPECT_EQ(box.caption, L"title");
            EXPECT_EQ(box.text, L"what failed");
        }
    }
}

TEST(ErrorNotify, WhereNobodyWatchesTheEventLogGetsWhatABoxWouldSay) {
    for (const DWORD channels : {1u, 3u}) {
        const Installation here;
        here.set_number(HKEY_LOCAL_MACHINE, L"\\Notification", L"Error", channels);
        const HWINSTA own = GetProcessWindowStation();
        const HWINSTA hidden = CreateWindowStationW(L"zr_test_hidden", 0, GENERIC_ALL, nullptr);
        ASSERT_TRUE(hidden && SetProcessWindowStation(hidden));
        const TraceCapture trace(0);
        EXPECT_EQ(notify(), 0);
        SetProcessWindowStation(own);
        CloseWindowStation(hidden);
        EXPECT_TRUE(Outbox::boxes.empty());
        EXPECT_EQ(Outbox::events, std::vector<std::wstring>{L"what failed"});
        EXPECT_TRUE(trace.holds(L"title: what failed"));
    }
}

TEST(ErrorNotify, LogLiesWhereTheAdministratorSays) {
    const Installation here;
    here.set_number(HKEY_LOCAL_MACHINE, L"\\Notification", L"Error", 8);
    const std::wstring own = here.folder.file(L"out\\");
    const std::wstring key = std::wstring(Installation::kKey) + L"\\Notification";
    struct {
        const char* label;
        std::wstring folder;
        int result;
        std::wstring log;
    } const rows[] = {
        {"own", own, 0, own + L"Error_0.log"},
        {"without a backslash", own.substr(0, own.size() - 1), -2, L""},
        {"not there", own + L"none\\", -2, L""},
        {"empty", L"", 0, here.folder.file(L"Dunmere\\Vantrix2\\Error_0.log")},
        {"130 units", own + std::wstring(129 - own.size(), L'x') + L"\\", 0,
         here.folder.file(L"Dunmere\\Vantrix2\\Error_0.log")},
        {"129 units", own + std::wstring(128 - own.size(), L'x') + L"\\", -2, L""},
    };
    for (const auto& row : rows) {
        here.machine.set_text(key, L"ErrFile", row.folder);
        DeleteFileW(row.log.c_str());
        EXPECT_EQ(notify(), row.result) << row.label;
        EXPECT_EQ(lines_with(TempFolder::read(row.log), L"[0]\r\nPDFFileName=\r\nTime="),
                  row.result ? 0u : 1u)
            << row.label;
    }
}

TEST(ErrorNotify, LogNamesTheJob) {
    const Installation here;
    here.set_number(HKEY_LOCAL_MACHINE, L"\\Notification", L"Error", 8);
    struct {
        const char *version, *lines;
        const wchar_t *pdf, *log, *named;
    } const rows[] = {
        {"2.5", "PrintID=12\r\nPDFFileName=C:\\i.pdf", nullptr, L"Error_12.log",
         L"PDFFileName=C:\\i.pdf\r\n"},
        {"2.5", "PrintID=13\r\nPDFFileName=C:\\i.pdf", L"C:\\j.pdf", L"Error_13.log",
         L"PDFFileName=C:\\j.pdf\r\n"},
        {"2.5", "PrintID=-4\r\nPDFFileName=C:\\i.pdf", L"", L"Error_-4.log", L"PDFFileName=C:\\i.pdf\r\n"},
        {"4", "PrintID=14\r\nPDFFileName=C:\\i.pdf", nullptr, L"Error_0.log", L"PDFFileName=\r\n"},
        {"2.5", "PrintID=rubbish", L"%s%n.pdf", L"Error_0.log", L"PDFFileName=%s%n.pdf\r\n"},
    };
    for (const auto& row : rows) {
        here.write_ini(row.lines, row.version);
        EXPECT_EQ(notify(row.pdf), 0);
        EXPECT_EQ(lines_with(here.log(row.log), row.named), 1u) << row.lines;
    }
    EXPECT_EQ(log_time({2026, 11, 0, 15, 1, 46, 25, 999}), L"2026d11d15d01d46d25d");
}

TEST(ErrorNotify, LogTakesTextsOfOneLineAndLinksNothing) {
    const Installation here;
    here.set_number(HKEY_LOCAL_MACHINE, L"\\Notification", L"Error", 8);
    EXPECT_EQ(ZRTK_ErrorNotify(L"", L"a\r\nb.pdf", 0, 0, L"1\r2\n3\u2028[7]\r\n4\x85", L""), 0);
    EXPECT_EQ(lines_with(here.log(), L"\r\n"), 4u);
    EXPECT_EQ(lines_with(here.log(), L"PDFFileName=a  b.pdf\r\n"), 1u);
    EXPECT_EQ(lines_with(here.log(), L"ErrorMessage=1 2 3 [7]  4 \r\n"), 1u);

    const std::wstring log = here.folder.file(L"Dunmere\\Vantrix2\\Error_0.log");
    const std::string whole = here.log();
    {
        const ImportPatch link("GetFileInformationByHandle",
                               reinterpret_cast<void*>(+[](HANDLE, BY_HANDLE_FILE_INFORMATION* told) -> BOOL {
                                   *told = {.dwFileAttributes = FILE_ATTRIBUTE_REPARSE_POINT,
                                            .nNumberOfLinks = 1};
                                   return TRUE;
                               }));
        EXPECT_EQ(notify(), -2);
    }
    DeleteFileW(log.c_str());
    const std::wstring other = here.folder.write(L"other.txt", "another's");
    ASSERT_TRUE(CreateHardLinkW(log.c_str(), other.c_str(), nullptr));
    EXPECT_EQ(notify(), -2);
    EXPECT_EQ(TempFolder::read(other), "another's");
    DeleteFileW(log.c_str());
    EXPECT_EQ(notify(), 0);
}

namespace {

// "<processes> <threads> <jobs of each>"; more than by default for a soak.
struct LogLoad {
    unsigned processes = 3, threads = 8, jobs = 20;

    LogLoad() {
        wchar_t chosen[50] = {};
        if (GetEnvironmentVariableW(L"ZR_LOG_LOAD", chosen, 50)) {
            EXPECT_EQ(std::swscanf(chosen, L"%u %u %u", &processes, &threads, &jobs), 3);
        }
    }
};

}  // namespace

TEST(ErrorNotify, RecordsOfManyProcessesStayWhole) {
    const LogLoad load;
    const TempFolder folder;
    const Variable place(L"ZR_LOG_FOLDER", folder.path() + L"\\");
    std::vector<companions::Thread> processes;
    for (unsigned i = 0; i < load.processes; ++i)
        processes.emplace_back([] {
            EXPECT_EQ(run_built(L"zr_tests.exe",
                                L"zr_tests --gtest_also_run_disabled_tests "
                                L"--gtest_filter=ErrorNotifyHelper.DISABLED_FailedJobs"),
                      0);
        });
    processes.clear();  // waits for them
    const std::string log = TempFolder::read(folder.file(L"Error_0.log"));
    std::wstring text(log.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), log.data(), log.size());
    const std::wregex record(
        L"\\[0\\]\r\nPDFFileName=C:\\\\\\d+\\.pdf\r\nTime=[0-9d]+\r\nErrorMessage=x+\r\n");
    size_t whole = 0, at = 0;
    std::wsmatch found;
    while (std::regex_search(text.cbegin() + static_cast<std::ptrdiff_t>(at), text.cend(), found, record,
                             std::regex_constants::match_continuous)) {
        ++whole;
        at += static_cast<size_t>(found.length());
    }
    EXPECT_EQ(whole, size_t{load.processes} * load.threads * load.jobs);
    EXPECT_EQ(at, text.size()) << "a record is broken";
}

// Not a test but the program of the one above.
TEST(ErrorNotifyHelper, DISABLED_FailedJobs) {
    const Installation here;
    const LogLoad load;
    here.set_number(HKEY_LOCAL_MACHINE, L"\\Notification", L"Error", 8);
    here.machine.set_text(std::wstring(Installation::kKey) + L"\\Notification", L"ErrFile",
                          qk::grow_until_it_fits([](wchar_t* buffer, DWORD units) {
                              return GetEnvironmentVariableW(L"ZR_LOG_FOLDER", buffer, units);
                          }));
    std::atomic<unsigned> refused = 0;
    std::vector<companions::Thread> threads;
    for (unsigned i = 0; i < load.threads; ++i)
        threads.emplace_back([&, i] {
            const std::wstring pdf = L"C:\\" + std::to_wstring(i) + L".pdf";
            for (unsigned job = 0; job < load.jobs; ++job)
                refused +=
                    ZRTK_ErrorNotify(L"", pdf.c_str(), 0, 0, std::wstring(20 + job % 200, L'x'), L"") != 0;
        });
    threads.clear();
    EXPECT_EQ(refused, 0u);
}

TEST(ErrorNotify, PrintingHostGetsTheBoxFromItsOwnLoop) {
    const Installation here;
    const ImportPatch program("GetModuleFileNameW",
                              reinterpret_cast<void*>(+[](HMODULE, wchar_t* buffer, DWORD units) -> DWORD {
                                  qk::copy_zero_padded(buffer, units, L"C:\\Windows\\SPLWOW64.exe");
                                  return 23;
                              }));
    MSG message;
    PeekMessageW(&message, nullptr, WM_USER, WM_USER, PM_NOREMOVE);  // the thread has a queue
    PostThreadMessageW(GetCurrentThreadId(), WM_USER, 1, 2);         // is drained and dispatched
    PostThreadMessageW(GetCurrentThreadId(), 0x800E, 0, 0);          // like the box's own, but not it
    const TraceCapture trace;
    EXPECT_EQ(notify(), 0);
    ASSERT_EQ(Outbox::boxes.size(), 1u);
    EXPECT_EQ(Outbox::boxes[0].text, L"what failed");
    EXPECT_EQ(Outbox::boxes[0].caption, L"title");
    EXPECT_EQ(Outbox::boxes[0].style, UINT{MB_ICONERROR | MB_SETFOREGROUND | MB_TOPMOST});
    EXPECT_TRUE(trace.holds(L"in splwow64") && trace.holds(L"mb") && trace.holds(L"closed"));
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));  // nothing is left in the queue
}

TEST(ExternalCalls, ProgramsAreReadByStage) {
    const Installation here;
    EXPECT_FALSE(TeskelCustom2021::IsActive());
    const std::wstring ini = here.folder.file(Installation::kExternalCalls);
    ForceDirectories(ini);  // a folder of the name
    EXPECT_FALSE(TeskelCustom2021::IsActive());
    RemoveDirectoryW(ini.c_str());
    const std::string program = qk::to_utf8(here.folder.write(L"p.exe", ""));
    here.write_external_calls("[PageStart]\r\nApp=" + program + "\r\n[DocEnd]\r\nApp=" +
                              std::string(5000, 'x') + "\r\n[Output]\r\nOutputFolder=C:\\o\\\r\n");
    EXPECT_TRUE(TeskelCustom2021::IsActive());
    const TeskelCustom2021 call(L"document", L"");
    const TraceCapture trace;
    EXPECT_EQ(call.getExeName(TeskelCustom2021::kPageStart), qk::to_wide(program));
    EXPECT_TRUE(trace.holds(L"pd_tk::TeskelCustom2021::getExeName") && trace.holds(qk::to_wide(program)));
    EXPECT_EQ(call.getExeName(TeskelCustom2021::kDocStart) + call.getExeName(4) + call.getExeName(SIZE_MAX),
              L"");
    EXPECT_EQ(call.getExeName(TeskelCustom2021::kDocEnd).size(), 4095u);
    EXPECT_TRUE(call.HasExe(1) && call.HasAnyExe());
    EXPECT_FALSE(call.HasExe(0) || call.HasExe(2) || call.HasExe(3) || call.HasExe(9));
    EXPECT_EQ(call.GetOutputFolder(), L"C:\\o\\");
    qk::MMF<pd_tk::TKFileNames> list;
    list.open(pd_tk::file_list_name());
    EXPECT_EQ(list.view(), nullptr) << "asking takes no part in the list";
}

// What the system is asked for while a job's entry comes and goes: the list under its lock, the lock last.
class ListSteps {
public:
    ListSteps() {
        steps_.clear();
        originals_ = {create_.original(), map_.original(), unmap_.original(), release_.original()};
    }
    [[nodiscard]] static const std::string& seen() { return steps_; }

private:
    static HANDLE WINAPI on_create(SECURITY_ATTRIBUTES* attributes, BOOL owned, const wchar_t* name) {
        steps_ += "lock ";
        return reinterpret_cast<decltype(&CreateMutexW)>(originals_[0])(attributes, owned, name);
    }
    static HANDLE WINAPI on_map(HANDLE file, SECURITY_ATTRIBUTES* attributes, DWORD protection, DWORD high,
                                DWORD low, const wchar_t* name) {
        steps_ += "make ";
        return reinterpret_cast<decltype(&CreateFileMappingW)>(originals_[1])(file, attributes, protection,
                                                                              high, low, name);
    }
    static BOOL WINAPI on_unmap(const void* view) {
        steps_ += "leave ";
        return reinterpret_cast<decltype(&UnmapViewOfFile)>(originals_[2])(view);
    }
    static BOOL WINAPI on_release(HANDLE mutex) {
        steps_ += "unlock ";
        return reinterpret_cast<decltype(&ReleaseMutex)>(originals_[3])(mutex);
    }

    static inline std::string steps_;
    static inline std::array<void*, 4> originals_;
    ImportPatch create_{"CreateMutexW", reinterpret_cast<void*>(&on_create)};
    ImportPatch map_{"CreateFileMappingW", reinterpret_cast<void*>(&on_map)};
    ImportPatch unmap_{"UnmapViewOfFile", reinterpret_cast<void*>(&on_unmap)};
    ImportPatch release_{"ReleaseMutex", reinterpret_cast<void*>(&on_release)};
};

TEST(ExternalCalls, ListHoldsTheFilesInProgress) {
    const Installation here;
    {
        const ListSteps steps;
        { TeskelCustom2021(L"a", L"C:\\zr_a.pdf"); }
        EXPECT_EQ(ListSteps::seen(), "lock make unlock lock leave unlock ");
    }
    const qk::MMF<pd_tk::TKFileNames> list(pd_tk::file_list_name());
    ASSERT_TRUE(list.view());
    const auto count = [&](const std::wstring& name) {
        size_t found = 0;
        for (const auto& entry : list.view()->names)
            found += name == entry;
        return found;
    };
    const size_t free_entries = count(L"");
    const std::wstring long_name(300, L'n');
    const TraceCapture trace;
    {
        TeskelCustom2021 first(L"a", L"C:\\zr_a.pdf"), second(L"b", L"C:\\zr_a.pdf"), third(L"c", L""),
            fourth(L"d", long_name);
        EXPECT_EQ(count(L"C:\\zr_a.pdf"), 2u);
        EXPECT_EQ(count(long_name.substr(0, 259)), 1u);
        first.set_output_path(L"C:\\zr_b.pdf");
        EXPECT_EQ(count(L"C:\\zr_a.pdf"), 1u);
        EXPECT_EQ(count(L"C:\\zr_b.pdf"), 1u);
        std::vector<std::unique_ptr<TeskelCustom2021>> more;
        for (size_t i = 0; i < free_entries - 3; ++i)
            more.push_back(std::make_unique<TeskelCustom2021>(L"m", L"C:\\zr_m.pdf"));
        EXPECT_EQ(count(L""), 0u);
        EXPECT_FALSE(trace.holds(L"pd_tk::TeskelCustom2021: the list is full"));
        const TeskelCustom2021 one_too_many(L"x", L"C:\\zr_x.pdf");
        EXPECT_TRUE(trace.holds(L"pd_tk::TeskelCustom2021: the list is full"));
    }
    EXPECT_EQ(count(L""), free_entries);
    EXPECT_EQ(trace.count(L"delete"), free_entries + 2) << "one replaced, one that was not in the list";
}

TEST(ColourProfile, DescriptionStandsForACondition) {
    struct {
        const wchar_t* description;
        const char* id;
    } const rows[] = {
        {L"Euroscale Uncoated v2", "FOGRA4"},
        {L"Coated FOGRA27 (ISO 12647-2:2004)", "FOGRA27"},
        {L"SWOP (Publication) printing in USA.", "CGATS TR 001"},
        {L"Japan Color 2011 Coated", "JCS2011"},
        {L"U.S. Web Coated (SWOP) v2", "CGART TR 001"},
        {L"Coated FOGRA39 (ISO 12647-2:2004)", "FOGRA39"},
        {L"FOGRA007", "FOGRA7"},
        {L"FOGRA1 and FOGRA52L", "FOGRA52"},
        {L"FOGRA39 FOGRA", "FOGRA39"},
        {L"FOGRA", "Custom"},
        {L"Fogra39", "Custom"},
        {L"a\nFOGRA39", "Custom"},
        {L"Japan Color 2002 Newspaper", "JCN2002"},
        {L"x Japan Color 2013 y Web z", "JCW2013"},
        {L"Japan Color 2002News", "Custom"},
        {L"Japan Color 2002 aNews", "Custom"},
        {L"Japan Color 201 News", "Custom"},
        {L"Japan Color 20023 x News", "JCN2002"},
        {L"Japan Color 2001 Japan Color 2007 Web", "JCW2007"},
        {L"Japan Color 2001 Web News", "JCN2001"},
        {L"Japan\nColor\r2002 x\nNewspaper", "JCN2002"},  // a line may end where a blank may stand
        {L"Japan Color\x2029"
         L"2013 Y\nWeb",
         "JCW2013"},
        {L"Japan Color 2002 x\ny News", "Custom"},
        {L"x\nJapan Color 2002 News", "Custom"},
        {L"Japan Color 2002 News\nx", "Custom"},
        {L"FOGRA2147483640", "FOGRA2147483640"},
        {L"FOGRA2147483647", "FOGRA2147483647"},
        {L"FOGRA2147483648", "FOGRA2147483647"},
        {L"News Japan Color 2001", "Custom"},
        {L"japan color 2001 coated", "Custom"},
        {L"", "Custom"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(icc_ConditionIdFromDesc(row.description), row.id) << qk::to_utf8(row.description);
    EXPECT_LE(icc_ConditionIdFromDesc(L"FOGRA99999999999999999999999").size(), 19u);
}

TEST(ColourProfile, DescriptionIsReadFromTheProfile) {
    const std::string long_text =
        "desc" + ProfileFolder::number(0) + ProfileFolder::number(300) + std::string(300, 'x');
    struct {
        const char* label;
        std::string bytes;
        std::optional<std::wstring> wanted;
    } const rows[] = {
        {"plain", profile({{"cprt", "other"}, {"desc", kPlain}}), L"Desc"},
        {"localized", profile({{"desc", kLocalized}}),
         L"A\u65E5"
         L"C"},
        {"long", profile({{"desc", long_text}}), std::wstring(260, L'x')},
        {"no such tag", profile({{"cprt", kPlain}}), {}},
        {"another type", profile({{"desc", "text" + kPlain.substr(4)}}), {}},
        {"no record",
         profile({{"desc", "mluc" + ProfileFolder::number(0) + ProfileFolder::number(0) +
                               ProfileFolder::number(12)}}),
         {}},
        {"text longer than the tag",
         profile({{"desc", "desc" + ProfileFolder::number(0) + ProfileFolder::number(6) + "Desc\0"}}),
         {}},
        {"text of 4 GiB",
         profile({{"desc", "desc" + ProfileFolder::number(0) + ProfileFolder::number(0xFFFFFFFF) + "Desc"}}),
         {}},
        {"offset of 4 GiB",
         profile({{"desc", kLocalized.substr(0, 24) + ProfileFolder::number(0xFFFFFFFE) + "AB"}}),
         {}},
        {"header only", std::string(128, 'h'), {}},
        {"cut in the tag table", profile({{"desc", kPlain}}).substr(0, 140), {}},
        {"cut in the tag", profile({{"desc", kPlain}}).substr(0, 150), {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(description_of(row.bytes), row.wanted) << row.label;
    EXPECT_EQ(icc::find_description(std::span<const std::byte>()), std::nullopt);
}

TEST(ColourProfile, FileIsLookedForInTheMachinesFolder) {
    const std::wstring folder = icc::profile_folder();
    ASSERT_TRUE(folder.ends_with(L"\\spool\\drivers\\color\\")) << qk::to_utf8(folder);
    const TempFolder own;
    const std::wstring there = own.write(L"zr own.icc", profile({{"desc", kPlain}}));
    const std::wstring name = L"zr_test_" + std::to_wstring(GetCurrentProcessId()) + L".icc";
    ForceDirectories(folder);
    CopyFileW(there.c_str(), (folder + name).c_str(), FALSE);
    EXPECT_EQ(icc::find_profile(there), there);
    EXPECT_EQ(icc::find_profile(name), folder + name);
    EXPECT_EQ(icc::find_profile(L"Q:\\gone\\" + name), folder + name);
    const CurrentFolder in(own.path());
    own.write(L"bare.icc", "");
    for (const std::wstring& missing :
         {std::wstring(), std::wstring(L"none.icc"), std::wstring(L"bare.icc"), std::wstring(L".\\bare.icc"),
          own.path().substr(0, 2) + L"bare.icc", own.path(), own.path() + L"\\", L"..\\" + name + L"x"})
        EXPECT_EQ(icc::find_profile(missing), std::nullopt) << qk::to_utf8(missing);
    EXPECT_EQ(icc::find_description(folder + name), L"Desc");
    EXPECT_EQ(icc::find_description(own.path()), std::nullopt);
    static DWORD bytes_read = 0;
    static void* read_file = nullptr;
    const ImportPatch read("ReadFile", reinterpret_cast<void*>(+[](HANDLE file, void* buffer, DWORD size,
                                                                   DWORD* done, OVERLAPPED* place) -> BOOL {
                               bytes_read += size;
                               return reinterpret_cast<decltype(&ReadFile)>(read_file)(file, buffer, size,
                                                                                       done, place);
                           }));
    read_file = read.original();
    const std::wstring large =
        own.write(L"large.icc", profile({{"A2B0", std::string(1 << 20, 'x')}, {"desc", kPlain}}));
    EXPECT_EQ(icc::find_description(large), L"Desc");
    EXPECT_LT(bytes_read, 200u) << "its tables are of no interest";
    DeleteFileW((folder + name).c_str());
}
