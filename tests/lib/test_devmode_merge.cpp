// What a caller's DEVMODE changes, and the direct queries that answer with the result.
#include "UI_dll/ddi.h"
#include "lib/devmode.h"

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
        {0, L"B7 a rather long name of more than thirty-one", {88049, 124950}, {}, 2},
        {.name = L"A4", .size = {210000, 297000}, .paper_number = 3},
        {.name = L"A4", .size = {1, 1}, .paper_number = 3},
        {.name = L"Far", .size = {4000000, 600000}, .paper_number = 40000}};
    short orientation = 0;
    int asked = 0;
};

void name_form(DEVMODEW& dm, std::wstring_view name) {
    qk::copy_zero_padded(dm.dmFormName, 32, name);
}

// Everything but what a row is about must stay at the default.
void expect_equal(const DriverDevmode& got, const DriverDevmode& wanted) {
    const auto* first = reinterpret_cast<const BYTE*>(&got);
    const auto* differs = std::mismatch(first, first + 256, reinterpret_cast<const BYTE*>(&wanted)).first;
    EXPECT_EQ(differs - first, 256) << "the first byte that is another";
}

}  // namespace

TEST(DevmodeMerge, EachFieldIsTakenOrRefused) {
    using Values = std::vector<short>;
    const std::tuple<DWORD, short DEVMODEW::*, Values, Values> rows[] = {
        // taken, refused
        {DM_ORIENTATION, &DEVMODEW::dmOrientation, {1, 2}, {0, 3, -1}},
        {DM_SCALE, &DEVMODEW::dmScale, {1, 99, 400}, {0, 401, -5}},
        {DM_COPIES, &DEVMODEW::dmCopies, {1}, {0, 2, 5, -1}},
        {DM_PRINTQUALITY,
         &DEVMODEW::dmPrintQuality,
         {72, 96, 144, 150, 300, 360, 600, 720, 1200, 2400, 3600, 4000, -1, -4},
         {500, 0, 71, 4001, -5}},
        {DM_COLOR, &DEVMODEW::dmColor, {1, 2}, {0, 3}}};
    const auto merge = [](short DEVMODEW::*field, short value, DWORD bit, bool taken) {
        SCOPED_TRACE(std::to_string(bit) + " = " + std::to_string(value));
        DriverDevmode got = default_devmode(), wanted = got, in = got;
        in.dm.dmFields = bit;
        in.dm.*field = value;
        if (taken && bit != 0) {
            wanted.dm.*field = value > 0 ? value : short{600};
            wanted.dm.dmFields |= bit;
        }
        ListedPapers source;
        EXPECT_EQ(merge_incoming(&in.dm, got, source), taken ? 0 : bit);
        expect_equal(got, wanted);
        EXPECT_EQ(source.asked, 0);
    };
    for (const auto& [bit, field, taken, refused] : rows) {
        for (const short value : taken) {
            merge(field, value, bit, true);
            merge(field, value, 0, true);  // without its bit nothing counts
        }
        for (const short value : refused)
            merge(field, value, bit, false);
    }
}

TEST(DevmodeMerge, PaperIsTakenByNumberNameOrSize) {
    constexpr DWORD kSize = DM_PAPERSIZE, kSides = DM_PAPERLENGTH | DM_PAPERWIDTH, kName = DM_FORMNAME;
    constexpr auto kFar = static_cast<short>(40000);
    const struct {
        const char* label;
        DWORD fields;
        short number, width, length;
        const wchar_t* name;
        bool taken;
        short wanted_number = 0, wanted_width = 0, wanted_length = 0;
        const wchar_t* wanted_name = L"";
    } rows[] = {
        {"without its bits", 0, 1, 1, 1, L"Letter", true, 9, 2100, 2970, L"A4"},
        {"custom", kSize | kSides, 256, 1000, 2000, L"", true, 256, 1000, 2000},
        {"custom by 0, over a form", kSize | kSides | kName, 0, 5, 6, L"Letter", true, 256, 5, 6},
        {"custom without a width", kSize | kSides, 256, 0, 2000, L"", false},
        {"custom without a length", kSize | kSides, 256, 1000, 0, L"", false},
        {"custom without the width's bit", kSize | DM_PAPERLENGTH, 256, 1000, 2000, L"", false},
        {"sides alone", kSides, 256, 1000, 2000, L"", false},
        {"by number", kSize, 1, 7, 7, L"A4", true, 1, 2159, 2794, L"Letter"},
        {"rounded, long name", kSize, 2, 0, 0, L"", true, 2, 880, 1250, L"B7 a rather long name of more t"},
        {"number of two forms", kSize, 3, 0, 0, L"", true, 3, 2100, 2970, L"A4"},
        {"number and side above 32767", kSize, kFar, 0, 0, L"", true, kFar, kFar, 6000, L"Far"},
        {"number with sides", kSize | kSides, 1, 50, 60, L"", true, 1, 2159, 2794, L"Letter"},
        {"unknown number", kSize, 99, 0, 0, L"", false},
        {"number before name", kSize | kName, 1, 0, 0, L"A4", true, 1, 2159, 2794, L"Letter"},
        {"by name", kName, 77, 0, 0, L"Letter", true, 1, 2159, 2794, L"Letter"},
        {"name in other case", kName, 0, 0, 0, L"letter", false},
        {"name without end", kName, 0, 0, 0, nullptr, false},
        {"A0", kSize, 20256, 0, 0, L"", true, 20256, 8410, 11889, L"A0"},
        {"A1", kSize, 30256, 0, 0, L"", true, 30256, 5940, 8410, L"A1"}};
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
        DriverDevmode got = default_devmode(), wanted = got;
        if (row.taken) {
            wanted.dm.dmPaperSize = row.wanted_number;
            wanted.dm.dmPaperWidth = row.wanted_width, wanted.dm.dmPaperLength = row.wanted_length;
            name_form(wanted.dm, row.wanted_name);
            if (!*row.wanted_name)
                wanted.dm.dmFields = (wanted.dm.dmFields | kSides) & ~kName;
        }
        const DriverDevmode taken = wanted;
        EXPECT_EQ(merge_incoming(incoming.as<DEVMODEW>(), got, source), row.taken ? 0 : row.fields);
        expect_equal(got, wanted);
        EXPECT_LE(source.asked, 1);
        source.papers.clear();  // then only a custom paper can be taken, and the old one stays
        got = default_devmode();
        const bool needs_none = !row.fields || (row.taken && !*row.wanted_name);
        EXPECT_EQ(merge_incoming(incoming.as<DEVMODEW>(), got, source), needs_none ? 0 : row.fields);
        expect_equal(got, needs_none ? taken : default_devmode());
    }
    ListedPapers source;  // a form after a custom paper drops its sides
    DriverDevmode in = default_devmode(), got = in, wanted = in;
    for (const auto& [number, fields] : {std::pair<short, DWORD>(256, kSize | kSides), {3, kSize}}) {
        in.dm.dmPaperSize = number;
        in.dm.dmFields = fields;
        EXPECT_EQ(merge_incoming(&in.dm, got, source), 0u);
    }
    wanted.dm.dmPaperSize = 3;
    expect_equal(got, wanted);
}

TEST(DevmodeMerge, ExtensionIsTakenOnlyWhenItIsOurs) {
    const std::tuple<const char*, void (*)(DriverDevmode&), bool> rows[] = {
        {"ours", [](DriverDevmode&) {}, true},
        {"only one flag is carried", [](DriverDevmode& in) { in.extra.flags = 0xFFFFFFFF; }, true},
        {"signature", [](DriverDevmode& in) { ++in.extra.signature; }, false},
        {"version", [](DriverDevmode& in) { ++in.extra.version; }, false},
        {"35 bytes", [](DriverDevmode& in) { in.dm.dmDriverExtra = 35; }, false},
        {"none", [](DriverDevmode& in) { in.dm.dmDriverExtra = 0; }, false}};
    for (const auto& [label, change, taken] : rows) {
        SCOPED_TRACE(label);
        DriverDevmode got = default_devmode(), wanted = got, in = got;
        in.dm.dmFields = 0;
        in.extra.colour.caFlags = CA_NEGATIVE;
        in.extra.colour.caContrast = 50;
        change(in);
        const GuardedBuffer incoming(in.dm.dmDriverExtra == 0 ? 220 : 260);
        std::memcpy(incoming.as<>(), &in, std::min(sizeof in, incoming.size()));
        if (taken) {
            wanted.extra.colour = in.extra.colour;
            wanted.extra.flags = in.extra.flags & 1;
        }
        ListedPapers source;
        EXPECT_EQ(merge_incoming(incoming.as<DEVMODEW>(), got, source), 0u);
        expect_equal(got, wanted);
    }
}

TEST(DevmodeMerge, ColourAdjustmentIsMendedFieldByField) {
    // Offsets of fields with the same limits, which are those, and what stands for another value.
    const std::tuple<std::vector<size_t>, int, int, int> rows[] = {
        {{4}, 0, 8, 0},                     // illuminant
        {{6, 8, 10}, 1344, 65000, 10000},   // red, green and blue gamma
        {{12}, 0, 4000, 0},                 // black
        {{14}, 6000, 10000, 10000},         // white
        {{16, 18, 20, 22}, -100, 100, 0}};  // contrast, brightness, colourfulness, tint
    for (const auto& [offsets, low, high, standard] : rows)
        for (const size_t offset : offsets)
            for (const int given : {low, low - 1, high, high + 1}) {
                SCOPED_TRACE(std::to_string(offset) + " = " + std::to_string(given));
                const bool good = given >= low && given <= high;
                const auto with = [&](int value) {
                    DriverDevmode devmode = default_devmode();
                    devmode.extra.colour.caFlags = CA_LOG_FILTER;
                    std::memcpy(reinterpret_cast<BYTE*>(&devmode.extra.colour) + offset, &value, 2);
                    return devmode;
                };
                DriverDevmode in = with(given), got = default_devmode();
                in.dm.dmFields = 0;
                ListedPapers source;
                EXPECT_EQ(merge_incoming(&in.dm, got, source), good ? 0u : 0x20000000u);
                expect_equal(got, with(good ? given : standard));
            }
    COLORADJUSTMENT odd = default_devmode().extra.colour;
    odd.caSize = 23, odd.caFlags = 1;
    EXPECT_TRUE(!validate_colour(odd) && odd.caSize == 24 && odd.caFlags == 0);
}

TEST(DevmodeMerge, OverrideFileTurnsThePage) {
    const Installation here;
    const std::tuple<const char*, const char*, short, short> rows[] = {
        {"2.5", "Orient=0", 2, 1},  {"2.0", "Orient=1", 1, 2},  {"3.0", "Orient=1", 1, 2},
        {"3.1", "Orient=0", 2, 2},  {"1.99", "Orient=0", 2, 2}, {"2.5", "Orient=2", 1, 1},
        {"2.5", "Orient=-1", 2, 2}, {"2.5", "", 2, 2},          {"x", "Orient=0", 2, 2}};
    for (const auto& [version, lines, given, orientation] : rows)
        for (const DWORD bit : {DWORD{DM_ORIENTATION}, DWORD{0}}) {  // without it the page stands upright
            here.write_ini(lines, version);
            DriverDevmode caller = default_devmode(), got;
            caller.dm.dmFields = bit;
            caller.dm.dmOrientation = given;
            EXPECT_EQ(MergeDevmode(FakePrinter::handle(), &caller.dm, got), 0u);
            EXPECT_EQ(got.dm.dmOrientation, bit || given != orientation ? orientation : 1)
                << version << lines;
        }
}

TEST(DevmodeMerge, PrintersOwnComesBeforeTheCallers) {
    Installation here;
    DriverDevmode own = default_devmode(), caller = own, got;
    own.dm.dmScale = 50, own.dm.dmColor = 1, own.dm.dmCopies = 9;
    own.dm.dmFields |= DM_COPIES;
    caller.dm.dmFields = DM_SCALE | DM_PAPERSIZE, caller.dm.dmScale = 75;
    const auto merge_own = [&](const DEVMODEW* callers) {
        const auto* first = reinterpret_cast<const std::byte*>(&own);
        here.printer.devmode.assign(first, first + sizeof own);
        return MergeDevmode(FakePrinter::handle(), callers, got);
    };
    EXPECT_EQ(merge_own(nullptr), DWORD{DM_COPIES});
    EXPECT_EQ(got.dm.dmScale, 50);
    EXPECT_EQ(merge_own(&caller.dm), 0u);
    EXPECT_EQ(here.printer.forms_calls, 4);  // the size and the forms, once for both merges together
    EXPECT_TRUE(got.dm.dmScale == 75 && got.dm.dmColor == 1);

    for (const int growth : {8, -8, 0}) {  // changed between the two calls, or claims more than there is
        here.printer.grows_by = static_cast<DWORD>(growth);
        own.dm.dmDriverExtra = growth ? 36 : 60000;
        EXPECT_EQ(merge_own(nullptr), 0u);
        expect_equal(got, default_devmode());
    }
    EXPECT_EQ(MergeDevmode(nullptr, &caller.dm, got), 0u);
    EXPECT_EQ(got.dm.dmScale, 75);
}

TEST(DirectQueries, DirectQueriesAnswerWithoutASheet) {
    Installation here;
    DriverDevmode in = default_devmode();
    in.dm.dmScale = 42;
    const GuardedBuffer input(sizeof in, &in), too_short(252, &in);
    DEVMODEW old = in.dm;
    old.dmSize = 188, old.dmDriverExtra = 0;
    const GuardedBuffer old_input(188, &old);
    auto *const scaled = input.as<DEVMODEW>(), *const liar = too_short.as<DEVMODEW>(),
                *const oldest = old_input.as<DEVMODEW>(), *const nowhere = reinterpret_cast<DEVMODEW*>(48);
    constexpr DWORD kBoth = DM_COPY | DM_MODIFY;
    // The mode, the input, the room for an output (0: none), the result and the scale that is written.
    const std::tuple<DWORD, DEVMODEW*, size_t, LONG, short> rows[] = {
        {0, nullptr, 256, 256, 0},         {DM_COPY, nullptr, 0, 256, 0},  {DM_COPY, nullptr, 256, 1, 100},
        {DM_UPDATE, nullptr, 256, 1, 100}, {kBoth, scaled, 256, 1, 42},    {kBoth, oldest, 188, 1, 42},
        {DM_COPY | 32, scaled, 256, 1, 0}, {DM_MODIFY, scaled, 256, 1, 0}, {DM_COPY, nullptr, 252, -1, 0},
        {DM_COPY, liar, 256, 1, 100},      {DM_COPY, nowhere, 256, -1, 0}};
    for (const auto& [mode, caller, room, wanted, scale] : rows)
        for (const bool as_header : {true, false}) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << ", " << caller << " into " << room);
            const std::string pattern(256, '\xEE');
            const GuardedBuffer output(std::max<size_t>(room, 1), pattern.data());
            auto* const out = room ? output.as<DEVMODEW>() : nullptr;
            const HANDLE printer = FakePrinter::handle();
            wchar_t* const name = here.printer.name.data();
            DocumentPropertyHeader header = {sizeof header, 0, printer, name, caller, out, 0, mode};
            const auto where = reinterpret_cast<LPARAM>(&header);
            SetLastError(0);
            const LONG result = as_header ? DrvDocumentPropertySheets(nullptr, where)
                                          : DrvDocumentProperties(nullptr, printer, name, out, caller, mode);
            const DWORD error = GetLastError();
            EXPECT_EQ(result, wanted);
            EXPECT_TRUE(result != -1 || error == ERROR_INVALID_PARAMETER);
            EXPECT_TRUE(!as_header || result != 256 || header.cbOut == 256);
            EXPECT_EQ(out && output.as<BYTE>()[0] != 0xEE ? out->dmScale : 0, scale);
        }
    const GuardedBuffer stump(40);
    for (void* header : {static_cast<void*>(nullptr), stump.as<void>()}) {
        EXPECT_EQ(DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(header)), -1);
        EXPECT_EQ(GetLastError(), 87u);
    }
}
