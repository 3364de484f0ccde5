// The built module itself, loaded as the print system loads it.

#include "UI_dll/ddi.h"
#include "UI_dll/plotui.h"
#include "common/qk/module.h"
#include "support/debug_output.h"
#include "support/trace_switch.h"

namespace {

auto private_copies() {
    const std::wstring name = L"zrtk_res_" + std::to_wstring(GetCurrentProcessId());
    return std::ranges::count_if(
        std::filesystem::directory_iterator(ZRTK_TempRoot()),
        [&](const auto& entry) { return entry.path().filename().wstring().starts_with(name); });
}

}  // namespace

TEST(Module, WithoutALanguageLibraryItDoesNotLoad) {
    const Installation here;  // has no "Language" folder either
    const std::wstring lonely = here.folder.file(L"out\\ZR_UI80.dll");
    CopyFileW(Installation::built(L"ZR_UI80.dll").c_str(), lonely.c_str(), FALSE);
    // The trace level, whether it is set for all sessions, whether plain records are written.
    const std::tuple<DWORD, bool, bool> rows[] = {
        {0, false, false}, {3, false, false}, {5, false, true}, {5, true, true}};
    TraceSwitch trace_switch;
    unsigned handles = 0;  // 0: not counted yet, the system makes some at the first times
    for (const auto& [level, global, plain] : rows) {
        trace_switch.remove();
        if (level)
            trace_switch.set(level, global);
        const auto copies = private_copies();
        const DebugOutput output;
        SetLastError(0);
        EXPECT_EQ(LoadLibraryW(lonely.c_str()), nullptr);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_DLL_INIT_FAILED});
        EXPECT_TRUE(output.holds(L"ZRTK Error:no resource dll."));
        EXPECT_EQ(output.holds(L"  ui:attach\r\n") && output.holds(L"  gle="), plain);
        EXPECT_EQ(private_copies(), copies);
        trace_switch.remove();
        EXPECT_TRUE(handles == 0 || handle_count() == handles);
        if (level == 3)
            handles = handle_count();
    }
    EXPECT_TRUE(DeleteFileW(lonely.c_str())) << "it is still loaded";
}

TEST(Module, SaysSoWhenItCannotStayLoaded) {
    const Installation here;
    const auto attach = [](const wchar_t* record) {
        TraceSwitch trace_switch;
        trace_switch.set(qk::trace::kPlainLevel);
        const TraceCapture trace;
        EXPECT_TRUE(plotui::attach_process(qk::module_instance()));
        plotui::detach_process(false);
        return trace.holds(record);
    };
    {
        const CallHook<decltype(GetModuleFileNameW)> too_long(
            "GetModuleFileNameW", [](auto original, HMODULE module, wchar_t* buffer, DWORD units) {
                return units == 292 ? units : original(module, buffer, units);  // cut
            });
        EXPECT_TRUE(attach(L"ui:no module path"));
    }
    const ImportPatch no_context("CreateActCtxW", [](const ACTCTXW*) {
        return SetLastError(ERROR_NOT_ENOUGH_MEMORY), INVALID_HANDLE_VALUE;
    });
    EXPECT_TRUE(attach(L"ui:not pinned gle=8"));
}

TEST(Module, StaysLoadedAndAnswersThroughItsExports) {
    const std::wstring path = Installation::built(L"ZR_UI80.dll");
    HMODULE module = LoadLibraryW(path.c_str());
    ASSERT_NE(module, nullptr);
    EXPECT_GE(private_copies(), 1);
    EXPECT_TRUE(FindResourceW(module, MAKEINTRESOURCEW(2), RT_MANIFEST));
    EXPECT_TRUE(FindResourceW(module, MAKEINTRESOURCEW(1), RT_VERSION));

    const unsigned handles = handle_count();
    for (int i = 0; i < 3; ++i) {  // callers come and go
        FreeLibrary(module);
        ASSERT_EQ(GetModuleHandleW(path.c_str()), module);
        ASSERT_EQ(LoadLibraryW(path.c_str()), module);
    }
    EXPECT_EQ(handle_count(), handles);
    FreeLibrary(module);

    auto* query = qk::find_export<decltype(DevQueryPrintEx)>(module, "DevQueryPrintEx");
    if (!GetProcAddress(GetModuleHandleW(L"winspool.drv"), "DevQueryPrintEx")) {
        SetLastError(0);
        EXPECT_FALSE(query(nullptr));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_PROC_NOT_FOUND});
    }
    auto* sheets = qk::find_export<decltype(DrvDocumentPropertySheets)>(module, "DrvDocumentPropertySheets");
    DocumentPropertyHeader header = {sizeof header};
    EXPECT_EQ(sheets(nullptr, reinterpret_cast<LPARAM>(&header)), 256);
}

TEST(Module, LevelIsReadAgainBySomeEntryPointsOnly) {
    TraceSwitch trace_switch;
    const HMODULE module = LoadLibraryW(Installation::built(L"ZR_UI80.dll").c_str());
    ASSERT_NE(module, nullptr);
    const ImportPatch no_service(
        "LoadLibraryExW", []() -> HMODULE { return nullptr; }, module);
    const auto of_module = [&](auto* linked, const char* name) {
        return qk::find_export<std::remove_pointer_t<decltype(linked)>>(module, name);
    };
    auto* const event = of_module(&DrvDocumentEvent, "DrvDocumentEvent");
    auto* const sheets = of_module(&DrvDocumentPropertySheets, "DrvDocumentPropertySheets");
    auto* const properties = of_module(&DrvDocumentProperties, "DrvDocumentProperties");
    auto* const advanced = of_module(&DrvAdvancedDocumentProperties, "DrvAdvancedDocumentProperties");
    auto* const printer_event = of_module(&DrvPrinterEvent, "DrvPrinterEvent");
    auto* const printer = of_module(&PrinterProperties, "PrinterProperties");
    auto* const capabilities = of_module(&DrvDeviceCapabilities, "DrvDeviceCapabilities");
    DocumentPropertyHeader header = {sizeof header};
    wchar_t name[] = L"printer";
    const struct {
        const wchar_t* scope;  // none: it has none
        const wchar_t* plain;  // one of its plain traces
        std::function<void()> call;
        bool reads = true;
    } rows[] = {
        {L"DrvDocumentPropertySheets", L"  c.1", [&] { sheets(nullptr, reinterpret_cast<LPARAM>(&header)); }},
        {L"DrvDocumentProperties", L"  c.1",
         [&] { properties(nullptr, nullptr, name, nullptr, nullptr, 0); }},
        {L"DrvAdvancedDocumentProperties", L"  no compstui.dll",
         [&] { advanced(nullptr, nullptr, name, nullptr, nullptr); }},
        {nullptr, L"    default", [&] { printer_event(name, 99, 0, 0); }},
        {L"PrinterProperties", L"  no compstui.dll", [&] { printer(nullptr, nullptr); }},
        {nullptr, L"  DrvDeviceCapabilities", [&] { capabilities(nullptr, name, 18, nullptr, nullptr); },
         false}};
    for (const auto& row : rows)
        for (const DWORD level : {5, 3, 0}) {
            SCOPED_TRACE(std::to_string(&row - rows) + " at " + std::to_string(level));
            trace_switch.set(level);
            const DebugOutput output;
            row.call();
            const DWORD read = row.reads ? level : 0;  // what the row before has left
            EXPECT_EQ(output.holds(row.plain), read == 5);
            for (const wchar_t* mark : {L">>", L"<<"})
                EXPECT_EQ(row.scope && output.holds(std::wstring(mark) + row.scope), row.scope && read > 0);
            event(nullptr, nullptr, 99, 0, nullptr, 0, nullptr);
            EXPECT_EQ(output.holds(L"Unknown:99"), read == 5) << "the level that was read last";
        }
}

TEST(Module, EndingThreadsRemoveTheirEmptyScratchFolders) {
    const HMODULE module = LoadLibraryW(Installation::built(L"ZR_UI80.dll").c_str());
    ASSERT_NE(module, nullptr);
    for (const bool has_file : {false, true}) {
        std::wstring scratch;
        companions::Thread([&] {
            scratch = ZRTK_TempPath();
            if (has_file)
                CreateDirectoryW((scratch + L"\\left").c_str(), nullptr);
        }).join();
        ASSERT_FALSE(scratch.empty());
        EXPECT_EQ(qk::is_folder(scratch), has_file);
        RemoveDirectoryW((scratch + L"\\left").c_str());
        RemoveDirectoryW(scratch.c_str());
    }
}
