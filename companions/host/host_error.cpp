#include "companions/host/host_error.h"

#include "common/qk/handle.h"
#include "common/qk/text.h"

namespace host {

std::wstring error_in_words(DWORD error) {
    if (error == kJobCancelled)
        return L"The job was cancelled";
    qk::LocalMemory memory;
    const DWORD units = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
        error, 0, reinterpret_cast<wchar_t*>(memory.put()), 0, nullptr);
    std::wstring text(static_cast<const wchar_t*>(memory.get()), units);
    while (!text.empty() && (text.back() <= L' ' || text.back() == L'.'))
        text.pop_back();
    return text.empty() ? qk::format(L"error %u", error) : text;
}

std::wstring with_reason(const std::wstring& what, DWORD error) {
    return qk::format(L"%s: %s (%u)", what.c_str(), error_in_words(error).c_str(), error);
}

HostError installation_fault(const std::wstring& what, DWORD error) {
    return {ExitCode::kInstallation, with_reason(what, error)};
}

}  // namespace host
