#include <array>

#include "UI_dll/ddi.h"
#include "lib/devmode.h"
#include "support/capability_rows.h"
#include "support/forbidden_calls.h"

namespace {

constexpr DWORD kPapers = 9 + 4 + 1;  // the spooler's forms, the four large ones, the custom size

struct Devcaps : testing::Test {
    DWORD ask(int index, void* to = nullptr, HANDLE printer = FakePrinter::handle(), DEVMODEW* dm = nullptr) {
        return DrvDeviceCapabilities(printer, here.printer.name.data(), static_cast<WORD>(index), to, dm);
    }
    Installation here;
};

TEST_F(Devcaps, EachIndexHasItsAnswerAndMakesNoCallTooMany) {
    const DriverDevmode own = default_devmode();
    const auto* bytes = reinterpret_cast<const std::byte*>(&own);
    here.printer.devmode.assign(bytes, bytes + sizeof own);
    std::vector<wchar_t> names(kPapers * 64);
    ask(DC_PAPERNAMES, names.data());  // the custom size's name is looked up once
    const std::set<int> unknown = {0, 19, 20, 21, 23, 24, 34};
    for (const CapabilityRow& row : kCapabilityRows) {
        SCOPED_TRACE(row.name);
        const bool lists = row.kind == CapabilityRow::kPapers;
        const DWORD expected = lists ? kPapers : row.value;
        here.printer.get_calls = here.printer.forms_calls = here.printer.open_calls = 0;
        {
            const ForbiddenCalls forbidden;
            const TraceCapture trace;
            EXPECT_EQ(ask(row.index), expected);
            EXPECT_EQ(forbidden.made(), 0);
            const std::wstring result = std::to_wstring(static_cast<int>(expected));
            EXPECT_EQ(trace.count(L"<<DrvDeviceCapabilities:ret=" + result), 1u);
            EXPECT_EQ(trace.holds(L"defaullt:Capability=" + std::to_wstring(row.index)),
                      unknown.contains(row.index));
        }
        EXPECT_EQ(here.printer.get_calls, row.kind == CapabilityRow::kFields ? 2 : 0);
        EXPECT_EQ(here.printer.forms_calls, row.kind == CapabilityRow::kConstant ? 0 : 2);
        EXPECT_EQ(here.printer.open_calls, 0);

        const std::vector<BYTE> filled(row.bytes * (lists ? kPapers : 1), 0xEE);
        const GuardedBuffer buffer(filled.size(), filled.data());
        EXPECT_EQ(ask(row.index, buffer.as<>()), expected);
        EXPECT_EQ(std::count(buffer.as<BYTE>(), buffer.as<BYTE>() + filled.size(), 0xEE), 0);
        if (!filled.empty()) {
            const GuardedBuffer too_short(filled.size() - 1);
            EXPECT_EQ(ask(row.index, too_short.as<>()), ~0u);
            EXPECT_EQ(ask(row.index, reinterpret_cast<void*>(48)), ~0u);
        }
    }
    for (int index = DC_NUP + 1; index <= 200; ++index)
        EXPECT_EQ(ask(index), 0u) << index;
    for (const int index : {65535, 65534}) {
        SetLastError(0);
        EXPECT_TRUE(ask(index) == ~0u && GetLastError() == ERROR_INVALID_PARAMETER);
    }
}

TEST_F(Devcaps, ListsHoldWhatThePrinterHasAndNamesFillTheirSlots) {
    here.printer.forms[1].name = std::wstring(62, L'x') + L"\xD83D\xDE00";  // a pair across the slot's end
    here.printer.forms[2].size = {3276749, 3276750};  // the greatest short, and beyond it
    std::array<WORD, kPapers> numbers;
    std::array<POINT, kPapers> sizes;
    std::vector<wchar_t> names(kPapers * 64, L'#');
    ask(DC_PAPERS, numbers.data());
    ask(DC_PAPERSIZE, sizes.data());
    ask(DC_PAPERNAMES, names.data());
    const std::wstring cut(62, L'x');
    const std::tuple<size_t, const wchar_t*, LONG, LONG, WORD> papers[] = {
        {0, L"Letter", 2159, 2794, 1},        {1, cut.c_str(), 2159, 2794, 2},
        {2, L"Letter", 32767, -32768, 3},     {8, L"A4", 2100, 2970, 9},
        {9, L"A0", 8410, 11890, 10},          {10, L"A1", 5940, 8410, 11},
        {13, L"Custom size", 2100, 2970, 256}};
    for (const auto& [i, name, width, height, number] : papers) {
        EXPECT_STREQ(&names[i * 64], name);
        EXPECT_EQ(std::tuple(sizes[i].x, sizes[i].y, numbers[i]), std::tuple(width, height, number)) << name;
    }
    EXPECT_EQ(std::count(names.begin(), names.end(), L'#'), 0);
    std::array<LONG, 20> resolutions;
    ask(DC_ENUMRESOLUTIONS, resolutions.data());
    EXPECT_EQ(resolutions, (std::array<LONG, 20>{72,  72,  96,  96,  144,  144,  300,  300,  360,  360,
                                                 600, 600, 720, 720, 1200, 1200, 2400, 2400, 3600, 3600}));
    const std::pair<WORD, const wchar_t*> texts[] = {{DC_BINNAMES, L"PDF"},
                                                     {DC_PERSONALITY, L"NONE"},
                                                     {DC_MEDIAREADY, L"A4"},
                                                     {DC_BINS, L"\1"},
                                                     {DC_FILEDEPENDENCIES, L""}};
    for (const auto& [index, text] : texts) {
        std::array<wchar_t, 64> name = {L'#'};
        ask(index, name.data());
        EXPECT_STREQ(name.data(), text);
    }
}

TEST_F(Devcaps, FieldsAreThoseOfThePrintersDevmodeAndTheCallersMerged) {
    constexpr DWORD kUsual = 0x10C13, kOfCustomPaper = 0x00C1F;
    DriverDevmode form = default_devmode(), custom = form;
    custom.dm.dmFields |= DM_PAPERWIDTH | DM_PAPERLENGTH;
    custom.dm.dmPaperSize = DMPAPER_USER;
    // The printer's own, the caller's, the fields.
    const std::tuple<const DriverDevmode*, DriverDevmode*, DWORD> rows[] = {
        {nullptr, nullptr, kUsual},
        {nullptr, &custom, kOfCustomPaper},
        {&custom, nullptr, kOfCustomPaper},
        {&custom, &form, kUsual}};
    for (const auto& [own, callers, fields] : rows) {
        const auto* bytes = reinterpret_cast<const std::byte*>(own);
        here.printer.devmode.assign(bytes, bytes + (own ? sizeof form : 0));
        EXPECT_EQ(ask(DC_FIELDS, nullptr, FakePrinter::handle(), callers ? &callers->dm : nullptr), fields)
            << !own << !callers;
    }
}

TEST_F(Devcaps, FormsOrAPrinterThatCannotBeHadAreNoFault) {
    const TraceCapture trace;
    ask(DC_PAPERS);
    EXPECT_EQ(trace.count(L"ZRTK_EnumForms"), 1u);
    EXPECT_EQ(trace.count(L"FORM_BUILTIN j:dm=9, f.name=A4"), 0u) << "of the names only";
    EXPECT_TRUE(here.printer.forms_buffer_was_clear);
    here.printer.failing_forms_call = 1;
    EXPECT_EQ(ask(DC_PAPERS), ~0u);
    EXPECT_EQ(ask(DC_FIELDS), 0x10C13u);
    here.printer.failing_forms_call = 0;
    EXPECT_EQ(ask(DC_PAPERS, nullptr, nullptr), kPapers) << "opened by name for the call";
    EXPECT_EQ(here.printer.open_handles, 0);
    EXPECT_EQ(ask(DC_FIELDS, nullptr, INVALID_HANDLE_VALUE), 0x10C13u);
}

TEST_F(Devcaps, SpoolerIndicesCountTheirSlots) {
    const GuardedBuffer buffer(kPapers * 64 * sizeof(wchar_t));
    auto* const start = buffer.as<wchar_t>();
    const auto ask_spooler = [&](int index, wchar_t* out, DWORD units) {
        return DrvSplDeviceCaps(FakePrinter::handle(), here.printer.name.data(), static_cast<WORD>(index),
                                out, units, nullptr);
    };
    for (int index = 0; index <= 200; ++index)
        EXPECT_TRUE(index == DC_PAPERNAMES || index == DC_MEDIAREADY ||
                    ask_spooler(index == 200 ? 65535 : index, start, kPapers * 64) == ~0u)
            << index;
    EXPECT_EQ(ask_spooler(DC_PAPERNAMES, start, 63), ~0u);
    EXPECT_EQ(ask_spooler(DC_PAPERNAMES, start, kPapers * 64 + 64), kPapers) << "what is written is there";
    EXPECT_EQ(ask_spooler(DC_PAPERNAMES, start + 1, kPapers * 64), ~0u) << "the size is a lie";
    EXPECT_EQ(ask_spooler(DC_MEDIAREADY, start + (kPapers - 1) * 64, 6400), 1u);
    EXPECT_EQ(ask_spooler(DC_PAPERNAMES, nullptr, 0), kPapers);
    EXPECT_EQ(ask_spooler(DC_PAPERNAMES, start, kPapers * 64), kPapers);
    EXPECT_STREQ(start + 8 * 64, L"A4");
    EXPECT_EQ(ask_spooler(DC_MEDIAREADY, start, 64), 1u);
    EXPECT_STREQ(start, L"A4");
}

}  // namespace
