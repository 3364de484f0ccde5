// The loader's entry point. Apart from the rest, so that test programs can link everything else.
#include <windows.h>

#include "UI_dll/plotui.h"
#include "common/qk/guard.h"
#include "common/qk/thread_storage.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* reserved) noexcept {
    const BOOL answer = qk::guarded<BOOL>(FALSE, [&] {
        switch (reason) {
            case DLL_PROCESS_ATTACH:
                return plotui::attach_process(instance);
            case DLL_THREAD_DETACH:
                plotui::detach_thread();
                return true;
            case DLL_PROCESS_DETACH:
                plotui::detach_process(reserved != nullptr);
                return true;
            default:
                return true;
        }
    });
    if (reason == DLL_PROCESS_ATTACH && !answer)
        qk::module_is_refused();
    if (reason == DLL_THREAD_DETACH)
        qk::release_thread_storage();  // whose variables the lines above may have used once more
    return answer;
}
