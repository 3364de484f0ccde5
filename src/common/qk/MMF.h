// Named shared-memory blocks of one fixed-size record.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string_view>
#include <type_traits>
#include <vector>

#include "common/qk/handle.h"
#include "common/qk/memory_probe.h"

namespace qk {

// Makes the descriptor one with a null access list: everybody may do everything.
[[nodiscard]] bool let_everybody_in(PSECURITY_DESCRIPTOR descriptor) noexcept;

namespace mmf {

// A mapping and its view, as `MMF<T>::init` asks for them; untyped so that the work is compiled once.
struct Block {
    bool created = false;
    View view;
    HandleObj mapping;
    std::vector<std::byte> descriptor;
};

[[nodiscard]] Block open_or_create(std::wstring_view name, size_t size) noexcept;
[[nodiscard]] Block open_existing(std::wstring_view name, size_t size) noexcept;

}  // namespace mmf

// Creates or opens the block `name` that holds one record T, open to every account and to low integrity, so
// that a renderer or dialog in a protected process can write it. A new block is zeroed, an existing one
// never. Failures leave a null view and are told to the debug output only; a block whose memory is not there,
// being reserved or cut short, counts as one.
template <class T>
class MMF {
    static_assert(std::is_trivially_copyable_v<T> && std::is_standard_layout_v<T>);

public:
    MMF() noexcept = default;
    explicit MMF(std::wstring_view name) noexcept { init(name); }
    virtual ~MMF() = default;

    void init(std::wstring_view name) noexcept {
        block_ = {};  // what was held is released before a block of the same name is opened
        block_ = mmf::open_or_create(name, sizeof(T));
    }

    // Only opens it: a null view when there is no such block.
    void open(std::wstring_view name) noexcept {
        block_ = {};
        block_ = mmf::open_existing(name, sizeof(T));
    }

    // A copy of the record, or one put in its place. False when there is none, or when its memory has gone:
    // anybody may have made the block, over a file that he cuts short. Never faults.
    [[nodiscard]] bool read(T& record) const noexcept {
        return view() && try_copy(&record, view(), sizeof record);
    }
    bool write(const T& record) const noexcept { return view() && try_copy(view(), &record, sizeof record); }

    // The mapped record, or null. Valid while this object lives; to be touched only where it is known to be
    // one's own.
    [[nodiscard]] T* view() const noexcept { return static_cast<T*>(block_.view.get()); }

    // Whether this object made the block; false when it existed already.
    [[nodiscard]] bool created() const noexcept { return block_.created; }

private:
    mmf::Block block_;
};

}  // namespace qk
