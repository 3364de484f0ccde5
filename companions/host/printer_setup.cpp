#include "companions/host/printer_setup.h"

#include <winspool.h>

#include <string_view>

#include "common/qk/module.h"
#include "common/qk/text.h"
#include "companions/host/host_error.h"
#include "companions/host/print_processor.h"
#include "companions/host/resource.h"
#include "companions/host/stage_files.h"

namespace host {

namespace {

constexpr wchar_t kEnvironment[] = L"Windows x64";
constexpr wchar_t kDriverFile[] = L"wineps.drv";  // draws the pages as PostScript
// Where programs print to; each job of the host names a file of its own.
constexpr wchar_t kPort[] = L"C:\\vantrix.ps";
constexpr DWORD kDriverVersion = 3;

HostError installation_fault(const std::wstring& what, DWORD error) {
    return {ExitCode::kInstallation, with_reason(what, error)};
}

// The interfaces of the spooler take texts that they do not change through pointers to writable ones.
wchar_t* writable(const wchar_t* text) noexcept {
    return const_cast<wchar_t*>(text);
}

std::string_view data_file_bytes() {
    const HRSRC found = FindResourceW(nullptr, MAKEINTRESOURCEW(IDR_DATA_FILE), RT_RCDATA);
    const HGLOBAL loaded = found ? LoadResource(nullptr, found) : nullptr;
    if (!loaded)
        throw HostError{ExitCode::kInternal, L"the printer's data file is missing in this program"};
    return {static_cast<const char*>(LockResource(loaded)), SizeofResource(nullptr, found)};
}

std::vector<std::byte> installed_drivers(DWORD& count) {
    DWORD needed = 0;
    EnumPrinterDriversW(nullptr, writable(kEnvironment), 3, nullptr, 0, &needed, &count);
    std::vector<std::byte> drivers(needed);
    count = 0;
    if (needed != 0)
        EnumPrinterDriversW(nullptr, writable(kEnvironment), 3, reinterpret_cast<BYTE*>(drivers.data()),
                            needed, &needed, &count);
    return drivers;
}

}  // namespace

std::wstring driver_folder() {
    wchar_t folder[MAX_PATH] = {};
    DWORD needed = 0;
    if (!GetPrinterDriverDirectoryW(nullptr, writable(kEnvironment), 1, reinterpret_cast<BYTE*>(folder),
                                    sizeof folder, &needed))
        throw installation_fault(L"the spooler names no driver folder", GetLastError());
    return qk::format(L"%s\\%u\\", folder, kDriverVersion);
}

bool provide_data_file(const std::wstring& folder) {
    const std::wstring path = folder + kDataFile;
    const std::string_view bytes = data_file_bytes();
    if (find_bytes(path) == bytes)
        return false;
    const qk::FileObj file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD written = 0;
    if (!file || !WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr))
        throw installation_fault(L"cannot write " + path, GetLastError());
    return true;
}

std::optional<std::wstring> find_driver_module() {
    DWORD count = 0;
    const std::vector<std::byte> bytes = installed_drivers(count);
    const auto* drivers = reinterpret_cast<const DRIVER_INFO_3W*>(bytes.data());
    for (DWORD at = 0; at < count; ++at)
        if (drivers[at].pName && qk::equal_no_case(drivers[at].pName, qk::kProductName))
            return drivers[at].pConfigFile ? std::wstring(drivers[at].pConfigFile) : std::wstring();
    return std::nullopt;
}

bool ensure_driver() {
    const auto registered = find_driver_module();
    if (registered && qk::equal_no_case(*registered, driver_folder() + kConfigFile))
        return false;
    if (registered)
        remove_driver();
    DRIVER_INFO_3W driver = {};
    driver.cVersion = kDriverVersion;
    driver.pName = writable(qk::kProductName);
    driver.pEnvironment = writable(kEnvironment);
    driver.pDriverPath = writable(kDriverFile);
    driver.pDataFile = writable(kDataFile);
    driver.pConfigFile = writable(kConfigFile);
    if (!AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&driver), APD_COPY_NEW_FILES) &&
        GetLastError() != ERROR_PRINTER_DRIVER_ALREADY_INSTALLED)
        throw installation_fault(L"the driver cannot be installed", GetLastError());
    return true;
}

std::wstring printer_processor(HANDLE printer) {
    DWORD needed = 0;
    GetPrinterW(printer, 2, nullptr, 0, &needed);
    std::vector<std::byte> bytes(needed);
    if (needed < sizeof(PRINTER_INFO_2W) ||
        !GetPrinterW(printer, 2, reinterpret_cast<BYTE*>(bytes.data()), needed, &needed))
        return {};
    const wchar_t* name = reinterpret_cast<const PRINTER_INFO_2W*>(bytes.data())->pPrintProcessor;
    return name ? name : std::wstring();
}

bool ensure_printer() {
    PrintProcessor processor = needed_print_processor();
    if (qk::PrinterHandleObj there = open_printer()) {
        if (qk::equal_no_case(printer_processor(there.get()), processor.name))
            return false;
        // Not every spooler changes the processor of a printer; each makes one with the processor that is
        // named.
        there.reset();
        remove_printer();
    }
    PRINTER_INFO_2W printer = {};
    printer.pPrinterName = writable(qk::kProductName);
    printer.pDriverName = writable(qk::kProductName);
    printer.pPortName = writable(kPort);
    printer.pPrintProcessor = processor.name.data();
    printer.pDatatype = processor.datatype.data();
    printer.pComment = writable(L"Makes PDF files");
    const qk::PrinterHandleObj made(AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&printer)));
    if (!made && GetLastError() != ERROR_PRINTER_ALREADY_EXISTS)
        throw installation_fault(L"the printer cannot be installed", GetLastError());
    return true;
}

bool remove_printer() {
    const qk::PrinterHandleObj printer = open_printer(PRINTER_ALL_ACCESS);
    if (!printer)
        return false;
    if (!DeletePrinter(printer.get()))
        throw installation_fault(L"the printer cannot be removed", GetLastError());
    return true;
}

bool remove_driver() {
    if (!find_driver_module())
        return false;
    if (!DeletePrinterDriverExW(nullptr, writable(kEnvironment), writable(qk::kProductName), 0, 0))
        throw installation_fault(L"the driver cannot be removed", GetLastError());
    return true;
}

qk::PrinterHandleObj open_printer(ACCESS_MASK access) {
    PRINTER_DEFAULTSW defaults = {nullptr, nullptr, access};
    qk::PrinterHandleObj printer;
    OpenPrinterW(writable(qk::kProductName), printer.put(), access == 0 ? nullptr : &defaults);
    return printer;
}

std::vector<std::byte> default_mode(HANDLE printer) {
    wchar_t* name = writable(qk::kProductName);
    const LONG size = DocumentPropertiesW(nullptr, printer, name, nullptr, nullptr, 0);
    std::vector<std::byte> mode(size > 0 ? static_cast<size_t>(size) : 0);
    if (mode.empty() || DocumentPropertiesW(nullptr, printer, name, reinterpret_cast<DEVMODEW*>(mode.data()),
                                            nullptr, DM_OUT_BUFFER) != IDOK)
        mode.clear();
    return mode;
}

void make_default_printer() {
    if (!SetDefaultPrinterW(qk::kProductName))
        throw installation_fault(L"the printer cannot be made the default", GetLastError());
}

}  // namespace host
