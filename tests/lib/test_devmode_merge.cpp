// What a caller's DEVMODE changes, and the direct queries that answer with the result.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <functional>

#include "UI_dll/ddi.h"
#include "lib/devmode.h"
#include "support/guarded_buffer.h"
#include "support/installation.h"
#include "support/trace_capture.h"

namespace {

class ListedPapers final : public MergeSource {
public:
    const std::vector<FormRecord>& forms() override {
        ++asked;
        return papers;
    }
    short forced_orientation() override { return orientation; }

    std::vector<FormRecord> papers = {
        {.name = L"Letter", .size = {215900, 279400}, .paper_number = 1},
        {.name = L"B7 a rather long name of more than thirty-one",
         .size = {88049, 124950},
         .paper_number = 2},
        {.name = L"A4", .size = {210000, 297000}, .paper_number = 3},
        {.name = L"A4", .size = {1, 1}, .paper_number = 3},
        {.name = L"Far", .size = {500000, 600000}, .paper_number = 40000},
    };
    short orientation = 0;
    int asked = 0;
};

void name_form(DEVMODEW& dm, std::wstring_view name) {
    qk::copy_zero_padded(dm.dmFormName, 32, name);
}

// Everything but what a row is about must stay at the default.
void expect_equal(const DriverDevmode& got, const DriverDevmode& wanted) {
    EXPECT_EQ(got.dm.dmFields, wanted.dm.dmFields);
    EXPECT_STREQ(got.dm.dmFormName, wanted.dm.dmFormName);
    for (size_t i = 0; i < sizeof got; ++i)
        ASSERT_EQ(reinterpret_cast<const BYTE*>(&got)[i], reinterpret_cast<const BYTE*>(&wanted)[i])
            << "at byte " << i;
}

}  // namespace

TEST(DevmodeMerge, EachFieldIsTakenOrRefused) {
    struct {
        DWORD bit;
        short DEVMODEW::*field;
        std::vector<short> taken, refused;
    } const rows[] = {
        {DM_ORIENTATION, &DEVMODEW::dmOrientation, {1, 2}, {0, 3, -1}},
        {DM_SCALE, &DEVMODEW::dmScale, {1, 99, 400}, {0, 401, -5}},
        {DM_COPIES, &DEVMODEW::dmCopies, {1}, {0, 2, 5, -1}},
        {DM_PRINTQUALITY,
         &DEVMODEW::dmPrintQuality,
         {72, 96, 144, 150, 300, 360, 600, 720, 1200, 2400, 3600, 4000},
         {500, 0, 71, 4001, -5}},
        {DM_COLOR, &DEVMODEW::dmColor, {1, 2}, {0, 3}},
    };
    for (const auto& row : rows) {
        const auto merge = [&](short value, DWORD bit, DWORD refused, short wanted_value) {
            SCOPED_TRACE(std::to_string(row.bit) + " = " + std::to_string(value));
            DriverDevmode in = default_devmode(), got = default_devmode(), wanted = default_devmode();
            in.dm.dmFields = bit;
            in.dm.*row.field = value;
            wanted.dm.*row.field = wanted_value;
            wanted.dm.dmFields |= refused ? 0 : bit;
            ListedPapers source;
            EXPECT_EQ(merge_incoming(&in.dm, got, source), refused);
            expect_equal(got, wanted);
            EXPECT_EQ(source.asked, 0);
        };
        const DriverDevmode before = default_devmode();
        for (const short value : row.taken) {
            merge(value, row.bit, 0, value);
            merge(value, 0, 0, before.dm.*row.field);  // without its bit nothing counts
        }
        for (const short value : row.refused)
            merge(value, row.bit, row.bit, before.dm.*row.field);
        if (row.bit == DM_PRINTQUALITY) {
            for (const short relative : {short{-1}, short{-4}})
                merge(relative, row.bit, 0, 600);
        }
    }
}

TEST(DevmodeMerge, PaperIsTakenByNumberNameOrSize) {
    constexpr DWORD kSize = DM_PAPERSIZE, kSides = DM_PAPERLENGTH | DM_PAPERWIDTH, kName = DM_FORMNAME;
    constexpr auto kFar = static_cast<short>(40000);
    struct {
        const char* label;
        DWORD fields;
        short number, width, length;
        const wchar_t* name;
        bool taken;
        short wanted_number = 0, wanted_width = 0, wanted_length = 0;
        const wchar_t* wanted_name = L"";
    } const rows[] = {
        {"without its bits", 0, 1, 1, 1, L"Letter", true, 9, 2100, 2970, L"A4"},
        {"custom", kSize | kSides, 256, 1000, 2000, L"", true, 256, 1000, 2000},
        {"custom by 0, over a form", kSize | kSides | kName, 0, 5, 6, L"Letter", true, 256, 5, 6},
        {"custom without a width", kSize | kSides, 256, 0, 2000, L"", false},
        {"custom without the width's bit", kSize | DM_PAPERLENGTH, 256, 1000, 2000, L"", false},
        {"sides alone", kSides, 256, 1000, 2000, L"", false},
        {"by number", kSize, 1, 7, 7, L"A4", true, 1, 2159, 2794, L"Letter"},
        {"rounded, long name", kSize, 2, 0, 0, L"", true, 2, 880, 1250, L"B7 a rather long name of more t"},
        {"number of two forms", kSize, 3, 0, 0, L"", true, 3, 2100, 2970, L"A4"},
        {"number above 32767", kSize, kFar, 0, 0, L"", true, kFar, 5000, 6000, L"Far"},
        {"number with sides", kSize | kSides, 1, 50, 60, L"", true, 1, 2159, 2794, L"Letter"},
        {"unknown number", kSize, 99, 0, 0, L"", false},
        {"number before name", kSize | kName, 1, 0, 0, L"A4", true, 1, 2159, 2794, L"Letter"},
        {"unknown number, known name", kSize | kName, 98, 0, 0, L"A4", false},
        {"by name", kName, 77, 0, 0, L"Letter", true, 1, 2159, 2794, L"Letter"},
        {"name in other case", kName, 0, 0, 0, L"letter", false},
        {"part of a name", kName, 0, 0, 0, L"Lette", false},
        {"name without end", kName, 0, 0, 0, nullptr, false},
        {"A0", kSize, 20256, 0, 0, L"", true, 20256, 8410, 11889, L"A0"},
        {"A1", kSize, 30256, 0, 0, L"", true, 30256, 5940, 8410, L"A1"},
    };
    for (const auto& row : rows) {
        constexpr WORD kOldest = 188;  // that layout holds all that is merged
        SCOPED_TRACE(row.label);
        DEVMODEW in = {};
        in.dmSize = kOldest;
        in.dmFields = row.fields;
        in.dmPaperSize = row.number, in.dmPaperWidth = row.width, in.dmPaperLength = row.length;
        row.name ? name_form(in, row.name) : static_cast<void>(std::fill_n(in.dmFormName, 32, L'A'));
        const GuardedBuffer incoming(kOldest, &in);
        ListedPapers source;
        DriverDevmode got = default_devmode(), wanted = default_devmode();
        if (row.taken) {
            wanted.dm.dmPaperSize = row.wanted_number;
            wanted.dm.dmPaperWidth = row.wanted_width, wanted.dm.dmPaperLength = row.wanted_length;
            name_form(wanted.dm, row.wanted_name);
            if (!*row.wanted_name)
                wanted.dm.dmFields = (wanted.dm.dmFields | kSides) & ~kName;
        }
        EXPECT_EQ(merge_incoming(incoming.as<DEVMODEW>(), got, source), row.taken ? 0 : row.fields);
        expect_equal(got, wanted);
        EXPECT_LE(source.asked, 1);
    }
}

TEST(DevmodeMerge, FormAfterACustomPaperDropsItsSides) {
    ListedPapers source;
    DriverDevmode in = default_devmode(), got = default_devmode();
    in.dm.dmFields = DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH;
    in.dm.dmPaperSize = 256;
    EXPECT_EQ(merge_incoming(&in.dm, got, source), 0u);
    EXPECT_EQ(got.dm.dmFields & (DM_PAPERLENGTH | DM_FORMNAME), DWORD{DM_PAPERLENGTH});
    in.dm.dmFields = DM_PAPERSIZE;
    in.dm.dmPaperSize = 3;
    EXPECT_EQ(merge_incoming(&in.dm, got, source), 0u);
    expect_equal(got, [] {
        DriverDevmode wanted = default_devmode();
        wanted.dm.dmPaperSize = 3;
        return wanted;
    }());
}

TEST(DevmodeMerge, WithoutPapersTheOldOneStays) {
    for (const short number : {short{9}, short{20256}}) {
        ListedPapers source;
        source.papers.clear();
        DriverDevmode in = default_devmode(), got = default_devmode();
        in.dm.dmFields = DM_PAPERSIZE | DM_FORMNAME;
        in.dm.dmPaperSize = number;
        EXPECT_EQ(merge_incoming(&in.dm, got, source), DWORD{DM_PAPERSIZE | DM_FORMNAME});
        expect_equal(got, default_devmode());
    }
}

TEST(DevmodeMerge, ExtensionIsTakenOnlyWhenItIsOurs) {
    struct {
        const char* label;
        std::function<void(DriverDevmode&)> incoming;
        bool taken;
    } const rows[] = {
        {"ours", [](DriverDevmode&) {}, true},
        {"flags cleared", [](DriverDevmode& in) { in.extra.flags = 0; }, true},
        {"only one flag is carried", [](DriverDevmode& in) { in.extra.flags = 0xFFFFFFFF; }, true},
        {"signature", [](DriverDevmode& in) { ++in.extra.signature; }, false},
        {"version", [](DriverDevmode& in) { ++in.extra.version; }, false},
        {"35 bytes", [](DriverDevmode& in) { in.dm.dmDriverExtra = 35; }, false},
        {"none", [](DriverDevmode& in) { in.dm.dmDriverExtra = 0; }, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        DriverDevmode in = default_devmode(), got = default_devmode(), wanted = default_devmode();
        in.dm.dmFields = 0;
        in.extra.colour.caFlags = CA_NEGATIVE;
        in.extra.colour.caContrast = 50;
        row.incoming(in);
        const GuardedBuffer incoming(in.dm.dmDriverExtra == 0 ? 220 : 256, &in);
        if (row.taken) {
            wanted.extra.colour = in.extra.colour;
            wanted.extra.flags = in.extra.flags & 1;
        }
        ListedPapers source;
        EXPECT_EQ(merge_incoming(incoming.as<DEVMODEW>(), got, source), 0u);
        expect_equal(got, wanted);
    }
}

TEST(DevmodeMerge, ColourAdjustmentIsMendedFieldByField) {
    constexpr size_t kIlluminant = 4, kRed = 6, kGreen = 8, kBlue = 10, kBlack = 12, kWhite = 14;
    constexpr size_t kContrast = 16, kBrightness = 18, kColourfulness = 20, kTint = 22;
    struct {
        size_t offset;
        int given, left;
    } const rows[] = {
        {kIlluminant, 8, 8},      {kIlluminant, 9, 0},
        {kRed, 1344, 1344},       {kRed, 1343, 10000},
        {kGreen, 65000, 65000},   {kGreen, 65001, 10000},
        {kBlue, 0, 10000},        {kBlack, 4000, 4000},
        {kBlack, 4001, 0},        {kWhite, 5999, 10000},
        {kWhite, 6000, 6000},     {kWhite, 10001, 10000},
        {kContrast, 100, 100},    {kContrast, 101, 0},
        {kBrightness, -101, 0},   {kColourfulness, -100, -100},
        {kColourfulness, 300, 0}, {kTint, -32768, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.offset) + " = " + std::to_string(row.given));
        DriverDevmode in = default_devmode(), got = default_devmode();
        const auto set = [&](DriverDevmode& devmode, int value) {
            std::memcpy(reinterpret_cast<BYTE*>(&devmode.extra.colour) + row.offset, &value, sizeof(WORD));
        };
        in.extra.colour.caFlags = CA_LOG_FILTER;
        DriverDevmode wanted = in;
        set(in, row.given);
        set(wanted, row.left);
        in.dm.dmFields = 0;
        ListedPapers source;
        EXPECT_EQ(merge_incoming(&in.dm, got, source), row.given == row.left ? 0u : 0x20000000u);
        expect_equal(got, wanted);
    }
    COLORADJUSTMENT odd = default_devmode().extra.colour;
    odd.caSize = 23;
    odd.caFlags = 1;
    EXPECT_FALSE(validate_colour(odd));
    EXPECT_EQ(odd.caSize, 24);
    EXPECT_EQ(odd.caFlags, 0);
}

TEST(DevmodeMerge, OverrideFileTurnsThePage) {
    const Installation here;
    struct {
        const char *version, *lines;
        short given, orientation;
    } const rows[] = {
        {"2.5", "Orient=0", 2, 1},  {"2.0", "Orient=1", 1, 2},  {"3.0", "Orient=1", 1, 2},
        {"3.1", "Orient=0", 2, 2},  {"1.99", "Orient=0", 2, 2}, {"2.5", "Orient=2", 1, 1},
        {"2.5", "Orient=-1", 2, 2}, {"2.5", "", 2, 2},          {"2.5", "Orient=abc", 2, 2},
        {"x", "Orient=0", 2, 2},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.version) + " " + row.lines);
        here.write_ini(row.lines, row.version);
        DriverDevmode caller = default_devmode(), got;
        caller.dm.dmOrientation = row.given;
        EXPECT_EQ(MergeDevmode(FakePrinter::handle(), &caller.dm, got), 0u);
        EXPECT_EQ(got.dm.dmOrientation, row.orientation);
    }
}

TEST(DevmodeMerge, PrintersOwnComesBeforeTheCallers) {
    Installation here;
    DriverDevmode own = default_devmode(), caller = default_devmode(), got;
    own.dm.dmScale = 50;
    own.dm.dmColor = 1;
    own.dm.dmCopies = 9;
    own.dm.dmFields |= DM_COPIES;
    caller.dm.dmFields = DM_SCALE;
    caller.dm.dmScale = 75;
    const auto set_own = [&](size_t bytes) {
        const auto* first = reinterpret_cast<const std::byte*>(&own);
        here.printer.devmode.assign(first, first + bytes);
    };
    set_own(sizeof own);
    const TraceCapture trace;
    EXPECT_EQ(MergeDevmode(FakePrinter::handle(), nullptr, got), DWORD{DM_COPIES});
    EXPECT_EQ(got.dm.dmScale, 50);
    EXPECT_EQ(here.printer.forms_calls, 2);  // the size and the forms, for both merges together
    EXPECT_EQ(MergeDevmode(FakePrinter::handle(), &caller.dm, got), 0u);
    EXPECT_EQ(got.dm.dmScale, 75);
    EXPECT_EQ(got.dm.dmColor, 1);
    EXPECT_TRUE(trace.holds(L"PlotDMIn.dm: dmPaperSize=9, dmPaperWidth=2100, dmPaperLength=2970"));
    EXPECT_TRUE(trace.holds(L"pPlotDMTo->dm: dmPaperWidth=2100, dmPaperLength=2970"));

    for (const int growth : {8, -8}) {  // it has changed between the two calls
        here.printer.grows_by = static_cast<DWORD>(growth);
        EXPECT_EQ(MergeDevmode(FakePrinter::handle(), nullptr, got), 0u);
        expect_equal(got, default_devmode());
    }
    here.printer.grows_by = 0;
    own.dm.dmDriverExtra = 60000;  // it claims more than the spooler has given
    set_own(sizeof own);
    MergeDevmode(FakePrinter::handle(), nullptr, got);
    expect_equal(got, default_devmode());
    here.printer.devmode.clear();
    EXPECT_EQ(MergeDevmode(nullptr, &caller.dm, got), 0u);
    EXPECT_EQ(got.dm.dmScale, 75);
}

TEST(DirectQueries, DirectQueriesAnswerWithoutASheet) {
    Installation here;
    DriverDevmode in = default_devmode();
    in.dm.dmScale = 42;
    const GuardedBuffer input(sizeof in, &in), too_short(252, &in);
    DEVMODEW old = {};
    old.dmSize = 188;
    old.dmSpecVersion = 0x0320;
    old.dmFields = DM_SCALE;
    old.dmScale = 42;
    const GuardedBuffer old_input(188, &old);
    struct {
        const char* label;
        DWORD mode;
        DEVMODEW* in;
        size_t room;  // 0: no output DEVMODE
        LONG result;
        DWORD error;
        bool written;
    } const rows[] = {
        {"size", 0, nullptr, 256, 256, 0, false},
        {"size, no output", DM_COPY, nullptr, 0, 256, 0, false},
        {"copy", DM_COPY, nullptr, 256, 1, 0, true},
        {"update", DM_UPDATE, nullptr, 256, 1, 0, true},
        {"modify and copy", DM_COPY | DM_MODIFY, input.as<DEVMODEW>(), 256, 1, 0, true},
        {"old layout", DM_COPY | DM_MODIFY, old_input.as<DEVMODEW>(), 188, 1, 0, true},
        {"no permission", DM_COPY | 32, input.as<DEVMODEW>(), 256, 1, 0, false},
        {"modify only", DM_MODIFY, input.as<DEVMODEW>(), 256, 1, 0, false},
        {"output too short", DM_COPY, nullptr, 252, -1, 87, false},
        {"input claims too much", DM_COPY, too_short.as<DEVMODEW>(), 256, 1, 0, true},
        {"input nowhere", DM_COPY, reinterpret_cast<DEVMODEW*>(48), 256, -1, 87, false},
    };
    for (const bool as_header : {true, false}) {
        for (const auto& row : rows) {
            SCOPED_TRACE(row.label);
            const std::vector<BYTE> pattern(256, 0xEE);
            const GuardedBuffer output(std::max<size_t>(row.room, 1), pattern.data());
            DEVMODEW* out = row.room ? output.as<DEVMODEW>() : nullptr;
            DocumentPropertyHeader header = {
                sizeof header, 0, FakePrinter::handle(), here.printer.name.data(), row.in, out, 0, row.mode};
            SetLastError(0);
            const LONG result = as_header
                                    ? DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header))
                                    : DrvDocumentProperties(nullptr, FakePrinter::handle(),
                                                            here.printer.name.data(), out, row.in, row.mode);
            const DWORD error = GetLastError();
            EXPECT_EQ(result, row.result);
            if (result == -1) {
                EXPECT_EQ(error, row.error);
            }
            if (as_header && result == 256) {
                EXPECT_EQ(header.cbOut, 256u);
            }
            EXPECT_EQ(out && output.as<BYTE>()[0] != 0xEE, row.written);
            if (row.written && row.room) {
                EXPECT_EQ(out->dmScale, row.in && row.in != too_short.as<DEVMODEW>() ? 42 : 100);
            }
        }
    }
    EXPECT_EQ(DrvDocumentPropertySheets(nullptr, 0), -1);
    EXPECT_EQ(GetLastError(), 87u);
    const GuardedBuffer stump(40);
    EXPECT_EQ(DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(stump.as<>())), -1);
}
