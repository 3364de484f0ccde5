#include "common/memory_probe.h"

#include <cstdint>

#include "common/handle.h"

namespace qk {

namespace {

constexpr DWORD kWritable = PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
constexpr DWORD kReadable = kWritable | PAGE_READONLY | PAGE_EXECUTE_READ;

bool has_access(const void* address, size_t size, DWORD wanted) noexcept {
    const LastErrorKeeper keep;
    auto at = reinterpret_cast<uintptr_t>(address);
    if (at == 0 || at + size < at)
        return false;
    for (const uintptr_t end = at + size; at < end;) {
        MEMORY_BASIC_INFORMATION region = {};
        if (VirtualQuery(reinterpret_cast<void*>(at), &region, sizeof region) != sizeof region)
            return false;
        if (region.State != MEM_COMMIT || !(region.Protect & wanted) || (region.Protect & PAGE_GUARD))
            return false;
        at = reinterpret_cast<uintptr_t>(region.BaseAddress) + region.RegionSize;
    }
    return true;
}

}  // namespace

bool is_readable(const void* address, size_t size) noexcept { return has_access(address, size, kReadable); }

bool is_writable(void* address, size_t size) noexcept { return has_access(address, size, kWritable); }

bool try_copy(void* target, const void* source, size_t size) noexcept {
    const LastErrorKeeper keep;
    SIZE_T copied = 0;
    // Unlike a plain copy behind is_readable, this cannot lose a race against the owner of the memory.
    return ReadProcessMemory(GetCurrentProcess(), source, target, size, &copied) && copied == size;
}

}  // namespace qk
