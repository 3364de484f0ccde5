// The scenes of scripts/soak: what hosts do all day, over and over, and what it leaves in the process. Each
// takes ZR_SOAK_SECONDS and prints one line.
#include <gtest/gtest.h>

#include <psapi.h>

#include <cstdio>
#include <random>

#include "UI_dll/PDFSettings/settings_page.h"
#include "common/ErrorNotify.h"
#include "common/rwPDFSet_functions.h"
#include "companions/thread.h"
#include "print_settings/PrintSettings.h"
#include "support/child_process.h"
#include "support/handle_count.h"
#include "support/module_sheets.h"
#include "support/sheet_driver.h"
#include "support/variable.h"

namespace {

using Corvanta::Vantrix::PrintSettings::PrintSettings;

ULONGLONG seconds() {
    wchar_t text[20] = {};
    return GetEnvironmentVariableW(L"ZR_SOAK_SECONDS", text, 20) ? std::wcstoull(text, nullptr, 10) : 2;
}

class Clock {
public:
    [[nodiscard]] bool runs() const { return GetTickCount64() < end_; }

private:
    ULONGLONG end_ = GetTickCount64() + 1000 * seconds();
};

struct Held {
    unsigned handles = handle_count(), views = view_count();
    DWORD gdi = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    DWORD user = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    size_t private_kib = 0;

    Held() {
        PROCESS_MEMORY_COUNTERS_EX counters = {};
        counters.cb = sizeof counters;
        GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                             sizeof counters);
        private_kib = counters.PrivateUsage / 1024;
    }
};

// Counts rounds and faults of a scene, and compares what the process holds after its warm-up and at its end.
class Scene {
public:
    explicit Scene(const char* name, unsigned warm_up) : name_(name), warm_up_(warm_up) {}
    ~Scene() {
        const Held after;
        std::printf(
            "soak: %-34s %8u rounds %4u wrong | handles %u %u | views %u %u | GDI %lu %lu | USER %lu %lu "
            "| private KiB %zu %zu\n",
            name_, rounds_, wrong_, before_.handles, after.handles, before_.views, after.views, before_.gdi,
            after.gdi, before_.user, after.user, before_.private_kib, after.private_kib);
        EXPECT_GT(rounds_, warm_up_);
        EXPECT_EQ(wrong_, 0u);
        EXPECT_LE(after.handles, before_.handles);
        EXPECT_LE(after.views, before_.views);
        EXPECT_LE(after.gdi, before_.gdi);
        EXPECT_LE(after.user, before_.user);
        EXPECT_LE(after.private_kib, before_.private_kib + 1024);
    }
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    void count(bool right, unsigned rounds = 1) {
        wrong_ += right ? 0 : 1;
        const bool was_warm = rounds_ >= warm_up_;
        rounds_ += rounds;
        if (!was_warm && rounds_ >= warm_up_)
            before_ = {};
    }

private:
    const char* name_;
    unsigned warm_up_, rounds_ = 0, wrong_ = 0;
    Held before_;
};

bool is_loaded(const std::wstring& path) {
    return PrintSettings().Load(path, false) == Corvanta::Vantrix::PrintSettings::kLoaded;
}

std::wstring chosen(const wchar_t* name) {
    return qk::grow_until_it_fits(
        [name](wchar_t* buffer, DWORD units) { return GetEnvironmentVariableW(name, buffer, units); });
}

// Another process that runs one of the programs below.
class Program {
public:
    explicit Program(const wchar_t* test) {
        std::wstring line = L"zr_tests --gtest_also_run_disabled_tests --gtest_filter=SoakProgram.DISABLED_" +
                            std::wstring(test);
        STARTUPINFOW startup = {sizeof startup};
        startup.dwFlags = STARTF_USESTDHANDLES;  // silent
        PROCESS_INFORMATION made = {};
        EXPECT_TRUE(CreateProcessW(Installation::built(L"zr_tests.exe").c_str(), line.data(), nullptr,
                                   nullptr, FALSE, 0, nullptr, nullptr, &startup, &made));
        CloseHandle(made.hThread);
        process_.reset(made.hProcess);
    }
    void kill() { TerminateProcess(process_.get(), 1); }
    [[nodiscard]] int code() {
        DWORD code = 1;
        WaitForSingleObject(process_.get(), INFINITE);
        GetExitCodeProcess(process_.get(), &code);
        return static_cast<int>(code);
    }

private:
    qk::HandleObj process_;
};

}  // namespace

TEST(Soak, DISABLED_SheetsOpenedAndClosed) {
    ModuleSheets sheets;
    Scene scene("sheets opened and closed", 20);
    for (const Clock clock; clock.runs();)
        scene.count(sheets.open_and_close(PSBTN_CANCEL));
}

TEST(Soak, DISABLED_SettingsSavedAndLoadedByProcesses) {
    const TempFolder folder;
    const Variable file(L"ZR_SOAK_FILE", folder.file(L"shared.ps4"));
    ASSERT_TRUE(PrintSettings().Save(folder.file(L"shared.ps4")));
    Program writer(L"Saves"), readers[] = {Program(L"Loads"), Program(L"Loads")};
    Scene scene("settings loaded beside 3 processes", 50);
    for (const Clock clock; clock.runs();)
        scene.count(is_loaded(folder.file(L"shared.ps4")));
    EXPECT_EQ(writer.code(), 0);
    for (Program& reader : readers)
        EXPECT_EQ(reader.code(), 0);
    EXPECT_EQ(folder.count(), 1u);
}

TEST(SoakProgram, DISABLED_Saves) {
    for (const Clock clock; clock.runs();)
        ASSERT_TRUE(PrintSettings().Save(chosen(L"ZR_SOAK_FILE")));
}

TEST(SoakProgram, DISABLED_Loads) {
    for (const Clock clock; clock.runs();)
        ASSERT_TRUE(is_loaded(chosen(L"ZR_SOAK_FILE")));
}

TEST(Soak, DISABLED_KillsWhileSaving) {
    const TempFolder folder;
    const std::wstring path = folder.file(L"killed.ps4");
    const Variable file(L"ZR_SOAK_FILE", path);
    ASSERT_TRUE(PrintSettings().Save(path));
    std::minstd_rand random(1);
    Scene scene("kills while saving", 2);
    for (const Clock clock; clock.runs();) {
        Program saver(L"Saves");
        Sleep(300 + random() % 300);
        saver.kill();
        (void)saver.code();
        scene.count(is_loaded(path) && PrintSettings().Save(path) && folder.count() == 1);
    }
}

TEST(Soak, DISABLED_FailingJobsWithTheLog) {
    const Installation here;
    here.set_number(HKEY_LOCAL_MACHINE, L"\\Notification", L"Error", 8);
    constexpr unsigned kThreads = 16, kJobs = 25;
    Scene scene("failing jobs, 16 threads", kThreads * kJobs);
    size_t length = 0;
    unsigned jobs = 0;
    for (const Clock clock; clock.runs();) {
        {
            std::vector<companions::Thread> threads;
            for (unsigned i = 0; i < kThreads; ++i)
                threads.emplace_back([] {
                    for (unsigned job = 0; job < kJobs; ++job)
                        (void)ZRTK_ErrorNotify(L"", L"C:\\a.pdf", 0, 0, L"what failed", L"");
                });
        }
        jobs += kThreads * kJobs;
        const std::string log = here.log();
        length = length == 0 ? log.size() / jobs : length;
        scene.count(log.size() == jobs * length, kThreads * kJobs);
    }
}

class SoakList : public EditSheet {};

TEST_F(SoakList, DISABLED_ListOfAThousandSettings) {
    SetThreadProp(threadprop::kPrinterName, reinterpret_cast<ULONG_PTR>(&here.printer.name));
    for (int i = 0; i < 1000; ++i)
        ASSERT_TRUE(setting().Save(GetAppDataPath(true) + L"setting " + std::to_wstring(i) + L".ps4"));
    {
        Scene scene("list of 1,000 settings", 3);
        for (const Clock clock; clock.runs();) {
            const HWND parent = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 600, 500, nullptr, nullptr,
                                                nullptr, nullptr);
            const HWND page = CreateDialogParamW(plotui::resource_module(), MAKEINTRESOURCEW(IDD_SETTINGS),
                                                 parent, &settings_page_proc, 0);
            scene.count(SendDlgItemMessageW(page, IDC_SETTINGS_LIST, LVM_GETITEMCOUNT, 0, 0) == 1000);
            DestroyWindow(parent);
        }
    }
    FreeThreadProp(threadprop::kPrinterName);
}
