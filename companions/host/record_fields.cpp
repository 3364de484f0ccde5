#include "companions/host/record_fields.h"

#include <cstdint>

#include "common/qk/MMF.h"
#include "common/qk/text.h"

namespace host {

namespace {

template <class Record>
std::optional<Record> find_record(const wchar_t* pattern, DWORD thread) {
    qk::MMF<Record> block;
    block.open(qk::format(pattern, static_cast<int>(thread)));
    Record record;
    return block.read(record) ? std::optional(record) : std::nullopt;
}

Field number(const wchar_t* name, uint32_t value) {
    return {name, qk::format(L"%u", value), true};
}

Field value64(const wchar_t* name, uint64_t value) {
    return {name, qk::format(L"0x%llx", value)};
}

Field text(const wchar_t* name, const qk::MsWString& field) {
    const auto whole = field.find_text();
    if (whole)
        return {name, *whole};
    return {name, field.readable_text() + L" [not true: length " + qk::format(L"%llu", field.length) +
                      L", capacity " + qk::format(L"%llu]", field.capacity)};
}

}  // namespace

std::optional<ZRTKPrintStartInfoC> find_start_record(DWORD thread) {
    return find_record<ZRTKPrintStartInfoC>(kStartBlockName, thread);
}

std::optional<ZRTKPrintInfo> find_result_record(DWORD thread) {
    return find_record<ZRTKPrintInfo>(kResultBlockName, thread);
}

Fields fields_of(const ZRTKPrintStartInfoC& record) {
    return {number(L"resume", record.resume),
            {L"title", record_text(record.title)},
            {L"output_path", record_text(record.output_path)},
            {L"third_text", record_text(record.third_text)},
            value64(L"zero", record.zero),
            value64(L"first_value", record.first_value),
            value64(L"second_value", record.second_value),
            value64(L"external_record", record.external_record),
            value64(L"third_value", record.third_value)};
}

Fields fields_of(const ZRTKPrintInfo& record) {
    return {number(L"error_code", record.error_code), number(L"win32_error", record.win32_error),
            text(L"message", record.message), text(L"caption", record.caption),
            text(L"pdf_file_name", record.pdf_file_name)};
}

}  // namespace host
