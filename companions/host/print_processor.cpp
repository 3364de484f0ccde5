#include "companions/host/print_processor.h"

#include <windows.h>

#include <winspool.h>

#include "common/qk/handle.h"
#include "common/qk/registry.h"
#include "common/qk/text.h"
#include "companions/host/host_error.h"
#include "companions/host/spooler.h"
#include "companions/print_processor/names.h"

namespace host {

namespace {

std::wstring processor_key(const wchar_t* name) {
    return environment_key() + L"\\Print Processors" + name;
}

// Where the library still serves the GDI as a driver, the GDI draws through it and spools what it wrote.
bool spools_emf() {
    const qk::DLL library(LoadLibraryW((processor_folder() + processor::kSystemLibrary).c_str()));
    return library && !GetProcAddress(library.get(), "wine_get_gdi_driver") &&
           GetProcAddress(library.get(), "EnumPrintProcessorDatatypesW");
}

}  // namespace

const wchar_t* needed_datatype() {
    return spools_emf() ? processor::kEmf : processor::kRaw;
}

std::wstring print_processor_text(const std::wstring& name) {
    if (!qk::equal_no_case(name, processor::kName))
        return name;
    return std::wstring(processor::kName) + L", documents are spooled as " +
           (spools_emf() ? L"EMF" : L"PostScript");
}

std::wstring processor_folder() {
    wchar_t folder[MAX_PATH] = {};
    DWORD needed = 0;
    if (!GetPrintProcessorDirectoryW(nullptr, writable(kEnvironment), 1, reinterpret_cast<BYTE*>(folder),
                                     sizeof folder, &needed))
        throw installation_fault(L"the spooler names no folder of print processors", GetLastError());
    return std::wstring(folder) + L'\\';
}

std::wstring find_processor_library() {
    const std::wstring key = processor_key(L"\\") + processor::kName;
    const auto library = qk::registry::find_text(HKEY_LOCAL_MACHINE, key, L"Driver");
    return library ? processor_folder() + *library : std::wstring();
}

bool ensure_print_processor() {
    const std::wstring wanted = processor_folder() + processor::kLibrary;
    if (qk::equal_no_case(find_processor_library(), wanted))
        return false;
    if (!AddPrintProcessorW(nullptr, writable(kEnvironment), writable(processor::kLibrary),
                            writable(processor::kName)))
        throw installation_fault(L"the print processor cannot be installed", GetLastError());
    return true;
}

void remove_key_if_empty(HKEY hive, const std::wstring& path) {
    DWORD keys = 1;
    DWORD values = 1;
    qk::RegKey key = qk::registry::open(hive, path);
    if (key)
        RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr,
                         nullptr, nullptr, nullptr);
    key.reset();
    if (keys == 0 && values == 0)
        RegDeleteKeyW(hive, path.c_str());
}

bool remove_print_processor() {
    if (find_processor_library().empty())
        return false;
    DeletePrintProcessorW(nullptr, writable(kEnvironment), writable(processor::kName));
    // Wine's does nothing.
    const std::wstring key = processor_key(L"\\") + processor::kName;
    const auto error = static_cast<DWORD>(RegDeleteKeyW(HKEY_LOCAL_MACHINE, key.c_str()));
    if (error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND)
        throw installation_fault(L"the print processor cannot be removed", error);
    remove_key_if_empty(HKEY_LOCAL_MACHINE, processor_key(L""));
    return true;
}

}  // namespace host
