// The driver's user-interface module, loaded as the print system loads it.
#pragma once

#include <string>

#include "common/qk/handle.h"
#include "common/qk/text.h"
#include "companions/host/event_player.h"
#include "companions/host/host_error.h"

namespace host {

struct DriverModule {
    std::wstring path;
    qk::DLL library;
    DocumentEvent* document_event;  // valid while `library` is loaded
};

// A function that the module, loaded from `path`, has to have. Throws HostError (installation).
template <class Function>
[[nodiscard]] Function* driver_export(const qk::DLL& library, const std::wstring& path, const char* name) {
    auto* function = qk::find_export<Function>(library.get(), name);
    if (!function)
        throw HostError{ExitCode::kInstallation, path + L" has no " + qk::to_wide(name)};
    return function;
}

// Loads the module at `path` as the print system does. Throws HostError (installation).
[[nodiscard]] DriverModule load_module(const std::wstring& path);

// Loads the module that the spooler has registered for the printer's driver. Throws HostError (installation).
[[nodiscard]] DriverModule load_driver_module();

}  // namespace host
