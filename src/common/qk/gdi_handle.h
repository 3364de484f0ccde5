// Owners of what user32, gdi32 and comctl32 hand out.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include "common/qk/handle.h"

namespace qk {

struct IconTraits : NullIsNone<HICON> {
    static void close(HICON icon) noexcept { DestroyIcon(icon); }
};

struct ImageListTraits : NullIsNone<HIMAGELIST> {
    static void close(HIMAGELIST list) noexcept { ImageList_Destroy(list); }
};

template <class GdiHandle>
struct GdiTraits : NullIsNone<GdiHandle> {
    static void close(GdiHandle handle) noexcept { DeleteObject(handle); }
};

struct DeviceContextTraits : NullIsNone<HDC> {
    static void close(HDC dc) noexcept { DeleteDC(dc); }
};

using Icon = Owner<IconTraits>;
using ImageList = Owner<ImageListTraits>;
using Font = Owner<GdiTraits<HFONT>>;
using Brush = Owner<GdiTraits<HBRUSH>>;
using Pen = Owner<GdiTraits<HPEN>>;
using Bitmap = Owner<GdiTraits<HBITMAP>>;
using DeviceContext = Owner<DeviceContextTraits>;

// A window's device context, given back when it goes out of scope. Null window: the screen.
class WindowDC {
public:
    explicit WindowDC(HWND window) noexcept : window_(window), dc_(GetDC(window)) {}
    ~WindowDC() {
        if (dc_)
            ReleaseDC(window_, dc_);
    }
    WindowDC(const WindowDC&) = delete;
    WindowDC& operator=(const WindowDC&) = delete;

    [[nodiscard]] HDC get() const noexcept { return dc_; }

private:
    HWND window_;
    HDC dc_;
};

// Selects an object for the time of a scope, then the one that was there before.
class Selected {
public:
    Selected(HDC dc, HGDIOBJ object) noexcept : dc_(dc), before_(SelectObject(dc, object)) {}
    ~Selected() { SelectObject(dc_, before_); }
    Selected(const Selected&) = delete;
    Selected& operator=(const Selected&) = delete;

private:
    HDC dc_;
    HGDIOBJ before_;
};

}  // namespace qk
