// Owners of the device context and the font that a job prints with.
#pragma once

#include <windows.h>

#include "common/handle.h"

namespace host {

struct DeviceContextTraits {
    using Handle = HDC;
    static Handle empty() noexcept { return nullptr; }
    static void close(Handle handle) noexcept { DeleteDC(handle); }  // lint: owner
};

struct FontTraits {
    using Handle = HFONT;
    static Handle empty() noexcept { return nullptr; }
    static void close(Handle handle) noexcept { DeleteObject(handle); }  // lint: owner
};

using DeviceContext = qk::Owner<DeviceContextTraits>;
using Font = qk::Owner<FontTraits>;

}  // namespace host
