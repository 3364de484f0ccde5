#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>

#include "UI_dll/ddi.h"
#include "UI_dll/devcaps.h"
#include "lib/devmode.h"
#include "support/capability_rows.h"
#include "support/fake_printer.h"
#include "support/forbidden_calls.h"
#include "support/guarded_buffer.h"
#include "support/installation.h"
#include "support/installed_printer.h"
#include "support/trace_capture.h"

namespace {

constexpr DWORD kPapers = 9 + 4 + 1;  // the spooler's forms, the four large ones, the custom size

class Devcaps : public testing::Test {
protected:
    DWORD ask(int index, void* buffer = nullptr, HANDLE printer = FakePrinter::handle()) {
        return DrvDeviceCapabilities(printer, here.printer.name.data(), static_cast<WORD>(index), buffer,
                                     nullptr);
    }
    Installation here;
};

TEST_F(Devcaps, EachIndexHasItsAnswerAndMakesNoCallTooMany) {
    const DriverDevmode own = default_devmode();
    const auto* bytes = reinterpret_cast<const std::byte*>(&own);
    here.printer.devmode.assign(bytes, bytes + sizeof own);
    std::vector<wchar_t> names(kPapers * 64);
    ask(DC_PAPERNAMES, names.data());  // the custom size's name is looked up once
    std::puts(
        "index  name                    answer  GetPrinterW  EnumFormsW  OpenPrinterW  writes and loads");
    for (const CapabilityRow& row : kCapabilityRows) {
        SCOPED_TRACE(row.name);
        const bool lists = row.kind == CapabilityRow::kPapers;
        const DWORD expected = lists ? kPapers : row.value;
        here.printer.get_calls = here.printer.forms_calls = here.printer.open_calls = 0;
        {
            const ForbiddenCalls forbidden;
            EXPECT_EQ(ask(row.index), expected);
            EXPECT_EQ(forbidden.made(), 0);
            std::printf("%5u  %-20s %9lu  %11d  %10d  %12d  %16d\n", unsigned{row.index}, row.name,
                        static_cast<unsigned long>(expected), here.printer.get_calls.load(),
                        here.printer.forms_calls.load(), here.printer.open_calls.load(), forbidden.made());
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
    EXPECT_EQ(ask(65535), ~0u);
    EXPECT_EQ(ask(65534), ~0u);
}

TEST_F(Devcaps, ListsAgreeAndNamesFillTheirSlots) {
    here.printer.forms[1].name = std::wstring(62, L'x') + L"\xD83D\xDE00";  // a pair across the slot's end
    std::array<WORD, kPapers> numbers;
    std::array<POINT, kPapers> sizes;
    std::vector<wchar_t> names(kPapers * 64, L'#');
    EXPECT_EQ(ask(DC_PAPERS, numbers.data()), kPapers);
    EXPECT_EQ(ask(DC_PAPERSIZE, sizes.data()), kPapers);
    EXPECT_EQ(ask(DC_PAPERNAMES, names.data()), kPapers);
    EXPECT_EQ(numbers[8], DMPAPER_A4);
    EXPECT_EQ(sizes[8].x, 2100);
    EXPECT_STREQ(&names[8 * 64], L"A4");
    EXPECT_EQ(numbers.back(), DMPAPER_USER);
    EXPECT_EQ(sizes.back().y, 2970);
    EXPECT_STREQ(&names[(kPapers - 1) * 64], L"Custom size");
    EXPECT_EQ(std::count(names.begin(), names.end(), L'#'), 0);
    EXPECT_STREQ(&names[1 * 64], std::wstring(62, L'x').c_str());
    EXPECT_STREQ(&names[9 * 64], L"A0");
    EXPECT_EQ(static_cast<short>(11890), sizes[9].y);
    std::array<LONG, 20> resolutions;
    std::array<wchar_t, 64> name;
    ask(DC_ENUMRESOLUTIONS, resolutions.data());
    EXPECT_EQ(resolutions, (std::array<LONG, 20>{72,  72,  96,  96,  144,  144,  300,  300,  360,  360,
                                                 600, 600, 720, 720, 1200, 1200, 2400, 2400, 3600, 3600}));
    const struct {
        WORD index;
        const wchar_t* text;
    } texts[] = {{DC_BINNAMES, L"PDF"}, {DC_PERSONALITY, L"NONE"}, {DC_MEDIAREADY, L"A4"}};
    for (const auto& row : texts) {
        ask(row.index, name.data());
        EXPECT_STREQ(name.data(), row.text);
    }
}

TEST_F(Devcaps, PapersAndMergesEnumerateTheFormsAlike) {
    DriverDevmode in = default_devmode();
    std::vector<wchar_t> names(kPapers * 64);
    const auto forms_trace = [&](int index, void* buffer, DEVMODEW* devmode) {
        const TraceCapture trace;
        DrvDeviceCapabilities(FakePrinter::handle(), here.printer.name.data(), static_cast<WORD>(index),
                              buffer, devmode);
        return std::array{trace.count(L"ZRTK_EnumForms"), trace.count(L"Count=9"),
                          trace.count(L"FORM_BUILTIN j:dm=9, f.name=A4"), trace.count(L"<<")};
    };
    using Counts = std::array<size_t, 4>;
    EXPECT_EQ(forms_trace(DC_PAPERNAMES, names.data(), nullptr), (Counts{1, 1, 1, 1}));
    EXPECT_EQ(forms_trace(DC_PAPERS, nullptr, nullptr), (Counts{1, 1, 0, 1}));
    EXPECT_EQ(forms_trace(DC_FIELDS, nullptr, &in.dm), (Counts{1, 1, 0, 1}));
    EXPECT_TRUE(here.printer.forms_buffer_was_clear);
}

TEST_F(Devcaps, PapersThatCannotBeListedFail) {
    here.printer.failing_forms_call = 1;
    EXPECT_EQ(ask(DC_PAPERS), ~0u);
    EXPECT_EQ(ask(DC_SIZE), 220u);
    EXPECT_EQ(ask(DC_FIELDS), 0x10C13u);
}

TEST_F(Devcaps, ANullPrinterIsOpenedByNameForTheCall) {
    EXPECT_EQ(ask(DC_PAPERS, nullptr, nullptr), kPapers);
    EXPECT_EQ(here.printer.open_handles, 0);
}

TEST_F(Devcaps, SpoolerIndicesCountTheirSlots) {
    const GuardedBuffer buffer(kPapers * 64 * sizeof(wchar_t));
    auto* const start = buffer.as<wchar_t>();
    const auto ask_spooler = [&](int index, wchar_t* out, DWORD units) {
        return DrvSplDeviceCaps(FakePrinter::handle(), here.printer.name.data(), static_cast<WORD>(index),
                                out, units, nullptr);
    };
    for (int index = 0; index <= 200; ++index)
        if (index != DC_PAPERNAMES && index != DC_MEDIAREADY) {
            EXPECT_EQ(ask_spooler(index, start, kPapers * 64), ~0u) << index;
        }
    EXPECT_EQ(ask_spooler(65535, start, kPapers * 64), ~0u);
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

// From here on the spooler is the real one.
TEST(RealSpooler, HandlesThatAreNoPrintersGetTheDefaults) {
    wchar_t name[] = L"no such printer";
    const qk::HandleObj event(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    qk::PrinterHandleObj server;
    wchar_t monitor[] = L",XcvMonitor Local Port";
    OpenPrinterW(monitor, server.put(), nullptr);
    const HANDLE closed = server.get();
    server.reset();
    for (const HANDLE handle : {HANDLE{}, closed, event.get(), INVALID_HANDLE_VALUE}) {
        SCOPED_TRACE(handle);
        EXPECT_EQ(DrvDeviceCapabilities(handle, name, DC_COPIES, nullptr, nullptr), 1u);
        EXPECT_EQ(DrvDeviceCapabilities(handle, name, DC_FIELDS, nullptr, nullptr), 0x10C13u);
        const DWORD papers = DrvDeviceCapabilities(handle, name, DC_PAPERS, nullptr, nullptr);
        EXPECT_TRUE(papers == ~0u || papers > 4);
        const DriverDevmode expected = default_devmode();
        const GuardedBuffer output(sizeof expected);
        EXPECT_EQ(DrvDocumentProperties(nullptr, handle, name, output.as<DEVMODEW>(), nullptr, DM_COPY), 1);
        EXPECT_EQ(std::memcmp(output.as<>(), &expected, sizeof expected), 0);
    }
}

// A handle decides, not the name beside it, and a printer of another driver is read like one of ours.
TEST(RealSpooler, HandleOfAnotherPrinterIsReadWithinTheBuffers) {
    const InstalledPrinter ours;
    wchar_t name[] = L"Another printer", port[] = L"FILE:", ps[] = L"winprint", type[] = L"RAW";
    PRINTER_INFO_2W other = {};
    other.pPrinterName = name;
    other.pPortName = port;
    std::wstring our_driver(qk::kProductName);
    other.pDriverName = our_driver.data();
    other.pPrintProcessor = ps;
    other.pDatatype = type;
    qk::PrinterHandleObj handle(AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&other)));
    ASSERT_TRUE(handle) << GetLastError();
    std::wstring our_name = ours.name;
    const DriverDevmode expected = default_devmode();
    const GuardedBuffer output(sizeof expected);
    EXPECT_EQ(DrvDocumentProperties(nullptr, handle.get(), our_name.data(), output.as<DEVMODEW>(), nullptr,
                                    DM_COPY),
              1);
    EXPECT_STREQ(output.as<DEVMODEW>()->dmDeviceName, expected.dm.dmDeviceName);
    const DWORD papers = DrvDeviceCapabilities(handle.get(), our_name.data(), DC_PAPERS, nullptr, nullptr);
    ASSERT_LT(papers, 10000u);
    const GuardedBuffer numbers(papers * sizeof(WORD));
    EXPECT_EQ(DrvDeviceCapabilities(handle.get(), our_name.data(), DC_PAPERS, numbers.as<void>(), nullptr),
              papers);
    EXPECT_TRUE(DeletePrinter(handle.get()));
}

TEST(RealSpooler, DocumentPropertiesAnswersInEveryMode) {
    constexpr DWORD kAskedOfTheSystem = DM_UPDATE | DM_COPY | DM_MODIFY;
    InstalledPrinter printer;
    DriverDevmode good = default_devmode();
    good.dm.dmFields = DM_SCALE;
    good.dm.dmScale = 42;
    DriverDevmode liar = good, torn = good;
    liar.dm.dmDriverExtra = 60000;
    torn.dm.dmSize = 3;
    torn.dm.dmSpecVersion = 0;
    const struct {
        const char* label;
        const DriverDevmode* in;
        LONG copied;
        short scale;
    } rows[] = {{"good", &good, 1, 42},
                {"claims more than is taken", &liar, 1, 42},
                {"torn", &torn, -1, -1},
                {"none", {}, 1, 100}};
    for (const auto& row : rows) {
        for (DWORD mode = 0; mode < 64; ++mode) {
            if (mode & DM_PROMPT)
                continue;
            SCOPED_TRACE(row.label + (" in mode " + std::to_string(mode)));
            const GuardedBuffer input(sizeof good, row.in), output(sizeof good);
            output.as<DEVMODEW>()->dmScale = -1;
            DEVMODEW* const in = row.in ? input.as<DEVMODEW>() : nullptr;
            // Some systems show the sheet where a mode has any other bit, whether or not they shall prompt.
            const LONG result =
                mode & ~kAskedOfTheSystem
                    ? DrvDocumentProperties(nullptr, printer.handle.get(), printer.name.data(),
                                            output.as<DEVMODEW>(), in, mode)
                    : DocumentPropertiesW(nullptr, printer.handle.get(), printer.name.data(),
                                          output.as<DEVMODEW>(), in, mode);
            const bool written = (mode & (DM_COPY | DM_UPDATE)) && !(mode & kNoPermission);
            EXPECT_EQ(result, mode == 0 ? 256 : written ? row.copied : 1);
            EXPECT_EQ(output.as<DEVMODEW>()->dmScale, written ? row.scale : -1);
        }
    }
}

}  // namespace
