#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/qk/MMF.h"
#include "common/qk/handle.h"
#include "companions/host/held.h"
#include "companions/host/trace_output.h"

namespace {

TEST(HostRecords, DebugOutputIsCaughtOnce) {
    std::vector<std::wstring> lines;
    {
        const host::TraceOutput output(5, [&](const std::wstring& line) {
            lines.push_back(line);
            OutputDebugStringW(L"from inside the catcher");
        });
        const qk::MMF<DWORD> level(L"zrtk_ods_debug_mmf_3hrpwtf97s");
        ASSERT_TRUE(level.view());
        EXPECT_FALSE(level.created());
        EXPECT_EQ(*level.view(), 5u);
        OutputDebugStringW(L"wide \u00e9\r\n");
        OutputDebugStringA("narrow\r\n");
        OutputDebugStringW(L"");
    }
    OutputDebugStringW(L"too late");
    EXPECT_EQ(lines, (std::vector<std::wstring>{L"wide \u00e9", L"narrow", L""}));
}

// Those that show a leak of a run of jobs count what they should.
TEST(HostRecords, WhatIsHeldIsCounted) {
    const host::Held before = host::count_held();
    const qk::HandleObj mapping(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, nullptr));
    const qk::View view(MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0));
    const qk::HandleObj event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const host::Held now = host::count_held();
    EXPECT_EQ(now.handles, before.handles + 1);
    EXPECT_EQ(now.mappings, before.mappings + 1);
    EXPECT_EQ(now.lock_events, before.lock_events + 1);
}

}  // namespace
