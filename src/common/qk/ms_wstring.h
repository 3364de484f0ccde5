// A wide text in the Microsoft layout, as it stands in records that closed libraries read and write.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace qk {

// 32 bytes: the text itself or its address, the length, the capacity (both in UTF-16 units, without the
// terminating zero). A text is held by address when its capacity or its length is above 7; a field of zeros
// is an empty text.
//
// Memory: this type owns nothing and frees nothing. Text held by address lies in memory of whoever wrote the
// field: a buffer lent with `lend` stays the lender's, an address that somebody else put there stays theirs,
// so it is copied with `find_text` and then forgotten. An address is meaningful only in its own process.
struct MsWString {
    static constexpr size_t kInPlace = 7;

    union {
        wchar_t text[8];
        wchar_t* address;
    };
    uint64_t length;
    uint64_t capacity;

    // Holds at most 7 units in place; `text` is cut to that.
    void set_in_place(std::wstring_view short_text) noexcept;

    // Makes the field point at `buffer` and says how much can be written there in place: one unit less than
    // its size (at least 9 units), for the terminating zero. The text that stands there is `units` long.
    void lend(std::span<wchar_t> buffer, size_t units) noexcept;

    // A copy of the text. Nothing when the field cannot be true: a length above the capacity or above `most`,
    // or an address that cannot be read. Never faults.
    [[nodiscard]] std::optional<std::wstring> find_text(size_t most = 32767) const;

    // What can be read of a field that may not be true: the text, cut to what its capacity and memory allow.
    [[nodiscard]] std::wstring readable_text(size_t most = 32767) const;

private:
    [[nodiscard]] bool by_address() const noexcept { return capacity > kInPlace || length > kInPlace; }
};

static_assert(sizeof(MsWString) == 32);
static_assert(offsetof(MsWString, length) == 16 && offsetof(MsWString, capacity) == 24);

}  // namespace qk
