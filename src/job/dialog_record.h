// The working record of the save-file dialog library, with the texts that are put into it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "common/dialog_library.h"
#include "common/job_records.h"

namespace job {

// A text that the handler puts into a field of the record, in memory that the C run-time libraries of others
// can free. It goes with the field: only what stands there unchanged at the end is freed here.
class GivenText {
public:
    explicit GivenText(qk::MsWString& field) noexcept : field_(field) {}
    ~GivenText();
    GivenText(const GivenText&) = delete;
    GivenText& operator=(const GivenText&) = delete;

    // Once only. A text of at most 7 units is held in place, a longer one by address with room for at least
    // `least_capacity` units, and of a very long one the first 2,046 units.
    void put(std::wstring_view text, size_t least_capacity);

private:
    qk::MsWString& field_;
    wchar_t* memory_ = nullptr;
    uint64_t capacity_ = 0;
};

// Owns the record of one "GetFile2" call and what the handler puts into it.
class DialogRecord {
public:
    // Lives as long as this object; not to be copied, its texts belong to this object.
    [[nodiscard]] dialog_library::WorkingRecord& raw() noexcept { return *record_; }

    void set_title(std::wstring_view title);

    // The folder that the dialog should open in; one of more than 1,023 units is left out.
    void set_start_folder(std::wstring_view folder);

    // Copies the texts that the library has left, while it is still loaded. A text that is not true (a length
    // above its capacity, memory that cannot be read) counts as far as it can be read.
    void take_texts();

    [[nodiscard]] const std::wstring& output_path() const noexcept { return output_path_; }

    // The job start record, every byte of it.
    [[nodiscard]] ZRTKPrintStartInfoC start_record(bool resumes) const;

private:
    std::unique_ptr<dialog_library::WorkingRecord> record_ =
        std::make_unique<dialog_library::WorkingRecord>();
    GivenText given_title_{record_->title};
    GivenText given_folder_{record_->output_path};
    std::wstring title_;
    std::wstring output_path_;
    std::wstring third_text_;
};

}  // namespace job
