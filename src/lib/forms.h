// The papers of the printer: the forms of the spooler's database, and four large ones that are always
// offered.
#pragma once

#include <windows.h>
#include <winspool.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// One offered paper; `Text` owns its name or looks at it. Sizes are thousandths of a millimetre.
template <class Text>
struct BasicForm {
    static constexpr DWORD kMadeByDriver = 0x80000000;  // always set in `flags`
    static constexpr DWORD kReplacedBits = 0xC0000000;  // bits 30 and 31 of the spooler's flags

    DWORD flags = 0;  // FORM_USER, FORM_BUILTIN or FORM_PRINTER, and kMadeByDriver
    Text name;
    SIZEL size = {};
    RECTL imageable_area = {};
    uint16_t paper_number = 0;  // as reported by DC_PAPERS and stored in dmPaperSize
    int32_t driver_paper_id = -1;
};

using FormRecord = BasicForm<std::wstring>;
using FormView = BasicForm<const wchar_t*>;

// The driver's own papers, which dmPaperSize may also name directly.
inline constexpr int32_t kDriverPaperA0 = 20256;
inline constexpr int32_t kDriverPaperA1 = 30256;

// Told of each record in order and then once of none, the cue for the custom-size entry.
class FormCallback {
public:
    virtual ~FormCallback() = default;
    virtual void operator()(const FormView* form) = 0;
};

// The papers of a printer as views into the spooler's answer, for callers that want no copy of each.
class FormList {
public:
    // Asks the spooler; nothing, with its last error, when it cannot list its forms.
    [[nodiscard]] static std::optional<FormList> read(HANDLE printer);

    // How many papers are offered.
    [[nodiscard]] size_t size() const noexcept;

    // Calls `callback` for each paper in order and then once with none.
    void report(FormCallback& callback) const;

    // The papers; views do not outlive the list.
    template <class Form>
    [[nodiscard]] std::vector<Form> as() const;

private:
    template <class Visit>
    void for_each(Visit visit) const;

    std::unique_ptr<std::byte[]> buffer_;
    DWORD count_ = 0;
};

// Fills `records` with the papers of the printer behind the handle. 1 on success; 0, with no records, when
// the spooler cannot list its forms (its last error stays). Time is linear in the number of forms.
int ZRTK_EnumForms(HANDLE printer, FormCallback* callback, std::vector<FormRecord>& records);

// The first form with that paper number, or with exactly that name; null when there is none.
template <class Form>
[[nodiscard]] const Form* find_form(const std::vector<Form>& forms, int paper_number) noexcept {
    const auto form = std::ranges::find(forms, paper_number, &Form::paper_number);
    return form == forms.end() ? nullptr : &*form;
}
template <class Form>
[[nodiscard]] const Form* find_form(const std::vector<Form>& forms, std::wstring_view name) noexcept {
    const auto form = std::ranges::find(forms, name, &Form::name);
    return form == forms.end() ? nullptr : &*form;
}

// Thousandths of a millimetre to tenths, rounded, truncated toward zero.
[[nodiscard]] constexpr int32_t tenths_of_mm(int32_t thousandths) noexcept {
    return static_cast<int32_t>((int64_t{thousandths} + 50) / 100);
}

// Keeps the printer's "Model" value in step with `device_name`. 0 when it has been written; 1 when a
// different model stands there already, or when it could not be written, which also sets `write_failed`.
int AddFormsToDataBase(HANDLE printer, const std::wstring& device_name, bool& write_failed);
