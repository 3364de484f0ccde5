#include "companions/render/cancelling.h"

#include "common/qk/handle.h"

namespace companions::render {

namespace {

qk::HandleObj wish;

}  // namespace

void listen_for_cancel(const std::wstring& event) noexcept {
    if (!event.empty())
        wish.reset(OpenEventW(SYNCHRONIZE, FALSE, event.c_str()));
}

bool cancelled() noexcept {
    return wish && WaitForSingleObject(wish.get(), 0) == WAIT_OBJECT_0;
}

void wait_unless_cancelled(HANDLE process, DWORD milliseconds) noexcept {
    const HANDLE both[] = {process, wish.get()};
    WaitForMultipleObjects(wish ? 2 : 1, both, FALSE, milliseconds);
}

}  // namespace companions::render
