#include "job/job_setting.h"

#include "common/qk/paths.h"
#include "common/qk/resource_dll.h"
#include "common/qk/trace.h"
#include "common/rwPDFSet_functions.h"
#include "print_settings/printer_setting.h"
#include "resources/ids.h"

namespace job {

namespace {

constexpr unsigned long kNoSettingFile = 100;
constexpr unsigned long kBadSettingFile = 101;

}  // namespace

std::optional<Refusal> load_job_setting(const std::wstring& name, ps::PrintSettingsAdmin& settings) {
    switch (ps::load_printer_setting(name, settings)) {
        case ps::PrinterSetting::kNone:  // what the administrator forces holds for the defaults too
            if (!settings.LoadDefaults())
                return Refusal{kBadSettingFile, IDS_BAD_SETTING_FILE,
                               Corvanta::Vantrix::Administrator::kFileName};
            break;
        case ps::PrinterSetting::kMissing:
            return Refusal{kNoSettingFile, IDS_NO_SETTING_FILE, name};
        case ps::PrinterSetting::kBad:
            return Refusal{kBadSettingFile, IDS_BAD_SETTING_FILE, name};
        case ps::PrinterSetting::kLoaded:
            TRACE("sd3");
    }
    return find_refusal(settings);
}

std::wstring caption_of(const Refusal& refusal) {
    return qk::load_string(refusal.caption_id) + refusal.caption_end;
}

std::wstring refusal_message() {
    return qk::load_string(IDS_JOB_FAILED);
}

std::wstring administrator_file_to_blame(const Refusal& refusal, const std::wstring& name) {
    if (refusal.code != kBadSettingFile || (!name.empty() && !ps::PrintSettings().Load(SettingPathOf(name))))
        return {};
    for (const std::wstring& path :
         Corvanta::Vantrix::Administrator::find_files(qk::trusted_install_folder()))
        if (qk::is_file(path))
            return path;
    return {};
}

}  // namespace job
