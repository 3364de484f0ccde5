// What the module does when the loader attaches and detaches it.
#pragma once

#include <windows.h>

namespace plotui {

// False, after saying so to the debug output, when there is no language library: the load then fails.
[[nodiscard]] bool attach_process(HINSTANCE instance);

void detach_thread();

// `process_ends` tells the end of the process, when no lock may be waited for, from an unloading.
void detach_process(bool process_ends) noexcept;

}  // namespace plotui
