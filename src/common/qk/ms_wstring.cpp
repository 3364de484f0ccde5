#include "common/qk/ms_wstring.h"

#include <algorithm>

#include "common/qk/memory_probe.h"
#include "common/qk/text.h"

namespace qk {

void MsWString::set_in_place(std::wstring_view short_text) noexcept {
    const std::wstring_view cut = short_text.substr(0, kInPlace);
    copy_zero_padded(text, std::size(text), cut);
    length = cut.size();
    capacity = kInPlace;
}

void MsWString::lend(std::span<wchar_t> buffer, size_t units) noexcept {
    text[4] = text[5] = text[6] = text[7] = L'\0';
    address = buffer.data();
    length = units;
    capacity = buffer.size() - 1;
}

std::optional<std::wstring> MsWString::find_text(size_t most) const {
    if (!by_address())
        return std::wstring(text, length);
    if (length > capacity || length > most)
        return std::nullopt;
    std::wstring copy(length, L'\0');
    if (length != 0 && !try_copy(copy.data(), address, length * sizeof(wchar_t)))
        return std::nullopt;
    return copy;
}

std::wstring MsWString::readable_text(size_t most) const {
    if (auto whole = find_text(most))
        return std::move(*whole);
    // The capacity bounds a length that lies; where the capacity cannot be true either, `most` does.
    const uint64_t bound = capacity > kInPlace ? std::min(length, capacity) : length;
    std::wstring copy = copy_while_readable(address, static_cast<size_t>(std::min<uint64_t>(bound, most)));
    copy.resize(std::min(copy.find(L'\0'), copy.size()));
    return copy;
}

}  // namespace qk
