#include "companions/host/instant_jobs.h"

#include <picojson.h>

#include <algorithm>
#include <chrono>
#include <mutex>

#include "common/qk/lock.h"
#include "common/qk/module.h"
#include "common/qk/text.h"
#include "companions/host/console.h"
#include "companions/host/host_error.h"
#include "companions/host/output_target.h"
#include "companions/host/printer_setup.h"
#include "companions/host/record_fields.h"
#include "companions/thread.h"

namespace host {

namespace {

constexpr size_t kMostWrong = 10;
constexpr size_t kProgressSteps = 10;
constexpr LONG kFailure = -1;
constexpr size_t kWarmUpJobs = 1000;  // of all threads
constexpr size_t kMostGrowthKib = 1024;
constexpr size_t kLocks = 8;  // that threads may meet at for the first time after the warm-up

// Counts what the threads report.
class Tally {
public:
    Tally(InstantReport& report, size_t expected) : report_(report), expected_(expected) {}

    void add(const std::wstring& fault) {
        const std::lock_guard guard(lock_);
        ++report_.jobs;
        if (fault.empty())
            ++report_.right;
        else if (report_.wrong.size() < kMostWrong)
            report_.wrong.push_back(fault);
        if (expected_ >= kProgressSteps && report_.jobs % (expected_ / kProgressSteps) == 0)
            report_progress(qk::format(L"%llu of %llu jobs", report_.jobs, expected_));
    }

private:
    qk::Lock lock_;
    InstantReport& report_;
    size_t expected_;
};

// What is wrong with the start record of the job `title`; empty when nothing is.
std::wstring record_fault(const std::wstring& title, const std::wstring& folder) {
    const auto record = find_start_record(GetCurrentThreadId());
    if (!record)
        return title + L": no start record";
    const std::wstring path = record_text(record->output_path);
    if (record_text(record->title) != title)
        return title + L": the record's title is " + record_text(record->title);
    if (!qk::equal_no_case(path, folder + L"\\" + title + L".pdf"))
        return title + L": the record's path is " + path;
    DeleteFileW(path.c_str());  // the library keeps the name with an empty file
    return {};
}

std::wstring run_job(EventPlayer& events, const std::wstring& title, const std::wstring& folder) {
    DOCINFOW document = {};
    document.cbSize = sizeof document;
    document.lpszDocName = title.c_str();
    if (events.start_doc_pre(document) == kFailure)
        return with_reason(title + L": refused", events.last_error());
    std::wstring fault = record_fault(title, folder);
    if (events.end_doc_post() == kFailure && fault.empty())
        fault = title + L": the end failed";
    if (fault.empty() && find_start_record(GetCurrentThreadId()))
        fault = title + L": the start record is still there after the end";
    return fault;
}

void run_thread(const DriverModule& module, size_t thread, size_t jobs, const std::wstring& folder,
                Tally& tally) {
    const qk::PrinterHandleObj printer = open_printer();
    EventPlayer events(module.document_event, printer.get());
    events.query_filter(qk::kProductName);
    for (size_t job = 1; job <= jobs; ++job)
        tally.add(run_job(events, qk::format(L"Thread %llu, job %llu", thread, job), folder));
}

void run_threads(const DriverModule& module, size_t threads, size_t jobs, const std::wstring& folder,
                 InstantReport& report) {
    Tally tally(report, threads * jobs);
    std::vector<companions::Thread> running;
    for (size_t thread = 1; thread <= threads; ++thread)
        running.emplace_back([&, thread] { run_thread(module, thread, jobs, folder, tally); });
}

std::wstring work_folder(const Options& options) {
    if (!options.output.empty())
        return options.output + L"\\";
    return qk::grow_until_it_fits([](wchar_t* buffer, DWORD units) { return GetTempPathW(units, buffer); });
}

}  // namespace

InstantReport run_instant_jobs(const Options& options, const DriverModule& module) {
    const std::wstring folder =
        absolute_path(qk::format(L"%szr_jobs_%u", work_folder(options).c_str(), GetCurrentProcessId()));
    const OutputTarget target(folder);
    InstantReport report;
    InstantReport warm_up;  // loads what the first jobs load
    run_threads(module, options.threads, std::min(options.jobs, kWarmUpJobs / options.threads + 1), folder,
                warm_up);
    report.before = count_held();
    const auto started = std::chrono::steady_clock::now();
    run_threads(module, options.threads, options.jobs, folder, report);
    report.milliseconds =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - started).count();
    report.after = count_held();
    RemoveDirectoryW(folder.c_str());
    return report;
}

bool succeeded(const InstantReport& report) noexcept {
    // The locks of a whole process make few events; what a job leaks is there once for each of them.
    const size_t most_lock_events = report.before.lock_events + kLocks + report.jobs / 10;
    const bool nothing_leaks = report.after.handles <= report.before.handles &&
                               report.after.mappings <= report.before.mappings &&
                               report.after.lock_events <= most_lock_events &&
                               report.after.private_kib <= report.before.private_kib + kMostGrowthKib;
    return report.jobs != 0 && report.right == report.jobs && report.before.handles != 0 && nothing_leaks;
}

std::vector<std::wstring> report_lines(const InstantReport& report) {
    std::vector<std::wstring> lines = report.wrong;
    lines.push_back(qk::format(
        L"%llu right records of %llu; handles %llu before, %llu after; mappings %llu before, "
        L"%llu after; events of locks %llu before, %llu after; private KiB %llu before, %llu after; %.0f ms",
        report.right, report.jobs, report.before.handles, report.after.handles, report.before.mappings,
        report.after.mappings, report.before.lock_events, report.after.lock_events, report.before.private_kib,
        report.after.private_kib, report.milliseconds));
    return lines;
}

std::string report_json(const InstantReport& report) {
    picojson::array wrong;
    for (const std::wstring& text : report.wrong)
        wrong.emplace_back(qk::to_utf8(text));
    picojson::object object;
    const auto add = [&object](const char* name, double number) { object[name] = picojson::value(number); };
    add("jobs", static_cast<double>(report.jobs));
    add("right_records", static_cast<double>(report.right));
    add("handles_before", static_cast<double>(report.before.handles));
    add("handles_after", static_cast<double>(report.after.handles));
    add("lock_events_before", static_cast<double>(report.before.lock_events));
    add("lock_events_after", static_cast<double>(report.after.lock_events));
    add("mappings_before", static_cast<double>(report.before.mappings));
    add("mappings_after", static_cast<double>(report.after.mappings));
    add("private_kib_before", static_cast<double>(report.before.private_kib));
    add("private_kib_after", static_cast<double>(report.after.private_kib));
    add("milliseconds", report.milliseconds);
    object["wrong"] = picojson::value(wrong);
    return picojson::value(object).serialize(true);
}

}  // namespace host
