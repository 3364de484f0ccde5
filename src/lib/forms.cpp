#include "lib/forms.h"

#include <winspool.h>

#include <algorithm>
#include <array>
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

const wchar_t* name_of(const FORM_INFO_1W& form) noexcept {
    return form.pName ? form.pName : L"";
}

FormView large_form(const LargeForm& form, size_t paper_number) noexcept {
    return {.flags = FORM_PRINTER | FormView::kMadeByDriver,
            .name = form.name.data(),
            .size = form.size,
            .imageable_area = {0, 0, form.size.cx, form.size.cy},
            .paper_number = static_cast<uint16_t>(paper_number)};
}

void trace_form(const FormView& form) {
    const wchar_t* kind = form.flags & FORM_BUILTIN     ? L"FORM_BUILTIN "
                          : is_printer_form(form.flags) ? L"FORM_PRINTER"
                                                        : L"";
    TRACE_F(L"%sj:dm=%d, f.name=%s", kind, int{form.paper_number}, form.name);
}

}  // namespace

std::optional<FormList> FormList::read(HANDLE printer) {
    DWORD size = 0;
    DWORD count = 0;
    if (EnumFormsW(printer, 1, nullptr, 0, &size, &count) || GetLastError() != ERROR_INSUFFICIENT_BUFFER) {
        TRACE("err1");
        return std::nullopt;
    }
    FormList forms;
    forms.buffer_.reset(new (std::nothrow) std::byte[size]);
    if (!forms.buffer_) {
        TRACE("err2");
        return std::nullopt;
    }
    if (!EnumFormsW(printer, 1, reinterpret_cast<BYTE*>(forms.buffer_.get()), size, &size, &forms.count_)) {
        TRACE("err3");
        return std::nullopt;
    }
    TRACE_F(L"Count=%d", static_cast<int>(forms.count_));
    return forms;
}

template <class Visit>
void FormList::for_each(Visit visit) const {
    const auto* form = reinterpret_cast<const FORM_INFO_1W*>(buffer_.get());
    std::array<bool, kLargeForms.size()> found = {};
    for (DWORD position = 1; position <= count_; ++position, ++form) {
        int32_t driver_paper_id = -1;
        if (is_printer_form(form->Flags)) {
            const LargeForm* large = find_large_form(name_of(*form));
            if (!large)
                continue;
            found[static_cast<size_t>(large - kLargeForms.data())] = true;
            driver_paper_id = large->driver_paper_id;
        }
        visit(FormView{(form->Flags & ~FormView::kReplacedBits) | FormView::kMadeByDriver, name_of(*form),
                       form->Size, form->ImageableArea, static_cast<uint16_t>(position), driver_paper_id});
    }
    size_t paper_number = count_;
    for (size_t i = 0; i < kLargeForms.size(); ++i)
        if (!found[i])
            visit(large_form(kLargeForms[i], ++paper_number));
}

size_t FormList::size() const noexcept {
    size_t papers = 0;
    for_each([&papers](const FormView&) { ++papers; });
    return papers;
}

void FormList::report(FormCallback& callback) const {
    for_each([&callback](const FormView& form) {
        trace_form(form);
        callback(&form);
    });
    callback(nullptr);
}

template <class Form>
std::vector<Form> FormList::as() const {
    std::vector<Form> forms;
    forms.reserve(count_ + kLargeForms.size());
    for_each([&forms](const FormView& form) {
        forms.push_back(
            {form.flags, form.name, form.size, form.imageable_area, form.paper_number, form.driver_paper_id});
    });
    return forms;
}

template std::vector<FormRecord> FormList::as() const;
template std::vector<FormView> FormList::as() const;

int ZRTK_EnumForms(HANDLE printer, FormCallback* callback, std::vector<FormRecord>& records) {
    TRACE("ZRTK_EnumForms");
    records.clear();
    const auto forms = FormList::read(printer);
    if (!forms)
        return 0;
    records = forms->as<FormRecord>();
    if (callback)
        forms->report(*callback);
    TRACE("<<");
    return 1;
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
