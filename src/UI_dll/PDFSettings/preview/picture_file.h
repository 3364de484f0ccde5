// Pictures for the preview of a watermark.
#pragma once

#include <windows.h>

#include <string>

#include "common/qk/gdi_handle.h"

namespace pdf_settings {

struct Picture {
    qk::Bitmap bitmap;  // 32 bits with premultiplied alpha; empty: there is no picture
    SIZE pixels = {};   // of the bitmap, which is smaller than a large picture
    double width_mm = 0;
    double height_mm = 0;
};

// Reads a picture file (BMP, GIF, JPEG, PNG, TIFF) with what the system has for it. Empty when it is no
// picture, too large for a preview, or on another computer, for which no dialog shall wait.
// No side of its bitmap has more pixels than `most_side`.
inline constexpr UINT kPreviewSide = 512;
[[nodiscard]] Picture load_picture(const std::wstring& path, UINT most_side = kPreviewSide);

// Whether the file is certainly no picture: it can be read, and the system knows no picture in it. A file on
// another computer is not asked.
[[nodiscard]] bool is_no_picture(const std::wstring& path);

}  // namespace pdf_settings
