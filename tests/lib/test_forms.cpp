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
constexpr DWORD kOurs = 0x80000000, kBuiltIn = 0x80000001, kPrinters = 0x80000002;
constexpr const wchar_t* kLarge[] = {L"A0", L"A1", kLongA0, kLongA1};

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
    const struct {
        const char* label;
        std::vector<FakePrinter::Form> forms;
        std::vector<Seen> wanted;
        std::vector<size_t> appended;  // of the large ones
    } rows[] = {
        {"none", {}, {}, {0, 1, 2, 3}},
        {"user and built-in",
         {{FORM_BUILTIN, L"Letter"}, {FORM_USER, L"Mine"}},
         {{L"Letter", 1, -1, kBuiltIn}, {L"Mine", 2, -1, kOurs}},
         {0, 1, 2, 3}},
        {"printer forms: only the large ones, numbers by position",
         {{FORM_PRINTER, L"Odd"},
          {FORM_PRINTER, L"A0"},
          {FORM_USER, L"Mine"},
          {FORM_PRINTER | FORM_BUILTIN, kLongA1},
          {FORM_PRINTER, L"a1"}},
         {{L"A0", 2, 20256, kPrinters}, {L"Mine", 3, -1, kOurs}, {kLongA1, 4, 30256, kOurs | 3}},
         {1, 2}},
        {"all four there",
         {{FORM_PRINTER, kLongA1}, {FORM_PRINTER, kLongA0}, {FORM_PRINTER, L"A1"}, {FORM_PRINTER, L"A0"}},
         {{kLongA1, 1, 30256, kPrinters},
          {kLongA0, 2, 20256, kPrinters},
          {L"A1", 3, 30256, kPrinters},
          {L"A0", 4, 20256, kPrinters}},
         {}},
        {"a user's A0 is not the printer's",
         {{FORM_USER, L"A0"}, {FORM_BUILTIN, L"A1"}},
         {{L"A0", 1, -1, kOurs}, {L"A1", 2, -1, kBuiltIn}},
         {0, 1, 2, 3}},
        {"high bits replaced",
         {{0xC0000001, L"Bits"}, {0x40000002, L"A0"}},
         {{L"Bits", 1, -1, kBuiltIn}, {L"A0", 2, 20256, kPrinters}},
         {1, 2, 3}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        FakePrinter printer;
        printer.forms = row.forms;
        const TraceCapture trace;
        Listener listener;
        FormRecords records;
        ASSERT_EQ(ZRTK_EnumForms(FakePrinter::handle(), &listener, records), 1);
        std::vector<Seen> wanted = row.wanted;
        auto number = static_cast<int>(row.forms.size());
        for (const size_t large : row.appended)
            wanted.push_back({kLarge[large], ++number, -1, kPrinters});
        wanted.push_back({L"<end>", 0, 0, 0});
        EXPECT_EQ(listener.seen, wanted);
        ASSERT_EQ(records.list.size() + 1, wanted.size());
        for (size_t i = 0; i < records.list.size(); ++i) {
            const FormRecord& record = records.list[i];
            const bool is_a0 = std::wstring_view(record.name).find(L"A0") != std::wstring_view::npos;
            const SIZEL size = i < row.wanted.size() ? SIZEL{100000, 200000}
                               : is_a0               ? SIZEL{841000, 1189000}
                                                     : SIZEL{594000, 841000};
            const RECTL& area = record.imageable_area;
            EXPECT_EQ(
                (std::vector{record.size.cx, record.size.cy, area.left, area.top, area.right, area.bottom}),
                (std::vector<LONG>{size.cx, size.cy, 0, 0, size.cx, size.cy}));
            const wchar_t* kind = record.flags & 1   ? L"FORM_BUILTIN "
                                  : record.flags & 2 ? L"FORM_PRINTER"
                                                     : L"";
            EXPECT_TRUE(trace.holds(
                qk::format(L"%sj:dm=%d, f.name=%s", kind, int{record.paper_number}, record.name)));
        }
        EXPECT_TRUE(trace.holds(qk::format(L"Count=%d", static_cast<int>(row.forms.size()))));
        EXPECT_TRUE(trace.holds(L"ZRTK_EnumForms") && trace.holds(L"<<"));
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
    const std::pair<int32_t, int32_t> rows[] = {{0, 0},
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
    for (const auto& [thousandths, tenths] : rows)
        EXPECT_EQ(tenths_of_mm(thousandths), tenths) << thousandths;
}

TEST(PrinterEvents, InitializeKeepsTheModelInStep) {
    const auto bytes = [](std::wstring_view text) {
        const auto* first = reinterpret_cast<const BYTE*>(text.data());
        return std::vector<BYTE>(first, first + text.size() * sizeof(wchar_t));
    };
    const std::wstring name = L"Corvanta Vantrix 8.0";
    const std::vector<BYTE> ours = bytes({name.c_str(), name.size() + 1}), other = bytes(L"Other"),
                            of_68(68, 'A');
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
        {"equal, unterminated", 3, true, bytes(name), 0, 0, ours},
        {"another", 3, true, other, 0, 1, other},
        {"empty", 3, true, bytes({L"", 1}), 0, 1, bytes({L"", 1})},
        {"34 units unterminated", 3, true, of_68, 0, 1, of_68},
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
