// One call fails: each function that the built module imports and that can fail, once at each of its calls. A
// refused job says why, nothing leaks, and the next time all is as it was.

#include <csignal>
#include <cstdio>

#include "common/qk/module.h"
#include "common/rwPDFSet_functions.h"
#include "common/teskel_custom_2021.h"
#include "job/job_fixture.h"
#include "lib/devmode.h"
#include "resources/ids.h"
#include "support/module_calls.h"

namespace {

std::string bytes_of(const DriverDevmode& value) {
    return {reinterpret_cast<const char*>(&value), sizeof value};
}
std::string text(const std::wstring& wide) {
    return '"' + qk::to_utf8(wide) + "\" ";
}

struct Faults : JobTest {
    Faults() {
        for (const int end : {SIGABRT, SIGSEGV})
            std::signal(end, &end_all);
        here.set_number(HKEY_LOCAL_MACHINE, L"\\Notification", L"Error", 15);
        here.write_ini("PrintID=7\r\n");
    }
    ~Faults() override {
        for (const int end : {SIGABRT, SIGSEGV})
            std::signal(end, SIG_DFL);
        script->misuse[0] = '\0';  // a printer whose name could not be had
    }

protected:
    using Scene = std::function<std::string()>;  // plays; what it has brought about

    // Plays a scene again and again, each time with another of its calls failing: in a random order, those of
    // functions that are seldom called first, and for a while only unless ZR_FAULTS is set: "1", or "2/3" for
    // the second of three parts. Without a failure it brings about `sound`, among others.
    void fail_each_call(std::string_view sound, const Scene& scene) {
        ASSERT_TRUE(module);
        ModuleCalls calls(module.get());
        EXPECT_EQ(calls.unknown(), std::vector<std::string>()) << "can they fail?";
        const auto state = [&] {
            const std::string left = scene();  // then what is held
            return left + holdings(calls);
        };
        for (int i = 0; i < 3; ++i)
            scene();  // what is made once
        calls.start();
        scene();
        calls.stop();
        const auto names = calls.noted();
        std::map<std::string_view, size_t> called;
        for (const char* const name : names)
            ++called[name];
        std::vector<size_t> numbers(names.size());
        std::iota(numbers.begin(), numbers.end(), size_t{1});
        const char* const all = std::getenv("ZR_FAULTS");
        size_t part = 1, parts = 1;
        ASSERT_TRUE(!all || std::sscanf(all, "%zu/%zu", &part, &parts) == 0 || part - 1 < parts) << all;
        std::erase_if(numbers, [&](size_t number) { return number % parts != part - 1; });
        std::ranges::shuffle(numbers, std::mt19937(all ? static_cast<unsigned>(GetTickCount64()) : 1));
        std::ranges::stable_sort(numbers, {}, [&](size_t number) { return called[names[number - 1]]; });
        size_t failures = 0, tried = 0, done = 0;
        const auto fail_one = [&](size_t number) {
            failing = "call " + std::to_string(number) + ", " + names[number - 1];
            calls.start(number);
            scene();
            calls.stop();
            return calls.noted().size() >= number;
        };
        std::string before = state();
        ASSERT_NE(before.find(sound), std::string::npos) << before;
        const ULONGLONG end = all ? ULLONG_MAX : GetTickCount64() + 15'000;
        while (done < numbers.size() && GetTickCount64() < end) {
            const auto batch = std::span(numbers).subspan(done, std::min(numbers.size() - done, kBatch));
            done += batch.size();
            const auto changes = [&](std::span<const size_t> some) {
                for (const size_t number : some)
                    ++tried, failures += fail_one(number);
                const std::string left = state();
                return std::exchange(before, left) != left;
            };
            // The system keeps things from their first use on, or lets go of them later: only what changes
            // each time counts.
            int times = 0;
            while (times < kMostChanges && changes(batch))
                ++times;
            if (times == kMostChanges) {
                ADD_FAILURE() << "something of these calls changes what is held or brought about";
                for (const size_t& number : batch)
                    if (const std::string first = before; changes({&number, 1}))
                        std::printf("%s\nis  %s\nwas %s\n", failing.c_str(), before.c_str(), first.c_str());
            }
            EXPECT_NE(before.find(sound), std::string::npos)
                << "no longer, after " << failing << ": " << before;
        }
        EXPECT_GT(failures * 10, tried * 9) << "the scene is not what it was when its calls were noted";
        if (all)
            std::printf("%zu of %zu calls\n", done, names.size());
    }

    // What no failing call excuses.
    static void expect(bool fulfilled, const char* what) {
        EXPECT_TRUE(fulfilled) << what << " after the failure of " << failing;
    }

    template <class Function>
    [[nodiscard]] Function* entry(const char* name) const {
        return qk::find_export<Function>(module.get(), name);
    }

    qk::DLL module{LoadLibraryW(Installation::built(L"ZR_UI80.dll").c_str())};
    wchar_t* const printer_name = here.printer.name.data();

private:
    static void end_all(int) {
        std::printf("the end after the failure of %s\n", failing.c_str());
        std::fflush(stdout);
        TerminateProcess(GetCurrentProcess(), 1);
    }

    // What the process and the installation hold.
    [[nodiscard]] std::string holdings(const ModuleCalls& calls) const {
        int windows = 0;
        std::map<DWORD, int> objects;  // of each kind
        const auto count = [](HWND, LPARAM number) { return ++*reinterpret_cast<int*>(number), TRUE; };
        EnumThreadWindows(GetCurrentThreadId(), count, reinterpret_cast<LPARAM>(&windows));
        // Where the system looks at no more of a handle.
        for (uintptr_t number = 0; number < 0x4000; ++number)
            if (const DWORD kind = GetObjectType(reinterpret_cast<HGDIOBJ>(number)))
                ++objects[kind];
        const std::filesystem::recursive_directory_iterator files(here.folder.path());
        std::ostringstream all;
        all << handle_count() << " handles " << view_count() << " views " << windows << " windows "
            << testing::PrintToString(objects) << " GDI objects " << calls.blocks() << " blocks "
            << std::distance(files, {}) << " files";
        return all.str();
    }

    static constexpr size_t kBatch = 20;
    static constexpr int kMostChanges = 4;
    static inline std::string failing;
};

TEST_F(Faults, OfAJob) {
    const std::string program = qk::to_utf8(here.folder.write(L"app.exe", "x"));
    here.write_external_calls("[DocEnd]\r\nApp=" + program + "\r\n[Output]\r\nOutputFolder=C:\\start\\\r\n");
    script->expects_start_folder = true;
    use_settings();
    auto* const event = entry<decltype(DrvDocumentEvent)>("DrvDocumentEvent");
    const auto send = [&](int number, void* in = nullptr, ULONG size = 0) {
        SetLastError(ERROR_SUCCESS);
        const int answer = event(FakePrinter::handle(), nullptr, number, size, in, 0, nullptr);
        return Left{answer, GetLastError()};
    };
    const auto is_clean = [] {
        const OtherSide<pd_tk::TKFileNames> list(pd_tk::file_list_name());
        return !start_record_bytes() && !ResultRecord(block_name(kResultBlockName)) &&
               (!list || !*list->names[0]);
    };
    const std::wstring logs = here.folder.file(L"Dunmere\\Vantrix2\\Error_");
    fail_each_call("logged", [&] {
        for (const wchar_t* old : {L"7.log", L"0.log"})  // the second when the ini file could not be read
            DeleteFileW((logs + old).c_str());
        Outbox::boxes.clear(), Outbox::events.clear(), Outbox::posted.clear();
        DOCINFOW info = {.cbSize = sizeof info, .lpszDocName = L"A document's name"};
        const Left start = send(DOCUMENTEVENT_STARTDOCPRE, &info, sizeof info);
        std::string left = testing::PrintToString(start);
        const bool started = start.result == DOCUMENTEVENT_SUCCESS;
        const bool logged = qk::is_file(logs + L"7.log");
        const bool told = start.error != 0 || logged || !Outbox::boxes.empty() || !Outbox::events.empty();
        expect(started || (told && is_clean()), "refused without a word, or not whole");
        if (const StartRecord record(block_name(kStartBlockName)); record)
            left += text(record->title) + text(record->output_path) + (record->external_record ? "+" : "-");
        DWORD failure = ERROR_SUCCESS;
        if (const ResultRecord record(block_name(kResultBlockName)); record) {
            record->error_code = 1, record->win32_error = failure = 5;
            record->message.set_in_place(L"failed");
        }
        expect(send(DOCUMENTEVENT_ENDDOCPOST) == Left{DOCUMENTEVENT_SUCCESS, failure}, "not as recorded");
        expect(is_clean(), "something of the job stays");
        for (const Outbox::Box& box : Outbox::boxes)
            left += text(box.caption) + text(box.text);
        return left + std::to_string(Outbox::events.size()) + std::to_string(Outbox::posted.size()) +
               (qk::is_file(logs + L"7.log") ? "logged" : "");
    });
}

TEST_F(Faults, OfQueries) {
    auto* const ask = entry<decltype(DrvDeviceCapabilities)>("DrvDeviceCapabilities");
    auto* const merge = entry<decltype(DrvDocumentProperties)>("DrvDocumentProperties");
    auto* const convert = entry<decltype(DrvConvertDevMode)>("DrvConvertDevMode");
    fail_each_call("converted 1 merged 1 ", [&] {
        std::ostringstream left;
        for (WORD index = 0; index <= 34; ++index) {
            std::string buffer(1 << 14, '\0');
            left << ask(FakePrinter::handle(), printer_name, index, nullptr, nullptr) << ' '
                 << ask(FakePrinter::handle(), printer_name, index, buffer.data(), nullptr) << ' '
                 << std::hash<std::string>()(buffer) << ' ';
        }
        DriverDevmode in = default_devmode(), out = {};
        in.dm.dmFields = DM_SCALE | DM_PAPERSIZE | DM_COPIES | DM_ORIENTATION;
        in.dm.dmScale = 50;
        DWORD size = sizeof out;
        left << "converted " << convert(printer_name, nullptr, &out.dm, &size, kDriverDefault) << " merged "
             << merge(nullptr, FakePrinter::handle(), printer_name, &out.dm, &in.dm, DM_COPY | DM_MODIFY)
             << ' ' << std::hash<std::string>()(bytes_of(out)) << ' ';
        return left.str();
    });
}

TEST_F(Faults, OfLoading) {
    auto* const main = entry<BOOL WINAPI(HINSTANCE, DWORD, void*)>("DllMain");
    const auto tell = [&](DWORD reason) {
        return main(reinterpret_cast<HINSTANCE>(module.get()), reason, nullptr);
    };
    fail_each_call("attached 1 ", [&] {
        expect(tell(DLL_PROCESS_DETACH), "not detached");
        return "attached " + std::to_string(tell(DLL_PROCESS_ATTACH)) + " ";
    });
}

// --- Sheets ---

struct SheetFaults : Faults {
    SheetFaults() {
        info.pfnComPropSheet = [](HANDLE, UINT function, LPARAM what, LPARAM) -> LONG_PTR {
            if (function == CPSFUNC_ADD_PROPSHEETPAGEW)
                added = *reinterpret_cast<const PROPSHEETPAGEW*>(what);
            return 77;
        };
        info.lParamInit = reinterpret_cast<LPARAM>(&header);
        save(here.folder.file(L"Settings\\standard.ps4"), L"Standard");
    }

    static void save(const std::wstring& path, const wchar_t* name) {
        Settings setting;
        setting->PSName = name;
        EXPECT_TRUE(setting.Save(path));
    }
    std::string send(PFNPROPSHEETUI sheet, PROPSHEETUI_INFO& to, WORD why, const void* what = nullptr) const {
        to.Reason = why;
        return std::to_string(sheet(&to, reinterpret_cast<LPARAM>(what))) + " ";
    }
    // A sheet from INIT to DESTROY, with what is done in between.
    std::string with_sheet(const Scene& act) {
        info.UserData = 0;
        added = {};
        std::string left = send(sheets, info, PROPSHEETUI_REASON_INIT);
        left += act();  // not before the sheet is there
        send(sheets, info, PROPSHEETUI_REASON_DESTROY);
        return left;
    }
    // The list page as a sheet makes it, of two settings; `act` gets it with the first one selected.
    std::string with_list(const std::function<void(HWND page)>& act) {
        for (const auto& file : std::filesystem::directory_iterator(own_folder))
            DeleteFileW(file.path().c_str());
        for (const wchar_t* name : {L"alpha", L"beta"})
            save(own_folder + name + L".ps4", name);
        Outbox::boxes.clear();
        Outbox::answer = IDYES;
        return with_sheet([&] {
            const HWND parent = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 600, 500, nullptr, nullptr,
                                                nullptr, nullptr);
            const HWND page = CreateDialogParamW(added.hInstance, added.pszTemplate, parent, added.pfnDlgProc,
                                                 reinterpret_cast<LPARAM>(&added));
            const HWND list = GetDlgItem(page, IDC_SETTINGS_LIST);
            ListView_SetItemState(list, 0, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
            if (page)
                act(page);
            std::string left;
            for (int row = 0; row < ListView_GetItemCount(list); ++row) {
                wchar_t name[200];
                ListView_GetItemText(list, row, 0, name, 200);
                left += text(name);
            }
            DestroyWindow(parent);
            for (const auto& file : std::filesystem::directory_iterator(own_folder)) {
                const std::string bytes = TempFolder::read(file.path());
                Settings setting;
                expect(bytes.size() > 3 && setting.LoadPS4(bytes.substr(3), false) == ps::kLoaded,
                       "a file is torn");
                left += text(file.path().filename()) + text(setting->PSName);
            }
            return left;
        });
    }
    static void press(HWND page, int button) { SendMessageW(GetDlgItem(page, button), BM_CLICK, 0, 0); }

    static inline PROPSHEETPAGEW added;  // the list page
    DriverDevmode output = {};
    DocumentPropertyHeader header = {sizeof header, 0, FakePrinter::handle(), printer_name, nullptr,
                                     &output.dm,    0, DM_COPY | DM_PROMPT};
    PROPSHEETUI_INFO info = {.cbSize = sizeof info, .Version = PROPSHEETUI_INFO_VERSION};
    PFNPROPSHEETUI sheets = entry<LONG APIENTRY(PROPSHEETUI_INFO*, LPARAM)>("DrvDocumentPropertySheets");
    std::wstring own_folder = GetAppDataPath(true);
};

TEST_F(SheetFaults, OfASheet) {
    auto* const device_sheets = entry<LONG APIENTRY(PROPSHEETUI_INFO*, LPARAM)>("DrvDevicePropertySheets");
    fail_each_call(R"("Vantrix 8")", [&] {
        output = {};
        return with_sheet([&] {
            PROPSHEETUI_INFO_HEADER shown = {};
            std::string left = send(sheets, info, PROPSHEETUI_REASON_GET_INFO_HEADER, &shown);
            DevicePropertyHeader device = {.cbSize = sizeof device, .hPrinter = FakePrinter::handle()};
            PROPSHEETUI_INFO inner = info;  // the printer's own, opened from the first
            inner.lParamInit = reinterpret_cast<LPARAM>(&device);
            inner.UserData = 0;
            left += send(device_sheets, inner, PROPSHEETUI_REASON_INIT);
            left += send(device_sheets, inner, PROPSHEETUI_REASON_DESTROY);
            const SETRESULT_INFO set = {sizeof set, 0, reinterpret_cast<HANDLE>(INT_PTR{77}), CPSUI_OK};
            left += send(sheets, info, PROPSHEETUI_REASON_SET_RESULT, &set);
            return left + (shown.pTitle ? text(shown.pTitle) : "") + bytes_of(output);
        });
    });
}

TEST_F(SheetFaults, OfTheListPage) {
    fail_each_call(R"(1 "beta")", [&] {
        return with_list([](HWND page) {
            press(page, IDC_SETTINGS_DELETE);
            const PSHNOTIFY apply = {{GetParent(page), 0, static_cast<UINT>(PSN_APPLY)}, TRUE};
            SendMessageW(page, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&apply));
        });
    });
}

// Another name and OK for an edit sheet as it opens; where that does not end it, it is cancelled.
void CALLBACK drive_edit_sheet(HWND, UINT, UINT_PTR, DWORD) {
    const auto drive = [](HWND window, LPARAM) -> BOOL {
        static HWND named;
        static int ticks;
        const auto page = reinterpret_cast<HWND>(SendMessageW(window, PSM_GETCURRENTPAGEHWND, 0, 0));
        if (!page)
            return TRUE;
        ticks = window == std::exchange(named, window) ? ticks + 1 : 0;
        if (ticks == 0)
            SetDlgItemTextW(page, IDC_NAME, L"gamma");
        if (ticks == 0 || ticks > 2)
            PostMessageW(window, PSM_PRESSBUTTON, ticks == 0 ? PSBTN_OK : PSBTN_CANCEL, 0);
        return FALSE;
    };
    EnumThreadWindows(GetCurrentThreadId(), drive, 0);
}

TEST_F(SheetFaults, OfSavingInTheEditSheet) {
    const UINT_PTR timer = SetTimer(nullptr, 0, 10, &drive_edit_sheet);
    fail_each_call(R"("gamma")",
                   [&] { return with_list([](HWND page) { press(page, IDC_SETTINGS_EDIT); }); });
    KillTimer(nullptr, timer);
}

}  // namespace
