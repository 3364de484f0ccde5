// The start of a job: its setting, its output file, its records.
#include <cstddef>
#include <memory>
#include <string>

#include "common/ErrorNotify.h"
#include "common/dialog_library.h"
#include "common/driver_util.h"
#include "common/qk/disk_file.h"
#include "common/qk/handle.h"
#include "common/qk/memory_probe.h"
#include "common/qk/override_ini.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "common/rwPDFSet_functions.h"
#include "common/threadprop.h"
#include "job/dialog_record.h"
#include "job/document_event.h"
#include "job/job_setting.h"
#include "job/output_name.h"

namespace job {

namespace {

using Corvanta::Vantrix::PrintSettings::PrintSettings;
using Corvanta::Vantrix::PrintSettings::PrintSettingsAdmin;
using pd_tk::TeskelCustom2021;

constexpr DWORD kPrintCancelled = 2153;  // what print systems look for; the system's own name stands for 63
constexpr int kHandedOver = 555;         // the library's flag byte counts more than its result
constexpr DWORD kUncheckedModes[] = {2, 3};

// A job that does not start: -1 and the status that becomes the last error.
struct NoJob {
    DWORD status;
};

// The document name of the DOCINFOW behind `in`. Some callers hand over the address of a pointer to it
// instead, as the interface of Windows describes the event; the structure's own size tells the two apart.
std::wstring document_name_of(const void* in, ULONG in_size, bool& given) {
    constexpr size_t kWanted = offsetof(DOCINFOW, lpszOutput);  // the size and the name
    given = false;
    DOCINFOW info = {};
    bool copied = qk::try_copy(&info, in, kWanted);
    if (info.cbSize != sizeof(DOCINFOW) && in_size <= sizeof(void*)) {
        const void* inner = nullptr;
        if (qk::try_copy(&inner, in, sizeof inner))
            copied = qk::try_copy(&info, inner, kWanted) || copied;
    }
    if (!copied || !info.lpszDocName)
        return {};
    std::wstring name = qk::text_at(info.lpszDocName);
    given = !name.empty() || qk::is_readable(info.lpszDocName, sizeof(wchar_t));
    return name;
}

void notify(const Refusal& refusal) {
    TRACE_F(L"refused: %lu", refusal.code);
    const std::wstring caption = caption_of(refusal);
    ZRTK_ErrorNotify(caption, nullptr, refusal.code, 0, refusal_message(), caption);
}

class JobStart {
public:
    JobStart(HANDLE printer, const void* in, ULONG in_size) : printer_name_(printer_name(printer)) {
        document_name_ = document_name_of(in, in_size, has_document_name_);
    }

    // Whether the job goes on with one that the library holds. Throws NoJob.
    bool run() {
        load_library();
        load_settings();
        name_output();
        take_override_folder();
        const bool resumes = ask_for_file() != 0;
        publish(resumes);
        return resumes;
    }

private:
    void load_library() {
        TRACE("sd1");
        library_ = LoadInstallDll(dialog_library::kFileName, install_folder_);
        if (!library_) {
            TRACE("failed LoadLibrary:Tessalo80.dll");
            throw NoJob{ERROR_FILE_NOT_FOUND};
        }
        get_file_ = qk::find_export<dialog_library::GetFile2>(library_.get(), "GetFile2");
        if (!get_file_) {
            TRACE("failed GetProcAddress:GetFile2");
            throw NoJob{ERROR_FILE_NOT_FOUND};
        }
    }

    void load_settings() {
        const std::wstring name = GetSettingFileNameFromFD(library_.get(), printer_name_);
        if (const auto refusal = load_job_setting(name, settings_)) {
            notify(*refusal);
            throw NoJob{ERROR_SUCCESS};  // the user has been told
        }
    }

    void name_output() {
        if (has_document_name_) {
            const std::wstring file_name = SetPDFname(document_name_.c_str());
            TRACE(file_name);
        } else {
            TRACE("no document name");
        }
        record_.set_title(CleanJobTitle(document_name_));
        record_.raw().settings = static_cast<const PrintSettings*>(&settings_);
    }

    // Another program may name the folder, but not keep the user from being asked: anybody can be that
    // program. An administrator's folder wins over it, and nobody is asked for another.
    void take_override_folder() {
        auto& general = *settings_.general();
        const std::wstring file = qk::OverrideIni().pdf_file_name();
        if (const size_t slash = file.rfind(L'\\'); slash != std::wstring::npos)
            general.OutputFolder = file.substr(0, slash + 1);
        if (const std::wstring& forced = settings_.restriction().OutputFolder; !forced.empty()) {
            general.OutputFolder = forced;
            general.SaveStyle = Corvanta::Vantrix::PrintSettings::General_impl::kFixedFolder;
        }
    }

    // Lets the library settle the output path; its result, or 555 when it hands the job over.
    int ask_for_file() {
        TRACE("jobname is ");
        TRACE(document_name_);
        prepare_external_call();
        int result = get_file_(&record_.raw(), printer_name_.c_str());
        record_.take_texts();
        if (external_)
            external_->set_output_path(record_.output_path());
        if (record_.raw().hand_over != 0)
            result = kHandedOver;
        TRACE_F(L"ret=%d", result);
        return result;
    }

    void prepare_external_call() {
        if (!TeskelCustom2021::IsActive())
            return;
        auto external = std::make_unique<TeskelCustom2021>(document_name_);
        const std::wstring folder = external->HasAnyExe() ? external->GetOutputFolder() : std::wstring();
        if (folder.empty())
            return;
        record_.raw().hand_over = 0;
        record_.raw().third_value = 0;
        record_.set_start_folder(folder);
        external_ = std::move(external);
        record_.raw().external_record = reinterpret_cast<uintptr_t>(external_.get());
    }

    void publish(bool resumes) {
        if (!resumes) {
            TRACE("C.1");
            check_output_file();
        } else {
            TRACE("C.2...");
            TRACE("resume");
        }
        auto start = std::make_unique<StartState>();
        release_start_state();  // of a job on this thread that never ended
        take_result_state().reset();
        start->block.init(qk::format(kStartBlockName, static_cast<int>(GetCurrentThreadId())));
        if (!start->block.write(record_.start_record(resumes)))
            throw NoJob{ERROR_OUTOFMEMORY};  // nobody could render this job
        start->external = std::move(external_);
        std::unique_ptr<ResultState> result_state;
        if (!resumes)
            result_state = create_result_record();
        keep(threadprop::kStartRecord, start);
        if (!result_state)
            return;
        try {
            keep(threadprop::kResultRecord, result_state);
        } catch (...) {
            release_start_state();
            throw;
        }
    }

    // Hands a state over to the thread's properties.
    template <class State>
    static void keep(std::wstring_view key, std::unique_ptr<State>& state) {
        SetThreadProp(key, reinterpret_cast<ULONG_PTR>(state.get()));
        (void)state.release();
    }

    static std::unique_ptr<ResultState> create_result_record() {
        auto state = std::make_unique<ResultState>(
            qk::format(kResultBlockName, static_cast<int>(GetCurrentThreadId())));
        state->write({});  // an older block of the name may still be open somewhere
        return state;
    }

    void check_output_file() const {
        const DWORD mode = fdlg_GetMMFJobMode(printer_name_);
        if (mode == kUncheckedModes[0] || mode == kUncheckedModes[1])
            return;
        const std::wstring& path = record_.output_path();
        if (path.empty())
            throw NoJob{kPrintCancelled};
        if (!qk::is_file(path))
            return;
        if (!qk::open_disk_file(path, GENERIC_WRITE, 0)) {
            TRACE("sd5.2");
            throw NoJob{kPrintCancelled};
        }
    }

    std::wstring install_folder_ = qk::trusted_install_folder();
    std::wstring printer_name_;
    std::wstring document_name_;
    bool has_document_name_ = false;
    // The library outlives the record: a text that it holds itself is copied before it is unloaded.
    qk::DLL library_;
    dialog_library::GetFile2* get_file_ = nullptr;
    PrintSettingsAdmin settings_{install_folder_};
    DialogRecord record_;
    std::unique_ptr<TeskelCustom2021> external_;
};

}  // namespace

Outcome start(HANDLE printer, const void* in, ULONG in_size) {
    try {
        if (!JobStart(printer, in, in_size).run())
            TRACE("<<sd!");  // when everything is freed
    } catch (const NoJob& no_job) {
        return {DOCUMENTEVENT_FAILURE, no_job.status};
    }
    return {};
}

}  // namespace job
