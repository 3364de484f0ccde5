#include "job/dialog_record.h"

#include <algorithm>

#include "common/text.h"
#include "common/trace.h"

namespace job {

namespace {

std::wstring text_of(const qk::MsWString& field) {
    auto text = field.find_text();
    if (!text) {
        TRACE("GetFile2: a text is not readable");
        text = field.readable_text();
    }
    text->resize(std::min(text->find(L'\0'), text->size()));
    return std::move(*text);
}

}  // namespace

DialogRecord::DialogRecord()
    : record_(std::make_unique<dialog_library::WorkingRecord>()),
      path_buffer_(dialog_library::kLentUnits),
      third_buffer_(dialog_library::kLentUnits) {
    record_->output_path.lend(path_buffer_, 0);
    record_->third_text.lend(third_buffer_, 0);
}

void DialogRecord::set_title(std::wstring_view title) {
    title_ = title;
    if (title.size() <= qk::MsWString::kInPlace) {
        record_->title.set_in_place(title);
        return;
    }
    title_buffer_.assign(title.begin(), title.end());
    title_buffer_.push_back(L'\0');
    record_->title.lend(title_buffer_, title.size());
}

void DialogRecord::set_start_folder(std::wstring_view folder) noexcept {
    qk::copy_zero_padded(path_buffer_.data(), path_buffer_.size(), folder);
    record_->output_path.lend(path_buffer_, std::min(folder.size(), path_buffer_.size() - 1));
}

void DialogRecord::take_texts() {
    output_path_ = text_of(record_->output_path);
    third_text_ = text_of(record_->third_text);
}

void DialogRecord::publish(ZRTKPrintStartInfoC& start, bool resumes) const {
    start = {};
    start.resume = resumes || record_->hand_over != 0 ? 1 : 0;
    qk::copy_zero_padded(start.title, kRecordTextUnits, title_);
    qk::copy_zero_padded(start.output_path, kRecordTextUnits, output_path_);
    qk::copy_zero_padded(start.third_text, kRecordTextUnits, third_text_);
    start.first_value = record_->first_value;
    start.second_value = record_->second_value;
    start.external_record = record_->external_record;
    start.third_value = record_->third_value;
}

}  // namespace job
