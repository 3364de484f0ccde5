#include "common/qk/memory_probe.h"

#include <algorithm>
#include <cstdint>

#include "common/qk/handle.h"

// What touches memory that may not be there. Both answer false where it is not; the table behind each names
// the place where it goes on after a fault.
//
// zr_touch_pages writes one byte of each page from `first` to `last` back to it, atomically. A look at the
// memory's map costs a hundred times as much, and capability queries, which programs ask by the dozen, do
// little else: with it an answer of one name takes twenty times what it takes another driver.
//
// zr_copy_bytes begins at the end where the target lies within what is copied, behind its start.
extern "C" bool zr_touch_pages(void* first, void* last) noexcept;
extern "C" bool zr_copy_bytes(void* target, const void* source, size_t size) noexcept;

asm(R"(
    .text
    .globl zr_touch_pages
    .seh_proc zr_touch_pages
zr_touch_pages:
    .seh_endprologue
1:  lock orb $0, (%rcx)
    orq $0xFFF, %rcx
    incq %rcx
    cmpq %rdx, %rcx
    jbe 1b
    movl $1, %eax
    ret
zr_touch_failed:
    xorl %eax, %eax
    ret
    .seh_handler zr_memory_fault, @except
    .seh_handlerdata
    .rva zr_touch_failed
    .text
    .seh_endproc

    .globl zr_copy_bytes
    .seh_proc zr_copy_bytes
zr_copy_bytes:
    pushq %rdi
    .seh_pushreg %rdi
    pushq %rsi
    .seh_pushreg %rsi
    .seh_endprologue
    movq %rcx, %rdi
    movq %rdx, %rsi
    movq %r8, %rcx
    movq %rdi, %rax
    subq %rsi, %rax
    cmpq %rcx, %rax
    jae 1f
    leaq -1(%rdi,%rcx), %rdi
    leaq -1(%rsi,%rcx), %rsi
    std
1:  rep movsb
    cld
    movl $1, %eax
    popq %rsi
    popq %rdi
    ret
zr_copy_failed:
    cld
    xorl %eax, %eax
    popq %rsi
    popq %rdi
    ret
    .seh_handler zr_memory_fault, @except
    .seh_handlerdata
    .rva zr_copy_failed
    .text
    .seh_endproc
)");

// The handler of every exception inside them. A guard page that has been touched is one no longer: it is made
// one again, for it is the end of somebody's stack. That of the own stack the system moves on by itself,
// until it says that the stack is full, which it is not.
extern "C" EXCEPTION_DISPOSITION zr_memory_fault(EXCEPTION_RECORD* record, void*, CONTEXT* context,
                                                 DISPATCHER_CONTEXT* dispatcher) noexcept {
    const DWORD code = record->ExceptionCode;
    if (code != EXCEPTION_ACCESS_VIOLATION && code != EXCEPTION_GUARD_PAGE &&
        code != EXCEPTION_IN_PAGE_ERROR && code != EXCEPTION_STACK_OVERFLOW)
        return ExceptionContinueSearch;
    auto* page = reinterpret_cast<void*>(record->ExceptionInformation[1]);
    MEMORY_BASIC_INFORMATION region = {};
    DWORD before = 0;
    if (code == EXCEPTION_GUARD_PAGE && VirtualQuery(page, &region, sizeof region) == sizeof region)
        VirtualProtect(page, 1, region.Protect | PAGE_GUARD, &before);
    context->Rip = dispatcher->ImageBase + *static_cast<const DWORD*>(dispatcher->HandlerData);
    return ExceptionContinueExecution;
}

namespace qk {

namespace {

constexpr DWORD kReadable = PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE |
                            PAGE_EXECUTE_WRITECOPY | PAGE_READONLY | PAGE_EXECUTE_READ;

constexpr size_t kPage = 4096;

}  // namespace

// By the memory's map: there is no need to touch what is only read.
bool is_readable(const void* address, size_t size) noexcept {
    const LastErrorKeeper keep;
    auto at = reinterpret_cast<uintptr_t>(address);
    if (at == 0 || size > UINTPTR_MAX - at)
        return false;
    const uintptr_t end = at + size;
    while (at < end) {
        MEMORY_BASIC_INFORMATION region = {};
        if (VirtualQuery(reinterpret_cast<void*>(at), &region, sizeof region) != sizeof region)
            return false;
        if (region.State != MEM_COMMIT || !(region.Protect & kReadable) || (region.Protect & PAGE_GUARD))
            return false;
        at = reinterpret_cast<uintptr_t>(region.BaseAddress) + region.RegionSize;
    }
    return true;
}

bool is_writable(void* address, size_t size) noexcept {
    if (!address || size > UINTPTR_MAX - reinterpret_cast<uintptr_t>(address))
        return false;
    if (size == 0)
        return true;
    return zr_touch_pages(address, static_cast<std::byte*>(address) + (size - 1));
}

bool try_copy(void* target, const void* source, size_t size) noexcept {
    return size == 0 || (target && source && zr_copy_bytes(target, source, size));
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
