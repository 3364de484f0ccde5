#include "companions/host/printer_setup.h"

#include <winspool.h>

#include <string_view>

#include "common/qk/module.h"
#include "common/qk/registry.h"
#include "common/qk/text.h"
#include "companions/host/host_error.h"
#include "companions/host/print_processor.h"
#include "companions/host/resource.h"
#include "companions/host/spooler.h"
#include "companions/host/stage_files.h"
#include "companions/print_processor/names.h"
#include "companions/system_texts.h"

namespace host {

namespace {

constexpr wchar_t kFormerDefault[] = L"FormerDefaultPrinter";  // of the user's product key
constexpr DWORD kDriverVersion = 3;

std::string_view data_file_bytes() {
    const HRSRC found = FindResourceW(nullptr, MAKEINTRESOURCEW(IDR_DATA_FILE), RT_RCDATA);
    const HGLOBAL loaded = found ? LoadResource(nullptr, found) : nullptr;
    if (!loaded)
        throw HostError{ExitCode::kInternal, L"the printer's data file is missing in this program"};
    return {static_cast<const char*>(LockResource(loaded)), SizeofResource(nullptr, found)};
}

std::wstring default_printer() {
    wchar_t name[MAX_PATH] = {};
    DWORD units = static_cast<DWORD>(std::size(name));
    return GetDefaultPrinterW(name, &units) ? name : std::wstring();
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
    if (written != bytes.size())  // which is no error to every system
        throw installation_fault(L"cannot write " + path, ERROR_DISK_FULL);
    return true;
}

std::optional<std::wstring> find_driver_module() {
    DWORD count = 0;
    const qk::SizedAnswer answer = qk::read_sized([&count](BYTE* buffer, DWORD size, DWORD* needed) {
        return EnumPrinterDriversW(nullptr, writable(kEnvironment), 3, buffer, size, needed, &count);
    });
    const auto* drivers = reinterpret_cast<const DRIVER_INFO_3W*>(answer.bytes.get());
    for (DWORD at = 0; drivers && at < count; ++at)
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
    driver.pDriverPath = writable(processor::kSystemLibrary);
    driver.pDataFile = writable(kDataFile);
    driver.pConfigFile = writable(kConfigFile);
    if (!AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&driver), APD_COPY_NEW_FILES) &&
        GetLastError() != ERROR_PRINTER_DRIVER_ALREADY_INSTALLED)
        throw installation_fault(L"the driver cannot be installed", GetLastError());
    return true;
}

PrinterWay printer_way(HANDLE printer) {
    const qk::SizedAnswer answer =
        qk::read_sized([printer](BYTE* buffer, DWORD size,
                                 DWORD* needed) { return GetPrinterW(printer, 2, buffer, size, needed); },
                       sizeof(PRINTER_INFO_2W));
    const auto* info = reinterpret_cast<const PRINTER_INFO_2W*>(answer.bytes.get());
    const auto text = [](const wchar_t* told) { return told ? std::wstring(told) : std::wstring(); };
    return info ? PrinterWay{text(info->pPrintProcessor), text(info->pPortName), text(info->pDatatype)}
                : PrinterWay{};
}

bool leads_to_pdf(const PrinterWay& way) {
    return qk::equal_no_case(way.processor, processor::kName) &&
           qk::equal_no_case(way.port, processor::kPort) &&
           way.datatype == needed_datatype();  // which the print system compares as it stands
}

bool ensure_printer() {
    bool was_default = false;
    if (qk::PrinterHandleObj there = open_printer()) {
        if (leads_to_pdf(printer_way(there.get())))
            return false;
        // Not every spooler changes a printer's processor; each makes a printer with the one that is named.
        there.reset();
        was_default = is_default_printer();
        remove_printer();
    }
    PRINTER_INFO_2W printer = {};
    printer.pPrinterName = writable(qk::kProductName);
    printer.pDriverName = writable(qk::kProductName);
    printer.pPortName = writable(processor::kPort);
    printer.pPrintProcessor = writable(processor::kName);
    printer.pDatatype = writable(needed_datatype());
    printer.pComment = writable(L"Makes PDF files");
    const qk::PrinterHandleObj made(AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&printer)));
    if (!made && GetLastError() != ERROR_PRINTER_ALREADY_EXISTS)
        throw installation_fault(L"the printer cannot be installed", GetLastError());
    if (was_default)  // it was forgotten with the printer
        SetDefaultPrinterW(qk::kProductName);
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

bool is_default_printer() {
    return qk::equal_no_case(default_printer(), qk::kProductName);
}

void make_default_printer() {
    const std::wstring former = default_printer();
    if (is_default_printer())
        return;
    if (!SetDefaultPrinterW(qk::kProductName))
        throw installation_fault(L"the printer cannot be made the default", GetLastError());
    if (former.empty())
        return;
    const qk::RegKey key = qk::registry::create(HKEY_CURRENT_USER, qk::registry::kRoot, KEY_WRITE);
    if (key)
        (void)companions::store_text(key.get(), kFormerDefault, former);
}

std::wstring restore_default_printer(bool was_default) {
    constexpr wchar_t kUsersDevice[] = L"Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows";
    const auto now = qk::registry::find_text(HKEY_CURRENT_USER, kUsersDevice, L"Device").value_or(L"");
    const bool dangling = qk::starts_with_no_case(now, std::wstring(qk::kProductName) + L',');
    if (dangling)  // not every spooler forgets the default printer with the printer
        RegDeleteKeyValueW(HKEY_CURRENT_USER, kUsersDevice, L"Device");
    const auto former = qk::registry::find_text(HKEY_CURRENT_USER, qk::registry::kRoot, kFormerDefault);
    if (!former)
        return {};
    RegDeleteKeyValueW(HKEY_CURRENT_USER, qk::registry::kRoot, kFormerDefault);
    // A spooler may have put the first printer that it has in this one's place.
    const bool chosen_since = !was_default && !now.empty() && !dangling;
    return !chosen_since && SetDefaultPrinterW(former->c_str()) ? *former : std::wstring();
}

}  // namespace host
