#include "companions/host/renderer.h"

#include <cstdint>
#include <vector>

#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "companions/host/child.h"
#include "companions/host/host_error.h"
#include "companions/host/record_fields.h"
#include "companions/render/pending_pdf.h"
#include "companions/reservation.h"

namespace host {

namespace {

constexpr wchar_t kProgram[] = L"zr_render.exe";

// Whether a renderer whose exit code is 0 has come to its end: older releases of Wine tell that of a killed
// process, too. At its end it names the PDF and deletes the spool, either of which may fail.
bool has_made_pdf(const RenderJob& job) {
    const auto result = find_result_record(job.thread);
    return (result && result->pdf_file_name.length != 0) || (!job.keep_spool && !qk::is_file(job.spool));
}

// The exit code, another than 0 when the renderer was ended from outside. One that fails by itself has left
// nothing behind; the others' exit codes, such as 1, may be among its own.
DWORD exit_code_of(HANDLE process, const RenderJob& job) {
    DWORD code = 0;
    GetExitCodeProcess(process, &code);
    if (code == 0 && has_made_pdf(job))
        return code;
    if (const auto start = find_start_record(job.thread))
        companions::render::remove_pending(record_text(start->output_path), GetProcessId(process));
    return code == 0 ? DWORD{ERROR_PROCESS_ABORTED} : code;
}

DWORD run(const std::vector<std::wstring>& words, const RenderJob& job) {
    Child started = job.wait ? start_quiet(words) : start_telling(words);
    try {
        if (job.wait)
            job.wait(started.process.get(), started.lines.get());
    } catch (...) {  // it writes into memory of this process, which is about to go
        TerminateProcess(started.process.get(), ERROR_CANCELLED);
        WaitForSingleObject(started.process.get(), INFINITE);
        static_cast<void>(exit_code_of(started.process.get(), job));
        throw;
    }
    started.lines.reset();  // a renderer that still speaks must not wait for a reader
    WaitForSingleObject(started.process.get(), INFINITE);  // the renderer keeps its own time limit
    return exit_code_of(started.process.get(), job);
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
    std::vector<std::wstring> words = {program(), L"--thread", std::to_wstring(job.thread)};
    words.insert(words.end(), {L"--printer", job.printer, L"--spool", job.spool, L"--notify",
                               qk::format(L"%u:%llu:%llu", GetCurrentProcessId(),
                                          reinterpret_cast<uintptr_t>(arena.data()), arena.size_bytes())});
    if (!job.setting.empty())
        words.insert(words.end(), {L"--setting", job.setting});
    if (!job.cancel.empty())
        words.insert(words.end(), {L"--cancel", job.cancel});
    if (job.keep_spool)
        words.push_back(L"--keep-spool");
    return run(words, job);
}

void discard_reserved_file(DWORD thread) {
    if (const auto start = find_start_record(thread))
        companions::discard_reserved(*start);
}

}  // namespace host
