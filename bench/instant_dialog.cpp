// A save-file dialog library that answers at once, for timing what the module itself does in a job.
#include <windows.h>

#include <iterator>

#include "common/dialog_library.h"

extern "C" {

__declspec(dllexport) int WINAPI GetSettingFN(wchar_t* buffer, int capacity, const wchar_t*, void*) {
    return GetEnvironmentVariableW(L"ZR_BENCH_SETTING", buffer, static_cast<DWORD>(capacity)) != 0 ? 0 : 1;
}

__declspec(dllexport) int WINAPI GetFile2(dialog_library::WorkingRecord* record, const wchar_t*) {
    static wchar_t path[] = L"C:\\zr_bench_no_such_file.pdf";
    auto& field = record->output_path;
    field.address = path;
    field.length = field.capacity = std::size(path) - 1;
    return 0;
}
}
