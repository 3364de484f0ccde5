#include "common/qk/trace.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "common/qk/handle.h"
#include "common/qk/memory_probe.h"
#include "common/qk/text.h"

namespace qk::trace {

namespace {

constexpr wchar_t kSwitchName[] = L"zrtk_ods_debug_mmf_3hrpwtf97s";
constexpr size_t kRecordUnits = 1000;

const char* last_component(const char* source) noexcept {
    const char* slash = std::strrchr(source, '\\');
    return slash ? slash + 1 : source;
}

HandleObj open_switch() noexcept {
    HandleObj mapping(OpenFileMappingW(FILE_MAP_READ, FALSE, kSwitchName));
    if (mapping)
        return mapping;
    wchar_t global[64];
    format_into(global, std::size(global), L"Global\\%s", kSwitchName);
    return HandleObj(OpenFileMappingW(FILE_MAP_READ, FALSE, global));
}

DWORD find_level() noexcept {
    const HandleObj mapping = open_switch();
    if (!mapping)
        return 0;
    const View view(MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, sizeof(DWORD)));
    if (!view) {
        debug_output(L"Error@qk::MMF MapViewOfFile:gle=%u", GetLastError());
        return 0;
    }
    DWORD found = 0;  // the block is anybody's: its memory may not be there
    return try_copy(&found, view.get(), sizeof found) ? found : 0;
}

}  // namespace

void read_level() noexcept {
    const LastErrorKeeper keep;
    level = find_level();  // stored once: other threads trace meanwhile
}

void write(const wchar_t* text, const char* source, unsigned line) noexcept {
    const LastErrorKeeper keep;
    wchar_t file[260] = {};
    MultiByteToWideChar(CP_ACP, 0, last_component(source), -1, file, static_cast<int>(std::size(file)) - 1);
    wchar_t record[kRecordUnits] = {};
    if (line != 0)
        format_into(record, kRecordUnits, L".%u %s(%d)  %s\r\n", GetCurrentThreadId(), file, line, text);
    else
        format_into(record, kRecordUnits, L".%u %s  %s\r\n", GetCurrentThreadId(), file, text);
    OutputDebugStringW(record);
}

void write(const char* text, const char* source, unsigned line) noexcept {
    const LastErrorKeeper keep;
    char record[kRecordUnits] = {};
    const auto thread = static_cast<unsigned>(GetCurrentThreadId());
    if (line != 0)
        std::snprintf(record, kRecordUnits, ".%u %s(%u)  %s\r\n", thread, last_component(source), line, text);
    else
        std::snprintf(record, kRecordUnits, ".%u %s  %s\r\n", thread, last_component(source), text);
    OutputDebugStringA(record);
}

void write_formatted(const char* source, unsigned line, const wchar_t* pattern, ...) noexcept {
    wchar_t text[kRecordUnits] = {};
    va_list arguments;
    va_start(arguments, pattern);
    _vsnwprintf(text, kRecordUnits - 1, pattern, arguments);
    va_end(arguments);
    write(text, source, line);
}

void Scope::mark(const char* arrow, unsigned line) const noexcept {
    char text[200];
    std::snprintf(text, sizeof text, "%s%s", arrow, function_);
    write(text, source_, line);
}

void debug_output(const wchar_t* pattern, ...) noexcept {
    const LastErrorKeeper keep;
    wchar_t record[kRecordUnits] = {};
    va_list arguments;
    va_start(arguments, pattern);
    _vsnwprintf(record, kRecordUnits - 1, pattern, arguments);
    va_end(arguments);
    OutputDebugStringW(record);
}

}  // namespace qk::trace
