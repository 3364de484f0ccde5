// __emutls_get_address takes the place of the run-time library's function of that name, which ends the
// process when there is no memory for a thread's first exception. This one falls back to storage set aside
// for that.
#include "common/qk/thread_storage.h"

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <utility>

#include "common/qk/handle.h"
#include "common/qk/lock.h"

namespace __gnu_cxx {
void __freeres();  // of the run-time library, which declares it nowhere
}

namespace {

// As the compiler writes it for each variable.
struct Variable {
    size_t size;
    size_t alignment;
    void* unused;
    const void* first_value;  // null: zeros
};

constexpr size_t kAlignment = 16;

// One thread's copy of one variable, with its value behind it.
struct alignas(kAlignment) Copy {
    const Variable* variable;
    Copy* next;             // of the same thread
    Copy *before, *behind;  // of the whole process
};

// Copies for threads that find no memory. The run-time library's record of a thread's exceptions is the
// largest variable, 16 bytes.
struct alignas(kAlignment) Reserve {
    std::atomic<DWORD> thread;
    std::atomic<const Variable*> variable;
    alignas(kAlignment) std::byte value[32];
};

constinit Reserve reserves[64] = {};
constinit std::atomic<DWORD> slot = TLS_OUT_OF_INDEXES;
constexpr DWORD kNoSlotAgain = TLS_OUT_OF_INDEXES - 1;  // of a module that goes: no slot has that number
constinit std::atomic<bool> process_detaches = false;
constinit qk::Lock copies_lock;
constinit Copy* copies = nullptr;

DWORD find_slot() noexcept {
    if (slot == TLS_OUT_OF_INDEXES) {
        const std::scoped_lock hold(copies_lock);
        if (slot == TLS_OUT_OF_INDEXES)  // no other thread was first
            slot = TlsAlloc();
    }
    return slot;
}

void* value_of(Copy* copy) noexcept {
    return copy + 1;
}

void* begin(void* value, const Variable& variable) noexcept {
    if (variable.first_value)
        std::memcpy(value, variable.first_value, variable.size);
    else
        std::memset(value, 0, variable.size);
    return value;
}

void unlink_and_free(Copy* copy) noexcept {
    {
        const std::scoped_lock hold(copies_lock);
        (copy->before ? copy->before->behind : copies) = copy->behind;
        if (copy->behind)
            copy->behind->before = copy->before;
    }
    HeapFree(GetProcessHeap(), 0, copy);
}

void* make_copy(const Variable& variable, DWORD at, Copy* next) noexcept {
    if (at == TLS_OUT_OF_INDEXES || variable.alignment > kAlignment)
        return nullptr;
    auto* copy = static_cast<Copy*>(HeapAlloc(GetProcessHeap(), 0, sizeof(Copy) + variable.size));
    if (!copy)
        return nullptr;
    {
        const std::scoped_lock hold(copies_lock);
        *copy = {&variable, next, nullptr, copies};
        if (copies)
            copies->before = copy;
        copies = copy;
    }
    if (TlsSetValue(at, copy))
        return begin(value_of(copy), variable);
    unlink_and_free(copy);
    return nullptr;
}

void* find_reserve(const Variable& variable) noexcept {
    for (Reserve& reserve : reserves)
        if (reserve.thread == GetCurrentThreadId() && reserve.variable == &variable)
            return reserve.value;
    return nullptr;
}

void* take_reserve(const Variable& variable) noexcept {
    if (variable.size > sizeof Reserve::value || variable.alignment > kAlignment)
        return nullptr;
    for (Reserve& reserve : reserves) {
        DWORD nobody = 0;
        if (!reserve.thread.compare_exchange_strong(nobody, GetCurrentThreadId()))
            continue;
        reserve.variable = &variable;
        return begin(reserve.value, variable);
    }
    return nullptr;
}

void release_process_storage() noexcept {
    process_detaches = true;
    // Whatever comes later uses the reserve, which goes with the module.
    const DWORD at = slot.exchange(kNoSlotAgain);
    while (copies)
        unlink_and_free(copies);
    if (at != TLS_OUT_OF_INDEXES)
        TlsFree(at);
}

// The memory that the run-time library sets aside for exceptions, 72 KiB, goes with an unloaded module. Made
// first of all and so destroyed last.
struct ExceptionMemory {
    ~ExceptionMemory() {
        if (process_detaches)
            __gnu_cxx::__freeres();
    }
};
[[gnu::init_priority(101)]] ExceptionMemory exception_memory;

void NTAPI on_loader_event(void*, DWORD reason, void* process_ends) {
    if (reason == DLL_THREAD_DETACH)
        qk::release_thread_storage();
    else if (reason == DLL_PROCESS_DETACH && !process_ends)
        release_process_storage();
}

}  // namespace

// Behind the callback of the run-time library, which destroys the variables.
extern "C" [[gnu::section(".CRT$XLE"), gnu::used]] const PIMAGE_TLS_CALLBACK zr_thread_storage_callback =
    &on_loader_event;

extern "C" void* __emutls_get_address(Variable* variable) noexcept {
    const qk::LastErrorKeeper keep;
    const DWORD at = find_slot();
    auto* const first = static_cast<Copy*>(at == TLS_OUT_OF_INDEXES ? nullptr : TlsGetValue(at));
    for (Copy* copy = first; copy; copy = copy->next)
        if (copy->variable == variable)
            return value_of(copy);
    for (;;) {
        if (void* value = find_reserve(*variable))
            return value;
        if (void* value = make_copy(*variable, at, first))
            return value;
        if (void* value = take_reserve(*variable))
            return value;
        Sleep(1);  // the reserve is used up: memory may come back, or another thread end
    }
}

void qk::release_thread_storage() noexcept {
    const qk::LastErrorKeeper keep;
    for (Reserve& reserve : reserves)
        if (reserve.thread == GetCurrentThreadId())
            reserve.thread = 0;
    const DWORD at = slot.load();
    if (at == TLS_OUT_OF_INDEXES)
        return;
    auto* copy = static_cast<Copy*>(TlsGetValue(at));
    TlsSetValue(at, nullptr);
    while (copy)
        unlink_and_free(std::exchange(copy, copy->next));
}

void qk::module_is_refused() noexcept {
    process_detaches = true;
}
