#include "companions/host/renderer.h"

#include <cstdint>
#include <vector>

#include "common/qk/handle.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "companions/command_line.h"
#include "companions/host/host_error.h"
#include "companions/host/record_fields.h"
#include "companions/reservation.h"

namespace host {

namespace {

constexpr wchar_t kProgram[] = L"zr_render.exe";

// The renderer's progress must not get between the lines of a JSON report.
HANDLE inheritable_error_stream() noexcept {
    const HANDLE stream = GetStdHandle(STD_ERROR_HANDLE);
    SetHandleInformation(stream, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    return stream;
}

DWORD run(const std::vector<std::wstring>& words, const std::function<void(HANDLE)>& wait) {
    std::wstring line = companions::command_line(words);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    if (!wait) {
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
        startup.hStdOutput = inheritable_error_stream();
        startup.hStdError = startup.hStdOutput;
    }
    PROCESS_INFORMATION started = {};
    if (!CreateProcessW(words[0].c_str(), line.data(), nullptr, nullptr, wait ? FALSE : TRUE,
                        wait ? CREATE_NO_WINDOW : 0, nullptr, nullptr, &startup, &started))
        throw HostError{ExitCode::kInstallation, with_reason(L"cannot start " + words[0], GetLastError())};
    const qk::HandleObj process(started.hProcess);
    const qk::HandleObj thread(started.hThread);
    if (wait)
        wait(process.get());
    WaitForSingleObject(process.get(), INFINITE);  // the renderer keeps its own time limit
    DWORD exit_code = 0;
    GetExitCodeProcess(process.get(), &exit_code);
    return exit_code;
}

std::wstring program() {
    return qk::install_folder() + kProgram;
}

}  // namespace

DWORD run_renderer(const RenderJob& job, std::span<wchar_t> arena) {
    std::vector<std::wstring> words = {
        program(),
        L"--thread",
        qk::format(L"%u", job.thread),
        L"--printer",
        job.printer,
        L"--spool",
        job.spool,
        L"--notify",
        qk::format(L"%u:%llu:%llu", GetCurrentProcessId(), reinterpret_cast<uintptr_t>(arena.data()),
                   arena.size_bytes())};
    if (!job.setting.empty())
        words.insert(words.end(), {L"--setting", job.setting});
    if (job.keep_spool)
        words.push_back(L"--keep-spool");
    return run(words, job.wait);
}

void discard_reserved_file(DWORD thread) {
    if (const auto start = find_start_record(thread))
        companions::discard_reserved(*start);
}

}  // namespace host
