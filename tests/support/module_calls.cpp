#include "support/module_calls.h"

#include "support/installation.h"

namespace {

ModuleCalls* current = nullptr;

// module_imports.txt: how the functions fail that can.
std::map<std::string, std::optional<ModuleCalls::Failure>> known_imports() {
    std::istringstream file(TempFolder::read(Installation::built(L"..\\test_data\\module_imports.txt")));
    std::map<std::string, std::optional<ModuleCalls::Failure>> known;
    std::optional<ModuleCalls::Failure> group;
    for (std::string line, word; std::getline(file, line);) {
        std::istringstream words(line);
        if (line.starts_with("fails"))
            words >> word >> group.emplace().result >> group->error;
        else if (line == "sound")
            group.reset();
        else if (!line.starts_with("#"))
            while (words >> word)
                known[word] = group;
    }
    return known;
}

// What a function does to the count of blocks: gives one ('+', 'r': unless it has one already) or takes one.
char block_kind(std::string_view name) {
    if (name == "malloc" || name == "calloc" || name == "_strdup" || name == "HeapAlloc")
        return '+';
    return name == "realloc" ? 'r' : name == "free" ? 'f' : name == "HeapFree" ? 'h' : '\0';
}

constexpr size_t kGateBytes = 24;

}  // namespace

extern "C" {

void* zr_decide(unsigned function, const uintptr_t* arguments) {
    return current->decide(function, arguments);
}

// Stands in for the call that fails: whatever its arguments are, the caller removes them.
static intptr_t zr_fail_now() {
    return current->fail_now();
}

void zr_call_gate();
}

// Every replaced function comes here with its number in r11: the arguments stay as they are, and the jump
// leaves the stack as the caller made it.
asm(R"(
    .text; .globl zr_call_gate; .seh_proc zr_call_gate
zr_call_gate:
    subq $0x98, %rsp; .seh_stackalloc 0x98; .seh_endprologue
    movq %rcx, 0xA0(%rsp); movq %rdx, 0xA8(%rsp); movq %r8, 0xB0(%rsp); movq %r9, 0xB8(%rsp)
    movups %xmm0, 0x20(%rsp); movups %xmm1, 0x30(%rsp); movups %xmm2, 0x40(%rsp); movups %xmm3, 0x50(%rsp)
    movl %r11d, %ecx; leaq 0xA0(%rsp), %rdx; call zr_decide
    movups 0x20(%rsp), %xmm0; movups 0x30(%rsp), %xmm1; movups 0x40(%rsp), %xmm2; movups 0x50(%rsp), %xmm3
    movq 0xA0(%rsp), %rcx; movq 0xA8(%rsp), %rdx; movq 0xB0(%rsp), %r8; movq 0xB8(%rsp), %r9
    addq $0x98, %rsp; jmp *%rax
    .seh_endproc
)");

ModuleCalls::ModuleCalls(HMODULE module) {
    std::map<std::string_view, void*> here;  // what the test program has
    for_each_import(GetModuleHandleW(nullptr), [&](const char* name, const BYTE* slot) {
        here.emplace(name, read_at<void*>(slot));
        return false;
    });
    auto known = known_imports();
    for_each_import(module, [&](const char* name, BYTE* slot) {
        if (!known.contains(name))
            unknown_.emplace_back(name);
        const auto failure = known[name];
        if (void* const own = read_at<void*>(slot); failure || block_kind(name)) {
            void* const target = here.emplace(name, own).first->second;
            functions_.push_back({name, slot, own, target, failure, block_kind(name)});
        }
        return false;
    });
    gates_ = static_cast<BYTE*>(VirtualAlloc(nullptr, functions_.size() * kGateBytes,
                                             MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE));
    current = this;
    for (size_t i = 0; i < functions_.size(); ++i) {
        BYTE* const gate = gates_ + i * kGateBytes;
        const auto target = reinterpret_cast<uintptr_t>(&zr_call_gate);
        std::memcpy(gate, "\x41\xBB\0\0\0\0\x49\xBA\0\0\0\0\0\0\0\0\x41\xFF\xE2", 19);
        std::memcpy(gate + 2, &i, 4);       // mov r11d, i
        std::memcpy(gate + 8, &target, 8);  // mov r10, target; jmp r10
        exchange_import(functions_[i].slot, gate);
    }
}

ModuleCalls::~ModuleCalls() {
    for (const Function& function : functions_)
        exchange_import(function.slot, function.before);
    current = nullptr;
    VirtualFree(gates_, 0, MEM_RELEASE);
}

void ModuleCalls::start(size_t nth) {
    noted_.clear();
    failing_ = nth;
    thread_ = GetCurrentThreadId();
}

void* ModuleCalls::decide(size_t index, const uintptr_t* arguments) {
    const DWORD error = GetLastError();
    const Function& function = functions_[index];
    if (function.failure && GetCurrentThreadId() == thread_) {
        noted_.push_back(function.name);
        if (noted_.size() == failing_) {
            failed_ = &function;
            return reinterpret_cast<void*>(&zr_fail_now);
        }
    }
    blocks_ += function.block == '+' || (function.block == 'r' && !arguments[0]);
    blocks_ -= (function.block == 'f' && arguments[0]) || (function.block == 'h' && arguments[2]);
    SetLastError(error);
    return function.target;
}

intptr_t ModuleCalls::fail_now() const {
    if (failed_->failure->error)
        SetLastError(failed_->failure->error);
    return failed_->failure->result;
}
