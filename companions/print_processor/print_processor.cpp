// The exports of the print processor. The print system keeps its list of jobs locked around every call, and
// for ever when loading, the datatypes or opening fails: so these never do, whatever they are given; only
// printing can fail. The library is unloaded after each job and keeps nothing.
#include <windows.h>

#include <winspool.h>
#include <winsplp.h>

#include <cstring>
#include <memory>
#include <string_view>

#include "common/qk/guard.h"
#include "common/qk/handle.h"
#include "common/qk/process.h"
#include "companions/host/host_error.h"
#include "companions/host/spool_file.h"
#include "companions/leftovers.h"
#include "companions/print_processor/names.h"
#include "companions/print_processor/pdf_job.h"
#include "companions/print_processor/spooled_job.h"
#include "companions/system_texts.h"

namespace {

using processor::SpooledJob;

constexpr const wchar_t* kDatatypes[] = {processor::kRaw, L"RAW [FF appended]", L"RAW [FF auto]",
                                         processor::kText, processor::kEmf};

constexpr wchar_t kSpoolStart[] = L"zr_spool_";  // of a spool file's name

// Stands for a job that there was no memory for.
char no_job;

size_t datatypes_size() noexcept {
    size_t size = 0;
    for (const wchar_t* type : kDatatypes)
        size += sizeof(DATATYPES_INFO_1W) + (wcslen(type) + 1) * sizeof(wchar_t);
    return size;
}

void put_datatypes(BYTE* buffer) noexcept {
    auto* info = reinterpret_cast<DATATYPES_INFO_1W*>(buffer);
    BYTE* text = buffer + std::size(kDatatypes) * sizeof *info;
    for (const wchar_t* type : kDatatypes) {
        const size_t bytes = (wcslen(type) + 1) * sizeof(wchar_t);
        std::memcpy(text, type, bytes);
        info++->pName = reinterpret_cast<wchar_t*>(text);
        text += bytes;
    }
}

std::wstring text_of(const wchar_t* text) {
    return text ? text : std::wstring();
}

std::unique_ptr<SpooledJob> job_of(const PRINTPROCESSOROPENDATA& data) {
    auto job = std::make_unique<SpooledJob>();
    job->printer = text_of(data.pPrinterName);
    job->document = text_of(data.pDocumentName);
    job->datatype = text_of(data.pDatatype);
    job->output = text_of(data.pOutputFile);
    job->number = data.JobId;
    if (const auto* mode = reinterpret_cast<const std::byte*>(data.pDevMode))
        job->mode.assign(mode, mode + data.pDevMode->dmSize + data.pDevMode->dmDriverExtra);
    return job;
}

// A file that is gone in every end; that of a program which was killed when the next one prints.
class SpoolFile {
public:
    SpoolFile() {
        const std::wstring all = companions::temporary_folder() + kSpoolStart + L'*';
        companions::delete_leftovers(all, [](std::wstring_view name) {
            const auto owner = companions::find_process(name, kSpoolStart, L'_');
            return owner && qk::is_gone(*owner);
        });
        path_ = host::make_spool_file(kSpoolStart);
    }
    ~SpoolFile() {
        const qk::LastErrorKeeper keep;
        DeleteFileW(path_.c_str());
    }
    SpoolFile(const SpoolFile&) = delete;
    SpoolFile& operator=(const SpoolFile&) = delete;

    [[nodiscard]] const std::wstring& path() const noexcept { return path_; }

private:
    std::wstring path_;
};

bool print(const SpooledJob& job) {
    if (!processor::goes_to_port(job))
        return processor::write_postscript(job, job.output);
    // The number that the print system names its own file by begins at 1 in every program: another program's
    // job may soon have that file.
    const SpoolFile spool;
    if (!processor::write_postscript(job, spool.path()))
        return false;
    processor::make_pdf(job, spool.path());
    return true;
}

}  // namespace

extern "C" {

BOOL WINAPI EnumPrintProcessorDatatypesW(wchar_t*, wchar_t*, DWORD level, BYTE* buffer, DWORD size,
                                         DWORD* needed, DWORD* count) {
    if (!needed || !count || level != 1) {
        SetLastError(level == 1 ? ERROR_INVALID_PARAMETER : ERROR_INVALID_LEVEL);
        return FALSE;
    }
    *needed = static_cast<DWORD>(datatypes_size());
    *count = 0;
    if (!buffer || size < *needed) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    put_datatypes(buffer);
    *count = static_cast<DWORD>(std::size(kDatatypes));
    return TRUE;
}

HANDLE WINAPI OpenPrintProcessor(wchar_t*, PRINTPROCESSOROPENDATA* data) {
    return qk::guarded<HANDLE>(&no_job, [data]() -> HANDLE {
        if (!data)
            return &no_job;
        return job_of(*data).release();
    });
}

BOOL WINAPI PrintDocumentOnPrintProcessor(HANDLE handle, wchar_t* document) {
    if (!handle || handle == &no_job || !document) {
        SetLastError(handle == &no_job ? ERROR_OUTOFMEMORY : ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return qk::guarded<BOOL>(FALSE, [handle, document] {
        auto& job = *static_cast<SpooledJob*>(handle);
        job.name = document;
        try {
            return print(job);
        } catch (const host::HostError&) {
            SetLastError(ERROR_CANNOT_MAKE);
            return false;
        }
    });
}

BOOL WINAPI ClosePrintProcessor(HANDLE handle) {
    if (!handle) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if (handle != &no_job)
        delete static_cast<SpooledJob*>(handle);
    return TRUE;
}

// A job is over when the call that prints it returns: there is nothing to halt.
BOOL WINAPI ControlPrintProcessor(HANDLE, DWORD) {
    SetLastError(ERROR_NOT_SUPPORTED);
    return FALSE;
}

}  // extern "C"
