#include "companions/host/trace_output.h"

#include <string_view>

#include "common/qk/memory_probe.h"
#include "common/qk/text.h"

namespace host {

namespace {

constexpr wchar_t kSwitchName[] = L"zrtk_ods_debug_mmf_3hrpwtf97s";
constexpr size_t kMostBytes = 8192;

DebugLineSeen line_seen;

// Set while the handler works, so that debug output of its own is let pass.
thread_local bool in_handler = false;

std::wstring without_line_break(std::wstring text) {
    while (!text.empty() && (text.back() == L'\r' || text.back() == L'\n' || text.back() == L'\0'))
        text.pop_back();
    return text;
}

// The exception's parameters: length with its terminating zero, then address.
std::wstring wide_text(const EXCEPTION_RECORD& record) {
    const size_t units = std::min<size_t>(record.ExceptionInformation[0], kMostBytes / sizeof(wchar_t));
    std::wstring text(units, L'\0');
    const auto* address = reinterpret_cast<const void*>(record.ExceptionInformation[1]);
    return qk::try_copy(text.data(), address, units * sizeof(wchar_t)) ? text : std::wstring();
}

std::wstring narrow_text(const EXCEPTION_RECORD& record) {
    std::string bytes(std::min<size_t>(record.ExceptionInformation[0], kMostBytes), '\0');
    const auto* address = reinterpret_cast<const void*>(record.ExceptionInformation[1]);
    return qk::try_copy(bytes.data(), address, bytes.size()) ? qk::to_wide(bytes) : std::wstring();
}

// A debugger would be told of the output by this exception; here the handler takes its place.
LONG CALLBACK take_debug_output(EXCEPTION_POINTERS* exception) noexcept {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    const bool wide = record.ExceptionCode == DBG_PRINTEXCEPTION_WIDE_C;
    if ((!wide && record.ExceptionCode != DBG_PRINTEXCEPTION_C) || record.NumberParameters < 2 || in_handler)
        return EXCEPTION_CONTINUE_SEARCH;
    in_handler = true;
    try {
        line_seen(without_line_break(wide ? wide_text(record) : narrow_text(record)));
    } catch (...) {  // no memory for the line: it is lost, the program goes on
    }
    in_handler = false;
    return EXCEPTION_CONTINUE_EXECUTION;
}

}  // namespace

TraceOutput::TraceOutput(DWORD level, DebugLineSeen seen) : switch_(kSwitchName), handler_(nullptr) {
    line_seen = std::move(seen);
    switch_.write(level);
    handler_ = AddVectoredExceptionHandler(1, &take_debug_output);
}

TraceOutput::~TraceOutput() {
    RemoveVectoredExceptionHandler(handler_);
    line_seen = nullptr;
}

}  // namespace host
