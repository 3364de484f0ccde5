// Owners of Windows handles: one template, one traits struct per kind of handle.
#pragma once

#include <windows.h>

#include <utility>

namespace qk {

// Restores the thread's last error when it goes out of scope.
class LastErrorKeeper {
public:
    LastErrorKeeper() noexcept : error_(GetLastError()) {}
    ~LastErrorKeeper() { SetLastError(error_); }
    LastErrorKeeper(const LastErrorKeeper&) = delete;
    LastErrorKeeper& operator=(const LastErrorKeeper&) = delete;

private:
    DWORD error_;
};

// Owns one handle; releases it when it goes out of scope and keeps the thread's last error in doing so.
// `Traits` names the handle's type, its empty value and how it is released. Move only.
template <class Traits>
class Owner {
public:
    using Handle = typename Traits::Handle;

    Owner() noexcept = default;
    explicit Owner(Handle handle) noexcept : handle_(handle) {}
    Owner(Owner&& other) noexcept : handle_(other.release()) {}
    Owner& operator=(Owner&& other) noexcept {
        if (this != &other)
            reset(other.release());
        return *this;
    }
    ~Owner() { reset(); }

    [[nodiscard]] Handle get() const noexcept { return handle_; }
    explicit operator bool() const noexcept { return valid(handle_); }

    // Gives the handle up; the caller owns it from now on.
    [[nodiscard]] Handle release() noexcept { return std::exchange(handle_, Traits::empty()); }

    void reset(Handle handle = Traits::empty()) noexcept {
        Handle old = std::exchange(handle_, handle);
        if (valid(old)) {
            LastErrorKeeper keep;
            Traits::close(old);
        }
    }

    // For functions that return the handle through a pointer; what was held is released first.
    [[nodiscard]] Handle* put() noexcept {
        reset();
        return &handle_;
    }

private:
    static bool valid(Handle handle) noexcept {
        // CreateFile and its like report failure as INVALID_HANDLE_VALUE, the others as null.
        return handle != Traits::empty() && handle != Handle{};
    }

    Handle handle_ = Traits::empty();
};

template <class HandleType>
struct NullIsNone {
    using Handle = HandleType;
    static Handle empty() noexcept { return nullptr; }
};

struct InvalidIsNone {
    using Handle = HANDLE;
    static Handle empty() noexcept { return INVALID_HANDLE_VALUE; }
};

struct KernelHandleTraits : NullIsNone<HANDLE> {  // events, mutexes, mappings, processes, threads
    static void close(HANDLE handle) noexcept { CloseHandle(handle); }
};

struct FileHandleTraits : InvalidIsNone {
    static void close(HANDLE handle) noexcept { CloseHandle(handle); }
};

struct FindHandleTraits : InvalidIsNone {
    static void close(HANDLE handle) noexcept { FindClose(handle); }
};

struct ModuleTraits : NullIsNone<HMODULE> {
    static void close(HMODULE module) noexcept { FreeLibrary(module); }
};

struct RegKeyTraits : NullIsNone<HKEY> {
    static void close(HKEY key) noexcept { RegCloseKey(key); }
};

struct ViewTraits : NullIsNone<void*> {
    static void close(void* view) noexcept { UnmapViewOfFile(view); }
};

struct LocalMemoryTraits : NullIsNone<void*> {
    static void close(void* memory) noexcept { LocalFree(memory); }
};

struct ActivationContextTraits : InvalidIsNone {
    static void close(HANDLE context) noexcept { ReleaseActCtx(context); }
};

struct EventSourceTraits : NullIsNone<HANDLE> {
    static void close(HANDLE source) noexcept { DeregisterEventSource(source); }
};

using HandleObj = Owner<KernelHandleTraits>;
using FileObj = Owner<FileHandleTraits>;
using FindObj = Owner<FindHandleTraits>;
using DLL = Owner<ModuleTraits>;
using RegKey = Owner<RegKeyTraits>;
using View = Owner<ViewTraits>;
using LocalMemory = Owner<LocalMemoryTraits>;
using ActivationContext = Owner<ActivationContextTraits>;
using EventSource = Owner<EventSourceTraits>;

// The function `name` of a loaded library as a typed pointer; null, last error 127, when it has none.
template <class Function>
[[nodiscard]] Function* find_export(HMODULE library, const char* name) noexcept {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

}  // namespace qk
