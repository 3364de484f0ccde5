#include "companions/print_processor/pdf_job.h"

#include <winddiui.h>
#include <winspool.h>

#include <vector>

#include "common/ErrorNotify.h"
#include "common/printer_handle.h"
#include "common/qk/handle.h"
#include "common/qk/module.h"
#include "common/qk/text.h"
#include "companions/host/driver_module.h"
#include "companions/host/event_player.h"
#include "companions/host/host_error.h"
#include "companions/host/record_fields.h"
#include "companions/host/renderer.h"
#include "companions/print_processor/renderer_watch.h"

namespace processor {

namespace {

constexpr LONG kFailure = -1;

void tell(DWORD code, const std::wstring& what) {
    const std::wstring caption = qk::kProductName;
    ZRTK_ErrorNotify(caption, nullptr, code, 0, L"No PDF file was created: " + what + L".", caption);
}

std::wstring module_path(HANDLE printer) {
    const qk::SizedAnswer answer = qk::read_sized(
        [printer](BYTE* buffer, DWORD size, DWORD* needed) {
            return GetPrinterDriverW(printer, nullptr, 3, buffer, size, needed);
        },
        sizeof(DRIVER_INFO_3W));
    const auto* driver = reinterpret_cast<const DRIVER_INFO_3W*>(answer.bytes.get());
    return driver && driver->pConfigFile ? driver->pConfigFile : std::wstring();
}

class PdfJob {
public:
    PdfJob(const SpooledJob& job, const std::wstring& spool, HANDLE printer, const host::DriverModule& module)
        : job_(job), spool_(spool), events_(module.document_event, printer) {}

    void run() {
        events_.query_filter(job_.printer.c_str());
        DOCINFOW document = {};
        document.cbSize = sizeof document;
        document.lpszDocName = job_.document.c_str();
        if (events_.start_doc_pre(document) == kFailure)
            return tell_refusal(events_.last_error());
        events_.start_doc_post(static_cast<int>(job_.number));
        std::vector<wchar_t> arena(32 * 1024);  // for the texts of the result
        RendererWatch watch(job_.document, spool_);
        try {
            const DWORD exit_code =
                host::run_renderer({GetCurrentThreadId(), job_.printer, spool_, L"", false,
                                    [&watch](HANDLE process, HANDLE lines) { watch.wait(process, lines); },
                                    watch.cancel_event()},
                                   arena);
            // Who cancels too late has the PDF.
            if (watch.cancelled() && exit_code != 0)
                abort();
            else
                end(exit_code);
        } catch (const host::HostError& error) {
            abort();
            tell(ERROR_FILE_NOT_FOUND, error.text);
        } catch (...) {  // no memory
            abort();
            throw;
        }
    }

private:
    // The module tells a job that it refuses, and then leaves no error.
    static void tell_refusal(DWORD error) {
        if (error != ERROR_SUCCESS && !host::means_cancelled(error))
            tell(error, host::with_reason(L"the document cannot be started", error));
    }

    void abort() {
        host::discard_reserved_file(GetCurrentThreadId());
        events_.send(DOCUMENTEVENT_ABORTDOC);
    }

    void end(DWORD exit_code) {
        const auto result = host::find_result_record(GetCurrentThreadId());
        const bool unexplained = exit_code != 0 && (!result || result->error_code == 0);
        if (unexplained)
            host::discard_reserved_file(GetCurrentThreadId());
        events_.send(DOCUMENTEVENT_ENDDOCPRE);
        events_.send(DOCUMENTEVENT_ENDDOCPOST);  // tells what the result record says
        if (unexplained)
            tell(exit_code, qk::format(L"the renderer ended with code %u", exit_code));
    }

    const SpooledJob& job_;
    const std::wstring& spool_;
    host::EventPlayer events_;
};

}  // namespace

void make_pdf(const SpooledJob& job, const std::wstring& spool) {
    qk::PrinterHandleObj printer;
    if (!OpenPrinterW(const_cast<wchar_t*>(job.printer.c_str()), printer.put(), nullptr)) {
        const DWORD error = GetLastError();
        return tell(error, host::with_reason(L"cannot open the printer " + job.printer, error));
    }
    try {
        const host::DriverModule module = host::load_module(module_path(printer.get()));
        PdfJob(job, spool, printer.get(), module).run();
    } catch (const host::HostError& error) {
        tell(ERROR_MOD_NOT_FOUND, error.text);
    }
}

}  // namespace processor
