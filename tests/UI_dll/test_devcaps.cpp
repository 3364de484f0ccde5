#include <gtest/gtest.h>

#include <array>
#include <string>

#include "UI_dll/ddi.h"
#include "UI_dll/devcaps.h"
#include "support/fake_printer.h"
#include "support/installation.h"

namespace {

constexpr DWORD kPapers = 9 + 4 + 1;  // the spooler's forms, the four large ones, the custom size

class Devcaps : public testing::Test {
protected:
    DWORD ask(WORD index, void* buffer = nullptr, HANDLE printer = FakePrinter::handle()) {
        return DrvDeviceCapabilities(printer, here.printer.name.data(), index, buffer, nullptr);
    }
    Installation here;
};

struct Answer {
    WORD index;
    DWORD value;
};

TEST_F(Devcaps, EveryIndexHasItsValueOrCount) {
    constexpr Answer kAnswers[] = {
        {2, kPapers},  {3, kPapers}, {4, 0x00FE00FE}, {5, 0x7FFF7FFF}, {6, 1},   {7, 0},    {8, 220},
        {9, 36},       {10, 0x0401}, {11, 0x0800},    {12, 1},         {13, 10}, {14, 0},   {15, 2},
        {16, kPapers}, {17, 90},     {18, 1},         {22, 0},         {25, 1},  {26, 100}, {27, 1},
        {28, 262144},  {29, 1},      {30, 0},         {31, 100},       {32, 1},  {33, 0},   {65535, ~0u},
        {65534, ~0u},  {19, 0},      {20, 0},         {21, 0},         {23, 0},  {24, 0},   {0, 0},
        {34, 0},       {200, 0}};
    for (const Answer& answer : kAnswers)
        EXPECT_EQ(ask(answer.index), answer.value) << answer.index;
    EXPECT_EQ(ask(1),
              DWORD{DM_ORIENTATION | DM_PAPERSIZE | DM_SCALE | DM_PRINTQUALITY | DM_COLOR | DM_FORMNAME});
}

TEST_F(Devcaps, ListsAgreeAndNamesFillTheirSlots) {
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
    EXPECT_STREQ(&names[9 * 64], L"A0");
    EXPECT_EQ(static_cast<short>(11890), sizes[9].y);
}

TEST_F(Devcaps, OnlyAnswersThatNeedThePrinterAskTheSpooler) {
    ask(DC_COPIES);
    ask(DC_ENUMRESOLUTIONS);
    ask(DC_MEDIAREADY);
    EXPECT_EQ(here.printer.forms_calls, 0);
    here.printer.failing_forms_call = 1;
    EXPECT_EQ(ask(DC_PAPERS), ~0u);
    EXPECT_EQ(ask(DC_SIZE), 220u);  // the default where the printer's papers cannot be listed
}

TEST_F(Devcaps, ANullPrinterIsOpenedByNameForTheCall) {
    EXPECT_EQ(ask(DC_PAPERS, nullptr, nullptr), kPapers);
    EXPECT_EQ(here.printer.open_handles, 0);
}

TEST_F(Devcaps, SpoolerIndicesCountTheirSlots) {
    std::vector<wchar_t> buffer(kPapers * 64);
    const auto ask_spooler = [&](WORD index, wchar_t* out, DWORD units) {
        return DrvSplDeviceCaps(FakePrinter::handle(), here.printer.name.data(), index, out, units, nullptr);
    };
    EXPECT_EQ(ask_spooler(3, buffer.data(), 640), ~0u);
    EXPECT_EQ(ask_spooler(DC_PAPERNAMES, buffer.data(), 63), ~0u);
    EXPECT_EQ(ask_spooler(DC_PAPERNAMES, nullptr, 0), kPapers);
    EXPECT_EQ(ask_spooler(DC_PAPERNAMES, buffer.data(), kPapers * 64), kPapers);
    EXPECT_STREQ(&buffer[8 * 64], L"A4");
    EXPECT_EQ(ask_spooler(DC_MEDIAREADY, buffer.data(), 64), 1u);
    EXPECT_STREQ(buffer.data(), L"A4");
}

}  // namespace
