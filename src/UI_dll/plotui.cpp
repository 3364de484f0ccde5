#include "UI_dll/plotui.h"

#include <string>

#include "common/qk/activation_context.h"
#include "common/qk/paths.h"
#include "common/qk/resource_dll.h"
#include "common/qk/trace.h"
#include "common/threadprop.h"

namespace plotui {

namespace {

// Loads the module once more under its own manifest. This reference is never given back: callbacks and sheets
// that the system holds stay valid after a caller has freed the driver.
void pin(HINSTANCE instance) {
    wchar_t path[292] = {};
    const DWORD units = GetModuleFileNameW(instance, path, static_cast<DWORD>(std::size(path)));
    if (units == 0 || units == std::size(path)) {  // a path that was cut names another file or none
        TRACE("ui:no module path");
        return;
    }
    const qk::CommonControls controls;
    if (!controls || !LoadLibraryW(path))
        TRACE_F(L"ui:not pinned gle=%d", static_cast<int>(GetLastError()));
}

}  // namespace

bool attach_process(HINSTANCE instance) {
    qk::trace::read_level();
    TRACE("ui:attach");
    if (!qk::load_resource_library()) {
        TRACE_F(L"gle=%d", static_cast<int>(GetLastError()));
        OutputDebugStringA("ZRTK Error:no resource dll.");
        qk::finalize_resource_library(false);  // a copy that could not be loaded is not left behind
        return false;
    }
    pin(instance);
    return true;
}

void detach_thread() {
    TRACE("ui:thread detach");
    RemoveDirectoryW(thread_temp_folder(ZRTK_TempRoot()).c_str());  // only when it is empty
}

void detach_process(bool process_ends) noexcept {
    try {
        TRACE("ui:detach");
        FinalizeThreadProp(process_ends);
        qk::finalize_resource_library(process_ends);
    } catch (...) {  // nobody is left to be told
    }
}

}  // namespace plotui
