#include "support/fake_tessalo.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cwchar>

using dialog_library::WorkingRecord;

namespace {

FakeTessaloScript script;

void expect(bool fulfilled, const char* what) {
    if (!fulfilled && script.misuse[0] == '\0')
        std::snprintf(script.misuse, sizeof script.misuse, "%s", what);
}

void check_text(const qk::MsWString& text, const char* name) {
    const wchar_t* units = text.capacity > qk::MsWString::kInPlace ? text.address : text.text;
    expect(text.length <= text.capacity && units && units[text.length] == L'\0', name);
}

void check_empty(const qk::MsWString& text, const char* name) {
    const auto* bytes = reinterpret_cast<const char*>(&text);
    expect(std::all_of(bytes, bytes + sizeof text, [](char byte) { return !byte; }), name);
}

void check(const WorkingRecord& record) {
    expect(record.hand_over == 0, "hand-over flag not clear");
    expect(
        std::all_of(std::begin(record.padding), std::end(record.padding), [](uint8_t byte) { return !byte; }),
        "padding not clear");
    check_text(record.title, "title not terminated");
    if (script.expects_start_folder)
        check_text(record.output_path, "start folder not terminated");
    else
        check_empty(record.output_path, "path not clear");
    check_empty(record.third_text, "third text not clear");
    expect(record.settings != nullptr, "no settings");
    expect(record.first_value == 0 && record.second_value == 0 && record.third_value == 0,
           "values not clear");
    expect((record.external_record != 0) == script.expects_start_folder, "external-call record");
}

}  // namespace

extern "C" {

__declspec(dllexport) FakeTessaloScript* Script() {
    return &script;
}

__declspec(dllexport) int WINAPI
    GetSettingFN(wchar_t* buffer, int capacity, const wchar_t* printer, void* scratch) {
    InterlockedIncrement(&script.setting_calls);
    const auto* bytes = static_cast<const char*>(scratch);
    expect(buffer && capacity == 512 && *buffer == L'\0', "setting buffer");
    expect(printer && *printer, "setting printer");
    expect(
        bytes && std::all_of(bytes, bytes + dialog_library::kScratchBytes, [](char byte) { return !byte; }),
        "scratch");
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
    expect(buffer && std::all_of(buffer, buffer + 512, [](wchar_t unit) { return !unit; }), "browse buffer");
    expect(current && wcslen(current) < 512, "browse start");
    wcscpy(script.browsed_from, current);
    std::copy(std::begin(script.folder), std::end(script.folder), buffer);
    return script.folder[0] != L'\0';
}

}  // extern "C"
