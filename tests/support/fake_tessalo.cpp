#include "support/fake_tessalo.h"

using dialog_library::WorkingRecord;

namespace {

FakeTessaloScript script;

void expect(bool fulfilled, const char* what) {
    if (!fulfilled && script.misuse[0] == '\0')
        strcpy(script.misuse, what);
}

bool is_clear(const void* place, size_t size) {
    const auto* bytes = static_cast<const char*>(place);
    return bytes && std::all_of(bytes, bytes + size, [](char byte) { return !byte; });
}

bool is_terminated(const qk::MsWString& text) {
    const wchar_t* units = text.capacity > qk::MsWString::kInPlace ? text.address : text.text;
    return text.length <= text.capacity && units && units[text.length] == L'\0';
}

void check(const WorkingRecord& record) {
    const bool starts = script.expects_start_folder;
    expect(is_terminated(record.title) && record.settings, "title not terminated, or no settings");
    expect(starts ? is_terminated(record.output_path) : is_clear(&record.output_path, sizeof record.title),
           "start folder not terminated, or path not clear");
    expect(!record.hand_over && is_clear(record.padding, sizeof record.padding) &&
               is_clear(&record.third_text, sizeof record.third_text) && !record.first_value &&
               !record.second_value && !record.third_value,
           "flag, padding, third text or values not clear");
    expect((record.external_record != 0) == starts, "external-call record");
}

}  // namespace

extern "C" {

__declspec(dllexport) FakeTessaloScript* Script() {
    return &script;
}

__declspec(dllexport) int WINAPI
    GetSettingFN(wchar_t* buffer, int capacity, const wchar_t* printer, void* scratch) {
    InterlockedIncrement(&script.setting_calls);
    expect(buffer && capacity == 512 && *buffer == L'\0', "setting buffer");
    expect(printer && *printer, "setting printer");
    expect(is_clear(scratch, dialog_library::kScratchBytes), "scratch");
    std::copy(std::begin(script.setting), std::end(script.setting), buffer);
    return script.setting_result;
}

__declspec(dllexport) int WINAPI GetFile2(WorkingRecord* record, const wchar_t* printer) {
    InterlockedIncrement(&script.file_calls);
    expect(record && printer && *printer, "file call's arguments");
    check(*record);
    return script.answer ? script.answer(*record, printer, script.context) : 0;
}

__declspec(dllexport) int WINAPI GetBrowsePath(wchar_t* buffer, const wchar_t* current) {
    expect(is_clear(buffer, 512 * sizeof *buffer), "browse buffer");
    expect(current && wcslen(current) < 512, "browse start");
    wcscpy(script.browsed_from, current);
    std::copy(std::begin(script.folder), std::end(script.folder), buffer);
    return script.folder[0] != L'\0';
}

}  // extern "C"
