#include "companions/host/renderer.h"

#include <cstdint>
#include <vector>

#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "companions/host/child.h"
#include "companions/host/host_error.h"
#include "companions/host/record_fields.h"
#include "companions/reservation.h"

namespace host {

namespace {

constexpr wchar_t kProgram[] = L"zr_render.exe";

DWORD run(const std::vector<std::wstring>& words,
          const std::function<void(HANDLE process, HANDLE lines)>& wait) {
    Child started = wait ? start_quiet(words) : start_telling(words);
    if (wait)
        wait(started.process.get(), started.lines.get());
    started.lines.reset();  // a renderer that still speaks must not wait for a reader
    WaitForSingleObject(started.process.get(), INFINITE);  // the renderer keeps its own time limit
    DWORD exit_code = 0;
    GetExitCodeProcess(started.process.get(), &exit_code);
    return exit_code;
}

// It runs as this process does, which may be a service that acts for a user: the user's registry names no
// program.
std::wstring program() {
    const std::wstring folder = qk::trusted_install_folder();
    if (folder.empty())
        throw HostError{ExitCode::kInstallation, L"no PdfDllPath names the folder of zr_render.exe"};
    return folder + kProgram;
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
    if (!job.cancel.empty())
        words.insert(words.end(), {L"--cancel", job.cancel});
    if (job.keep_spool)
        words.push_back(L"--keep-spool");
    return run(words, job.wait);
}

void discard_reserved_file(DWORD thread) {
    if (const auto start = find_start_record(thread))
        companions::discard_reserved(*start);
}

}  // namespace host
