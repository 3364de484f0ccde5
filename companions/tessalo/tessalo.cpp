// The exports of the save-file dialog library. Each is a guard around one function of its own: what goes
// wrong inside reads as a cancel.
#include <windows.h>

#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include "common/dialog_library.h"
#include "common/driver_util.h"
#include "common/qk/lock.h"
#include "common/qk/module.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "companions/reservation.h"
#include "companions/system_texts.h"
#include "companions/tessalo/dialogs.h"
#include "companions/tessalo/options.h"
#include "companions/tessalo/output_choice.h"
#include "job/name_pattern.h"
#include "job/output_name.h"
#include "print_settings/PSAdmin.h"

namespace {

using companions::OutputFile;
constexpr int kAnswered = 0;  // the user confirmed a file or cancelled; a job is never handed over to another

constexpr size_t kBrowseUnits = 512;

std::wstring ini_path() {
    return companions::folder_part(qk::module_path(qk::module_instance())) + L"Tessalo80.ini";
}

// The texts that stand in the records of this library's callers, one for each thread. They stay until the
// thread's next call or the library's unloading, which is when the callers have copied them.
class KeptTexts {
public:
    std::wstring& of_this_thread() {
        const std::scoped_lock hold(lock_);
        return texts_[GetCurrentThreadId()];
    }

private:
    qk::Lock lock_;
    std::map<DWORD, std::wstring> texts_;  // whose entries keep their places
};

KeptTexts kept_texts;

// The pattern for the PDF's name: an administrator's, else the setting's, else none.
std::wstring name_pattern(const ps::PrintSettings& settings) {
    Corvanta::Vantrix::Administrator::Restriction restriction;
    if (load_restriction(restriction) && !restriction.PDFFileName.empty())
        return std::wstring(qk::file_part(restriction.PDFFileName));
    const auto& texts = settings.addition()->Str;
    const auto entry = texts.find(job::kFileNameKey);
    return entry != texts.end() ? entry->second : std::wstring();
}

// Without a pattern the default name of the document.
companions::WantedName wanted_name(const dialog_library::WorkingRecord& record, const std::wstring& pattern,
                                   const wchar_t* printer_name) {
    std::wstring own = SetPDFname(record.title.readable_text().c_str());
    if (pattern.empty())
        return {.title = [own](unsigned) { return own; }};
    job::NameValues values{
        .title = safe_stem(own), .user = user_name(), .printer = printer_name ? printer_name : L""};
    GetLocalTime(&values.time);
    return {.title =
                [pattern, values](unsigned number) mutable {
                    values.counter = number;
                    return job::expand_name(pattern, values);
                },
            .counts = job::counts(pattern)};
}

std::optional<OutputFile> choose(const dialog_library::WorkingRecord& record, const wchar_t* printer_name) {
    const ps::PrintSettings defaults;
    const auto* given = static_cast<const ps::PrintSettings*>(record.settings);
    const ps::PrintSettings& settings = given ? *given : defaults;
    const ps::General_impl& general = *settings.general();
    const companions::WantedName name = wanted_name(record, name_pattern(settings), printer_name);
    const std::wstring asked_folder = record.output_path.readable_text();
    const companions::SameName rule = companions::same_name_rule(general.WhenSameName);
    const companions::NameLimits limits = companions::system_name_limits();
    const std::wstring ini = ini_path();
    if (!companions::unattended(ini)) {
        const std::wstring folder = companions::dialog_folder(asked_folder, general);
        companions::SystemSaveDialog dialog;
        if (!companions::has_fixed_folder(general))
            return choose_with_dialog(dialog, folder, find_free_title(folder, name, limits), rule, limits);
        ForceDirectories(folder);
        return choose_in_folder(dialog, folder, name, rule, limits);
    }
    const std::wstring folder = companions::unattended_folder(asked_folder, general, ini);
    ForceDirectories(folder);
    return choose_unattended(folder, name, rule, limits);
}

void answer(dialog_library::WorkingRecord& record, const wchar_t* printer_name) {
    constexpr size_t kPathUnits = 1024;  // more than a path has: nothing fails once a file is made
    std::wstring& own = kept_texts.of_this_thread();
    own.reserve(kPathUnits);
    const auto file = choose(record, printer_name);
    record.hand_over = 0;
    record.first_value = file && file->reserved ? companions::kFileReserved : 0;
    companions::assign(record.output_path, file ? std::wstring_view(file->path) : std::wstring_view(), own);
}

int copy_setting_name(wchar_t* buffer, int capacity, const wchar_t* printer_name) {
    const size_t units = buffer && capacity > 0 ? static_cast<size_t>(capacity) : 0;
    const std::wstring name = companions::setting_name_for(printer_name ? printer_name : L"", units);
    if (name.size() >= units)
        return ERROR_INSUFFICIENT_BUFFER;
    qk::copy_zero_padded(buffer, units, name);
    return ERROR_SUCCESS;
}

bool browse(wchar_t* buffer, const wchar_t* current) {
    if (!buffer || companions::unattended(ini_path()))
        return false;
    const auto folder = companions::browse_for_folder(current ? current : L"");
    if (!folder || folder->size() >= kBrowseUnits)
        return false;
    qk::copy_zero_padded(buffer, kBrowseUnits, *folder);
    return true;
}

}  // namespace

extern "C" {

int WINAPI GetSettingFN(wchar_t* buffer, int capacity, const wchar_t* printer_name, void*) noexcept {
    try {
        return copy_setting_name(buffer, capacity, printer_name);
    } catch (...) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

int WINAPI GetFile2(dialog_library::WorkingRecord* record, const wchar_t* printer_name) noexcept {
    if (!record)
        return kAnswered;
    try {
        answer(*record, printer_name);
    } catch (...) {
        record->output_path.length = 0;
    }
    return kAnswered;
}

int WINAPI GetBrowsePath(wchar_t* buffer, const wchar_t* current) noexcept {
    try {
        return browse(buffer, current) ? 1 : 0;
    } catch (...) {
        return 0;
    }
}

}  // extern "C"
