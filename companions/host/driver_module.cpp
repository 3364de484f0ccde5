#include "companions/host/driver_module.h"

#include "companions/host/printer_setup.h"

namespace host {

DriverModule load_module(const std::wstring& path) {
    qk::DLL library(LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!library)
        throw installation_fault(L"cannot load " + path, GetLastError());
    auto* document_event = driver_export<DocumentEvent>(library, path, "DrvDocumentEvent");
    return {path, std::move(library), document_event};
}

DriverModule load_driver_module() {
    const auto path = find_driver_module();
    if (!path)
        throw HostError{ExitCode::kInstallation, L"the driver is not installed; run: zr_print install"};
    return load_module(*path);
}

}  // namespace host
