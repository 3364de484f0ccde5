#include "companions/print_processor/spooled_job.h"

#include <winspool.h>
#include <winsplp.h>

#include <string_view>

#include "common/printer_handle.h"
#include "common/qk/handle.h"
#include "common/qk/text.h"
#include "companions/host/print_processor.h"
#include "companions/host/printer_setup.h"
#include "companions/print_processor/names.h"

namespace processor {

namespace {

// Lays out the plain text that follows it in the same file: 80 letters a line, form feeds end pages.
constexpr std::string_view kTextProgram = R"(%!PS-Adobe-3.0
/Text /Courier findfont dup length dict begin {1 index /FID ne {def} {pop pop} ifelse} forall
/Encoding ISOLatin1Encoding def currentdict end definefont 10 scalefont setfont
/top currentpagedevice /PageSize get 1 get 56 sub def
/y top def /pages 0 def /buffer 65000 string def
/page {showpage /y top def /pages pages 1 add def} def
/line {y 56 lt {page} if 56 y moveto show /y y 12 sub def} def
/lines {{dup length 80 le {line exit} if dup 0 80 getinterval line
  80 1 index length 80 sub getinterval} loop} def
/document {{currentfile buffer readline exch 2 copy length 0 eq exch not and {pop pop exit} if
  {(\f) search {lines pop page} {lines exit} ifelse} loop not {exit} if} loop
  y top lt pages 0 eq or {page} if} def
document
)";

bool write(HANDLE file, const void* bytes, DWORD size) noexcept {
    DWORD written = 0;
    if (!WriteFile(file, bytes, size, &written, nullptr))
        return false;
    if (written != size)
        SetLastError(ERROR_DISK_FULL);
    return written == size;
}

// Cuts the file and removes it again, with the last error kept, unless the work on it succeeds; a file that
// cannot be opened for it stays as it is.
template <class Work>
bool fill_file(const std::wstring& target, Work work) {
    qk::FileObj file(
        CreateFileW(target.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr));
    if (!file)
        return false;
    const bool filled = work(file);
    file.reset();
    const qk::LastErrorKeeper keep;
    if (!filled)
        DeleteFileW(target.c_str());
    return filled;
}

bool copy_data(const SpooledJob& job, const std::wstring& target) {
    qk::PrinterHandleObj data;
    if (!OpenPrinterW(const_cast<wchar_t*>(job.name.c_str()), data.put(), nullptr))
        return false;
    return fill_file(target, [&](const qk::FileObj& file) {
        if (qk::equal_no_case(job.datatype, kText) &&
            !write(file.get(), kTextProgram.data(), static_cast<DWORD>(kTextProgram.size())))
            return false;
        std::vector<std::byte> piece(1 << 16);
        for (;;) {
            DWORD read = 0;
            if (!ReadPrinter(data.get(), piece.data(), static_cast<DWORD>(piece.size()), &read))
                return false;
            if (read == 0)
                return true;
            if (!write(file.get(), piece.data(), read))
                return false;
        }
    });
}

// The processor of the system's PostScript driver, of those releases whose driver has one.
struct EmfProcessor {
    decltype(&OpenPrintProcessor) open;
    decltype(&PrintDocumentOnPrintProcessor) print;
    decltype(&ClosePrintProcessor) close;
};

bool draw_emf(const SpooledJob& job, const std::wstring& target) {
    const qk::DLL library(LoadLibraryW((host::processor_folder() + kSystemLibrary).c_str()));
    if (!library)
        return false;
    EmfProcessor emf = {};
    const auto find = [&library]<class Function>(Function*& function, const char* name) {
        return (function = qk::find_export<Function>(library.get(), name)) != nullptr;
    };
    if (!find(emf.open, "OpenPrintProcessor") || !find(emf.print, "PrintDocumentOnPrintProcessor") ||
        !find(emf.close, "ClosePrintProcessor"))
        return false;
    SpooledJob own = job;
    std::wstring file = target;
    wchar_t port[] = L"FILE:, Port";
    PRINTPROCESSOROPENDATA data = {own.mode.empty() ? nullptr : reinterpret_cast<DEVMODEW*>(own.mode.data()),
                                   own.datatype.data(),
                                   nullptr,
                                   own.document.data(),
                                   own.number,
                                   file.data(),
                                   own.printer.data()};
    return fill_file(target, [&](qk::FileObj& cut) {
        cut.reset();  // the processor writes into what is there without cutting it
        const HANDLE opened = emf.open(port, &data);
        if (!opened)
            return false;
        const BOOL printed = emf.print(opened, own.name.data());
        const qk::LastErrorKeeper keep;
        emf.close(opened);
        return printed != FALSE;
    });
}

}  // namespace

bool write_postscript(const SpooledJob& job, const std::wstring& target) {
    return qk::equal_no_case(job.datatype, kEmf) ? draw_emf(job, target) : copy_data(job, target);
}

bool goes_to_port(const SpooledJob& job) {
    if (job.output.empty() || qk::equal_no_case(job.output, kPort))
        return true;
    qk::PrinterHandleObj printer;
    if (!OpenPrinterW(const_cast<wchar_t*>(job.printer.c_str()), printer.put(), nullptr))
        return false;
    const std::wstring port = host::printer_way(printer.get()).port;
    return !port.empty() && qk::equal_no_case(port, job.output);
}

}  // namespace processor
