#include "UI_dll/plotui.h"

#include <string>

#include "common/handle.h"
#include "common/module.h"
#include "common/paths.h"
#include "common/resource_dll.h"
#include "common/threadprop.h"
#include "common/trace.h"

namespace plotui {

namespace {

constexpr WORD kManifestId = 2;

HMODULE resources = nullptr;

bool load_resources() {
    const std::wstring path = qk::resource_library_path(false);
    resources = path.empty() ? nullptr : LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    const DWORD error = GetLastError();
    if (resources && resources != INVALID_HANDLE_VALUE)
        return true;
    TRACE_F(L"gle=%d", static_cast<int>(error));
    OutputDebugStringA("ZRTK Error:no resource dll.");
    resources = nullptr;
    return false;
}

qk::ActivationContext own_context(HINSTANCE instance) {
    ACTCTXW request = {sizeof request};
    request.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    request.hModule = instance;
    request.lpResourceName = MAKEINTRESOURCEW(kManifestId);
    return qk::ActivationContext(CreateActCtxW(&request));
}

// Loads the module once more under its own manifest. This reference is never given back: callbacks and sheets
// that the system holds stay valid after a caller has freed the driver.
void pin(HINSTANCE instance) {
    wchar_t path[292] = {};
    const DWORD units = GetModuleFileNameW(instance, path, static_cast<DWORD>(std::size(path)));
    if (units == 0 || units == std::size(path)) {  // a path that was cut names another file or none
        TRACE("ui:no module path");
        return;
    }
    const CommonControls controls;
    if (!controls || !LoadLibraryW(path))
        TRACE_F(L"ui:not pinned gle=%d", static_cast<int>(GetLastError()));
}

}  // namespace

bool attach_process(HINSTANCE instance) {
    qk::trace::read_level();
    TRACE("ui:attach");
    if (!load_resources()) {
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
        if (resources)
            FreeLibrary(resources);
        resources = nullptr;
        qk::finalize_resource_library(process_ends);
    } catch (...) {  // nobody is left to be told
    }
}

HMODULE resource_module() noexcept {
    return resources;
}

CommonControls::CommonControls()
    : context_(own_context(qk::module_instance())),
      active_(context_ && ActivateActCtx(context_.get(), &cookie_)) {}

CommonControls::~CommonControls() {
    if (active_)
        DeactivateActCtx(0, cookie_);
}

}  // namespace plotui
