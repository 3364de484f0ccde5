// The default DEVMODE, copies between layouts, DrvConvertDevMode.
#include "UI_dll/ddi.h"
#include "lib/devmode.h"

namespace {

struct Layout {
    WORD size, extra, spec_version, driver_version;
    bool operator==(const Layout&) const = default;
};

constexpr Layout k351 = {188, 36, 0x0320, 0x0350}, kOwn = {220, 36, 0x0401, 0x0800};
constexpr size_t kHeader = offsetof(DEVMODEW, dmFields);

Layout layout_of(const DEVMODEW& dm) {
    return {dm.dmSize, dm.dmDriverExtra, dm.dmSpecVersion, dm.dmDriverVersion};
}

void stamp(DEVMODEW& dm, const Layout& layout) {
    std::tie(dm.dmSize, dm.dmDriverExtra) = std::tie(layout.size, layout.extra);
    std::tie(dm.dmSpecVersion, dm.dmDriverVersion) = std::tie(layout.spec_version, layout.driver_version);
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
    [[nodiscard]] std::string bytes() const { return {buffer_.as<char>(), buffer_.size()}; }
    void make_read_only() { buffer_.make_read_only(); }

private:
    GuardedBuffer buffer_;
};

std::string part(const void* dm, size_t offset, size_t size) {
    return {static_cast<const char*>(dm) + offset, size};
}

}  // namespace

TEST(Devmode, DefaultIsA4InColour) {
    const DriverDevmode devmode = default_devmode();
    const DEVMODEW& dm = devmode.dm;
    EXPECT_EQ(layout_of(dm), kOwn);
    EXPECT_STREQ(dm.dmDeviceName, L"Corvanta Vantrix 8.0");
    EXPECT_EQ(dm.dmFields, 0x10C13u);  // without the bit of the copies
    // From the orientation to the collation: all numbers up to the form's name.
    const std::vector<short> numbers = {1, 9, 2970, 2100, 100, 1, 0, 600, 2, 1, 600, 0, 0};
    EXPECT_EQ(std::vector(&dm.dmOrientation, &dm.dmOrientation + 13), numbers);
    EXPECT_STREQ(dm.dmFormName, L"A4");
    EXPECT_TRUE(dm.dmPelsWidth == 2100 && dm.dmPelsHeight == 2970);
    const BYTE extra[36] = {'M', 'D', 'E', 'P', 0,    2,    5,    7,    1,    0,    0, 0, 24,   0,
                            0,   0,   0,   0,   0x10, 0x27, 0x10, 0x27, 0x10, 0x27, 0, 0, 0x10, 0x27};
    EXPECT_EQ(part(&devmode, 220, 36), part(extra, 0, 36));
}

TEST(Devmode, CopiesKeepTheTargetsLayout) {
    // The source's layout, the target's, the bytes copied, the target's version then.
    const std::tuple<Layout, Layout, int, WORD> rows[] = {
        {kOwn, {220, 36, 0, 0x0800}, 256, 0x0401},  {kOwn, {188, 0, 9, 1}, 188, 0x0320},
        {kOwn, {300, 100, 0x0500, 1}, 256, 0x0500}, {kOwn, {212, 20, 9, 1}, 232, 0x0400},
        {kOwn, {156, 36, 0x0300, 1}, 192, 0x0300},  {kOwn, {300, 36, 0, 1}, -1, 0},
        {{188, 100, 0, 0}, kOwn, 224, 0x0401},      {{300, 52, 1, 0}, kOwn, 256, 0x0401},
        {{100, 0, 0x0300, 0}, kOwn, 100, 0x0401},   {{300, 52, 0, 0}, kOwn, -1, 0}};
    for (const auto& [from, to, copied, spec_version] : rows) {
        SCOPED_TRACE(testing::Message() << from.size << " to " << to.size);
        const Devmode source(from, 10), target(to, 120);
        std::string expected = target.bytes();
        if (copied >= 0) {
            const WORD size = std::min(from.size, to.size), extra = std::min(from.extra, to.extra);
            expected.replace(0, size, source.bytes(), 0, size);
            expected.replace(to.size, extra, source.bytes(), from.size, extra);
            stamp(*reinterpret_cast<DEVMODEW*>(expected.data()),
                  {to.size, to.extra, spec_version, to.driver_version});
        }
        EXPECT_EQ(ConvertDevmode(source.get(), target.get()), copied);
        EXPECT_EQ(target.bytes(), expected);
    }
    const Devmode itself({220, 36, 0x0300, 5}, 1), stamped({220, 36, 0x0401, 5}, 1);
    EXPECT_EQ(ConvertDevmode(itself.get(), itself.get()), 256);
    EXPECT_EQ(itself.bytes(), stamped.bytes());
}

TEST(Devmode, WhatIsCopiedMustBeThere) {
    const Layout most = {65535, 65535, 0x0401, 0};
    const std::tuple<const char*, Layout, size_t, int> rows[] = {
        {"a word short", kOwn, 252, -1},    {"all sizes at their end", most, 4096, -1},
        {"header only", kOwn, kHeader, -1}, {"public part claims more", {65535, 0, 0x0401, 0}, 220, 220},
        {"no whole header", kOwn, 68, -1},  {"extension claims more", {220, 60000, 0x0401, 0}, 256, 256}};
    const Devmode good(kOwn, 1);
    for (const auto& [label, layout, room, copied] : rows) {
        const Devmode other(layout, 2, room);
        EXPECT_EQ(ConvertDevmode(other.get(), Devmode(kOwn, 1).get()), copied) << label;
        EXPECT_EQ(ConvertDevmode(good.get(), other.get()), copied) << label;
    }
    EXPECT_EQ(ConvertDevmode(nullptr, good.get()) + ConvertDevmode(good.get(), nullptr), -2);
    Devmode constant(kOwn, 3);
    constant.make_read_only();
    EXPECT_EQ(ConvertDevmode(good.get(), constant.get()), -1);
    EXPECT_EQ(ConvertDevmode(constant.get(), good.get()), 256);
}

TEST(Devmode, OutputTakesTheSmallerPartsOfTheTwo) {
    // The caller's layout, the output's, whether there is a caller's, the result.
    const std::tuple<Layout, Layout, bool, int> rows[] = {
        {kOwn, kOwn, false, 1},
        {kOwn, kOwn, true, 1},
        {{188, 100, 0x0320, 0x0350}, {188, 36, 0x0320, 0x0800}, true, 1},
        {{212, 12, 0, 7}, {212, 12, 0x0400, 7}, true, 1},
        {{300, 12, 0x0500, 7}, {220, 12, 0x0401, 7}, true, 1},
        {{220, 36, 0x0300, 7}, kOwn, true, 1},
        {{148, 0, 0, 7}, {148, 0, 0, 7}, true, 0},
        {{0, 0, 0x0401, 7}, {0, 0, 0x0401, 7}, true, 0}};
    DriverDevmode driver = default_devmode();
    driver.dm.dmICMMethod = 77;
    for (const auto& [caller, output, with_caller, result] : rows) {
        SCOPED_TRACE(testing::Message() << caller.size << " + " << caller.extra);
        const auto [size, extra, spec_version, driver_version] = output;
        const Devmode in(caller, 5, std::max<size_t>(kHeader, caller.size)),
            out(kOwn, 9, std::max<size_t>(kHeader, size_t{size} + extra));
        ASSERT_EQ(ConvertDevmodeOut(&driver.dm, with_caller ? in.get() : nullptr, out.get()), result);
        if (result == 0)
            continue;
        EXPECT_EQ(layout_of(*out.get()), output);
        EXPECT_EQ(part(out.get(), 0, 64), part(&driver, 0, 64));
        EXPECT_EQ(part(out.get(), kHeader, size - kHeader), part(&driver, kHeader, size - kHeader));
        EXPECT_EQ(part(out.get(), size, extra), part(&driver, 220, extra));
    }
    const Devmode too_short(kOwn, 1, 252), stump(kOwn, 1, 20);
    EXPECT_EQ(ConvertDevmodeOut(&driver.dm, nullptr, too_short.get()) +
                  ConvertDevmodeOut(&driver.dm, stump.get(), Devmode(kOwn, 1).get()) +
                  ConvertDevmodeOut(nullptr, nullptr, Devmode(kOwn, 1).get()) +
                  ConvertDevmodeOut(&driver.dm, nullptr, nullptr),
              0);
    const Layout small = {188, 4, 0x0320, 3};
    const Devmode both(small, 1);  // the caller's and the output are often one
    EXPECT_EQ(ConvertDevmodeOut(&driver.dm, both.get(), both.get()), 1);
    EXPECT_EQ(layout_of(*both.get()), small);
}

TEST(DrvConvertDevMode, ModesAnswerWithSizeAndLastError) {
    constexpr DWORD kGood = 0, kNone = ERROR_NO_TOKEN;  // untouched
    // The mode, source and target, the size given, the error, the size needed, what is written, and the room
    // of a target whose sizes lie.
    const std::tuple<DWORD, std::optional<Layout>, std::optional<Layout>, DWORD, DWORD, DWORD, Layout, size_t>
        rows[] = {
            {1, k351, kOwn, 256, kGood, 256, kOwn, 0}, {1, kOwn, k351, 1000, kGood, 224, k351, 0},
            {1, k351, kOwn, 255, 87, 255, {}, 0},      {1, k351, {}, 256, 87, 256, {}, 0},
            {1, {}, kOwn, 256, 87, 256, {}, 0},        {1, Layout{300, 0, 0, 0}, kOwn, 256, 87, 256, {}, 0},
            {1, kOwn, kOwn, 256, 87, 256, {}, 200},    {2, kOwn, kOwn, 224, kGood, 224, k351, 0},
            {2, kOwn, kOwn, 223, 122, 224, {}, 0},     {2, kOwn, {}, 300, 122, 224, {}, 0},
            {2, {}, kOwn, 256, 87, 256, {}, 0},        {2, kOwn, kOwn, 256, 87, 256, {}, 200},
            {4, {}, kOwn, 256, kGood, 256, kOwn, 0},   {4, {}, kOwn, 100, 122, 256, {}, 0},
            {4, {}, {}, 256, 122, 256, {}, 0},         {4, {}, kOwn, 256, 13, 256, {}, 200},
            {0, kOwn, kOwn, 256, kNone, 256, {}, 0},   {3, kOwn, kOwn, 256, kNone, 256, {}, 0}};
    FakePrinter printer;
    const DriverDevmode standard = default_devmode();
    for (const auto& [mode, from, to, given, wanted_error, wanted_size, written, room] : rows) {
        SCOPED_TRACE(testing::Message()
                     << "mode " << mode << ", " << given << " bytes, error " << wanted_error);
        const Devmode source(from.value_or(kOwn), 3),
            target(to.value_or(kOwn), 4, room ? std::optional(room) : std::nullopt);
        DWORD needed = given;
        SetLastError(kNone);
        const BOOL result = DrvConvertDevMode(printer.name.data(), from ? source.get() : nullptr,
                                              to ? target.get() : nullptr, &needed, mode);
        const DWORD error = GetLastError();
        EXPECT_EQ(result ? kGood : error, wanted_error);
        EXPECT_EQ(needed, wanted_size);
        if (result) {
            EXPECT_EQ(layout_of(*target.get()), written);
            EXPECT_EQ(target.bytes() == part(&standard, 0, 256), mode == 4);
        }
    }
    wchar_t another[] = L"no such printer";
    for (wchar_t* const name : {another, static_cast<wchar_t*>(nullptr)}) {
        DWORD needed = 256;
        EXPECT_FALSE(DrvConvertDevMode(name, nullptr, Devmode(kOwn, 1).get(), &needed, 4));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_DATA});
    }
    SetLastError(0);
    EXPECT_FALSE(DrvConvertDevMode(printer.name.data(), nullptr, Devmode(kOwn, 1).get(), nullptr, 4));
    EXPECT_EQ(GetLastError(), 87u);
    EXPECT_EQ(printer.open_handles, 0);
}
