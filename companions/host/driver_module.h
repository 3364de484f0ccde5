// The driver's user-interface module, loaded as the print system loads it.
#pragma once

#include <string>

#include "common/qk/handle.h"
#include "companions/host/event_player.h"

namespace host {

struct DriverModule {
    std::wstring path;
    qk::DLL library;
    DocumentEvent* document_event;  // valid while `library` is loaded
};

// Loads the module at `path` as the print system does. Throws HostError (installation).
[[nodiscard]] DriverModule load_module(const std::wstring& path);

// Loads the module that the spooler has registered for the printer's driver. Throws HostError (installation).
[[nodiscard]] DriverModule load_driver_module();

}  // namespace host
