// What stands between the module and its callers: no exception gets out.
#pragma once

#include <windows.h>

#include <new>

#include "common/qk/trace.h"

namespace qk {

// Calls `inner`; an exception becomes `failure` and last error 14 (no memory) or 31 (anything else).
template <class Result, class Inner>
[[nodiscard]] Result guarded(Result failure, Inner inner) noexcept {
    DWORD error = ERROR_SUCCESS;
    try {
        return static_cast<Result>(inner());
    } catch (const std::bad_alloc&) {
        error = ERROR_OUTOFMEMORY;
    } catch (const std::exception& exception) {
        TRACE(exception.what());
        error = ERROR_GEN_FAILURE;
    } catch (...) {
        error = ERROR_GEN_FAILURE;
    }
    SetLastError(error);
    return failure;
}

}  // namespace qk
