#include "UI_dll/PDFSettings/list/dpi.h"

#include "common/qk/handle.h"
#include "common/qk/resource_dll.h"
#include "common/qk/trace.h"
#include "resources/ids.h"

namespace {

// Absent from older systems.
template <class Function>
Function* find_user32(const char* name) noexcept {
    const HMODULE library = GetModuleHandleW(L"User32.dll");
    return library ? qk::find_export<Function>(library, name) : nullptr;
}

UINT screen_dpi() noexcept {
    const qk::WindowDC screen(nullptr);
    return screen.get() ? static_cast<UINT>(GetDeviceCaps(screen.get(), LOGPIXELSX)) : 0;
}

}  // namespace

UINT qk_GetWindowDPI(HWND window) noexcept {
    TRACE("qk_GetWindowDPI");
    auto* dpi_of = find_user32<UINT WINAPI(HWND)>("GetDpiForWindow");
    return pdf_settings::usable_dpi(dpi_of ? dpi_of(window) : screen_dpi());
}

HANDLE qk_SetThreadDpiAwarenessContext(HANDLE context) noexcept {
    TRACE("qk_SetThreadDpiAwarenessContext");
    auto* set = find_user32<HANDLE WINAPI(HANDLE)>("SetThreadDpiAwarenessContext");
    return set ? set(context) : nullptr;
}

namespace pdf_settings {

namespace {

qk::Icon load_icon(UINT id, int size) noexcept {
    return qk::Icon(static_cast<HICON>(
        LoadImageW(qk::resource_module(), MAKEINTRESOURCEW(id), IMAGE_ICON, size, size, LR_DEFAULTCOLOR)));
}

qk::ImageList load_row_images(int size) {
    qk::ImageList images(ImageList_Create(size, size, ILC_COLOR32 | ILC_MASK, 2, 0));
    for (const int id : {IDI_CUSTOM_SETTING, IDI_INSTALLED_SETTING})
        if (const qk::Icon icon = load_icon(static_cast<UINT>(id), size); icon && images)
            ImageList_ReplaceIcon(images.get(), -1, icon.get());
    return images;
}

}  // namespace

PageIcons load_page_icons(UINT dpi) {
    const int small = MulDiv(16, static_cast<int>(dpi), 96);
    const int large = MulDiv(32, static_cast<int>(dpi), 96);
    PageIcons icons;
    icons.dpi = dpi;
    icons.images = load_row_images(small);
    icons.page = load_icon(IDI_SETTINGS, large);
    icons.make = load_icon(IDI_NEW, small);
    icons.edit = load_icon(IDI_EDIT, small);
    icons.remove = load_icon(IDI_DELETE, small);
    icons.no_remove = load_icon(IDI_NO_DELETE, small);
    return icons;
}

}  // namespace pdf_settings
