#include "companions/render/render_job.h"

#include <windows.h>

#include <string>
#include <vector>

#include "common/qk/handle.h"
#include "common/qk/module.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/rwPDFSet_functions.h"
#include "companions/language_text.h"
#include "companions/render/cancelling.h"
#include "companions/render/console.h"
#include "companions/render/engine_arguments.h"
#include "companions/render/engine_log.h"
#include "companions/render/outside.h"
#include "companions/render/pdf_maker.h"
#include "companions/render/pdfmark.h"
#include "companions/render/pending_pdf.h"
#include "companions/reservation.h"
#include "companions/tessalo/options.h"
#include "print_settings/PSAdmin.h"

namespace companions::render {

namespace {

std::wstring setting_path(const std::wstring& name) {
    return name.find_first_of(L"\\/") == std::wstring::npos ? ResolveSettingFilePath(name) : name;
}

ps::PrintSettingsAdmin load_settings(const Arguments& arguments) {
    const bool named = !arguments.setting.empty();
    const std::wstring name = named ? arguments.setting : setting_name_for(arguments.printer);
    const std::wstring path = setting_path(name);
    ps::PrintSettingsAdmin settings;
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

void make_pdf(const Arguments& arguments, const ZRTKPrintStartInfoC& start, Rendered& rendered) {
    const std::wstring& target = rendered.result.pdf_file_name;
    if (start.resume != 0)
        throw Failure{ResultCode::kCannotJoin, ERROR_NOT_SUPPORTED, {}};
    if (target.empty())
        throw Failure{ResultCode::kNoTarget, ERROR_INVALID_PARAMETER, {}};
    const ps::PrintSettingsAdmin settings = load_settings(arguments);
    std::wstring& told = rendered.result.message;  // also of a job that is done
    const auto tell = [&told](const std::vector<std::string>& wishes) {
        for (const std::string& wish : wishes) {
            warn("not done by this renderer: " + wish);
            told += (told.empty() ? L"Not done by this renderer: " : L"; ") + qk::to_wide(wish);
        }
    };
    tell(unsupported_wishes(settings));
    const bool landscape = check_spool(arguments.spool);
    PendingPdf drawn(target);
    PendingPdf rewritten(target);
    using pd_tk::TeskelCustom2021;
    const std::wstring title = record_text(start.title);
    const StagePrograms programs(title, target);
    programs.run(TeskelCustom2021::kDocStart);
    PdfMaker maker(settings, title, [&](unsigned page) {
        say(kPageWord + std::to_string(page));
        programs.run(TeskelCustom2021::kPageStart, page);
        programs.run(TeskelCustom2021::kPageEnd, page);
    });
    rendered.pages = maker.draw(arguments.spool, landscape, drawn);
    PendingPdf& pdf = maker.finish(drawn, rewritten);
    tell(maker.not_done());
    rendered.bytes = pdf.size();
    if (cancelled())
        throw Failure{ResultCode::kEngineStopped, ERROR_CANCELLED, {}};
    pdf.take_its_place();
    programs.run(TeskelCustom2021::kDocEnd);
    if (settings.general()->OpenPDF != ps::General_impl::kLeaveClosed &&
        !unattended(qk::install_folder() + L"Tessalo80.ini"))
        open_with_viewer(target);
    if (!arguments.keep_spool && !DeleteFileW(arguments.spool.c_str()))
        warn("the print data could not be deleted: " + qk::to_utf8(arguments.spool));
}

// In the user's language; by its number where there is no language library.
std::wstring words_of(ResultCode code) {
    std::wstring words;
    for (const auto& row : kMessages)
        if (row.code == code)
            words = language_text(row.text);
    return words.empty() ? qk::format(L"Error %u", static_cast<unsigned>(code)) : words;
}

Result failed(Result result, const Failure& failure) {
    result.code = failure.code;
    result.win32_error = failure.win32_error;
    result.message = words_of(failure.code);
    if (!failure.detail.empty())
        result.message += L"\n" + failure.detail;
    result.caption = qk::kProductName;
    return result;
}

}  // namespace

Rendered render(const Arguments& arguments, const ZRTKPrintStartInfoC& start) {
    Rendered rendered;
    rendered.result.pdf_file_name = record_text(start.output_path);
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
