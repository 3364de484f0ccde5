#include "companions/host/held.h"

#include <windows.h>

#include <winternl.h>

#include <algorithm>
#include <iterator>
#include <vector>

#include "common/qk/handle.h"

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

// The handles of this process; empty when the system does not tell.
std::vector<HandleEntry> own_handles() {
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
    std::vector<HandleEntry> own;
    const auto* list = reinterpret_cast<const HandleList*>(room.data());
    if (status == 0)
        std::copy_if(list->entries, list->entries + list->count, std::back_inserter(own),
                     [](const HandleEntry& entry) { return entry.process == GetCurrentProcessId(); });
    return own;
}

// The system's number for a kind of object, learnt from one of that kind.
USHORT type_of(const std::vector<HandleEntry>& handles, const qk::HandleObj& sample) noexcept {
    const auto found =
        std::ranges::find(handles, reinterpret_cast<ULONG_PTR>(sample.get()), &HandleEntry::handle);
    return found == handles.end() ? USHORT{0} : found->type;
}

void count_handles(Held& held) {
    const qk::HandleObj event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const qk::HandleObj semaphore(CreateSemaphoreW(nullptr, 0, 1, nullptr));
    const std::vector<HandleEntry> handles = own_handles();
    const USHORT event_type = type_of(handles, event);
    const USHORT semaphore_type = type_of(handles, semaphore);
    const auto of_lock = [&](const HandleEntry& entry) {
        return entry.type == event_type || entry.type == semaphore_type;
    };
    held.lock_events = static_cast<size_t>(std::ranges::count_if(handles, of_lock));
    held.handles = handles.size() - held.lock_events;
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

// By the memory's map: not every system keeps the counter.
size_t private_kib() noexcept {
    size_t bytes = 0;
    MEMORY_BASIC_INFORMATION region = {};
    for (const std::byte* at = nullptr; VirtualQuery(at, &region, sizeof region) != 0;
         at = static_cast<const std::byte*>(region.BaseAddress) + region.RegionSize)
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE)
            bytes += region.RegionSize;
    return bytes / 1024;
}

}  // namespace

Held count_held() {
    Held held;
    count_handles(held);
    held.mappings = count_mappings();
    held.private_kib = private_kib();
    return held;
}

}  // namespace host
