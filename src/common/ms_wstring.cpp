#include "common/ms_wstring.h"

#include <algorithm>

#include "common/memory_probe.h"
#include "common/text.h"

namespace qk {

namespace {

constexpr size_t kPage = 4096;

// The units of a text of at most `units` that can be read from `address` on, page by page.
std::wstring copy_while_readable(const wchar_t* address, size_t units) {
    std::wstring text(units, L'\0');
    size_t done = 0;
    while (done < units) {
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

}  // namespace

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
