// Owners of what user32, gdi32 and comctl32 hand out.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include "common/handle.h"

namespace qk {

struct IconTraits {
    using Handle = HICON;
    static Handle empty() noexcept { return nullptr; }
    static void close(Handle handle) noexcept { DestroyIcon(handle); }
};

struct ImageListTraits {
    using Handle = HIMAGELIST;
    static Handle empty() noexcept { return nullptr; }
    static void close(Handle handle) noexcept { ImageList_Destroy(handle); }
};

template <class GdiHandle>
struct GdiTraits {
    using Handle = GdiHandle;
    static Handle empty() noexcept { return nullptr; }
    static void close(Handle handle) noexcept { DeleteObject(handle); }
};

struct MemoryDCTraits {
    using Handle = HDC;
    static Handle empty() noexcept { return nullptr; }
    static void close(Handle handle) noexcept { DeleteDC(handle); }
};

using Icon = Owner<IconTraits>;
using ImageList = Owner<ImageListTraits>;
using Font = Owner<GdiTraits<HFONT>>;
using Brush = Owner<GdiTraits<HBRUSH>>;
using Pen = Owner<GdiTraits<HPEN>>;
using Bitmap = Owner<GdiTraits<HBITMAP>>;
using MemoryDC = Owner<MemoryDCTraits>;

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
