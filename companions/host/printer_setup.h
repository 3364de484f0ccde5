// The printer and its driver in the spooler.
#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "common/printer_handle.h"

namespace host {

inline constexpr wchar_t kDataFile[] = L"Vantrix.ppd";
inline constexpr wchar_t kConfigFile[] = L"ZR_UI80.dll";

// The folder that the spooler loads this system's drivers from, with its trailing backslash. Throws HostError
// (installation) when the spooler does not tell.
[[nodiscard]] std::wstring driver_folder();

// Writes the printer's data file, which is a resource of this program, into `folder` unless it is there with
// the same bytes; true when it was written. Throws HostError (installation) when that fails.
bool provide_data_file(const std::wstring& folder);

// The path of the driver's user-interface module as the spooler has it registered; nothing when the driver is
// not installed.
[[nodiscard]] std::optional<std::wstring> find_driver_module();

// Each makes what is missing; true when it did. Throws HostError (installation) when that fails.
bool ensure_driver();
bool ensure_printer();  // also anew, where it does not go through the product's print processor to its port

// Which way the printer's documents go.
struct PrinterWay {
    std::wstring processor;
    std::wstring port;
    std::wstring datatype;
};

// Empty texts when the spooler does not tell.
[[nodiscard]] PrinterWay printer_way(HANDLE printer);

// Whether that is the way on which programs' documents become PDFs.
[[nodiscard]] bool leads_to_pdf(const PrinterWay& way);

// Each is true when there was something to remove.
bool remove_printer();
bool remove_driver();

// The printer; empty, with the last error, when it cannot be opened.
[[nodiscard]] qk::PrinterHandleObj open_printer(ACCESS_MASK access = 0);

// The document settings that an application starts from; empty when the driver gives none.
[[nodiscard]] std::vector<std::byte> default_mode(HANDLE printer);

// Makes the printer the current user's default. Throws HostError (installation).
void make_default_printer();

[[nodiscard]] bool is_default_printer();

// Makes the printer that was the user's default before this one so again, where it still is there; its name,
// empty when there is none. To be called when this printer is gone; `was_default`: it was the default then.
std::wstring restore_default_printer(bool was_default);

}  // namespace host
