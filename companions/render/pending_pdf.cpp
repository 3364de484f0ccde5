#include "companions/render/pending_pdf.h"

#include <windows.h>

#include <string_view>
#include <utility>

#include "common/qk/handle.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "companions/leftovers.h"
#include "companions/render/result_codes.h"
#include "companions/system_texts.h"

namespace companions::render {

namespace {

// Around the numbers of the process and of the attempt.
constexpr wchar_t kPrefix[] = L"zr_";
constexpr wchar_t kExtension[] = L".tmp";

}  // namespace

PendingPdf::PendingPdf(const std::wstring& target) : target_(target) {
    const std::wstring folder = folder_part(target);
    DWORD error = ERROR_FILE_EXISTS;
    for (unsigned attempt = 0; attempt < 100 && error == ERROR_FILE_EXISTS; ++attempt) {
        std::wstring path =
            qk::format(L"%s%s%lu_%u%s", folder.c_str(), kPrefix, GetCurrentProcessId(), attempt, kExtension);
        const qk::FileObj file(
            CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
        error = file ? ERROR_SUCCESS : GetLastError();
        if (file)
            path_ = std::move(path);
    }
    if (path_.empty())
        throw Failure{ResultCode::kTargetUnwritable, error, target};
}

PendingPdf::~PendingPdf() {
    if (!path_.empty())
        DeleteFileW(path_.c_str());
}

uint64_t PendingPdf::size() const noexcept {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    GetFileAttributesExW(path_.c_str(), GetFileExInfoStandard, &data);
    return uint64_t{data.nFileSizeHigh} << 32 | data.nFileSizeLow;
}

void PendingPdf::take_its_place() {
    if (!MoveFileExW(path_.c_str(), target_.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        throw Failure{ResultCode::kTargetUnwritable, GetLastError(), target_};
    path_.clear();
}

void remove_pending(const std::wstring& target, DWORD process) {
    const std::wstring start = kPrefix + std::to_wstring(process) + L'_';
    delete_leftovers(folder_part(target) + start + L'*' + kExtension, [&start](std::wstring_view name) {
        return name.ends_with(kExtension) && find_process(name, start, kExtension[0]);
    });
}

}  // namespace companions::render
