#include "companions/host/spool_file.h"

#include <windows.h>

#include "common/qk/handle.h"
#include "common/qk/text.h"
#include "companions/host/host_error.h"
#include "companions/system_texts.h"

namespace host {

std::wstring make_spool_file(const wchar_t* start) {
    const std::wstring folder = companions::temporary_folder();
    for (unsigned attempt = 0;; ++attempt) {
        std::wstring path =
            qk::format(L"%s%s%u_%u.ps", folder.c_str(), start, GetCurrentProcessId(), attempt);
        const qk::FileObj file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
        if (file)
            return path;
        if (const DWORD error = GetLastError(); error != ERROR_FILE_EXISTS)
            throw HostError{ExitCode::kJobFailed,
                            with_reason(L"the print data cannot be stored in " + folder, error)};
    }
}

}  // namespace host
