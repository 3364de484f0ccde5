#include "companions/host/properties.h"

#include <winspool.h>

#include <compstui.h>

#include <cstddef>

#include "common/qk/module.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/rwPDFSet_functions.h"
#include "companions/host/host_error.h"
#include "companions/host/printer_setup.h"
#include "companions/host/report_parts.h"
#include "companions/host/setting_choice.h"

namespace host {

namespace {

constexpr DWORD kNoPermission = 32;  // of DocumentProperties' mode: nothing may be changed

using AskPrinter = BOOL WINAPI(HWND window, HANDLE printer);
using AskDocument = LONG WINAPI(HWND window, HANDLE printer, LPWSTR device, DEVMODEW* output, DEVMODEW* input,
                                DWORD mode);

DEVMODEW* mode_in(std::vector<std::byte>& bytes) noexcept {
    return reinterpret_cast<DEVMODEW*>(bytes.data());
}

const wchar_t* document_result_name(LONG result) noexcept {
    if (result == CPSUI_CANCEL || result == IDCANCEL)  // the former as Wine's print system tells it
        return L"cancelled";
    return result == IDOK ? L"OK" : L"failed";
}

void show_document(const Options& options, const DriverModule& module, HANDLE printer, SheetReport& report) {
    std::vector<std::byte> in = default_mode(printer);
    if (in.empty())
        throw HostError{ExitCode::kInstallation, L"the driver gives no document settings"};
    std::vector<std::byte> out = in;
    report.call = options.direct ? L"DrvDocumentProperties" : L"DocumentPropertiesW";
    AskDocument* properties = &DocumentPropertiesW;
    if (options.direct)
        properties = driver_export<AskDocument>(module.library, module.path, "DrvDocumentProperties");
    const DWORD mode =
        DM_IN_BUFFER | DM_OUT_BUFFER | DM_IN_PROMPT | (options.no_permission ? kNoPermission : 0);
    report.result =
        properties(nullptr, printer, const_cast<wchar_t*>(qk::kProductName), mode_in(out), mode_in(in), mode);
    report.result_name = document_result_name(report.result);
    report.before = fields_of(*mode_in(in));
    report.after = fields_of(*mode_in(out));
}

void show_printer(const DriverModule& module, HANDLE printer, SheetReport& report) {
    auto* properties = driver_export<AskPrinter>(module.library, module.path, "PrinterProperties");
    report.call = L"PrinterProperties";
    report.result = properties(nullptr, printer);
    report.result_name = report.result ? L"OK" : L"cancelled";
}

}  // namespace

Fields fields_of(const DEVMODEW& mode) {
    const auto number = [](const wchar_t* name, int value) {
        return Field{name, qk::format(L"%d", value), true};
    };
    return {
        number(L"scale", mode.dmScale),
        number(L"resolution", mode.dmPrintQuality),
        number(L"orientation", mode.dmOrientation),
        number(L"paper", mode.dmPaperSize),
        number(L"paper_width", mode.dmPaperWidth),
        number(L"paper_length", mode.dmPaperLength),
        {L"form_name", std::wstring(mode.dmFormName, wcsnlen(mode.dmFormName, CCHFORMNAME))},
        {L"fields", qk::format(L"0x%08X", mode.dmFields)},
    };
}

SheetReport show_properties(const Options& options, const DriverModule& module) {
    SheetReport report;
    qk::PrinterHandleObj printer = open_printer(PRINTER_ALL_ACCESS);
    if (!printer)
        printer = open_printer();
    if (!printer)
        throw installation_fault(L"the printer cannot be opened", GetLastError());
    std::optional<SettingTurn> turn;
    if (!options.setting.empty()) {
        const std::wstring setting = setting_for_module(options.setting);
        if (!qk::is_file(SettingPathOf(setting)))
            throw HostError{ExitCode::kUsage, L"there is no print setting " + options.setting};
        turn.emplace().choose(setting);
    }
    const SheetWatch watch(options.button);
    if (options.printer_sheet)
        show_printer(module, printer.get(), report);
    else
        show_document(options, module, printer.get(), report);
    report.sheets = watch.sheets();
    return report;
}

std::vector<std::wstring> report_lines(const SheetReport& report) {
    std::vector<std::wstring> lines;
    if (report.sheets.empty())
        lines.push_back(L"no sheet was shown");
    for (const SeenSheet& sheet : report.sheets) {
        std::wstring line = padded(L"sheet") + L"\"" + sheet.title + L"\":";
        for (const std::wstring& page : sheet.pages)
            line += L" [" + page + L"]";
        lines.push_back(line);
    }
    lines.push_back(padded(L"result") + qk::format(L"%s, %s gave %d", report.result_name.c_str(),
                                                   report.call.c_str(), report.result));
    if (report.before)
        add_record(lines, L"document settings before", report.before);
    if (report.after)
        add_record(lines, L"document settings after", report.after);
    return lines;
}

std::string report_json(const SheetReport& report) {
    picojson::array sheets;
    for (const SeenSheet& seen : report.sheets) {
        picojson::object sheet;
        sheet["title"] = json_text(seen.title);
        sheet["pages"] = json_texts(seen.pages);
        sheets.emplace_back(sheet);
    }
    picojson::object object;
    object["call"] = json_text(report.call);
    object["sheets"] = picojson::value(sheets);
    object["result"] = picojson::value(static_cast<double>(report.result));
    object["result_name"] = json_text(report.result_name);
    object["before"] = json_record(report.before);
    object["after"] = json_record(report.after);
    object["trace"] = json_texts(report.trace);
    return picojson::value(object).serialize(true);
}

}  // namespace host
