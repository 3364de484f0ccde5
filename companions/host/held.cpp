#include "companions/host/held.h"

#include <windows.h>

#include <winternl.h>

#include <algorithm>
#include <vector>

#include "common/handle.h"

namespace host {

namespace {

// SYSTEM_HANDLE_INFORMATION_EX, which the headers do not declare.
struct HandleEntry {
    void* object;
    ULONG_PTR process;
    ULONG_PTR handle;
    ULONG access;
    USHORT back_trace;
    USHORT type;
    ULONG attributes;
    ULONG reserved;
};
struct HandleList {
    ULONG_PTR count;
    ULONG_PTR reserved;
    HandleEntry entries[1];
};
static_assert(sizeof(HandleEntry) == 40 && offsetof(HandleList, entries) == 16);

constexpr int kExtendedHandles = 64;  // a SYSTEM_INFORMATION_CLASS that the headers lack
constexpr NTSTATUS kTooSmall = static_cast<NTSTATUS>(0xC0000004);
constexpr size_t kMostBytes = size_t{64} << 20;

// Counts this process's entries in the list of all handles of the system, for systems (Wine) that do not
// count a process's handles.
size_t count_listed_handles() {
    using Query = NTSTATUS NTAPI(int, void*, ULONG, ULONG*);
    auto* query = qk::find_export<Query>(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation");
    NTSTATUS status = kTooSmall;
    std::vector<ULONG_PTR> room(1 << 14);
    while (query && status == kTooSmall && room.size() * sizeof(ULONG_PTR) < kMostBytes) {
        room.resize(room.size() * 2);
        ULONG needed = 0;
        status = query(kExtendedHandles, room.data(), static_cast<ULONG>(room.size() * sizeof(ULONG_PTR)),
                       &needed);
    }
    if (status != 0)
        return 0;
    const auto* list = reinterpret_cast<const HandleList*>(room.data());
    const ULONG_PTR process = GetCurrentProcessId();
    return static_cast<size_t>(
        std::count_if(list->entries, list->entries + list->count,
                      [process](const HandleEntry& entry) { return entry.process == process; }));
}

size_t count_handles() {
    DWORD handles = 0;
    return GetProcessHandleCount(GetCurrentProcess(), &handles) && handles != 0 ? handles
                                                                                : count_listed_handles();
}

size_t count_mappings() {
    size_t mappings = 0;
    MEMORY_BASIC_INFORMATION region = {};
    const void* counted = nullptr;
    for (const std::byte* at = nullptr; VirtualQuery(at, &region, sizeof region) != 0;
         at = static_cast<const std::byte*>(region.BaseAddress) + region.RegionSize) {
        if (region.Type != MEM_MAPPED || region.AllocationBase == counted)
            continue;
        counted = region.AllocationBase;
        ++mappings;
    }
    return mappings;
}

}  // namespace

Held count_held() {
    return {count_handles(), count_mappings()};
}

}  // namespace host
