#include "lib/forms.h"

#include <winspool.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>

#include "common/memory_probe.h"
#include "common/text.h"
#include "common/trace.h"

namespace {

struct LargeForm {
    std::wstring_view name;
    SIZEL size;
    int32_t driver_paper_id;
};

constexpr SIZEL kA0 = {841000, 1189000};
constexpr SIZEL kA1 = {594000, 841000};

// Offered whether or not the spooler has them, in the order in which they are appended.
constexpr std::array<LargeForm, 4> kLargeForms = {{
    {L"A0", kA0, kDriverPaperA0},
    {L"A1", kA1, kDriverPaperA1},
    {L"ISO A0 841 x 1189 mm", kA0, kDriverPaperA0},
    {L"ISO A1 594 x 841 mm", kA1, kDriverPaperA1},
}};

constexpr bool is_printer_form(DWORD flags) noexcept {
    return (flags & FORM_PRINTER) != 0;
}

const LargeForm* find_large_form(std::wstring_view name) noexcept {
    const auto form = std::ranges::find(kLargeForms, name, &LargeForm::name);
    return form == kLargeForms.end() ? nullptr : &*form;
}

struct SpoolerForms {
    std::unique_ptr<std::byte[]> buffer;
    DWORD count = 0;

    [[nodiscard]] const FORM_INFO_1W* begin() const noexcept {
        return reinterpret_cast<const FORM_INFO_1W*>(buffer.get());
    }
};

std::optional<SpoolerForms> read_forms(HANDLE printer) {
    DWORD size = 0;
    DWORD count = 0;
    if (EnumFormsW(printer, 1, nullptr, 0, &size, &count) || GetLastError() != ERROR_INSUFFICIENT_BUFFER) {
        TRACE("err1");
        return std::nullopt;
    }
    SpoolerForms forms{std::unique_ptr<std::byte[]>(new (std::nothrow) std::byte[size]())};
    if (!forms.buffer) {
        TRACE("err2");
        return std::nullopt;
    }
    if (!EnumFormsW(printer, 1, reinterpret_cast<BYTE*>(forms.buffer.get()), size, &size, &forms.count)) {
        TRACE("err3");
        return std::nullopt;
    }
    TRACE_F(L"Count=%d", static_cast<int>(forms.count));
    return forms;
}

FormRecord large_record(const LargeForm& form, size_t paper_number) {
    return {.flags = FORM_PRINTER | FormRecord::kMadeByDriver,
            .name = std::wstring(form.name),
            .size = form.size,
            .imageable_area = {0, 0, form.size.cx, form.size.cy},
            .paper_number = static_cast<uint16_t>(paper_number)};
}

}  // namespace

void report_forms(const std::vector<FormRecord>& records, FormCallback& callback) {
    for (const FormRecord& record : records) {
        const wchar_t* kind = record.flags & FORM_BUILTIN     ? L"FORM_BUILTIN "
                              : is_printer_form(record.flags) ? L"FORM_PRINTER"
                                                              : L"";
        TRACE_F(L"%sj:dm=%d, f.name=%s", kind, int{record.paper_number}, record.name.c_str());
        callback(&record);
    }
    callback(nullptr);
}

std::optional<FormRecord> record_of(const FORM_INFO_1W& form, size_t position) {
    const std::wstring_view name = form.pName ? form.pName : L"";
    FormRecord record{.flags = (form.Flags & ~FormRecord::kReplacedBits) | FormRecord::kMadeByDriver,
                      .name = std::wstring(name),
                      .size = form.Size,
                      .imageable_area = form.ImageableArea,
                      .paper_number = static_cast<uint16_t>(position)};
    if (is_printer_form(form.Flags)) {
        const LargeForm* large = find_large_form(name);
        if (!large)
            return std::nullopt;
        record.driver_paper_id = large->driver_paper_id;
    }
    return record;
}

int ZRTK_EnumForms(HANDLE printer, FormCallback* callback, std::vector<FormRecord>& records) {
    TRACE("ZRTK_EnumForms");
    records.clear();
    const auto forms = read_forms(printer);
    if (!forms)
        return 0;
    records.reserve(forms->count + kLargeForms.size());
    std::array<bool, kLargeForms.size()> found = {};
    for (DWORD i = 0; i < forms->count; ++i) {
        const FORM_INFO_1W& form = forms->begin()[i];
        auto record = record_of(form, size_t{i} + 1);
        if (!record)
            continue;
        const LargeForm* large = is_printer_form(form.Flags) ? find_large_form(record->name) : nullptr;
        if (large)
            found[static_cast<size_t>(large - kLargeForms.data())] = true;
        records.push_back(std::move(*record));
    }
    size_t paper_number = forms->count;
    for (size_t i = 0; i < kLargeForms.size(); ++i)
        if (!found[i])
            records.push_back(large_record(kLargeForms[i], ++paper_number));
    if (callback)
        report_forms(records, *callback);
    TRACE("<<");
    return 1;
}

const FormRecord* find_form(const std::vector<FormRecord>& records, int paper_number) noexcept {
    const auto record = std::ranges::find(records, paper_number, &FormRecord::paper_number);
    return record == records.end() ? nullptr : &*record;
}

const FormRecord* find_form(const std::vector<FormRecord>& records, std::wstring_view name) noexcept {
    const auto record = std::ranges::find(records, name, &FormRecord::name);
    return record == records.end() ? nullptr : &*record;
}

int AddFormsToDataBase(HANDLE printer, const std::wstring& device_name, bool& write_failed) {
    TRACE("AddFormsToDataBase");
    wchar_t value[] = L"Model";
    wchar_t model[68 / sizeof(wchar_t) + 1] = {};  // room for a terminator that the value may lack
    DWORD type = REG_NONE;
    DWORD needed = 0;
    const DWORD status = GetPrinterDataW(printer, value, &type, reinterpret_cast<BYTE*>(model), 68, &needed);
    if (status == ERROR_SUCCESS && device_name != model)
        return 1;
    std::wstring text = device_name;
    const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    write_failed =
        SetPrinterDataW(printer, value, REG_SZ, reinterpret_cast<BYTE*>(text.data()), bytes) != ERROR_SUCCESS;
    return write_failed ? 1 : 0;
}
