#include "companions/host/print_processor.h"

#include <windows.h>

#include <winspool.h>

#include "common/qk/handle.h"
#include "common/qk/text.h"

namespace host {

namespace {

constexpr wchar_t kEmfLibrary[] = L"wineps.drv";
const PrintProcessor kEmf = {L"wineps", L"NT EMF 1.003", L"documents are spooled as EMF"};
const PrintProcessor kRaw = {L"WinPrint", L"RAW", L"documents are spooled as PostScript"};

// The folder of the print processors' libraries, without a trailing backslash; empty when the spooler does
// not tell.
std::wstring processor_folder() {
    wchar_t folder[MAX_PATH] = {};
    DWORD needed = 0;
    const bool told = GetPrintProcessorDirectoryW(nullptr, nullptr, 1, reinterpret_cast<BYTE*>(folder),
                                                  sizeof folder, &needed);
    return told ? folder : std::wstring();
}

// Where the library still serves the GDI as a driver, the GDI draws through it and spools what it wrote.
bool spools_emf() {
    const std::wstring folder = processor_folder();
    const qk::DLL library(folder.empty() ? nullptr : LoadLibraryW((folder + L'\\' + kEmfLibrary).c_str()));
    return library && !GetProcAddress(library.get(), "wine_get_gdi_driver") &&
           GetProcAddress(library.get(), "EnumPrintProcessorDatatypesW");
}

}  // namespace

PrintProcessor needed_print_processor() {
    return spools_emf() ? kEmf : kRaw;
}

std::wstring print_processor_text(const std::wstring& name) {
    for (const PrintProcessor* known : {&kEmf, &kRaw})
        if (qk::equal_no_case(name, known->name))
            return known->name + L", " + known->meaning;
    return name;
}

}  // namespace host
