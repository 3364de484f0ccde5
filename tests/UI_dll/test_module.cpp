// The built module itself, loaded as the print system loads it.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "UI_dll/ddi.h"
#include "UI_dll/plotui.h"
#include "common/qk/module.h"
#include "common/qk/paths.h"
#include "companions/thread.h"
#include "support/debug_output.h"
#include "support/handle_count.h"
#include "support/installation.h"
#include "support/trace_capture.h"
#include "support/trace_switch.h"

namespace {

size_t private_copies() {
    const std::wstring pattern =
        ZRTK_TempRoot() + L"\\zrtk_res_" + std::to_wstring(GetCurrentProcessId()) + L"*";
    WIN32_FIND_DATAW found;
    const qk::FindObj search(FindFirstFileW(pattern.c_str(), &found));
    size_t copies = 0;
    if (search) {
        do
            ++copies;
        while (FindNextFileW(search.get(), &found));
    }
    return copies;
}

}  // namespace

TEST(Module, WithoutALanguageLibraryItDoesNotLoad) {
    const Installation here;  // has no "Language" folder either
    const std::wstring lonely = here.folder.file(L"out\\ZR_UI80.dll");
    CopyFileW(Installation::built(L"ZR_UI80.dll").c_str(), lonely.c_str(), FALSE);
    struct {
        DWORD level;
        bool global, plain;
    } const rows[] = {{0, false, false}, {3, false, false}, {5, false, true}, {5, true, true}};
    TraceSwitch trace_switch;
    unsigned handles = 0;  // 0: not counted yet, the system makes some at the first times
    for (const auto& row : rows) {
        trace_switch.remove();
        if (row.level)
            trace_switch.set(row.level, row.global);
        const size_t copies = private_copies();
        const DebugOutput output;
        SetLastError(0);
        const HMODULE module = LoadLibraryW(lonely.c_str());
        EXPECT_EQ(GetLastError(), DWORD{ERROR_DLL_INIT_FAILED});
        EXPECT_EQ(module, nullptr);
        EXPECT_TRUE(output.holds(L"ZRTK Error:no resource dll."));
        EXPECT_EQ(output.holds(L"  ui:attach\r\n"), row.plain);
        EXPECT_EQ(output.holds(L"  gle="), row.plain);
        EXPECT_EQ(private_copies(), copies);
        trace_switch.remove();
        if (handles) {
            EXPECT_EQ(handle_count(), handles);
        }
        if (row.level == 3)
            handles = handle_count();
    }
    EXPECT_TRUE(DeleteFileW(lonely.c_str())) << "it is still loaded";
}

TEST(Module, SaysSoWhenItCannotStayLoaded) {
    const Installation here;
    static void* module_file_name = nullptr;
    const auto attach = [](const wchar_t* record) {
        TraceSwitch trace_switch;
        trace_switch.set(qk::trace::kPlainLevel);
        const TraceCapture trace;
        EXPECT_TRUE(plotui::attach_process(qk::module_instance()));
        plotui::detach_process(false);
        return std::ranges::any_of(trace.records(), [&](const std::wstring& text) {
            return text.find(record) != std::wstring::npos;
        });
    };
    {
        const ImportPatch too_long(
            "GetModuleFileNameW",
            reinterpret_cast<void*>(+[](HMODULE module, wchar_t* buffer, DWORD units) -> DWORD {
                if (units == 292)
                    return units;  // cut
                return reinterpret_cast<decltype(&GetModuleFileNameW)>(module_file_name)(module, buffer,
                                                                                         units);
            }));
        module_file_name = too_long.original();
        EXPECT_TRUE(attach(L"  ui:no module path"));
    }
    const ImportPatch no_context("CreateActCtxW", reinterpret_cast<void*>(+[](const ACTCTXW*) -> HANDLE {
                                     SetLastError(ERROR_NOT_ENOUGH_MEMORY);
                                     return INVALID_HANDLE_VALUE;
                                 }));
    EXPECT_TRUE(attach(L"  ui:not pinned gle=8"));
}

TEST(Module, StaysLoadedAndAnswersThroughItsExports) {
    const std::wstring path = Installation::built(L"ZR_UI80.dll");
    HMODULE module = LoadLibraryW(path.c_str());
    ASSERT_NE(module, nullptr);
    EXPECT_GE(private_copies(), 1u);
    EXPECT_NE(FindResourceW(module, MAKEINTRESOURCEW(2), RT_MANIFEST), nullptr);
    EXPECT_NE(FindResourceW(module, MAKEINTRESOURCEW(1), RT_VERSION), nullptr);

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
    auto* sheets = qk::find_export<decltype(DrvDocumentPropertySheets)>(module, "DrvDocumentPropertySheets");
    auto* printer_event = qk::find_export<decltype(DrvPrinterEvent)>(module, "DrvPrinterEvent");
    auto* document_event = qk::find_export<decltype(DrvDocumentEvent)>(module, "DrvDocumentEvent");
    struct {
        DWORD level;
        bool scope, plain;
    } const rows[] = {{5, true, true}, {3, true, false}, {0, false, false}};
    DocumentPropertyHeader header = {sizeof header};
    wchar_t name[] = L"printer";
    for (const auto& row : rows) {
        SCOPED_TRACE(row.level);
        trace_switch.set(row.level);
        const DebugOutput output;
        document_event(nullptr, nullptr, 99, 0, nullptr, 0, nullptr);
        EXPECT_EQ(output.holds(L"Unknown:99"), row.level == 3) << "the level read before still holds";
        sheets(nullptr, reinterpret_cast<LPARAM>(&header));
        EXPECT_EQ(output.holds(L">>DrvDocumentPropertySheets"), row.scope);
        EXPECT_EQ(output.holds(L"<<DrvDocumentPropertySheets"), row.scope);
        EXPECT_EQ(output.holds(L"  c.1"), row.plain);
        EXPECT_EQ(printer_event(name, 99, 0, 0), TRUE);
        EXPECT_EQ(output.holds(L"    default"), row.plain);
        EXPECT_EQ(output.holds(L"  ret=1"), row.plain);
    }
}

TEST(Module, EndingThreadsRemoveTheirEmptyScratchFolders) {
    const HMODULE module = LoadLibraryW(Installation::built(L"ZR_UI80.dll").c_str());
    ASSERT_NE(module, nullptr);
    struct {
        bool has_file;
    } const rows[] = {{false}, {true}};
    for (const auto& row : rows) {
        std::wstring scratch;
        companions::Thread([&] {
            scratch = ZRTK_TempPath();
            if (row.has_file)
                CreateDirectoryW((scratch + L"\\left").c_str(), nullptr);
        }).join();
        ASSERT_FALSE(scratch.empty());
        EXPECT_EQ(qk::is_folder(scratch), row.has_file);
        RemoveDirectoryW((scratch + L"\\left").c_str());
        RemoveDirectoryW(scratch.c_str());
    }
}
