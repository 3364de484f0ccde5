// What a caller's DEVMODE changes, and the direct queries that answer with the result.
#include <gtest/gtest.h>

#include <functional>

#include "UI_dll/ddi.h"
#include "UI_dll/ptrinfo.h"
#include "lib/devmode.h"
#include "support/guarded_buffer.h"
#include "support/installation.h"
#include "support/trace_capture.h"

namespace {

constexpr DWORD kDefaultFields = 0x10C13;  // of the driver's default

class ListedPapers final : public MergeSource {
public:
    const std::vector<FormRecord>& forms() override {
        ++asked;
        return papers;
    }
    short forced_orientation() override { return orientation; }

    std::vector<FormRecord> papers = {
        {.name = L"Letter", .size = {215900, 279400}, .paper_number = 1},
        {.name = L"B7 a rather long name of more than thirty-one", .size = {88049, 124950}, .paper_number = 2},
        {.name = L"A4", .size = {210000, 297000}, .paper_number = 3},
        {.name = L"A4", .size = {1, 1}, .paper_number = 3},
        {.name = L"Far", .size = {500000, 600000}, .paper_number = 40000},
    };
    short orientation = 0;
    int asked = 0;
};

void name_form(DEVMODEW& dm, std::wstring_view name) { qk::copy_zero_padded(dm.dmFormName, 32, name); }

// Everything but what a row is about must stay at the default.
void expect_equal(const DriverDevmode& got, const DriverDevmode& wanted) {
    EXPECT_EQ(got.dm.dmFields, wanted.dm.dmFields);
    EXPECT_STREQ(got.dm.dmFormName, wanted.dm.dmFormName);
    for (size_t i = 0; i < sizeof got; ++i)
        ASSERT_EQ(reinterpret_cast<const BYTE*>(&got)[i], reinterpret_cast<const BYTE*>(&wanted)[i]) << "at byte " << i;
}

}  // namespace

TEST(DevmodeMerge, EachFieldIsTakenOrRefused) {
    using Set = std::function<void(DEVMODEW&)>;
    const Set nothing = [](DEVMODEW&) {};
    const DWORD custom = DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH;
    const auto paper = [](short number, short width, short length, std::wstring_view name, DWORD fields = kDefaultFields) {
        return [=](DEVMODEW& dm) {
            dm.dmPaperSize = number;
            dm.dmPaperWidth = width;
            dm.dmPaperLength = length;
            name_form(dm, name);
            dm.dmFields = fields;
        };
    };
    const auto size = [](short number, short width = 0, short length = 0) {
        return [=](DEVMODEW& dm) { dm.dmPaperSize = number, dm.dmPaperWidth = width, dm.dmPaperLength = length; };
    };
    const auto form = [](std::wstring_view name) { return [=](DEVMODEW& dm) { name_form(dm, name); }; };
    const auto quality = [](short value) { return [=](DEVMODEW& dm) { dm.dmPrintQuality = value; }; };
    struct {
        const char* label;
        DWORD fields;
        Set incoming;
        DWORD refused;
        Set changed;
    } const rows[] = {
        {"no bit, no change", 0, [](DEVMODEW& dm) { dm.dmOrientation = 2, dm.dmScale = 50, dm.dmColor = 1, dm.dmPaperSize = 1; }, 0, nothing},
        {"landscape", DM_ORIENTATION, [](DEVMODEW& dm) { dm.dmOrientation = 2; }, 0, [](DEVMODEW& dm) { dm.dmOrientation = 2; }},
        {"orientation 0", DM_ORIENTATION, [](DEVMODEW& dm) { dm.dmOrientation = 0; }, DM_ORIENTATION, nothing},
        {"orientation 3", DM_ORIENTATION, [](DEVMODEW& dm) { dm.dmOrientation = 3; }, DM_ORIENTATION, nothing},
        {"scale 1", DM_SCALE, [](DEVMODEW& dm) { dm.dmScale = 1; }, 0, [](DEVMODEW& dm) { dm.dmScale = 1; }},
        {"scale 400", DM_SCALE, [](DEVMODEW& dm) { dm.dmScale = 400; }, 0, [](DEVMODEW& dm) { dm.dmScale = 400; }},
        {"scale 0", DM_SCALE, [](DEVMODEW& dm) { dm.dmScale = 0; }, DM_SCALE, nothing},
        {"scale 401", DM_SCALE, [](DEVMODEW& dm) { dm.dmScale = 401; }, DM_SCALE, nothing},
        {"scale -5", DM_SCALE, [](DEVMODEW& dm) { dm.dmScale = -5; }, DM_SCALE, nothing},
        {"one copy", DM_COPIES, [](DEVMODEW& dm) { dm.dmCopies = 1; }, 0, [](DEVMODEW& dm) { dm.dmFields |= DM_COPIES; }},
        {"refused copies keep one", DM_COPIES, [](DEVMODEW& dm) { dm.dmCopies = 5; }, DM_COPIES, nothing},
        {"no copies", DM_COPIES, [](DEVMODEW& dm) { dm.dmCopies = 0; }, DM_COPIES, nothing},
        {"quality 72", DM_PRINTQUALITY, quality(72), 0, quality(72)},
        {"quality 4000", DM_PRINTQUALITY, quality(4000), 0, quality(4000)},
        {"quality 500", DM_PRINTQUALITY, quality(500), DM_PRINTQUALITY, nothing},
        {"quality 0", DM_PRINTQUALITY, quality(0), DM_PRINTQUALITY, nothing},
        {"draft", DM_PRINTQUALITY, quality(-1), 0, nothing},
        {"high", DM_PRINTQUALITY, quality(-4), 0, nothing},
        {"quality -5", DM_PRINTQUALITY, quality(-5), DM_PRINTQUALITY, nothing},
        {"monochrome", DM_COLOR, [](DEVMODEW& dm) { dm.dmColor = 1; }, 0, [](DEVMODEW& dm) { dm.dmColor = 1; }},
        {"colour 3", DM_COLOR, [](DEVMODEW& dm) { dm.dmColor = 3; }, DM_COLOR, nothing},
        {"fields that are not merged", DM_DUPLEX | DM_COLLATE | DM_YRESOLUTION, [](DEVMODEW& dm) { dm.dmDuplex = 2, dm.dmCollate = 1, dm.dmYResolution = 72; }, 0, nothing},

        {"custom", custom, size(256, 1000, 2000), 0, paper(256, 1000, 2000, L"", (kDefaultFields & ~static_cast<DWORD>(DM_FORMNAME)) | custom)},
        {"custom by 0, over a form", custom | DM_FORMNAME, [](DEVMODEW& dm) { dm.dmPaperSize = 0, dm.dmPaperWidth = 5, dm.dmPaperLength = 6; name_form(dm, L"Letter"); }, 0,
         paper(256, 5, 6, L"", (kDefaultFields & ~static_cast<DWORD>(DM_FORMNAME)) | custom)},
        {"custom without a width", custom, size(256, 0, 2000), custom, nothing},
        {"custom without the width's bit", DM_PAPERSIZE | DM_PAPERLENGTH, size(256, 1000, 2000), DM_PAPERSIZE | DM_PAPERLENGTH, nothing},
        {"sizes alone", DM_PAPERLENGTH | DM_PAPERWIDTH, size(256, 1000, 2000), DM_PAPERLENGTH | DM_PAPERWIDTH, nothing},

        {"by number, rounded", DM_PAPERSIZE, size(1, 7, 7), 0, paper(1, 2159, 2794, L"Letter")},
        {"rounding, long name", DM_PAPERSIZE, size(2), 0, paper(2, 880, 1250, L"B7 a rather long name of more t")},
        {"number of two forms", DM_PAPERSIZE, size(3), 0, paper(3, 2100, 2970, L"A4")},
        {"number above 32767", DM_PAPERSIZE, size(static_cast<short>(40000)), 0, paper(static_cast<short>(40000), 5000, 6000, L"Far")},
        {"number with sizes of its own", custom, size(1, 50, 60), 0, paper(1, 2159, 2794, L"Letter")},
        {"unknown number", DM_PAPERSIZE, size(99), DM_PAPERSIZE, nothing},
        {"number before name", DM_PAPERSIZE | DM_FORMNAME, [](DEVMODEW& dm) { dm.dmPaperSize = 1; name_form(dm, L"A4"); }, 0, paper(1, 2159, 2794, L"Letter")},
        {"unknown number, known name", DM_PAPERSIZE | DM_FORMNAME, [](DEVMODEW& dm) { dm.dmPaperSize = 98; name_form(dm, L"A4"); }, DM_PAPERSIZE | DM_FORMNAME, nothing},
        {"by name", DM_FORMNAME, form(L"Letter"), 0, paper(1, 2159, 2794, L"Letter")},
        {"name in other case", DM_FORMNAME, form(L"letter"), DM_FORMNAME, nothing},
        {"part of a name", DM_FORMNAME, form(L"Lette"), DM_FORMNAME, nothing},
        {"name without end", DM_FORMNAME, [](DEVMODEW& dm) { std::fill_n(dm.dmFormName, 32, L'A'); }, DM_FORMNAME, nothing},
        {"A0", DM_PAPERSIZE, size(20256), 0, paper(20256, 8410, 11889, L"A0")},
        {"A1", DM_PAPERSIZE, size(30256), 0, paper(30256, 5940, 8410, L"A1")},
        {"all refused", DM_ORIENTATION | DM_SCALE | DM_COPIES | DM_PRINTQUALITY | DM_COLOR | DM_PAPERSIZE,
         [](DEVMODEW& dm) { dm.dmPaperSize = 77; }, DM_ORIENTATION | DM_SCALE | DM_COPIES | DM_PRINTQUALITY | DM_COLOR | DM_PAPERSIZE, nothing},
    };
    for (const auto& row : rows) {
        for (const WORD layout : {WORD{220}, WORD{188}}) {  // the older layout holds all that is merged
            SCOPED_TRACE(row.label + std::string(" in ") + std::to_string(layout));
            DEVMODEW in = {};
            in.dmSize = layout;
            in.dmFields = row.fields;
            row.incoming(in);
            const GuardedBuffer incoming(layout, &in);
            ListedPapers source;
            DriverDevmode got = default_devmode(), wanted = default_devmode();
            row.changed(wanted.dm);
            EXPECT_EQ(merge_devmode(incoming.as<DEVMODEW>(), got, source), row.refused);
            expect_equal(got, wanted);
            EXPECT_LE(source.asked, 1);
        }
    }
}

TEST(DevmodeMerge, WithoutPapersTheOldOneStays) {
    for (const short number : {short{9}, short{20256}}) {
        ListedPapers source;
        source.papers.clear();
        DriverDevmode in = default_devmode(), got = default_devmode();
        in.dm.dmFields = DM_PAPERSIZE | DM_FORMNAME;
        in.dm.dmPaperSize = number;
        EXPECT_EQ(merge_devmode(&in.dm, got, source), DWORD{DM_PAPERSIZE | DM_FORMNAME});
        expect_equal(got, default_devmode());
    }
}

TEST(DevmodeMerge, ExtensionIsTakenOnlyWhenItIsOurs) {
    const COLORADJUSTMENT fallback = default_devmode().extra.colour;
    using Set = std::function<void(DriverDevmode&)>;
    struct {
        const char* label;
        Set incoming;
        bool taken, refused;
        std::function<void(COLORADJUSTMENT&)> mended = [](COLORADJUSTMENT&) {};
    } const rows[] = {
        {"ours", [](DriverDevmode&) {}, true, false},
        {"flags cleared", [](DriverDevmode& in) { in.extra.flags = 0; }, true, false},
        {"only one flag is carried", [](DriverDevmode& in) { in.extra.flags = 0xFFFFFFFF; }, true, false},
        {"signature", [](DriverDevmode& in) { ++in.extra.signature; }, false, false},
        {"version", [](DriverDevmode& in) { ++in.extra.version; }, false, false},
        {"35 bytes", [](DriverDevmode& in) { in.dm.dmDriverExtra = 35; }, false, false},
        {"none", [](DriverDevmode& in) { in.dm.dmDriverExtra = 0; }, false, false},
        {"size of the record", [](DriverDevmode& in) { in.extra.colour.caSize = 23; }, true, true, [&](COLORADJUSTMENT& colour) { colour = fallback; }},
        {"illuminant 9", [](DriverDevmode& in) { in.extra.colour.caIlluminantIndex = 9; }, true, true, [](COLORADJUSTMENT& colour) { colour.caIlluminantIndex = 0; }},
        {"illuminant 8", [](DriverDevmode& in) { in.extra.colour.caIlluminantIndex = 8; }, true, false},
        {"red gamma", [](DriverDevmode& in) { in.extra.colour.caRedGamma = 1343; }, true, true, [](COLORADJUSTMENT& colour) { colour.caRedGamma = 10000; }},
        {"green gamma", [](DriverDevmode& in) { in.extra.colour.caGreenGamma = 65001; }, true, true, [](COLORADJUSTMENT& colour) { colour.caGreenGamma = 10000; }},
        {"blue gamma at both ends", [](DriverDevmode& in) { in.extra.colour.caBlueGamma = 1344, in.extra.colour.caRedGamma = 65000; }, true, false},
        {"black", [](DriverDevmode& in) { in.extra.colour.caReferenceBlack = 4001; }, true, true, [](COLORADJUSTMENT& colour) { colour.caReferenceBlack = 0; }},
        {"white low", [](DriverDevmode& in) { in.extra.colour.caReferenceWhite = 5999; }, true, true, [](COLORADJUSTMENT& colour) { colour.caReferenceWhite = 10000; }},
        {"white high", [](DriverDevmode& in) { in.extra.colour.caReferenceWhite = 10001; }, true, true, [](COLORADJUSTMENT& colour) { colour.caReferenceWhite = 10000; }},
        {"contrast", [](DriverDevmode& in) { in.extra.colour.caContrast = 101; }, true, true, [](COLORADJUSTMENT& colour) { colour.caContrast = 0; }},
        {"brightness, tint", [](DriverDevmode& in) { in.extra.colour.caBrightness = -101, in.extra.colour.caRedGreenTint = 300; }, true, true,
         [](COLORADJUSTMENT& colour) { colour.caBrightness = colour.caRedGreenTint = 0; }},
        {"colourfulness at its end", [](DriverDevmode& in) { in.extra.colour.caColorfulness = -100; }, true, false},
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
            row.mended(wanted.extra.colour);
        }
        ListedPapers source;
        EXPECT_EQ(merge_devmode(incoming.as<DEVMODEW>(), got, source), row.refused ? 0x20000000u : 0u);
        expect_equal(got, wanted);
    }
}

TEST(DevmodeMerge, OverrideFileTurnsThePage) {
    const Installation here;
    struct {
        const char *version, *lines;
        short given, orientation;
    } const rows[] = {
        {"2.5", "Orient=0", 2, 1}, {"2.0", "Orient=1", 1, 2},  {"3.0", "Orient=1", 1, 2}, {"3.1", "Orient=0", 2, 2}, {"1.99", "Orient=0", 2, 2},
        {"2.5", "Orient=2", 1, 1}, {"2.5", "Orient=-1", 2, 2}, {"2.5", "", 2, 2},         {"x", "Orient=0", 2, 2},
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

    here.printer.grows_by = 8;  // it has changed between the two calls
    EXPECT_EQ(MergeDevmode(FakePrinter::handle(), nullptr, got), 0u);
    expect_equal(got, default_devmode());
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
            DocumentPropertyHeader header = {sizeof header, 0, FakePrinter::handle(), here.printer.name.data(), row.in, out, 0, row.mode};
            SetLastError(0);
            const LONG result = as_header ? DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header))
                                          : DrvDocumentProperties(nullptr, FakePrinter::handle(), here.printer.name.data(), out, row.in, row.mode);
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

TEST(DirectQueries, MappedPrinterHoldsTheMergedDevmode) {
    const Installation here;
    std::unique_ptr<PrinterInformation> information;
    DriverDevmode caller = default_devmode();
    caller.dm.dmFields = DM_COPIES;
    caller.dm.dmCopies = 3;
    const PrinterInformation* mapped = MapPrinter(information, FakePrinter::handle(), &caller.dm, true);
    ASSERT_EQ(mapped, information.get());
    EXPECT_EQ(information->refused, DWORD{DM_COPIES});
    EXPECT_TRUE(information->document_properties);
    EXPECT_STREQ(information->form_name, L"A4");
    EXPECT_EQ(information->form_size.cx, 210000);
    EXPECT_EQ(information->caller_devmode, &caller.dm);
}
