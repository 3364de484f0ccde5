// Scenes of the soak that print: jobs of many threads, and jobs that fail in several programs at once.
#include <windows.h>
#include <winspool.h>
#include <winddiui.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string_view>
#include <vector>

#include "UI_dll/ddi.h"
#include "UI_dll/plotui.h"
#include "bench/objects.h"
#include "bench/program.h"
#include "bench/soak.h"
#include "common/job_records.h"
#include "common/qk/paths.h"
#include "common/qk/resource_dll.h"
#include "common/qk/text.h"
#include "companions/thread.h"
#include "print_settings/PrintSettings.h"
#include "resources/ids.h"

namespace bench {

namespace {

constexpr wchar_t kKey[] = L"SOFTWARE\\Corvanta\\Vantrix\\8.0";
constexpr size_t kThreads = 16;
constexpr unsigned kWarmUpJobs = 1000;  // of all threads
constexpr unsigned kLocks = 8;          // of the system, which make an event when threads first meet at them

BOOL WINAPI post(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    static auto* const original =
        qk::find_export<decltype(PostMessageW)>(GetModuleHandleW(L"user32.dll"), "PostMessageW");
    return window == HWND_BROADCAST || original(window, message, wparam, lparam);
}

struct Left {
    int result;
    DWORD error;
};

Left send(int event, void* in = nullptr, ULONG size = 0) {
    const int result = DrvDocumentEvent(FakePrinter::handle(), nullptr, event, size, in, 0, nullptr);
    return {result, GetLastError()};
}

Left start(const std::wstring& title) {
    DOCINFOW info = {.cbSize = sizeof info, .lpszDocName = title.c_str()};
    return send(DOCUMENTEVENT_STARTDOCPRE, &info, sizeof info);
}

// The record of this thread's job, as another program sees it: false when there is none, else what `use`
// says.
template <class Record>
bool with_record(const wchar_t* pattern, const std::function<bool(Record&)>& use) {
    const std::wstring name = qk::format(pattern, static_cast<int>(GetCurrentThreadId()));
    const qk::HandleObj block(OpenFileMappingW(FILE_MAP_WRITE, FALSE, name.c_str()));
    const qk::View view(block ? MapViewOfFile(block.get(), FILE_MAP_WRITE, 0, 0, sizeof(Record)) : nullptr);
    return view && use(*static_cast<Record*>(view.get()));
}

// Whether the records of a job are its own and its status comes back. With a folder its PDF has to go there,
// and the empty file that keeps its name is taken away.
bool is_right(const std::wstring& title, DWORD status, const std::wstring& folder = {}) {
    const bool started = start(title).result == DOCUMENTEVENT_SUCCESS;
    const bool named =
        with_record<ZRTKPrintStartInfoC>(kStartBlockName, [&](const ZRTKPrintStartInfoC& record) {
            DeleteFileW(folder.empty() ? L"" : record.output_path);
            return title == record.title &&
                   (folder.empty() ? record.output_path[0] != L'\0'
                                   : qk::equal_no_case(record.output_path, folder + title + L".pdf"));
        });
    const bool filled = with_record<ZRTKPrintInfo>(kResultBlockName, [&](ZRTKPrintInfo& record) {
        const bool empty = record.error_code == 0 && record.win32_error == 0;
        record.win32_error = status;
        return empty;
    });
    const auto [result, error] = send(DOCUMENTEVENT_ENDDOCPOST);
    const bool gone = !with_record<ZRTKPrintStartInfoC>(kStartBlockName, [](const auto&) { return true; });
    return started && named && filled && result == DOCUMENTEVENT_SUCCESS && error == status && gone;
}

void on_threads(size_t count, const std::function<void(size_t)>& work) {
    std::vector<companions::Thread> threads;
    for (size_t i = 0; i < count; ++i)
        threads.emplace_back([&work, i] { work(i); });
}

// How many of the records that the log has to hold are missing, or more than there should be: each is whole,
// and there is nothing between them.
size_t wrong_records(std::wstring_view log, size_t wanted) {
    const std::wstring start = L"[0]\r\nPDFFileName=\r\nTime=",
                       end = L"d\r\nErrorMessage=" + qk::load_string(IDS_JOB_FAILED) + L"\r\n";
    constexpr size_t kTimeUnits = 19;  // but for its last one
    const size_t units = start.size() + kTimeUnits + end.size();
    size_t whole = 0;
    for (size_t at = log.find(start); at != std::wstring_view::npos; at = log.find(start, at + 1))
        whole += log.substr(at).size() >= units && log.substr(at + units - end.size()).starts_with(end);
    const size_t least = log.size() == whole * units ? 0 : 1;
    return std::max(least, std::max(whole, wanted) - std::min(whole, wanted));
}

std::wstring program_folder() {
    const std::wstring program = qk::module_path(nullptr);
    return program.substr(0, program.rfind(L'\\') + 1);
}

}  // namespace

World::World(const std::wstring& documents)
    : documents_folder(documents.empty() ? folder.path() : documents),
      post_("PostMessageW", reinterpret_cast<void*>(&post)) {
    const std::wstring here = program_folder();
    machine.set_text(kKey, L"PdfDllPath", here + L"..\\stage\\");
    if (!plotui::attach_process(GetModuleHandleW(nullptr)))
        fail("there is no language library in the built tree");
    machine.set_text(kKey, L"PdfDllPath", here + L"bench_install\\");
    machine.set_text(L"SOFTWARE\\Dunmere\\Common\\SpecialFolder", L"CSIDL_COMMON_DOCUMENTS",
                     documents_folder + L"\\");
    // The shell looks here for the user's folders and would try to make it in the replaced hive each time.
    machine.set_text(L"Software\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList", L"ProfilesDirectory",
                     L"C:\\users");
    user.set_text(std::wstring(kKey) + L"\\Debug", L"AppDataPath", folder.path() + L"\\");
    constexpr DWORD kLogFile = 8;
    UserRegistry::set_below(HKEY_LOCAL_MACHINE, std::wstring(kKey) + L"\\Notification", L"Error", REG_DWORD,
                            &kLogFile, sizeof kLogFile);
    for (const wchar_t* part : {L"\\Dunmere", L"\\Dunmere\\Vantrix2"})
        CreateDirectoryW((documents_folder + part).c_str(), nullptr);
    const std::wstring setting = folder.file(L"job.ps4");
    if (!Corvanta::Vantrix::PrintSettings::PrintSettings().Save(setting))
        fail("no setting can be saved");
    SetEnvironmentVariableW(L"ZR_BENCH_SETTING", setting.c_str());
}

World::~World() {
    plotui::detach_process(false);
}

void fail(const char* what) {
    std::printf("soak: %s\n", what);
    std::exit(1);
}

void play_jobs(const World& /*world*/, ULONGLONG end, Played& played) {
    on_threads(kThreads, [&](size_t thread) {
        DWORD job = 0;
        do {
            const std::wstring title =
                qk::format(L"Job %u of thread %u", ++job, static_cast<unsigned>(thread));
            played.wrong += !is_right(title, job % 8 == 0 ? job : 0);
            ++played.done;
        } while (GetTickCount64() < end);
    });
}

int count_jobs(unsigned threads, unsigned jobs) {
    World world;
    const std::wstring folder = world.folder.path() + L'\\';
    world.machine.set_text(kKey, L"PdfDllPath", program_folder() + L"..\\stage\\");
    SetEnvironmentVariableW(L"ZR_UNATTENDED", L"1");
    SetEnvironmentVariableW(L"ZR_OUTPUT_FOLDER", world.folder.path().c_str());
    Played played;
    const auto play = [&](unsigned jobs_each) {
        on_threads(threads, [&](size_t thread) {
            for (unsigned job = 1; job <= jobs_each; ++job, ++played.done)
                played.wrong += !is_right(
                    qk::format(L"Job %u of thread %u", job, static_cast<unsigned>(thread)), 0, folder);
        });
    };
    play(std::min(jobs, kWarmUpJobs / threads + 1));
    played.done = 0;
    Objects before = count_objects();
    const ULONGLONG start_time = GetTickCount64();
    play(jobs);
    const ULONGLONG milliseconds = GetTickCount64() - start_time;
    const Objects after = count_objects();
    std::printf(
        "%llu jobs, %llu wrong; handles %u before, %u after; mapped views %u, %u; private KiB %llu, "
        "%llu; %llu ms\n",
        played.done.load(), played.wrong.load(), before.handles, after.handles, before.views, after.views,
        static_cast<unsigned long long>(before.bytes / 1024),
        static_cast<unsigned long long>(after.bytes / 1024), milliseconds);
    before.handles += kLocks;
    return played.wrong == 0 && !has_grown(before, after) ? 0 : 1;
}

int fail_jobs(const std::wstring& documents, unsigned threads, unsigned jobs) {
    const World world(documents);
    SetEnvironmentVariableW(L"ZR_BENCH_SETTING", L"C:\\zr_soak_no_such_setting.ps4");
    std::atomic<bool> good = true;
    on_threads(threads, [&](size_t) {
        for (unsigned job = 0; job < jobs; ++job)
            if (start(L"fails").result != DOCUMENTEVENT_FAILURE)
                good = false;
    });
    return good ? 0 : 1;
}

namespace {

// Programs whose threads each write so many records into one log; what is wrong with it afterwards.
unsigned long long fill_log(const World& world, unsigned programs, unsigned threads, unsigned jobs) {
    const std::wstring log = world.documents_folder + L"\\Dunmere\\Vantrix2\\Error_0.log";
    DeleteFileW(log.c_str());
    std::vector<Program> running;
    for (unsigned i = 0; i < programs; ++i)
        running.emplace_back(
            qk::format(L"--fail-jobs \"%s\" %u %u", world.documents_folder.c_str(), threads, jobs));
    unsigned long long wrong = 0;
    for (Program& program : running)
        wrong += program.wait() != 0;
    const std::string bytes = TempFolder::read(log);
    return wrong +
           wrong_records({reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / sizeof(wchar_t)},
                         size_t{programs} * threads * jobs);
}

}  // namespace

void play_failing_jobs(const World& world, ULONGLONG end, Played& played) {
    constexpr unsigned kPrograms = 4, kThreads = 8, kJobs = 50;
    do {
        played.wrong += fill_log(world, kPrograms, kThreads, kJobs);
        played.done += kPrograms * kThreads * kJobs;
    } while (GetTickCount64() < end);
}

int count_log(unsigned programs, unsigned threads, unsigned jobs) {
    const World world;
    const ULONGLONG start_time = GetTickCount64();
    const unsigned long long wrong = fill_log(world, programs, threads, jobs);
    std::printf("%u records of failed jobs, %llu wrong; %llu ms\n", programs * threads * jobs, wrong,
                GetTickCount64() - start_time);
    return wrong == 0 ? 0 : 1;
}

}  // namespace bench
