#include "UI_dll/PDFSettings/preview/picture_file.h"

#include <algorithm>
#include <cstdint>

#include "common/qk/disk_file.h"
#include "common/qk/trace.h"

namespace pdf_settings {

namespace {

// The flat interface of GDI+, of which this is all that a preview needs. Loaded for the one picture only: a
// program that prints shall not carry it.
struct StartupInput {
    UINT32 version = 1;
    void* debug_callback = nullptr;
    BOOL without_thread = FALSE;
    BOOL without_codecs = FALSE;
};
using Startup = int WINAPI(ULONG_PTR* token, const StartupInput* input, void* output);
using Shutdown = void WINAPI(ULONG_PTR token);
using LoadImageFromFile = int WINAPI(const wchar_t* path, void** image);
using GetLength = int WINAPI(void* image, UINT* pixels);
using GetResolution = int WINAPI(void* image, float* dpi);
using MakeBitmap = int WINAPI(int width, int height, int stride, int format, void* bits, void** bitmap);
using GetGraphics = int WINAPI(void* image, void** graphics);
using Draw = int WINAPI(void* graphics, void* image, int x, int y, int width, int height);
using Delete = int WINAPI(void* object);
using ToHandle = int WINAPI(void* bitmap, HBITMAP* handle, DWORD background);

constexpr int kPremultiplied32 = 0xE200B;  // PixelFormat32bppPARGB
constexpr uint64_t kMostPixels = 100'000'000;
constexpr double kMmPerInch = 25.4;

class Library {
public:
    Library() : library_(LoadLibraryExW(L"gdiplus.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32)) {
        const StartupInput input;
        const auto start = find<Startup>("GdiplusStartup");
        started_ = start && start(&token_, &input, nullptr) == 0;
    }
    ~Library() {
        const auto stop = find<Shutdown>("GdiplusShutdown");
        if (started_ && stop)
            stop(token_);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    [[nodiscard]] bool works() const noexcept { return started_; }

    // Calls the function of that name; false when there is none or it fails.
    template <class Function, class... Arguments>
    [[nodiscard]] bool call(const char* name, Arguments... arguments) const noexcept {
        const auto function = find<Function>(name);
        return function && function(arguments...) == 0;
    }

private:
    template <class Function>
    [[nodiscard]] Function* find(const char* name) const noexcept {
        return library_ ? qk::find_export<Function>(library_.get(), name) : nullptr;
    }

    qk::DLL library_;
    ULONG_PTR token_ = 0;
    bool started_ = false;
};

// An object of the library, deleted with the function of that name.
class Object {
public:
    Object(const Library& library, const char* deleter) noexcept : library_(library), deleter_(deleter) {}
    ~Object() {
        if (object_)
            static_cast<void>(library_.call<Delete>(deleter_, object_));
    }
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    [[nodiscard]] void* get() const noexcept { return object_; }
    [[nodiscard]] void** put() noexcept { return &object_; }

private:
    const Library& library_;
    const char* deleter_;
    void* object_ = nullptr;
};

bool is_local(const std::wstring& path) noexcept {
    if (path.size() < 4 || path[1] != L':')
        return false;
    const wchar_t root[] = {path[0], L':', L'\\', 0};
    return GetDriveTypeW(root) != DRIVE_REMOTE;
}

// The library opens whatever has the name; nobody puts something else in its place meanwhile.
qk::FileObj hold(const std::wstring& path) {
    return is_local(path) ? qk::open_disk_file(path, GENERIC_READ, FILE_SHARE_READ) : qk::FileObj();
}

SIZE preview_size(UINT width, UINT height, UINT most_side) noexcept {
    const UINT longer = std::max(width, height);
    if (longer <= most_side)
        return {static_cast<LONG>(width), static_cast<LONG>(height)};
    const auto scaled = [&](UINT side) {
        return std::max<LONG>(1, static_cast<LONG>(uint64_t{side} * most_side / longer));
    };
    return {scaled(width), scaled(height)};
}

double length_mm(const Library& library, const char* resolution, void* image, UINT pixels) noexcept {
    float dpi = 0;
    if (!library.call<GetResolution>(resolution, image, &dpi) || !(dpi >= 1))
        dpi = 96;
    return pixels * kMmPerInch / static_cast<double>(dpi);
}

qk::Bitmap draw_small(const Library& library, void* image, SIZE size) noexcept {
    Object small(library, "GdipDisposeImage");
    Object graphics(library, "GdipDeleteGraphics");
    HBITMAP handle = nullptr;
    if (library.call<MakeBitmap>("GdipCreateBitmapFromScan0", int{size.cx}, int{size.cy}, 0, kPremultiplied32,
                                 nullptr, small.put()) &&
        library.call<GetGraphics>("GdipGetImageGraphicsContext", small.get(), graphics.put()) &&
        library.call<Draw>("GdipDrawImageRectI", graphics.get(), image, 0, 0, int{size.cx}, int{size.cy}) &&
        !library.call<ToHandle>("GdipCreateHBITMAPFromBitmap", small.get(), &handle, DWORD{0}))
        handle = nullptr;
    return qk::Bitmap(handle);
}

}  // namespace

bool is_no_picture(const std::wstring& path) {
    const qk::FileObj held = hold(path);
    const Library library;
    Object image(library, "GdipDisposeImage");
    return held && library.works() &&
           !library.call<LoadImageFromFile>("GdipLoadImageFromFile", path.c_str(), image.put());
}

Picture load_picture(const std::wstring& path, UINT most_side) {
    TRACE("load_picture");
    Picture picture;
    const qk::FileObj held = hold(path);
    if (!held)
        return picture;
    const Library library;
    if (!library.works())
        return picture;
    Object image(library, "GdipDisposeImage");
    UINT width = 0;
    UINT height = 0;
    if (!library.call<LoadImageFromFile>("GdipLoadImageFromFile", path.c_str(), image.put()) ||
        !library.call<GetLength>("GdipGetImageWidth", image.get(), &width) ||
        !library.call<GetLength>("GdipGetImageHeight", image.get(), &height) || width == 0 || height == 0 ||
        uint64_t{width} * height > kMostPixels)
        return picture;
    picture.pixels = preview_size(width, height, most_side);
    picture.width_mm = length_mm(library, "GdipGetImageHorizontalResolution", image.get(), width);
    picture.height_mm = length_mm(library, "GdipGetImageVerticalResolution", image.get(), height);
    picture.bitmap = draw_small(library, image.get(), picture.pixels);
    return picture;
}

}  // namespace pdf_settings
