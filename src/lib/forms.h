// The papers of the printer: the forms of the spooler's database, and four large ones that are always
// offered.
#pragma once

#include <windows.h>
#include <winspool.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// One offered paper. Sizes are thousandths of a millimetre; the name lies in somebody else's memory.
struct FormRecord {
    static constexpr DWORD kMadeByDriver = 0x80000000;  // always set in `flags`
    static constexpr DWORD kReplacedBits = 0xC0000000;  // bits 30 and 31 of the spooler's flags

    DWORD flags = 0;  // FORM_USER, FORM_BUILTIN or FORM_PRINTER, and kMadeByDriver
    const wchar_t* name = L"";
    SIZEL size = {};
    RECTL imageable_area = {};
    uint16_t paper_number = 0;  // as reported by DC_PAPERS and stored in dmPaperSize
    int32_t driver_paper_id = -1;
};

// The papers of a printer, with the texts of their names.
struct FormRecords {
    std::vector<FormRecord> list;
    std::unique_ptr<std::byte[]> texts;
};

// The driver's own papers, which dmPaperSize may also name directly.
inline constexpr int32_t kDriverPaperA0 = 20256;
inline constexpr int32_t kDriverPaperA1 = 30256;

// Told of each record in order, once all of them are there, and then once of none, the cue for the
// custom-size entry.
class FormCallback {
public:
    virtual ~FormCallback() = default;
    virtual void operator()(const FormRecord* form) = 0;
};

// Fills `records` with the papers of the printer behind the handle and tells the callback (may be null) of
// them. 1 on success; 0, with no records, when the spooler cannot list its forms (its last error stays). Time
// is linear in the number of forms.
int ZRTK_EnumForms(HANDLE printer, FormCallback* callback, FormRecords& records);

// The first form with that paper number, or with exactly that name; null when there is none.
[[nodiscard]] const FormRecord* find_form(const std::vector<FormRecord>& forms, int paper_number) noexcept;
[[nodiscard]] const FormRecord* find_form(const std::vector<FormRecord>& forms,
                                          std::wstring_view name) noexcept;

// Thousandths of a millimetre to tenths, rounded, truncated toward zero.
[[nodiscard]] constexpr int32_t tenths_of_mm(int32_t thousandths) noexcept {
    return static_cast<int32_t>((int64_t{thousandths} + 50) / 100);
}

// Keeps the printer's "Model" value in step with `device_name`. 0 when it has been written; 1 when a
// different model stands there already, or when it could not be written.
int AddFormsToDataBase(HANDLE printer, const std::wstring& device_name);
