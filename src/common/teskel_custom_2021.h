// External programs that an installation attaches to the stages of a job. The rendering module runs them;
// here their ini file is found, the feature's output folder read, and the job's entry in the shared list
// kept.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>

#include "common/MMF.h"
#include "common/job_records.h"

namespace pd_tk {

// The per-user file "externalCallSetting.ini". Absent keys read as empty; values are cut at 4,095 units.
class ExternalCallIni {
public:
    ExternalCallIni();

    [[nodiscard]] bool exists() const noexcept;
    [[nodiscard]] std::wstring value(const wchar_t* section, const wchar_t* key) const;

private:
    std::wstring path_;
};

// The feature's share in one job, and the job's entry in the list of file names in progress. Changes to the
// list are made under a global mutex, which is waited for without limit.
class TeskelCustom2021 {
public:
    // Stages of a job, as indices of the table of programs.
    static constexpr size_t kDocStart = 0;
    static constexpr size_t kPageStart = 1;
    static constexpr size_t kPageEnd = 2;
    static constexpr size_t kDocEnd = 3;
    static constexpr wchar_t kCancel[] = L"Cancel";  // a fixed name beside the stages' sections

    TeskelCustom2021(std::wstring document_name, std::wstring output_path);
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

    // The PDF that the user chose; enters it into the list of files in progress.
    void set_output_path(std::wstring output_path);
    [[nodiscard]] const std::wstring& output_path() const noexcept { return output_path_; }
    [[nodiscard]] const std::wstring& document_name() const noexcept { return document_name_; }

private:
    void add_fn_to_mmf();
    void remove_fn_from_mmf();

    ExternalCallIni ini_;
    std::wstring output_path_;
    std::wstring document_name_;
    std::unique_ptr<qk::MMF<TKFileNames>> files_;
};

// The name of the shared list of the current user.
[[nodiscard]] std::wstring file_list_name();

}  // namespace pd_tk
