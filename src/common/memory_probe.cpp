#include "common/memory_probe.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "common/handle.h"

namespace qk {

namespace {

constexpr DWORD kWritable = PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
constexpr DWORD kReadable = kWritable | PAGE_READONLY | PAGE_EXECUTE_READ;

constexpr size_t kPage = 4096;

// By the memory's map: unlike a touch, it leaves a guard page, as that at the end of a stack, unused.
bool has_protection(const void* address, size_t size, DWORD protections) noexcept {
    const LastErrorKeeper keep;
    auto at = reinterpret_cast<uintptr_t>(address);
    if (at == 0 || size > UINTPTR_MAX - at)
        return false;
    const uintptr_t end = at + size;
    while (at < end) {
        MEMORY_BASIC_INFORMATION region = {};
        if (VirtualQuery(reinterpret_cast<void*>(at), &region, sizeof region) != sizeof region)
            return false;
        if (region.State != MEM_COMMIT || !(region.Protect & protections) || (region.Protect & PAGE_GUARD))
            return false;
        at = reinterpret_cast<uintptr_t>(region.BaseAddress) + region.RegionSize;
    }
    return true;
}

}  // namespace

bool is_readable(const void* address, size_t size) noexcept {
    return has_protection(address, size, kReadable);
}

bool is_writable(void* address, size_t size) noexcept {
    return has_protection(address, size, kWritable);
}

bool try_copy(void* target, const void* source, size_t size) noexcept {
    // ReadProcessMemory would not lose a race against somebody who unmaps the memory meanwhile, but costs a
    // job more than everything else in it on systems where it stops the process to look.
    if (!is_readable(source, size))
        return false;
    std::memcpy(target, source, size);
    return true;
}

std::wstring copy_while_readable(const wchar_t* address, size_t units) {
    std::wstring text(units, L'\0');
    size_t done = 0;
    while (done < units) {  // page by page: the next one may not be there
        const auto at = reinterpret_cast<uintptr_t>(address + done);
        const size_t to_page_end = std::max<size_t>((kPage - at % kPage) / sizeof(wchar_t), 1);
        const size_t step = std::min(units - done, to_page_end);
        if (!try_copy(text.data() + done, address + done, step * sizeof(wchar_t)))
            break;
        done += step;
    }
    text.resize(done);
    return text;
}

std::wstring text_at(const wchar_t* address, size_t most) {
    std::wstring text;
    if (!address)
        return text;
    // In pieces, so that a short text in a large readable region costs little.
    while (text.size() < most) {
        const size_t wanted = std::min<size_t>(256, most - text.size());
        const std::wstring piece = copy_while_readable(address + text.size(), wanted);
        const size_t zero = piece.find(L'\0');
        text.append(piece, 0, zero);
        if (zero != std::wstring::npos || piece.size() < wanted)
            break;
    }
    return text;
}

}  // namespace qk
