#include "support/failing_memory.h"

#include <cstdlib>

void* operator new(size_t size) {
    FailingMemory::count();
    if (void* memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, size_t) noexcept {
    std::free(memory);
}
