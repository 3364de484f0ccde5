// Memory whose last byte touches a page without access: one byte too far is a fault.
#pragma once

#include "support/prelude.h"

class GuardedBuffer {
public:
    explicit GuardedBuffer(size_t size, const void* contents = nullptr) : size_(size) {
        const size_t pages = (size + kPage - 1) / kPage * kPage;
        block_ = static_cast<std::byte*>(
            VirtualAlloc(nullptr, pages + kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        VirtualProtect(block_ + pages, kPage, PAGE_NOACCESS, &protection_);
        data_ = block_ + pages - size;
        if (contents)
            std::memcpy(data_, contents, size);
    }
    ~GuardedBuffer() { VirtualFree(block_, 0, MEM_RELEASE); }
    GuardedBuffer(GuardedBuffer&&) = delete;

    template <class T = std::byte>
    [[nodiscard]] T* as() const noexcept {
        return reinterpret_cast<T*>(data_);
    }
    [[nodiscard]] size_t size() const noexcept { return size_; }

    // From now on the contents can be read only.
    void make_read_only() { VirtualProtect(block_, size_, PAGE_READONLY, &protection_); }

private:
    static constexpr size_t kPage = 4096;

    size_t size_;
    DWORD protection_ = 0;
    std::byte *block_ = nullptr, *data_ = nullptr;
};
