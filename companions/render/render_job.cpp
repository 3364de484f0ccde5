#include "companions/render/render_job.h"

#include <windows.h>

#include <cstdint>

#include "common/qk/handle.h"
#include "common/qk/module.h"
#include "common/qk/paths.h"
#include "common/rwPDFSet_functions.h"
#include "common/qk/text.h"
#include "companions/render/console.h"
#include "companions/render/engine.h"
#include "companions/render/engine_arguments.h"
#include "companions/render/engine_log.h"
#include "companions/render/failure.h"
#include "companions/render/pdf_tool.h"
#include "companions/render/pdfmark.h"
#include "companions/render/pending_pdf.h"
#include "companions/render/scratch_folder.h"
#include "companions/tessalo/options.h"
#include "print_settings/PSAdmin.h"

namespace companions::render {

namespace {

using Corvanta::Vantrix::PrintSettings::PrintSettings;
using Corvanta::Vantrix::PrintSettings::PrintSettingsAdmin;

template <size_t Size>
std::wstring text_of(const wchar_t (&field)[Size]) {
    return {field, wcsnlen(field, Size)};
}

std::wstring setting_path(const std::wstring& name) {
    return name.find_first_of(L"\\/") == std::wstring::npos ? ResolveSettingFilePath(name) : name;
}

PrintSettingsAdmin load_settings(const Arguments& arguments) {
    const bool named = !arguments.setting.empty();
    const std::wstring name = named ? arguments.setting : setting_name_for(arguments.printer);
    const std::wstring path = setting_path(name);
    PrintSettingsAdmin settings;
    if (!qk::is_file(path)) {
        if (named)
            throw Failure{ResultCode::kSettingUnreadable, ERROR_FILE_NOT_FOUND, name};
        warn("no setting file for the printer, the defaults apply");
        if (!settings.LoadDefaults())
            throw Failure{ResultCode::kSettingUnreadable, ERROR_INVALID_DATA,
                          Corvanta::Vantrix::Administrator::kFileName};
        return settings;
    }
    if (!settings.Load(path))
        throw Failure{ResultCode::kSettingUnreadable, ERROR_INVALID_DATA, path};
    return settings;
}

// Looks into the spooled document; true when its pages lie on their side.
bool check_spool(const std::wstring& path) {
    const qk::FileObj file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                       FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    LARGE_INTEGER size = {};
    if (!file || !GetFileSizeEx(file.get(), &size))
        throw Failure{ResultCode::kSpoolUnreadable, GetLastError(), path};
    if (size.QuadPart == 0)
        throw Failure{ResultCode::kNoPages, ERROR_INVALID_DATA, {}};
    char head[4096];
    DWORD read = 0;
    ReadFile(file.get(), head, sizeof head, &read, nullptr);
    return is_landscape({head, read});
}

class Run {
public:
    Run(const PrintSettings& settings, std::wstring_view title) : settings_(settings) {
        info_ = document_info(settings, title);
        if (scratch_.path().empty())
            throw Failure{ResultCode::kInternal, GetLastError(), L"no temporary folder"};
    }

    // The pages of the PDF that the engine has written.
    unsigned make(const std::wstring& spool, bool landscape, const std::wstring& output) {
        EngineFiles files;
        if (wants_password(settings_)) {
            const auto options = find_password_options(settings_);
            if (!options)
                throw Failure{ResultCode::kPasswordUnusable, ERROR_INVALID_PASSWORD, {}};
            files.options = written(kOptionsFile, *options);
        }
        files.prologue = written(kPrologueFile, prologue(info_, landscape));
        files.epilogue = written(kEpilogueFile, epilogue(info_));
        files.spool = engine_path(spool);
        files.output = engine_path(output);
        check(engine_.run(engine_arguments(settings_, files), scratch_.path(),
                          [this](std::string_view bytes) { follow(bytes); }));
        return log_.pages();
    }

    // Linearizes the PDF that the engine has written where the setting says so, and opens what a reader will
    // open. The file that is to be kept, one of the two.
    PendingPdf& finish(PendingPdf& made, PendingPdf& rewritten) {
        const auto& security = *settings_.security();
        const std::wstring& secret =
            security.MasterPassword.empty() ? security.UserPassword : security.MasterPassword;
        PdfTool tool(scratch_, wants_password(settings_) ? secret : std::wstring());
        const bool linearize = settings_.general()->Linearize;
        if (!tool.present()) {
            warn("qpdf was not found: the PDF's end is looked at, not its title" +
                 std::string(linearize ? ", and it is not linearized" : ""));
            keep_if(find_fault_of_end(made.path()));
            return made;
        }
        // Of PDF 2.0 the engine puts the title into the metadata alone.
        const bool pdf20 = compatibility_level(settings_.pdfVersion()->Version) == "2.0";
        const ExpectedPdf expected = {log_.pages(), pdf20 ? std::wstring() : info_.title};
        if (!linearize && !tool.find_fault(made.path(), expected))
            return made;
        tool.rewrite(made.path(), rewritten.path(), linearize);  // mends what some engines leave damaged
        keep_if(tool.find_fault(rewritten.path(), expected));
        return rewritten;
    }

private:
    // Nothing is kept of a PDF that has a fault.
    static void keep_if(const std::optional<std::string>& fault) {
        if (fault)
            throw Failure{ResultCode::kPdfUnreadable, ERROR_INVALID_DATA, qk::to_wide(*fault)};
    }

    std::string written(const wchar_t* name, const std::string& text) {
        const std::wstring path = scratch_.write(name, text);
        if (path.empty())
            throw Failure{ResultCode::kInternal, GetLastError(), L"the temporary folder cannot be written"};
        return engine_path(path);
    }

    std::string engine_path(const std::wstring& path) const {
        auto found = engine_.find_path(path);
        if (!found)
            throw Failure{ResultCode::kEngineMissing, ERROR_PATH_NOT_FOUND, path};
        return std::move(*found);
    }

    void follow(std::string_view bytes) {
        log_.feed(bytes);
        if (log_.pages() == told_)
            return;
        told_ = log_.pages();
        say("page " + std::to_string(told_));
    }

    void check(Engine::End end) const {
        constexpr struct {
            ResultCode code;
            DWORD win32_error;
        } kErrors[] = {
            {ResultCode::kEngineMissing, ERROR_FILE_NOT_FOUND},
            {ResultCode::kTargetUnwritable, ERROR_WRITE_FAULT},
            {ResultCode::kEngineStopped, ERROR_PROCESS_ABORTED},
            {ResultCode::kSpoolDamaged, ERROR_INVALID_DATA},
            {ResultCode::kNoPages, ERROR_INVALID_DATA},
        };
        const ResultCode code = engine_result(end, log_);
        for (const auto& row : kErrors)
            if (row.code == code)
                throw Failure{code, row.win32_error, qk::to_wide(log_.error())};
    }

    const PrintSettings& settings_;
    DocumentInfo info_;
    ScratchFolder scratch_;
    Engine engine_;
    EngineLog log_;
    unsigned told_ = 0;
};

void make_pdf(const Arguments& arguments, const ZRTKPrintStartInfoC& start, Rendered& rendered) {
    const std::wstring& target = rendered.result.pdf_file_name;
    if (start.resume != 0)
        throw Failure{ResultCode::kCannotJoin, ERROR_NOT_SUPPORTED, {}};
    if (target.empty())
        throw Failure{ResultCode::kNoTarget, ERROR_INVALID_PARAMETER, {}};
    const PrintSettingsAdmin settings = load_settings(arguments);
    for (const std::string& wish : unsupported_wishes(settings))
        warn("not done by this renderer: " + wish);
    const bool landscape = check_spool(arguments.spool);
    PendingPdf made(target);
    PendingPdf rewritten(target);
    Run run(settings, text_of(start.title));
    rendered.pages = run.make(arguments.spool, landscape, made.path());
    PendingPdf& pdf = run.finish(made, rewritten);
    rendered.bytes = pdf.size();
    pdf.take_its_place();
    if (!arguments.keep_spool && !DeleteFileW(arguments.spool.c_str()))
        warn("the print data could not be deleted: " + qk::to_utf8(arguments.spool));
}

Result failed(Result result, const Failure& failure) {
    result.code = failure.code;
    result.win32_error = failure.win32_error;
    result.message = message_of(failure.code);
    if (!failure.detail.empty())
        result.message += L"\n" + failure.detail;
    result.caption = qk::kProductName;
    return result;
}

}  // namespace

ResultCode engine_result(Engine::End end, const EngineLog& log) noexcept {
    if (end == Engine::End::kMissing)
        return ResultCode::kEngineMissing;
    if (end == Engine::End::kDone)  // without a page the engine writes an empty one of its own
        return log.pages() == 0 ? ResultCode::kNoPages : ResultCode::kDone;
    // A full disk makes the engine fail or crash, as it comes.
    const bool unwritten = log.error().find("ioerror") != std::string::npos ||
                           log.error().find("Could not open the file") != std::string::npos;
    if (unwritten)
        return ResultCode::kTargetUnwritable;
    return end == Engine::End::kStopped ? ResultCode::kEngineStopped : ResultCode::kSpoolDamaged;
}

Rendered render(const Arguments& arguments, const ZRTKPrintStartInfoC& start) {
    Rendered rendered;
    rendered.result.pdf_file_name = text_of(start.output_path);
    say("rendering " + qk::to_utf8(rendered.result.pdf_file_name));
    try {
        make_pdf(arguments, start, rendered);
        say("done: " + std::to_string(rendered.pages) + (rendered.pages == 1 ? " page, " : " pages, ") +
            std::to_string(rendered.bytes) + " bytes");
    } catch (const Failure& failure) {
        rendered.result = failed(std::move(rendered.result), failure);
    } catch (const std::exception& error) {
        rendered.result = failed(std::move(rendered.result),
                                 {ResultCode::kInternal, ERROR_INTERNAL_ERROR, qk::to_wide(error.what())});
    }
    if (rendered.result.code != ResultCode::kDone)
        discard_reserved(start);
    return rendered;
}

}  // namespace companions::render
