#include "companions/host/output_target.h"

#include <windows.h>

#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "companions/host/host_error.h"
#include "companions/system_texts.h"
#include "job/output_name.h"

namespace host {

OutputTarget::OutputTarget(const std::wstring& output) {
    if (output.empty())
        return;
    folder_ = companions::absolute_path(output);
    if (ends_in_pdf(folder_) && !qk::is_folder(folder_)) {
        file_ = folder_;
        // Of a short name, since the PDF's own may be as long as names can be.
        folder_ = qk::format(L"%szr_print_%u", companions::folder_part(file_).c_str(), GetCurrentProcessId());
    }
    if (!ForceDirectories(folder_))
        throw HostError{ExitCode::kUsage, with_reason(L"cannot make the folder " + folder_, GetLastError())};
    SetEnvironmentVariableW(L"ZR_UNATTENDED", L"1");
    SetEnvironmentVariableW(L"ZR_OUTPUT_FOLDER", folder_.c_str());
}

OutputTarget::~OutputTarget() {
    if (!file_.empty())
        RemoveDirectoryW(folder_.c_str());
}

std::wstring OutputTarget::settle(const std::wstring& path) const {
    if (file_.empty())
        return path;
    if (!MoveFileExW(path.c_str(), file_.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED))
        throw HostError{ExitCode::kJobFailed, with_reason(L"cannot write " + file_, GetLastError())};
    return file_;
}

}  // namespace host
