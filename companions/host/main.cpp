// zr_print.exe: the program that plays the print system.
#include <windows.h>

#include <picojson.h>

#include <algorithm>
#include <iterator>
#include <mutex>
#include <optional>

#include "common/qk/lock.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "companions/host/console.h"
#include "companions/host/host_error.h"
#include "companions/host/install.h"
#include "companions/host/job.h"
#include "companions/host/options.h"
#include "companions/host/printer_setup.h"
#include "companions/host/properties.h"
#include "companions/host/report_parts.h"
#include "companions/host/setting_check.h"
#include "companions/host/trace_output.h"
#include "companions/system_texts.h"

namespace host {

namespace {

void print_lines(const std::vector<std::wstring>& lines) {
    for (const std::wstring& line : lines)
        print_line(line);
}

std::string steps_json(const InstallSteps& steps, bool good) {
    picojson::array array;
    for (const InstallStep& step : steps) {
        picojson::object object;
        object["what"] = picojson::value(qk::to_utf8(step.what));
        object["state"] = picojson::value(qk::to_utf8(step.state));
        object["good"] = picojson::value(step.good);
        array.emplace_back(object);
    }
    picojson::object object;
    object["steps"] = picojson::value(array);
    object["good"] = picojson::value(good);
    return picojson::value(object).serialize(true);
}

void show_step(const InstallStep& step) {
    print_line(step.what + L": " + step.state);
}

ExitCode finish(const Options& options, const InstallSteps& steps) {
    bool good = true;
    for (const InstallStep& step : steps)
        good = good && step.good;
    if (options.json)
        print_document(qk::to_wide(steps_json(steps, good)));
    return good ? ExitCode::kDone : ExitCode::kInstallation;
}

std::wstring stage_folder(const Options& options) {
    if (!options.from.empty())
        return companions::absolute_path(options.from) + L"\\";
    return companions::folder_part(qk::module_path(nullptr));
}

ExitCode run_install(const Options& options) {
    const InstallSteps steps = install(stage_folder(options), &show_step);
    if (options.notify_channels)
        set_notify_channels(*options.notify_channels);
    if (options.make_default)
        make_default_printer();
    return finish(options, steps);
}

ExitCode run_status(const Options& options) {
    const InstallSteps steps = installation_status();
    for (const InstallStep& step : steps)
        show_step(step);
    return finish(options, steps);
}

// Switches the trace on where a level is given, shows each of its lines at once and keeps it for the JSON
// report.
class TraceLines {
public:
    explicit TraceLines(std::optional<DWORD> level) {
        if (level)
            output_.emplace(*level, [this](const std::wstring& line) { add(line); });
    }
    [[nodiscard]] std::vector<std::wstring> take() {
        const std::lock_guard guard(lock_);
        return std::move(lines_);
    }

private:
    void add(const std::wstring& line) {
        const std::lock_guard guard(lock_);
        print_line(L"  trace " + line);
        lines_.push_back(line);
    }

    qk::Lock lock_;
    std::vector<std::wstring> lines_;
    std::optional<TraceOutput> output_;
};

ExitCode run_print(const Options& options) {
    if (options.notify_channels)
        set_notify_channels(*options.notify_channels);
    TraceLines trace(options.trace_level);
    JobReport report = print_file(options, load_driver_module());
    report.trace = trace.take();
    print_lines(report_lines(report));
    if (options.json)
        print_document(qk::to_wide(report_json(report)));
    return succeeded(report.outcome) ? ExitCode::kDone : ExitCode::kJobFailed;
}

ExitCode run_properties(const Options& options) {
    TraceLines trace(options.trace_level);
    SheetReport report = show_properties(options, load_driver_module());
    report.trace = trace.take();
    print_lines(report_lines(report));
    if (options.json)
        print_document(qk::to_wide(report_json(report)));
    return report.sheets.empty() || report.result < 0 ? ExitCode::kJobFailed : ExitCode::kDone;
}

ExitCode run_check(const Options& options) {
    std::vector<SettingFindings> files;
    ExitCode code = ExitCode::kDone;
    std::vector<std::wstring> paths;
    for (const std::wstring& given : options.setting_files)
        std::ranges::move(setting_files(given), std::back_inserter(paths));
    for (const std::wstring& path : paths) {
        files.push_back(check_setting(path));
        print_lines(report_lines(files.back()));
        if (!files.back().readable)
            code = ExitCode::kUsage;
        else if (!files.back().faults.empty() && code == ExitCode::kDone)
            code = ExitCode::kJobFailed;
    }
    if (options.json)
        print_document(qk::to_wide(report_json(files)));
    return code;
}

ExitCode run_diff(const Options& options) {
    const std::vector<std::wstring> changes =
        setting_differences(options.setting_files[0], options.setting_files[1]);
    print_lines(changes);
    if (options.json) {
        picojson::object object;
        object["changes"] = json_texts(changes);
        print_document(qk::to_wide(picojson::value(object).serialize(true)));
    }
    return changes.empty() ? ExitCode::kDone : ExitCode::kJobFailed;
}

ExitCode run(const Options& options) {
    if (options.json)
        keep_output_for_json();
    switch (options.command) {
        case Command::kInstall:
            return run_install(options);
        case Command::kUninstall:
            return finish(options, uninstall(&show_step));
        case Command::kStatus:
            return run_status(options);
        case Command::kPrint:
            return run_print(options);
        case Command::kProperties:
            return run_properties(options);
        case Command::kCheck:
            return run_check(options);
        case Command::kDiff:
            return run_diff(options);
    }
    return ExitCode::kInternal;
}

ExitCode fault(const Options& options, const HostError& error) {
    report_progress(L"zr_print: " + error.text);
    if (options.json) {
        picojson::object object;
        object["fault"] = picojson::value(qk::to_utf8(error.text));
        object["exit_code"] = picojson::value(static_cast<double>(error.exit_code));
        print_document(qk::to_wide(picojson::value(object).serialize(true)));
    }
    return error.exit_code;
}

ExitCode run_words(std::span<const wchar_t* const> words) {
    const ParsedOptions parsed = parse_options(words);
    if (!parsed.help.empty()) {
        print_document(parsed.help);
        return ExitCode::kDone;
    }
    if (!parsed.fault.empty())
        return fault(parsed.options,
                     {ExitCode::kUsage, parsed.fault + L" (zr_print help tells what there is)"});
    try {
        return run(parsed.options);
    } catch (const HostError& error) {
        return fault(parsed.options, error);
    } catch (const std::exception& error) {
        return fault(parsed.options, {ExitCode::kInternal, qk::to_wide(error.what())});
    }
}

}  // namespace

}  // namespace host

int wmain(int count, wchar_t** words) {
    const auto given = static_cast<size_t>(count > 0 ? count - 1 : 0);
    return static_cast<int>(host::run_words({words + (given > 0 ? 1 : 0), given}));
}
