// Which common controls the module's windows get.
#pragma once

#include <windows.h>

#include "common/qk/handle.h"

namespace qk {

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

}  // namespace qk
