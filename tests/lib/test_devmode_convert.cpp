// The default DEVMODE, copies between layouts, DrvConvertDevMode.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>
#include <vector>

#include "UI_dll/ddi.h"
#include "lib/devmode.h"
#include "support/fake_printer.h"
#include "support/guarded_buffer.h"

namespace {

struct Layout {
    WORD size, extra, spec_version, driver_version;
};
bool operator==(const Layout& a, const Layout& b) {
    return a.size == b.size && a.extra == b.extra && a.spec_version == b.spec_version &&
           a.driver_version == b.driver_version;
}
void PrintTo(const Layout& layout, std::ostream* out) {
    *out << layout.size << " + " << layout.extra << ", " << std::hex << layout.spec_version << ", "
         << layout.driver_version;
}

constexpr Layout k351 = {188, 36, 0x0320, 0x0350}, kOwn = {220, 36, 0x0401, 0x0800};
constexpr size_t kHeader = offsetof(DEVMODEW, dmFields);

Layout layout_of(const DEVMODEW& dm) {
    return {dm.dmSize, dm.dmDriverExtra, dm.dmSpecVersion, dm.dmDriverVersion};
}

void stamp(DEVMODEW& dm, const Layout& layout) {
    dm.dmSize = layout.size;
    dm.dmDriverExtra = layout.extra;
    dm.dmSpecVersion = layout.spec_version;
    dm.dmDriverVersion = layout.driver_version;
}

// A DEVMODE that ends at a page without access; its bytes tell where they come from.
class Devmode {
public:
    explicit Devmode(const Layout& layout, int first, std::optional<size_t> room = std::nullopt)
        : buffer_(room.value_or(size_t{layout.size} + layout.extra)) {
        for (size_t i = 0; i < buffer_.size(); ++i)
            buffer_.as<BYTE>()[i] = static_cast<BYTE>(first + static_cast<int>(i % 97));
        if (buffer_.size() >= kHeader)
            stamp(*get(), layout);
    }
    [[nodiscard]] DEVMODEW* get() const { return buffer_.as<DEVMODEW>(); }
    void make_read_only() { buffer_.make_read_only(); }

private:
    GuardedBuffer buffer_;
};

DriverDevmode filled() {
    DriverDevmode devmode = default_devmode();
    devmode.dm.dmICMMethod = 77;
    return devmode;
}

}  // namespace

TEST(Devmode, DefaultIsA4InColour) {
    const DriverDevmode devmode = default_devmode();
    const DEVMODEW& dm = devmode.dm;
    EXPECT_EQ(layout_of(dm), kOwn);
    EXPECT_STREQ(dm.dmDeviceName, L"Corvanta Vantrix 8.0");
    EXPECT_EQ(dm.dmFields,
              DWORD{0x1 | 0x2 | 0x10 | 0x400 | 0x800 | 0x10000});  // without the bit of the copies
    const int numbers[] = {dm.dmOrientation, dm.dmPaperSize, dm.dmPaperLength,   dm.dmPaperWidth,
                           dm.dmScale,       dm.dmCopies,    dm.dmDefaultSource, dm.dmPrintQuality,
                           dm.dmColor,       dm.dmDuplex,    dm.dmYResolution,   dm.dmTTOption,
                           dm.dmCollate};
    const int expected[] = {1, 9, 2970, 2100, 100, 1, 0, 600, 2, 1, 600, 0, 0};
    EXPECT_EQ(std::vector(std::begin(numbers), std::end(numbers)),
              std::vector(std::begin(expected), std::end(expected)));
    EXPECT_STREQ(dm.dmFormName, L"A4");
    EXPECT_EQ(dm.dmPelsWidth, 2100u);
    EXPECT_EQ(dm.dmPelsHeight, 2970u);
    const auto* extra = reinterpret_cast<const BYTE*>(&devmode) + 220;
    const BYTE bytes[36] = {'M', 'D', 'E', 'P', 0,    2,    5,    7,    1,    0,    0, 0, 24,   0,
                            0,   0,   0,   0,   0x10, 0x27, 0x10, 0x27, 0x10, 0x27, 0, 0, 0x10, 0x27};
    EXPECT_EQ(std::memcmp(extra, bytes, sizeof bytes), 0);
}

TEST(Devmode, CopiesKeepTheTargetsLayout) {
    struct {
        Layout source, target;
        int copied;
        WORD spec_version;
    } const rows[] = {
        {kOwn, kOwn, 256, 0x0401},
        {kOwn, {220, 36, 0, 0x0800}, 256, 0x0401},
        {kOwn, {188, 0, 9, 1}, 188, 0x0320},
        {kOwn, {212, 20, 9, 1}, 232, 0x0400},
        {kOwn, {300, 100, 0x0500, 1}, 256, 0x0500},
        {kOwn, {156, 36, 0x0300, 1}, 192, 0x0300},
        {kOwn, {300, 36, 0, 1}, -1, 0},
        {k351, kOwn, 224, 0x0401},
        {{212, 0, 0, 0}, kOwn, 212, 0x0401},
        {{188, 100, 0, 0}, kOwn, 224, 0x0401},
        {{300, 52, 1, 0}, kOwn, 256, 0x0401},
        {{300, 52, 0, 0}, kOwn, -1, 0},
        {{100, 0, 0x0300, 0}, kOwn, 100, 0x0401},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.source) + " -> " + testing::PrintToString(row.target));
        const Devmode source(row.source, 10), target(row.target, 120), untouched(row.target, 120);
        ASSERT_EQ(ConvertDevmode(source.get(), target.get()), row.copied);
        if (row.copied < 0) {
            EXPECT_EQ(std::memcmp(target.get(), untouched.get(), size_t{row.target.size} + row.target.extra),
                      0);
            continue;
        }
        DEVMODEW* const expected = untouched.get();
        std::memcpy(expected, source.get(), std::min(row.source.size, row.target.size));
        std::memcpy(reinterpret_cast<BYTE*>(expected) + row.target.size,
                    reinterpret_cast<BYTE*>(source.get()) + row.source.size,
                    std::min(row.source.extra, row.target.extra));
        stamp(*expected, row.target);
        expected->dmSpecVersion = row.spec_version;
        EXPECT_EQ(std::memcmp(target.get(), expected, size_t{row.target.size} + row.target.extra), 0);
    }
}

TEST(Devmode, OntoItselfItIsOnlyStamped) {
    const Devmode devmode({220, 36, 0x0300, 5}, 1), before({220, 36, 0x0401, 5}, 1);
    EXPECT_EQ(ConvertDevmode(devmode.get(), devmode.get()), 256);
    EXPECT_EQ(std::memcmp(devmode.get(), before.get(), 256), 0);
}

TEST(Devmode, WhatIsCopiedMustBeThere) {
    const Layout most = {65535, 65535, 0x0401, 0};
    struct {
        const char* label;
        Layout layout;
        size_t room;
        int copied;
    } const rows[] = {
        {"a word short", kOwn, 252, -1},
        {"all sizes at their end", most, 4096, -1},
        {"header only", kOwn, kHeader, -1},
        {"no whole header", kOwn, 68, -1},
        {"public part claims more", {65535, 0, 0x0401, 0}, 220, 220},
        {"extension claims more", {220, 60000, 0x0401, 0}, 256, 256},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const Devmode good(kOwn, 1), other(row.layout, 2, row.room);
        EXPECT_EQ(ConvertDevmode(other.get(), good.get()), row.copied);
        EXPECT_EQ(ConvertDevmode(good.get(), other.get()), row.copied);
    }
    const Devmode good(kOwn, 1);
    EXPECT_EQ(ConvertDevmode(nullptr, good.get()), -1);
    EXPECT_EQ(ConvertDevmode(good.get(), nullptr), -1);
    Devmode constant(kOwn, 3);
    constant.make_read_only();
    EXPECT_EQ(ConvertDevmode(constant.get(), good.get()), 256);
    EXPECT_EQ(ConvertDevmode(good.get(), constant.get()), -1);
}

TEST(Devmode, OutputTakesTheSmallerPartsOfTheTwo) {
    struct {
        std::optional<Layout> caller;
        Layout output;
        int result;
    } const rows[] = {
        {std::nullopt, kOwn, 1},
        {kOwn, kOwn, 1},
        {Layout{188, 0, 0x0320, 0x0350}, {188, 0, 0x0320, 0x0350}, 1},
        {Layout{188, 100, 0x0320, 0x0350}, {188, 36, 0x0320, 0x0800}, 1},
        {Layout{212, 12, 0, 7}, {212, 12, 0x0400, 7}, 1},
        {Layout{300, 12, 0x0500, 7}, {220, 12, 0x0401, 7}, 1},
        {Layout{220, 36, 0x0300, 7}, kOwn, 1},
        {Layout{148, 0, 0x0300, 7}, {148, 0, 0x0300, 7}, 1},
        {Layout{148, 0, 0, 7}, {148, 0, 0, 7}, 0},
        {Layout{0, 0, 0x0401, 7}, {0, 0, 0x0401, 7}, 0},
    };
    const DriverDevmode driver = filled();
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.output));
        const Devmode caller(row.caller.value_or(kOwn), 5,
                             std::max<size_t>(kHeader, row.caller ? row.caller->size : 220));
        const size_t room = std::max<size_t>(kHeader, size_t{row.output.size} + row.output.extra);
        const Devmode output(kOwn, 9, room);
        ASSERT_EQ(ConvertDevmodeOut(&driver.dm, row.caller ? caller.get() : nullptr, output.get()),
                  row.result);
        if (row.result == 0)
            continue;
        EXPECT_EQ(layout_of(*output.get()), row.output);
        EXPECT_EQ(std::memcmp(output.get()->dmDeviceName, driver.dm.dmDeviceName, 64), 0);
        EXPECT_EQ(std::memcmp(reinterpret_cast<BYTE*>(output.get()) + kHeader, &driver.dm.dmFields,
                              row.output.size - kHeader),
                  0);
        const auto* extra = reinterpret_cast<const BYTE*>(output.get()) + row.output.size;
        EXPECT_EQ(std::memcmp(extra, &driver.extra, row.output.extra), 0);
    }
    const Devmode short_output(kOwn, 1, 252), stump(kOwn, 1, 20);
    EXPECT_EQ(ConvertDevmodeOut(&driver.dm, nullptr, short_output.get()), 0);
    EXPECT_EQ(ConvertDevmodeOut(&driver.dm, stump.get(), short_output.get()), 0);
    EXPECT_EQ(ConvertDevmodeOut(nullptr, nullptr, short_output.get()), 0);
    EXPECT_EQ(ConvertDevmodeOut(&driver.dm, nullptr, nullptr), 0);
    const Devmode both({188, 4, 0x0320, 3}, 1);  // the caller's and the output are often one
    EXPECT_EQ(ConvertDevmodeOut(&driver.dm, both.get(), both.get()), 1);
    EXPECT_EQ(layout_of(*both.get()), (Layout{188, 4, 0x0320, 3}));
}

TEST(DrvConvertDevMode, ModesAnswerWithSizeAndLastError) {
    constexpr DWORD kNone = ERROR_NO_TOKEN;  // untouched
    struct {
        const char* label;
        DWORD mode;
        std::optional<Layout> source, target;
        DWORD given;
        BOOL result;
        DWORD error, needed;
        Layout written;
    } const rows[] = {
        {"convert", 1, k351, kOwn, 256, TRUE, kNone, 256, kOwn},
        {"convert, room to spare", 1, kOwn, k351, 1000, TRUE, kNone, 224, k351},
        {"convert, too small", 1, k351, kOwn, 255, FALSE, 87, 255, {}},
        {"convert, no target", 1, k351, {}, 256, FALSE, 87, 256, {}},
        {"convert, no source", 1, {}, kOwn, 256, FALSE, 87, 256, {}},
        {"convert, unknown source", 1, Layout{300, 0, 0, 0}, kOwn, 256, FALSE, 87, 256, {}},
        {"old", 2, kOwn, kOwn, 224, TRUE, kNone, 224, k351},
        {"old, room to spare", 2, kOwn, kOwn, 256, TRUE, kNone, 224, k351},
        {"old, too small", 2, kOwn, kOwn, 223, FALSE, 122, 224, {}},
        {"old, nothing", 2, kOwn, kOwn, 0, FALSE, 122, 224, {}},
        {"old, no target", 2, kOwn, {}, 300, FALSE, 122, 224, {}},
        {"old, no source", 2, {}, kOwn, 256, FALSE, 87, 256, {}},
        {"default", 4, {}, kOwn, 256, TRUE, kNone, 256, kOwn},
        {"default, room to spare", 4, k351, kOwn, 4000, TRUE, kNone, 256, kOwn},
        {"default, 100 bytes", 4, {}, kOwn, 100, FALSE, 122, 256, {}},
        {"default, no target", 4, {}, {}, 256, FALSE, 122, 256, {}},
        {"mode 0", 0, kOwn, kOwn, 256, FALSE, kNone, 256, {}},
        {"mode 3", 3, kOwn, kOwn, 256, FALSE, kNone, 256, {}},
        {"mode 8", 8, kOwn, kOwn, 256, FALSE, kNone, 256, {}},
    };
    FakePrinter printer;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const Devmode source(row.source.value_or(kOwn), 3), target(row.target.value_or(kOwn), 4);
        DWORD needed = row.given;
        SetLastError(kNone);
        const BOOL result = DrvConvertDevMode(printer.name.data(), row.source ? source.get() : nullptr,
                                              row.target ? target.get() : nullptr, &needed, row.mode);
        const DWORD error = GetLastError();
        EXPECT_EQ(result, row.result);
        if (!row.result) {
            EXPECT_EQ(error, row.error);
        }
        EXPECT_EQ(needed, row.needed);
        if (row.result) {
            EXPECT_EQ(layout_of(*target.get()), row.written);
        }
        if (row.result && row.mode == 4) {
            const DriverDevmode expected = default_devmode();
            EXPECT_EQ(std::memcmp(target.get(), &expected, sizeof expected), 0);
        }
    }
    EXPECT_EQ(printer.open_handles, 0);

    const Devmode target(kOwn, 1), small(kOwn, 1, 200);
    SetLastError(0);
    EXPECT_FALSE(DrvConvertDevMode(printer.name.data(), nullptr, target.get(), nullptr, 4));
    EXPECT_EQ(GetLastError(), 87u);
    DWORD needed = 256;
    std::wstring other = L"no such printer";
    for (wchar_t* const name : {other.data(), static_cast<wchar_t*>(nullptr)}) {
        SetLastError(0);
        EXPECT_FALSE(DrvConvertDevMode(name, nullptr, target.get(), &needed, 4));
        EXPECT_EQ(GetLastError(), 13u);
    }
    for (const DWORD mode : {1u, 2u, 4u}) {  // the size is a lie
        needed = 256;
        EXPECT_FALSE(DrvConvertDevMode(printer.name.data(), target.get(), small.get(), &needed, mode))
            << mode;
    }
    EXPECT_EQ(printer.open_handles, 0);
}
