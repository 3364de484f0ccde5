#include "UI_dll/ddi.h"
#include "lib/devmode.h"
#include "lib/forms.h"

namespace {

constexpr wchar_t kLongA0[] = L"ISO A0 841 x 1189 mm", kLongA1[] = L"ISO A1 594 x 841 mm";
constexpr const wchar_t* kLarge[] = {L"A0", L"A1", kLongA0, kLongA1};

// Name, number, identifier and flags of each form.
class Listener final : public FormCallback {
public:
    void operator()(const FormRecord* form) override {
        seen += form ? qk::format(L"%s %d %d %08lX|", form->name, int{form->paper_number},
                                  int{form->driver_paper_id}, form->flags)
                     : L"<end>";
    }
    std::wstring seen;
};

}  // namespace

TEST(Forms, FourLargePapersAreAlwaysOffered) {
    const std::wstring a0 = kLongA0, a1 = kLongA1;
    // The forms, what is told of them, and which of the large ones are appended.
    const std::tuple<std::vector<FakePrinter::Form>, std::wstring, std::vector<size_t>> rows[] = {
        {{}, L"", {0, 1, 2, 3}},
        // Of a printer's forms only the large ones, with numbers by position.
        {{{FORM_PRINTER, L"Odd"},
          {FORM_PRINTER, L"A0"},
          {FORM_USER, L"Mine"},
          {FORM_PRINTER | FORM_BUILTIN, kLongA1},
          {FORM_PRINTER, L"a1"}},
         L"A0 2 20256 80000002|Mine 3 -1 80000000|" + a1 + L" 4 30256 80000003|",
         {1, 2}},
        {{{FORM_PRINTER, kLongA1}, {FORM_PRINTER, kLongA0}, {FORM_PRINTER, L"A1"}, {FORM_PRINTER, L"A0"}},
         a1 + L" 1 30256 80000002|" + a0 + L" 2 20256 80000002|A1 3 30256 80000002|A0 4 20256 80000002|",
         {}},
        // A user's A0 is not the printer's; the high bits are replaced.
        {{{FORM_USER, L"A0"}, {0xC0000001, L"A1"}}, L"A0 1 -1 80000000|A1 2 -1 80000001|", {0, 1, 2, 3}}};
    for (const auto& [forms, told, appended] : rows) {
        SCOPED_TRACE(qk::to_utf8(told));
        FakePrinter printer;
        printer.forms = forms;
        Listener listener;
        FormRecords records;
        ASSERT_EQ(ZRTK_EnumForms(FakePrinter::handle(), &listener, records), 1);
        std::wstring wanted = told;
        auto number = static_cast<int>(forms.size());
        for (const size_t large : appended)
            wanted += qk::format(L"%s %d -1 80000002|", kLarge[large], ++number);
        EXPECT_EQ(listener.seen, wanted + L"<end>");
        ASSERT_EQ(static_cast<std::ptrdiff_t>(records.list.size()), std::ranges::count(wanted, L'|'));
        for (size_t i = 0; i < records.list.size(); ++i) {
            const FormRecord& record = records.list[i];
            const bool is_a0 = std::wstring_view(record.name).find(L"A0") != std::wstring_view::npos;
            SIZEL size = is_a0 ? SIZEL{841000, 1189000} : SIZEL{594000, 841000};
            if (i + appended.size() < records.list.size())
                size = {100000, 200000};
            const RECTL& area = record.imageable_area;
            EXPECT_TRUE(record.size.cx == size.cx && record.size.cy == size.cy && area.left == 0 &&
                        area.top == 0 && area.right == size.cx && area.bottom == size.cy);
        }
    }
}

TEST(Forms, FailuresLeaveNoRecords) {
    FakePrinter printer;
    for (const int call : {1, 2}) {
        printer.failing_forms_call = call;
        Listener listener;
        FormRecords records;
        records.list.resize(3);
        EXPECT_EQ(ZRTK_EnumForms(FakePrinter::handle(), &listener, records), 0);
        EXPECT_TRUE(records.list.empty() && listener.seen.empty());
    }
}

TEST(Forms, LengthsAreRoundedToTenths) {
    for (const auto& [thousandths, tenths] : std::initializer_list<std::pair<int32_t, int32_t>>{
             {49, 0}, {50, 1}, {149, 1}, {150, 2}, {-50, 0}, {-149, 0}, {-150, -1}, {INT32_MAX, 21474836}})
        EXPECT_EQ(tenths_of_mm(thousandths), tenths) << thousandths;
}

TEST(PrinterEvents, InitializeKeepsTheModelInStep) {
    const auto bytes = [](std::wstring_view text) {
        const std::string raw = raw_bytes(text);
        return std::vector<BYTE>(raw.begin(), raw.end());
    };
    using Model = std::optional<std::vector<BYTE>>;
    const std::wstring name = L"Corvanta Vantrix 8.0";
    const Model ours = bytes({name.c_str(), name.size() + 1}), unterminated = bytes(name),
                other = bytes(L"Other"), blank = bytes({L"", 1}), of_34 = std::vector<BYTE>(68, 'A'),
                too_long = std::vector<BYTE>(70, 'A');
    // The event, whether the printer can be opened, its model, what writing it gives, the result, the model
    // left.
    const std::tuple<int, bool, Model, DWORD, BOOL, Model> rows[] = {
        {3, true, {}, 0, 0, ours},     {3, true, unterminated, 0, 0, ours},
        {3, true, ours, 0, 0, ours},   {3, true, too_long, 0, 0, ours},
        {3, true, other, 0, 1, other}, {3, true, of_34, 0, 1, of_34},
        {3, true, blank, 0, 1, blank}, {3, true, {}, ERROR_ACCESS_DENIED, 1, {}},
        {3, false, {}, 0, 1, {}},      {4, true, {}, 0, 1, {}}};
    for (const auto& [event, can_open, model, write_result, result, left] : rows) {
        SCOPED_TRACE(testing::Message()
                     << "event " << event << ", " << (model ? model->size() : 0) << " bytes");
        Installation here;
        here.printer.can_open = can_open;
        here.printer.model = model;
        here.printer.set_data_result = write_result;
        EXPECT_EQ(DrvPrinterEvent(here.printer.name.data(), event, 0, 0), result);
        EXPECT_EQ(here.printer.model, left);
        EXPECT_EQ(here.printer.open_handles, 0);
        EXPECT_EQ(here.printer.open_access, event == 3 && can_open ? 0x000F000Cu : 0u);
    }
}
