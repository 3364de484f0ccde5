#include <gtest/gtest.h>

#include <cstdint>
#include <functional>

#include "UI_dll/cpsui.h"
#include "common/qk/paths.h"
#include "common/qk/registry.h"
#include "common/qk/resource_dll.h"
#include "common/rwPDFSet_functions.h"
#include "common/teskel_custom_2021.h"
#include "common/threadprop.h"
#include "companions/thread.h"
#include "job/output_name.h"
#include "lib/devmode.h"
#include "print_settings/display.h"
#include "support/installation.h"
#include "support/trace_capture.h"
#include "support/trace_switch.h"

TEST(Trace, RecordsNameThreadFileAndLine) {
    const std::wstring thread = L"." + std::to_wstring(GetCurrentThreadId()) + L" ";
    struct {
        const char* source;
        unsigned line;
        const wchar_t* wanted;
    } const rows[] = {
        {"C:\\a\\b\\file.cpp", 12, L"file.cpp(12)  text\r\n"},
        {"file.cpp", 12, L"file.cpp(12)  text\r\n"},
        {"C:\\a\\file.cpp", 0, L"file.cpp  text\r\n"},
        {"a/b.cpp", 7, L"a/b.cpp(7)  text\r\n"},
        {"C:\\a\\", 1, L"(1)  text\r\n"},
    };
    const TraceCapture trace;
    for (const auto& row : rows) {
        SetLastError(77);
        qk::trace::write("text", row.source, row.line);
        qk::trace::write(L"text", row.source, row.line);
        qk::trace::write(std::wstring(L"text"), row.source, row.line);
        EXPECT_EQ(GetLastError(), 77u);
    }
    const auto records = TraceCapture::records();
    ASSERT_EQ(records.size(), std::size(rows) * 3);
    for (size_t i = 0; i < records.size(); ++i)
        EXPECT_EQ(records[i], thread + rows[i / 3].wanted);
}

TEST(Trace, OverlongRecordsAreCut) {
    const TraceCapture trace;
    const std::wstring text(5000, L'x');
    const std::string source = "C:\\" + std::string(400, 's');
    qk::trace::write(text, "f.cpp", 1);
    qk::trace::write(std::string(5000, 'x').c_str(), "f.cpp", 1);
    qk::trace::write(L"short", source.c_str(), 1);
    qk::trace::debug_output(L"%s", text.c_str());
    TRACE_F(L"%s", text.c_str());
    for (const std::wstring& record : TraceCapture::records())
        EXPECT_LT(record.size(), 1000u);
    EXPECT_EQ(TraceCapture::records().size(), 5u);
    EXPECT_EQ(TraceCapture::records()[0].size(), 999u);
    EXPECT_EQ(TraceCapture::records()[4].size(), 999u);
}

TEST(Trace, LevelDecidesWhatIsWritten) {
    struct {
        DWORD level;
        bool scope, plain;
    } const rows[] = {
        {0, false, false}, {1, true, false}, {4, true, false}, {5, true, true}, {UINT32_MAX, true, true}};
    for (const auto& row : rows) {
        const TraceCapture trace(row.level);
        int computed = 0;
        {
            TRACE_SCOPE("Entry");
            TRACE("narrow");
            TRACE((++computed, L"wide"));
            TRACE_F(L"n=%d", ++computed + 1);
        }
        EXPECT_EQ(computed, row.plain ? 2 : 0) << row.level;
        EXPECT_EQ(trace.records().size(), (row.scope ? 2u : 0u) + (row.plain ? 3u : 0u)) << row.level;
        EXPECT_EQ(trace.holds(L"n=3"), row.plain) << row.level;
        if (row.scope) {
            EXPECT_TRUE(trace.holds(L">>Entry"));
            EXPECT_NE(TraceCapture::records().front().find(L"test_trace.cpp("), std::wstring::npos);
            EXPECT_NE(TraceCapture::records().back().find(L"test_trace.cpp  <<Entry"), std::wstring::npos);
        }
    }
}

TEST(Trace, LevelComesFromTheSwitch) {
    TraceSwitch trace_switch;
    const TraceCapture trace(3);
    qk::trace::read_level();
    EXPECT_EQ(qk::trace::level, 0u);
    for (const bool global : {false, true}) {
        trace_switch.set(5, global);
        qk::trace::read_level();
        EXPECT_EQ(qk::trace::level, 5u) << global;
    }
    trace_switch.set(7);
    static DWORD seen_meanwhile = 0;
    static void* unmap = nullptr;
    {
        const ImportPatch slow("UnmapViewOfFile", reinterpret_cast<void*>(+[](const void* view) -> BOOL {
                                   seen_meanwhile = qk::trace::level;
                                   return reinterpret_cast<decltype(&UnmapViewOfFile)>(unmap)(view);
                               }));
        unmap = slow.original();
        qk::trace::read_level();
        EXPECT_EQ(seen_meanwhile, 5u) << "other threads are not silenced while the level is read";
        EXPECT_EQ(qk::trace::level, 7u);
    }
    trace_switch.set_without_memory();
    qk::trace::read_level();
    EXPECT_EQ(qk::trace::level, 0u);
    const ImportPatch no_view("MapViewOfFile",
                              reinterpret_cast<void*>(+[](HANDLE, DWORD, DWORD, DWORD, SIZE_T) -> void* {
                                  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
                                  return nullptr;
                              }));
    SetLastError(66);
    qk::trace::read_level();
    EXPECT_EQ(GetLastError(), 66u);
    EXPECT_EQ(qk::trace::level, 0u);
    EXPECT_TRUE(trace.holds(L"Error@qk::MMF MapViewOfFile:gle=8"));
}

TEST(Trace, NeedsNoMemory) {
    const TraceCapture trace;
    static wchar_t record[1000];
    const ImportPatch output("OutputDebugStringW",
                             reinterpret_cast<void*>(+[](const wchar_t* text) { wcscpy(record, text); }));
    static bool asked;
    asked = false;
    {
        const ImportPatch memory("malloc", reinterpret_cast<void*>(+[](size_t) -> void* {
                                     asked = true;
                                     return nullptr;
                                 }));
        TRACE_F(L"more than any text %s", L"holds in itself");
    }
    EXPECT_FALSE(asked);
    EXPECT_NE(wcsstr(record, L"more than any text holds in itself"), nullptr);
}

TEST(ThreadProp, EntriesQueueUpPerThreadAndKey) {
    const auto get = [](std::wstring_view key) {
        ULONG_PTR value = 99;
        GetThreadProp(key, value);
        return value;
    };
    EXPECT_EQ(get(L"A"), 0u);
    EXPECT_EQ(FreeThreadProp(L"A"), 0u);
    EXPECT_EQ(SetThreadProp(L"A", 1), 0u);
    EXPECT_EQ(SetThreadProp(L"A", 2), 0u);
    EXPECT_EQ(SetThreadProp(L"a", 3), 0u);
    EXPECT_EQ(SetThreadProp(L"AB", UINTPTR_MAX), 0u);
    ULONG_PTR elsewhere = 99;
    companions::Thread([&] {
        elsewhere = get(L"A") + FreeThreadProp(L"A");
        SetThreadProp(L"A", 50);  // outlives the thread
    }).join();
    EXPECT_EQ(elsewhere, 0u);
    EXPECT_EQ(get(L"A"), 1u);
    EXPECT_EQ(FreeThreadProp(L"A"), 1u);
    EXPECT_EQ(get(L"A"), 2u);
    EXPECT_EQ(FreeThreadProp(L"A"), 2u);
    EXPECT_EQ(get(L"A"), 0u);
    EXPECT_EQ(get(L"a"), 3u);
    EXPECT_EQ(get(L"AB"), UINTPTR_MAX);
    for (const bool process_ends : {true, false}) {
        SetThreadProp(L"a", 4);
        FinalizeThreadProp(process_ends);
        EXPECT_EQ(get(L"a"), 0u);
    }
}

TEST(Trace, FunctionsSayThatTheyAreEntered) {
    const Installation here;
    using Corvanta::Vantrix::PrintSettings::PrintSettings;
    const PrintSettings settings;
    const pd_tk::TeskelCustom2021 calls(L"", L"");
    DEVMODEW devmode = {};
    DWORD size = 0;
    const std::wstring folder = here.folder.file(L"out");
    struct {
        const wchar_t* record;
        std::function<void()> call;
    } const rows[] = {
        {L"resource_library_path", [] { (void)qk::resource_library_path(true); }},
        {L"load_string 19", [] { (void)qk::load_string(19); }},
        {L"ConvertDevmode", [&] { ConvertDevmode(&devmode, nullptr); }},
        {L"ConvertDevmodeOut", [&] { ConvertDevmodeOut(nullptr, nullptr, nullptr); }},
        {L"CommonDrvConvertDevmode", [&] { (void)CommonDrvConvertDevmode(nullptr, nullptr, &size, 1); }},
        {L"NSETCallBack", [] { NSETCallBack(nullptr); }},
        {L"CleanJobTitle", [] { (void)CleanJobTitle(L""); }},
        {L"ForceDirectories", [&] { ForceDirectories(folder); }},
        {folder.c_str(), [&] { ForceDirectories(folder); }},
        {L"ResolveSettingFilePath", [] { (void)ResolveSettingFilePath(L"x"); }},
        {L"ProbeSettingFile", [] { (void)ProbeSettingFile(L""); }},
        {L"GetAppDataPath", [] { (void)GetAppDataPath(false); }},
        {L"DiffStr", [&] { (void)settings.general().DiffStr(settings.general()); }},
        {L"Changed2Str", [&] { (void)Changed2Str(settings, settings); }},
        {L"Types2Str", [&] { (void)Types2Str(settings); }},
        {L"pd_tk::TeskelCustom2021::IsActive", [&] { (void)calls.IsActive(); }},
        {L"pd_tk::TeskelCustom2021::HasExe", [&] { (void)calls.HasExe(0); }},
        {L"pd_tk::TeskelCustom2021::HasAnyExe", [&] { (void)calls.HasAnyExe(); }},
        {L"pd_tk::TeskelCustom2021::GetOutputFolder", [&] { (void)calls.GetOutputFolder(); }},
        {L"err:RegOpenKeyExW 2 zr none", [] { (void)qk::registry::open(HKEY_CURRENT_USER, L"zr none"); }},
        {L"err:RegCreateKeyExW 5 zr none",
         [] {
             const ImportPatch refused("RegCreateKeyExW", reinterpret_cast<void*>(+[]() -> LSTATUS {
                                           return ERROR_ACCESS_DENIED;
                                       }));
             (void)qk::registry::create(HKEY_CURRENT_USER, L"zr none", KEY_READ);
         }},
        {L"err:SetSettingFileName 5",
         [] {
             const ImportPatch refused(
                 "RegSetValueExW", reinterpret_cast<void*>(+[]() -> LSTATUS { return ERROR_ACCESS_DENIED; }));
             SetSettingFileName(L"x.ps4", L"printer");
         }},
    };
    for (const auto& row : rows) {
        const TraceCapture trace;
        row.call();
        EXPECT_TRUE(trace.holds(row.record)) << qk::to_utf8(row.record);
    }
}
