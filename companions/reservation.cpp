#include "companions/reservation.h"

#include <windows.h>

#include <string>

namespace companions {

void discard_reserved(const ZRTKPrintStartInfoC& start) {
    const std::wstring path = record_text(start.output_path);
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    const bool empty = !path.empty() && GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) &&
                       data.nFileSizeHigh == 0 && data.nFileSizeLow == 0;
    if (start.first_value == kFileReserved && empty)
        DeleteFileW(path.c_str());
}

}  // namespace companions
