// External programs that an installation attaches to the stages of a job. The rendering module runs them;
// here their ini file is found, the feature's output folder read, and the job's entry in the shared list
// kept.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "common/external_call_ini.h"
#include "common/job_records.h"
#include "common/qk/MMF.h"
#include "common/qk/handle.h"

namespace pd_tk {

// The lock that keeps the processes which print from changing the list of files in progress at once: a global
// mutex, waited for without limit and held while this object lives.
class ListLock {
public:
    ListLock() noexcept;
    ~ListLock();
    ListLock(const ListLock&) = delete;
    ListLock& operator=(const ListLock&) = delete;

private:
    qk::HandleObj mutex_;
};

// The feature's share in one job: what the ini file says and, once the job has a PDF, its entry in the list
// of files in progress. The shared list is made, entered and left under its lock; before the job has a PDF
// there is none.
class TeskelCustom2021 {
public:
    // Stages of a job, as indices of the table of programs.
    static constexpr size_t kDocStart = 0;
    static constexpr size_t kPageStart = 1;
    static constexpr size_t kPageEnd = 2;
    static constexpr size_t kDocEnd = 3;
    static constexpr wchar_t kCancel[] = L"Cancel";  // a fixed name beside the stages' sections

    // With an output path the PDF is entered into the list at once.
    explicit TeskelCustom2021(std::wstring document_name, std::wstring output_path = {});
    ~TeskelCustom2021();
    TeskelCustom2021(const TeskelCustom2021&) = delete;
    TeskelCustom2021& operator=(const TeskelCustom2021&) = delete;

    // Whether the feature is active for the user: the ini file is there.
    [[nodiscard]] static bool IsActive();

    [[nodiscard]] std::wstring getExeName(size_t stage) const;
    [[nodiscard]] bool HasExe(size_t stage) const;
    [[nodiscard]] bool HasAnyExe() const;

    // The folder that the save dialog starts in; empty: the dialog's own choice.
    [[nodiscard]] std::wstring GetOutputFolder() const;

    // The PDF that the user chose; enters it into the list in place of one entered before. None leaves it.
    void set_output_path(std::wstring output_path);
    [[nodiscard]] const std::wstring& output_path() const noexcept { return output_path_; }
    [[nodiscard]] const std::wstring& document_name() const noexcept { return document_name_; }

private:
    void add_fn_to_mmf() noexcept;
    void remove_fn_from_mmf() noexcept;

    std::optional<ListLock> last_;  // taken as the object goes and, standing first, released last of all
    ExternalCallIni ini_;
    std::wstring output_path_;
    std::wstring document_name_;
    qk::MMF<TKFileNames> files_;  // no view before there is an entry
};

// The name of the shared list of the current user.
[[nodiscard]] std::wstring file_list_name();

}  // namespace pd_tk
