#include "print_settings/legacy_reader.h"

#include <cstdint>
#include <cstring>
#include <optional>

#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "print_settings/PrintSettings.h"

namespace Corvanta::Vantrix::PrintSettings {

namespace {

// The chunked kind: two words of magic, the version, and from byte 48 the chunks, each a size, an identifier
// and that many bytes. All numbers are 32-bit little-endian.
constexpr uint32_t kMagic1 = 0x54525AF0;
constexpr uint32_t kMagic2 = 0xF133534B;
constexpr uint32_t kVersion = 3;
constexpr size_t kVersionOffset = 8;
constexpr size_t kFirstChunk = 48;
constexpr size_t kChunkHeader = 8;

constexpr uint32_t identifier(const char (&letters)[5]) noexcept {
    uint32_t number = 0;
    for (int i = 3; i >= 0; --i)
        number = number << 8 | static_cast<unsigned char>(letters[i]);
    return number;
}
constexpr uint32_t kData = identifier("DAT3");
constexpr uint32_t kEnd = identifier("CEND");

uint32_t word(std::string_view bytes, size_t offset) noexcept {
    uint32_t number = 0;
    std::memcpy(&number, bytes.data() + offset, sizeof number);
    return number;
}

// The data of the chunk "DAT3"; nothing when the list breaks off before "CEND" or does not hold it.
std::optional<std::string_view> find_settings(std::string_view chunks) {
    std::optional<std::string_view> settings;
    while (chunks.size() >= kChunkHeader) {
        const uint32_t size = word(chunks, 0);
        const uint32_t id = word(chunks, 4);
        if (id == kEnd)
            return settings;
        chunks.remove_prefix(kChunkHeader);
        if (size > chunks.size())
            return std::nullopt;
        if (id == kData) {
            settings = chunks.substr(0, size);
        } else {
            TRACE("unknown chunk");
            TRACE_F(L"header.d=0x%08lx", static_cast<unsigned long>(id));
        }
        chunks.remove_prefix(size);
    }
    return std::nullopt;
}

bool is_sound(std::string_view bytes) {
    if (bytes.size() < kFirstChunk || word(bytes, 0) != kMagic1 || word(bytes, 4) != kMagic2) {
        TRACE("bad magic number");
        return false;
    }
    if (word(bytes, kVersionOffset) != kVersion) {
        TRACE("bad major version");
        return false;
    }
    if (find_settings(bytes.substr(kFirstChunk)))
        return true;
    TRACE("bad chunk list");
    return false;
}

}  // namespace

LoadResult read_legacy(std::string_view bytes, SettingKind kind) {
    TRACE("read_legacy");
    return kind == kLegacyChunked && !is_sound(bytes) ? kUnreadable : kLegacyPayload;
}

}  // namespace Corvanta::Vantrix::PrintSettings
