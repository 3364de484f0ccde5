#include "job/dialog_record.h"

#include <algorithm>
#include <new>

#include "common/qk/text.h"
#include "common/qk/trace.h"

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

GivenText::~GivenText() {
    // Another address or capacity: the library has freed this text or has made the field its own.
    if (memory_ && field_.address == memory_ && field_.capacity == capacity_)
        HeapFree(GetProcessHeap(), 0, memory_);
}

void GivenText::put(std::wstring_view text, size_t least_capacity) {
    if (text.size() <= qk::MsWString::kInPlace) {
        field_.set_in_place(text);
        return;
    }
    // Less than what run-time libraries allocate, and then free, in ways of their own: 4,096 bytes.
    constexpr size_t kMostUnits = 2046;
    text = text.substr(0, kMostUnits);
    const size_t units = std::max(text.size(), least_capacity) + 1;
    memory_ = static_cast<wchar_t*>(HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, units * sizeof(wchar_t)));
    if (!memory_)
        throw std::bad_alloc();
    text.copy(memory_, text.size());
    field_.lend({memory_, units}, text.size());
    capacity_ = field_.capacity;
}

void DialogRecord::set_title(std::wstring_view title) {
    title_ = title;
    given_title_.put(title, 0);
}

void DialogRecord::set_start_folder(std::wstring_view folder) {
    // Room for the path that takes its place.
    constexpr size_t kPathUnits = 1023;
    if (folder.size() <= kPathUnits)  // a part of one would be another folder
        given_folder_.put(folder, kPathUnits);
}

void DialogRecord::take_texts() {
    title_ = text_of(record_->title);
    output_path_ = text_of(record_->output_path);
    third_text_ = text_of(record_->third_text);
}

ZRTKPrintStartInfoC DialogRecord::start_record(bool resumes) const {
    ZRTKPrintStartInfoC start = {};
    start.resume = resumes || record_->hand_over != 0 ? 1 : 0;
    put_record_text(start.title, title_);
    put_record_text(start.output_path, output_path_);
    put_record_text(start.third_text, third_text_);
    start.first_value = record_->first_value;
    start.second_value = record_->second_value;
    start.external_record = record_->external_record;
    start.third_value = record_->third_value;
    return start;
}

}  // namespace job
