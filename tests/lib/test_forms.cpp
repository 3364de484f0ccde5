#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "UI_dll/ddi.h"
#include "lib/devmode.h"
#include "lib/forms.h"
#include "support/installation.h"
#include "support/trace_capture.h"

namespace {

constexpr wchar_t kLongA0[] = L"ISO A0 841 x 1189 mm", kLongA1[] = L"ISO A1 594 x 841 mm";
constexpr DWORD kOurs = 0x80000000, kAppended = 0x80000002;

struct Seen {
    std::wstring name;
    int number;
    int id;
    DWORD flags;
    bool operator==(const Seen&) const = default;
};
void PrintTo(const Seen& seen, std::ostream* out) {
    *out << qk::to_utf8(seen.name) << " " << seen.number << " " << seen.id << " " << std::hex << seen.flags;
}

class Listener final : public FormCallback {
public:
    void operator()(const FormRecord* form) override {
        seen.push_back(form ? Seen{form->name, form->paper_number, form->driver_paper_id, form->flags}
                            : Seen{L"<end>", 0, 0, 0});
    }
    std::vector<Seen> seen;
};

}  // namespace

TEST(Forms, FourLargePapersAreAlwaysOffered) {
    struct {
        const char* label;
        std::vector<FakePrinter::Form> forms;
        std::vector<Seen> wanted;
    } const rows[] = {
        {"none",
         {},
         {{L"A0", 1, -1, kAppended},
          {L"A1", 2, -1, kAppended},
          {kLongA0, 3, -1, kAppended},
          {kLongA1, 4, -1, kAppended}}},
        {"user and built-in",
         {{FORM_BUILTIN, L"Letter"}, {FORM_USER, L"Mine"}},
         {{L"Letter", 1, -1, kOurs | 1},
          {L"Mine", 2, -1, kOurs},
          {L"A0", 3, -1, kAppended},
          {L"A1", 4, -1, kAppended},
          {kLongA0, 5, -1, kAppended},
          {kLongA1, 6, -1, kAppended}}},
        {"printer forms: only the large ones, numbers by position",
         {{FORM_PRINTER, L"Odd"},
          {FORM_PRINTER, L"A0"},
          {FORM_USER, L"Mine"},
          {FORM_PRINTER | FORM_BUILTIN, kLongA1},
          {FORM_PRINTER, L"a1"}},
         {{L"A0", 2, 20256, kOurs | 2},
          {L"Mine", 3, -1, kOurs},
          {kLongA1, 4, 30256, kOurs | 3},
          {L"A1", 6, -1, kAppended},
          {kLongA0, 7, -1, kAppended}}},
        {"all four there",
         {{FORM_PRINTER, kLongA1}, {FORM_PRINTER, kLongA0}, {FORM_PRINTER, L"A1"}, {FORM_PRINTER, L"A0"}},
         {{kLongA1, 1, 30256, kOurs | 2},
          {kLongA0, 2, 20256, kOurs | 2},
          {L"A1", 3, 30256, kOurs | 2},
          {L"A0", 4, 20256, kOurs | 2}}},
        {"a user's A0 is not the printer's",
         {{FORM_USER, L"A0"}, {FORM_BUILTIN, L"A1"}},
         {{L"A0", 1, -1, kOurs},
          {L"A1", 2, -1, kOurs | 1},
          {L"A0", 3, -1, kAppended},
          {L"A1", 4, -1, kAppended},
          {kLongA0, 5, -1, kAppended},
          {kLongA1, 6, -1, kAppended}}},
        {"high bits replaced",
         {{0xC0000001, L"Bits"}, {0x40000002, L"A0"}},
         {{L"Bits", 1, -1, kOurs | 1},
          {L"A0", 2, 20256, kOurs | 2},
          {L"A1", 3, -1, kAppended},
          {kLongA0, 4, -1, kAppended},
          {kLongA1, 5, -1, kAppended}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        FakePrinter printer;
        printer.forms = row.forms;
        const TraceCapture trace;
        Listener listener;
        FormRecords records;
        ASSERT_EQ(ZRTK_EnumForms(FakePrinter::handle(), &listener, records), 1);
        ASSERT_EQ(listener.seen.size(), records.list.size() + 1);
        EXPECT_EQ(listener.seen.back().name, L"<end>");
        listener.seen.pop_back();
        EXPECT_EQ(listener.seen, row.wanted);
        for (const FormRecord& record : records.list) {
            const bool is_large = record.flags == kAppended && record.driver_paper_id == -1;
            const std::wstring name = record.name;
            const bool is_a0 = name == L"A0" || name == kLongA0;
            EXPECT_EQ(record.size.cx, is_large ? is_a0 ? 841000 : 594000 : 100000);
            EXPECT_EQ(record.size.cy, is_large ? is_a0 ? 1189000 : 841000 : 200000);
            EXPECT_EQ(record.imageable_area.right, record.size.cx);
            const wchar_t* kind = record.flags & 1   ? L"FORM_BUILTIN "
                                  : record.flags & 2 ? L"FORM_PRINTER"
                                                     : L"";
            EXPECT_TRUE(trace.holds(
                qk::format(L"%sj:dm=%d, f.name=%s", kind, int{record.paper_number}, record.name)));
        }
        EXPECT_TRUE(trace.holds(qk::format(L"Count=%d", static_cast<int>(row.forms.size()))));
    }
}

TEST(Forms, FailuresLeaveNoRecords) {
    FakePrinter printer;
    for (const int call : {1, 2}) {
        printer.failing_forms_call = call;
        const TraceCapture trace;
        Listener listener;
        FormRecords records;
        records.list.resize(3);
        EXPECT_EQ(ZRTK_EnumForms(FakePrinter::handle(), &listener, records), 0);
        EXPECT_TRUE(records.list.empty() && listener.seen.empty());
        EXPECT_TRUE(trace.holds(call == 1 ? L"err1" : L"err3"));
    }
}

TEST(Forms, LengthsAreRoundedToTenths) {
    struct {
        int32_t thousandths, tenths;
    } const rows[] = {{0, 0},
                      {49, 0},
                      {50, 1},
                      {149, 1},
                      {150, 2},
                      {297000, 2970},
                      {-49, 0},
                      {-50, 0},
                      {-149, 0},
                      {-150, -1},
                      {std::numeric_limits<int32_t>::max(), 21474836}};
    for (const auto& row : rows)
        EXPECT_EQ(tenths_of_mm(row.thousandths), row.tenths) << row.thousandths;
}

TEST(PrinterEvents, InitializeKeepsTheModelInStep) {
    const auto bytes = [](std::wstring_view text, bool terminated) {
        const auto* first = reinterpret_cast<const BYTE*>(text.data());
        return std::vector<BYTE>(first, first + (text.size() + (terminated ? 1 : 0)) * sizeof(wchar_t));
    };
    const std::vector<BYTE> ours = bytes(L"Corvanta Vantrix 8.0", true);
    struct {
        const char* label;
        int event;
        bool can_open;
        std::optional<std::vector<BYTE>> model;
        DWORD write_result;
        BOOL result;
        std::optional<std::vector<BYTE>> left;
    } const rows[] = {
        {"absent", 3, true, {}, 0, 0, ours},
        {"equal", 3, true, ours, 0, 0, ours},
        {"equal, unterminated", 3, true, bytes(L"Corvanta Vantrix 8.0", false), 0, 0, ours},
        {"another", 3, true, bytes(L"Other", true), 0, 1, bytes(L"Other", true)},
        {"empty", 3, true, bytes(L"", true), 0, 1, bytes(L"", true)},
        {"34 units unterminated", 3, true, std::vector<BYTE>(68, 'A'), 0, 1, std::vector<BYTE>(68, 'A')},
        {"too long to be read", 3, true, std::vector<BYTE>(70, 'A'), 0, 0, ours},
        {"not writable", 3, true, {}, ERROR_ACCESS_DENIED, 1, {}},
        {"no printer", 3, false, {}, 0, 1, {}},
        {"configuration change", 0, true, {}, 0, 1, {}},
        {"delete", 4, true, {}, 0, 1, {}},
        {"unknown", 99, true, {}, 0, 1, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        Installation here;
        here.printer.can_open = row.can_open;
        here.printer.model = row.model;
        here.printer.set_data_result = row.write_result;
        EXPECT_EQ(DrvPrinterEvent(here.printer.name.data(), row.event, 0, 0), row.result);
        EXPECT_EQ(here.printer.model, row.left);
        EXPECT_EQ(here.printer.open_handles, 0);
        EXPECT_EQ(here.printer.open_access, row.event == 3 && row.can_open ? 0x000F000Cu : 0u);
    }
}
