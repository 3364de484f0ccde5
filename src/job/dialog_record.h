// The working record of the save-file dialog library, with the buffers that are lent to it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common/dialog_library.h"
#include "common/job_records.h"

namespace job {

// Owns the record of one "GetFile2" call and the memory behind its texts.
class DialogRecord {
public:
    DialogRecord();

    // Lives as long as this object; not to be copied, its texts point into this object.
    [[nodiscard]] dialog_library::WorkingRecord& raw() noexcept { return *record_; }

    void set_title(std::wstring_view title);

    // The folder that the dialog should open in, cut to the lent buffer.
    void set_start_folder(std::wstring_view folder) noexcept;

    // Copies the texts that the library has left, while it is still loaded. A text that is not true (a length
    // above its capacity, memory that cannot be read) counts as far as it can be read.
    void take_texts();

    [[nodiscard]] const std::wstring& output_path() const noexcept { return output_path_; }

    // Writes the job start record, every byte of it.
    void publish(ZRTKPrintStartInfoC& start, bool resumes) const;

private:
    std::unique_ptr<dialog_library::WorkingRecord> record_;
    std::wstring title_;
    std::vector<wchar_t> title_buffer_;
    std::vector<wchar_t> path_buffer_;
    std::vector<wchar_t> third_buffer_;
    std::wstring output_path_;
    std::wstring third_text_;
};

}  // namespace job
