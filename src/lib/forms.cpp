#include "lib/forms.h"

#include <winspool.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <new>
#include <span>

#include "common/qk/text.h"
#include "common/qk/trace.h"

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

FormRecord large_form(const LargeForm& form, size_t paper_number) noexcept {
    return {.flags = FORM_PRINTER | FormRecord::kMadeByDriver,
            .name = form.name.data(),
            .size = form.size,
            .imageable_area = {0, 0, form.size.cx, form.size.cy},
            .paper_number = static_cast<uint16_t>(paper_number)};
}

// The spooler's forms as it hands them out, `count` of FORM_INFO_1W with their texts behind; null, traced,
// when it does not.
std::unique_ptr<std::byte[]> read_forms(HANDLE printer, DWORD& count) {
    DWORD size = 0;
    if (EnumFormsW(printer, 1, nullptr, 0, &size, &count) || GetLastError() != ERROR_INSUFFICIENT_BUFFER) {
        TRACE("err1");
        return nullptr;
    }
    std::unique_ptr<std::byte[]> buffer(new (std::nothrow) std::byte[size]());
    if (!buffer) {
        TRACE("err2");
        SetLastError(ERROR_OUTOFMEMORY);
        return nullptr;
    }
    if (!EnumFormsW(printer, 1, reinterpret_cast<BYTE*>(buffer.get()), size, &size, &count)) {
        TRACE("err3");
        return nullptr;
    }
    TRACE_F(L"Count=%d", static_cast<int>(count));
    return buffer;
}

void collect(std::span<const FORM_INFO_1W> forms, std::vector<FormRecord>& records) {
    records.reserve(forms.size() + kLargeForms.size());
    std::array<bool, kLargeForms.size()> found = {};
    for (size_t i = 0; i < forms.size(); ++i) {
        const FORM_INFO_1W& form = forms[i];
        const wchar_t* name = form.pName ? form.pName : L"";
        int32_t driver_paper_id = -1;
        if (is_printer_form(form.Flags)) {
            const LargeForm* large = find_large_form(name);
            if (!large)
                continue;
            found[static_cast<size_t>(large - kLargeForms.data())] = true;
            driver_paper_id = large->driver_paper_id;
        }
        records.push_back({(form.Flags & ~FormRecord::kReplacedBits) | FormRecord::kMadeByDriver, name,
                           form.Size, form.ImageableArea, static_cast<uint16_t>(i + 1), driver_paper_id});
    }
    size_t paper_number = forms.size();
    for (size_t i = 0; i < kLargeForms.size(); ++i)
        if (!found[i])
            records.push_back(large_form(kLargeForms[i], ++paper_number));
}

void report(const std::vector<FormRecord>& records, FormCallback& callback) {
    for (const FormRecord& form : records) {
        const wchar_t* kind = form.flags & FORM_BUILTIN     ? L"FORM_BUILTIN "
                              : is_printer_form(form.flags) ? L"FORM_PRINTER"
                                                            : L"";
        TRACE_F(L"%sj:dm=%d, f.name=%s", kind, int{form.paper_number}, form.name);
        callback(&form);
    }
    callback(nullptr);
}

}  // namespace

int ZRTK_EnumForms(HANDLE printer, FormCallback* callback, FormRecords& records) {
    TRACE("ZRTK_EnumForms");
    records.list.clear();
    DWORD count = 0;
    records.texts = read_forms(printer, count);
    if (!records.texts)
        return 0;
    collect({reinterpret_cast<const FORM_INFO_1W*>(records.texts.get()), count}, records.list);
    if (callback)
        report(records.list, *callback);
    TRACE("<<");
    return 1;
}

const FormRecord* find_form(const std::vector<FormRecord>& forms, int paper_number) noexcept {
    const auto form = std::ranges::find(forms, paper_number, &FormRecord::paper_number);
    return form == forms.end() ? nullptr : &*form;
}

const FormRecord* find_form(const std::vector<FormRecord>& forms, std::wstring_view name) noexcept {
    const auto form = std::ranges::find(forms, name, &FormRecord::name);
    return form == forms.end() ? nullptr : &*form;
}

int AddFormsToDataBase(HANDLE printer, const std::wstring& device_name) {
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
    const bool written =
        SetPrinterDataW(printer, value, REG_SZ, reinterpret_cast<BYTE*>(text.data()), bytes) == ERROR_SUCCESS;
    return written ? 0 : 1;
}
