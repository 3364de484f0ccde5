#include "companions/host/job.h"

#include <winddiui.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "UI_dll/ps_to_devmode.h"
#include "common/qk/gdi_handle.h"
#include "common/qk/module.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/rwPDFSet_functions.h"
#include "companions/host/console.h"
#include "companions/host/host_error.h"
#include "companions/host/install.h"
#include "companions/host/page_printer.h"
#include "companions/host/printer_setup.h"
#include "companions/host/renderer.h"
#include "companions/host/setting_choice.h"
#include "companions/host/spool_file.h"
#include "companions/host/text_file.h"
#include "companions/host/turn.h"
#include "companions/system_texts.h"
#include "job/job_setting.h"

namespace host {

namespace {

constexpr LONG kFailure = -1;
constexpr std::chrono::milliseconds kProgressEvery{500};
constexpr DWORD kMostSpoolWait = 600000;  // then the print system may refuse the job itself

// A job that ends early; the report has been told why.
struct JobOver {};

class JobRun {
public:
    JobRun(const Options& options, const DriverModule& module, const OutputTarget& target, JobReport& report)
        : options_(options),
          target_(target),
          report_(report),
          printer_(open_printer()),
          events_(module.document_event, printer_.get()) {
        if (!printer_)
            throw installation_fault(std::wstring(L"cannot open the printer ") + qk::kProductName,
                                     GetLastError());
    }

    void run(std::wstring_view text) {
        try {
            open_context();
            const PagePrinter page_printer(context_.get());
            lay_out(text, page_printer);
            start();
            print_pages(page_printer);
            end();
        } catch (const JobOver&) {
        }
        close_context();
        report_.events = events_.events();
    }

private:
    [[noreturn]] void over(Outcome outcome, DWORD error, const std::wstring& fault) {
        report_.outcome = outcome;
        report_.last_error = error;
        report_.fault = fault;
        throw JobOver{};
    }

    // What a user does who chooses the setting in the print dialog's properties and presses OK.
    void take_paper(DEVMODEW& mode) {
        SettingTurn turn;
        turn.choose(setting_for_module(options_.setting));
        SetPSToDEVMODE(printer_.get(), mode);
    }

    void open_context() {
        events_.query_filter(qk::kProductName);
        std::vector<std::byte> bytes = default_mode(printer_.get());
        auto* mode = bytes.empty() ? nullptr : reinterpret_cast<DEVMODEW*>(bytes.data());
        if (!mode)
            report_.notes.push_back(L"the driver gave no document settings");
        else if (!options_.setting.empty())
            take_paper(*mode);
        if (events_.create_dc_pre(qk::kProductName, mode) == kFailure)
            over(Outcome::kRefused, events_.last_error(), L"the module refuses the device context");
        context_.reset(CreateDCW(L"winspool", qk::kProductName, nullptr, mode));
        if (!context_)
            over(Outcome::kFailed, GetLastError(), L"the printer's device context cannot be made");
        events_.set_context(context_.get());
        events_.create_dc_post(mode);
    }

    void lay_out(std::wstring_view text, const PagePrinter& page_printer) {
        pages_ = paginate(text, page_printer.layout());
        report_.pages = pages_.size();
        report_.font = page_printer.font_face();
        report_progress(qk::format(L"%s: %llu %s", report_.title.c_str(), pages_.size(),
                                   pages_.size() == 1 ? L"page" : L"pages"));
    }

    void start_document(const DOCINFOW& document) {
        // Not while somebody looks at a dialog, unless it matters for this job.
        std::optional<SettingTurn> turn;
        if (target_.unattended() || !options_.setting.empty())
            turn.emplace();
        if (!options_.setting.empty())
            turn->choose(setting_for_module(options_.setting));
        if (events_.start_doc_pre(document) != kFailure)
            return;
        const DWORD error = events_.last_error();
        if (means_cancelled(error))
            over(Outcome::kCancelled, error, L"no file was chosen, or the chosen one cannot be written");
        std::wstring fault = L"the module refuses the job";
        if (error == ERROR_SUCCESS)
            fault += L"; the user is told through: " + notify_channels_text() + why_refused();
        over(Outcome::kRefused, error, fault);
    }

    // The module has told the user, and this program nothing: what it has looked at is looked at again.
    std::wstring why_refused() {
        const std::wstring name = options_.setting.empty() ? GetSettingFileName(qk::kProductName)
                                                           : setting_for_module(options_.setting);
        ps::PrintSettingsAdmin settings;
        const auto refusal = job::load_job_setting(name, settings);
        if (!refusal)
            return {};
        report_.caption = job::caption_of(*refusal);
        report_.message = job::refusal_message();
        const std::wstring file = job::administrator_file_to_blame(*refusal, name);
        return file.empty() ? L"" : L"; the cause is the administrator's file, which cannot be read: " + file;
    }

    void start() {
        DOCINFOW document = {};
        document.cbSize = sizeof document;
        document.lpszDocName = report_.title.c_str();
        start_document(document);
        if (const auto record = find_start_record(report_.thread)) {
            report_.start_record = fields_of(*record);
            report_.pdf = record_text(record->output_path);
        }
        spool_ = make_spool_file(L"zr_print_");
        document.lpszOutput = spool_.c_str();
        spool_turn_.emplace(L"zr_print_spool", kMostSpoolWait);
        report_.job = StartDocW(context_.get(), &document);
        if (report_.job <= 0)
            abort(Outcome::kFailed, GetLastError(), L"the print system refuses the job");
        events_.start_doc_post(report_.job);
    }

    void print_page(const PagePrinter& page_printer, size_t number) {
        if (events_.send(DOCUMENTEVENT_STARTPAGE, number) == kFailure)
            abort(Outcome::kFailed, events_.last_error(), L"the module refuses a page");
        if (StartPage(context_.get()) <= 0)
            abort(Outcome::kFailed, GetLastError(), L"a page cannot be started");
        page_printer.draw(pages_[number - 1], number, pages_.size());
        events_.send(DOCUMENTEVENT_ENDPAGE, number);
        if (EndPage(context_.get()) <= 0)
            abort(Outcome::kFailed, GetLastError(), L"a page cannot be ended");
        report_.printed_pages = number;
    }

    void print_pages(const PagePrinter& page_printer) {
        auto shown = std::chrono::steady_clock::now();
        for (size_t number = 1; number <= pages_.size(); ++number) {
            print_page(page_printer, number);
            if (options_.abort_after_page == number)
                abort(Outcome::kAborted, ERROR_SUCCESS, L"");
            const auto now = std::chrono::steady_clock::now();
            if (now - shown < kProgressEvery && number != pages_.size())
                continue;
            shown = now;
            report_progress(qk::format(L"printed page %llu of %llu", number, pages_.size()));
        }
    }

    void render(std::span<wchar_t> arena) {
        if (!options_.render) {
            discard_reserved_file(report_.thread);
            return;
        }
        try {
            report_.renderer_exit_code = run_renderer(
                {report_.thread, qk::kProductName, spool_,
                 options_.setting.empty() ? L"" : setting_for_module(options_.setting), options_.keep_spool},
                arena);
            if (report_.renderer_exit_code != 0)  // one that was ended from outside has left it
                discard_reserved_file(report_.thread);
        } catch (const HostError& error) {  // the job must still be brought to its end
            report_.fault = error.text;
        }
    }

    void end() {
        events_.send(DOCUMENTEVENT_ENDDOCPRE);
        if (EndDoc(context_.get()) <= 0)
            abort(Outcome::kFailed, GetLastError(), L"the job cannot be ended");
        spool_turn_.reset();
        std::vector<wchar_t> arena(32 * 1024);  // for the texts of the result
        render(arena);
        uint32_t error_code = 0;
        if (const auto record = find_result_record(report_.thread)) {
            report_.result_record = fields_of(*record);
            error_code = record->error_code;
            if (error_code != 0) {
                report_.fault = report_.message = record->message.readable_text();
                report_.caption = record->caption.readable_text();
                if (report_.caption.empty())
                    report_.caption = qk::kProductName;
            }
        }
        {
            const SettingTurn turn;  // the module removes the choice of a setting, which may be another job's
            events_.send(DOCUMENTEVENT_ENDDOCPOST);
        }
        report_.last_error = events_.last_error();
        judge(error_code);
    }

    // What the end of the job has to say. `error` is the result record's.
    void judge(DWORD error) {
        report_.spool = qk::is_file(spool_) ? spool_ : L"";
        const bool failed =
            error != 0 || report_.renderer_exit_code.value_or(0) != 0 || !report_.fault.empty();
        report_.outcome = failed ? Outcome::kFailed : options_.render ? Outcome::kPrinted : Outcome::kSpooled;
        if (report_.outcome != Outcome::kPrinted) {
            report_.pdf.clear();
            return;
        }
        try {
            report_.pdf = target_.settle(report_.pdf);
        } catch (const HostError& fault) {
            report_.outcome = Outcome::kFailed;
            report_.fault = fault.text;
        }
    }

    [[noreturn]] void abort(Outcome outcome, DWORD error, const std::wstring& fault) {
        discard_reserved_file(report_.thread);
        events_.send(DOCUMENTEVENT_ABORTDOC);
        AbortDoc(context_.get());
        spool_turn_.reset();
        DeleteFileW(spool_.c_str());
        report_.pdf.clear();
        over(outcome, error, fault);
    }

    void close_context() {
        if (!context_)
            return;
        events_.send(DOCUMENTEVENT_DELETEDC);
        context_.reset();
    }

    const Options& options_;
    const OutputTarget& target_;
    JobReport& report_;
    qk::PrinterHandleObj printer_;
    EventPlayer events_;
    std::wstring spool_;  // path of the print data, once the document starts
    qk::DeviceContext context_;
    // From the document's start to its end: some print systems name their spool files by a number that each
    // process counts for itself, so that jobs of two processes would take each other's file.
    std::optional<Turn> spool_turn_;
    std::vector<Page> pages_;
};

std::wstring title_of(const Options& options) {
    if (!options.title.empty())
        return options.title;
    std::wstring path = options.file;
    std::ranges::replace(path, L'/', L'\\');
    return std::wstring(qk::file_part(path));
}

}  // namespace

JobReport print_file(const Options& options, const DriverModule& module) {
    JobReport report;
    const std::string bytes = read_text_file(options.file);
    const DecodedText decoded = decode_text(bytes);
    report.file = companions::absolute_path(options.file);
    report.encoding = encoding_name(decoded.encoding);
    if (bytes.empty())
        report.notes.push_back(L"the file is empty: one page without text is printed");
    if (decoded.encoding == Encoding::kWindows1252)
        report.notes.push_back(L"the file is not valid UTF-8: read as Windows-1252");
    report.title = title_of(options);
    report.printer = qk::kProductName;
    report.module = module.path;
    report.thread = GetCurrentThreadId();
    const OutputTarget target(options.output);
    JobRun(options, module, target, report).run(decoded.text);
    return report;
}

}  // namespace host
