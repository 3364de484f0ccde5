// The printer's two property sheets, opened as programs open them.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "companions/host/driver_module.h"
#include "companions/host/options.h"
#include "companions/host/record_fields.h"
#include "companions/host/sheet_watch.h"

namespace host {

struct SheetReport {
    std::wstring call;              // the function that opened the sheet
    std::vector<SeenSheet> sheets;  // that were shown
    LONG result = 0;
    std::wstring result_name;      // OK, cancelled, failed
    std::optional<Fields> before;  // the caller's document settings; nothing for the printer's sheet
    std::optional<Fields> after;
    std::vector<std::wstring> trace;
};

// Opens the sheet that the options ask for and waits until it is closed. Throws HostError when the
// installation is incomplete.
[[nodiscard]] SheetReport show_properties(const Options& options, const DriverModule& module);

// What a DEVMODE says of the page; units are those of its members.
[[nodiscard]] Fields fields_of(const DEVMODEW& mode);

[[nodiscard]] std::vector<std::wstring> report_lines(const SheetReport& report);

// One JSON object, in UTF-8.
[[nodiscard]] std::string report_json(const SheetReport& report);

}  // namespace host
