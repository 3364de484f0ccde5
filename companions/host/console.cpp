#include "companions/host/console.h"

#include <windows.h>

#include <mutex>
#include <string>

#include "common/qk/lock.h"
#include "common/qk/text.h"

namespace host {

namespace {

qk::Lock stream_lock;
bool output_is_json = false;

void write(DWORD stream, std::wstring_view text) {
    const std::lock_guard guard(stream_lock);
    const HANDLE handle = GetStdHandle(stream);
    DWORD mode = 0;
    DWORD written = 0;
    if (GetConsoleMode(handle, &mode)) {
        WriteConsoleW(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
        return;
    }
    const std::string bytes = qk::to_utf8(text);
    WriteFile(handle, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

}  // namespace

void print_line(std::wstring_view line) {
    write(output_is_json ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE, std::wstring(line) + L'\n');
}

void report_progress(std::wstring_view line) {
    write(STD_ERROR_HANDLE, std::wstring(line) + L'\n');
}

void keep_output_for_json() noexcept {
    output_is_json = true;
}

void print_document(std::wstring_view document) {
    write(STD_OUTPUT_HANDLE, document);
}

}  // namespace host
