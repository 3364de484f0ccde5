#include <gtest/gtest.h>

#include <algorithm>

#include "common/MMF.h"
#include "common/text.h"
#include "companions/host/held.h"
#include "companions/host/record_fields.h"
#include "companions/host/trace_output.h"

namespace {

constexpr DWORD kThread = 0x70000000;  // no thread of this system

std::wstring value_of(const host::Fields& fields, std::wstring_view name) {
    const auto found = std::ranges::find(fields, name, &host::Field::name);
    return found == fields.end() ? L"<none>" : found->value;
}

TEST(HostRecords, BlocksAreReadByThread) {
    EXPECT_FALSE(host::find_start_record(kThread));
    qk::MMF<ZRTKPrintStartInfoC> block(qk::format(kStartBlockName, static_cast<int>(kThread)));
    ASSERT_TRUE(block.view());
    ZRTKPrintStartInfoC& record = *block.view();
    record.resume = 1;
    qk::copy_zero_padded(record.title, kRecordTextUnits, L"Title");
    std::fill(std::begin(record.output_path), std::end(record.output_path), L'x');  // no terminating zero
    record.third_value = 0xFEDCBA9876543210;
    const auto read = host::find_start_record(kThread);
    ASSERT_TRUE(read);
    const host::Fields fields = host::fields_of(*read);
    EXPECT_EQ(value_of(fields, L"resume"), L"1");
    EXPECT_EQ(value_of(fields, L"title"), L"Title");
    EXPECT_EQ(value_of(fields, L"output_path"), std::wstring(260, L'x'));
    EXPECT_EQ(value_of(fields, L"third_value"), L"0xfedcba9876543210");
}

TEST(HostRecords, TextsThatLieAreReadAsFarAsTheyGo) {
    qk::MMF<ZRTKPrintInfo> block(qk::format(kResultBlockName, static_cast<int>(kThread)));
    ASSERT_TRUE(block.view());
    ZRTKPrintInfo& record = *block.view();
    record.error_code = 1005;
    std::wstring message = L"The message is long.";
    record.message.lend({message.data(), message.size() + 1}, message.size());
    record.caption.set_in_place(L"Short");
    record.pdf_file_name = record.message;
    record.pdf_file_name.length = 1000;  // above its capacity
    const auto read = host::find_result_record(kThread);
    ASSERT_TRUE(read);
    const host::Fields fields = host::fields_of(*read);
    EXPECT_EQ(value_of(fields, L"error_code"), L"1005");
    EXPECT_EQ(value_of(fields, L"message"), message);
    EXPECT_EQ(value_of(fields, L"caption"), L"Short");
    EXPECT_EQ(value_of(fields, L"pdf_file_name"), message + L" [not true: length 1000, capacity 20]");
    ZRTKPrintInfo bad = *read;
    bad.message.address = nullptr;
    EXPECT_EQ(value_of(host::fields_of(bad), L"message"), L" [not true: length 20, capacity 20]");
}

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

TEST(HostRecords, WhatIsHeldIsCounted) {
    const host::Held before = host::count_held();
    ASSERT_NE(before.handles, 0u);
    {
        const qk::HandleObj mapping(
            CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, nullptr));
        const qk::View view(MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0));
        const qk::HandleObj event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        const host::Held now = host::count_held();
        EXPECT_EQ(now.handles, before.handles + 1);
        EXPECT_EQ(now.mappings, before.mappings + 1);
        EXPECT_EQ(now.lock_events, before.lock_events + 1);
    }
    const host::Held after = host::count_held();
    EXPECT_EQ(after.handles, before.handles);
    EXPECT_EQ(after.mappings, before.mappings);
    EXPECT_EQ(after.lock_events, before.lock_events);
}

}  // namespace
