// What the module does when the loader attaches and detaches it.
#pragma once

#include <windows.h>

#include "common/handle.h"

namespace plotui {

// False, after saying so to the debug output, when there is no language library: the load then fails.
[[nodiscard]] bool attach_process(HINSTANCE instance);

void detach_thread();

// `process_ends` tells the end of the process, when no lock may be waited for, from an unloading.
void detach_process(bool process_ends) noexcept;

// While it lives, windows that the thread makes get the common controls that the module's manifest asks for,
// whatever the host program's does.
class CommonControls {
public:
    CommonControls();
    ~CommonControls();
    CommonControls(const CommonControls&) = delete;
    CommonControls& operator=(const CommonControls&) = delete;

    explicit operator bool() const noexcept { return active_; }

private:
    qk::ActivationContext context_;
    ULONG_PTR cookie_ = 0;
    bool active_ = false;
};

// The language library as data, from attach to detach.
[[nodiscard]] HMODULE resource_module() noexcept;

}  // namespace plotui
