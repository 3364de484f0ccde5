#include "print_settings/PrintSettings.h"

#include <exception>
#include <iterator>
#include <stdexcept>

#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "common/qk/wipe.h"
#include "common/setting_signatures.h"
#include "print_settings/field_tables.h"
#include "print_settings/legacy_reader.h"
#include "print_settings/ps4_reader.h"
#include "print_settings/ps4_writer.h"
#include "print_settings/setting_file.h"

namespace Corvanta::Vantrix::PrintSettings {

SettingKind RecogniseBytes(std::string_view bytes) noexcept {
    // The eighth byte of the chunked kind belongs to its magic but is left to its reader.
    constexpr std::string_view kFirst("\x09\x00\x02\x00", 4);
    if (bytes.starts_with(kFirst))
        return kLegacyFirst;
    if (bytes.starts_with(kChunkedSignature))
        return kLegacyChunked;
    return bytes.starts_with(kByteOrderMark) ? kPS4 : kUnknownKind;
}

SettingKind Recognise(const std::wstring& path) {
    TRACE("Recognise");
    std::string bytes;
    return setting_file::read_start(path, bytes) == kLoaded ? RecogniseBytes(bytes) : kUnknownKind;
}

std::optional<std::wstring> ReadName(const std::wstring& path) noexcept {
    try {
        std::string bytes;
        const qk::WipedAtEnd wiped(bytes);
        if (setting_file::read(path, bytes) != kLoaded || RecogniseBytes(bytes) != kPS4)
            return std::nullopt;
        const auto name = json::find_text(std::string_view(bytes).substr(kByteOrderMark.size()), "PSName");
        return name ? std::optional(qk::to_wide(*name)) : std::nullopt;
    } catch (...) {  // one file must not cost a list the others
        TRACE("err:ReadName");
        return std::nullopt;
    }
}

bool PrintSettings::Load(const std::wstring& path) {
    return Load(path, false) == kLoaded;
}

LoadResult PrintSettings::Load(const std::wstring& path, bool keepCurrent) {
    TRACE("PrintSettings::Load");
    TRACE(path);
    std::string bytes;
    const qk::WipedAtEnd wiped(bytes);
    LoadResult result = setting_file::read(path, bytes);
    if (result == kLoaded)
        result = LoadBytes(bytes, keepCurrent);
    if (result != kLoaded)
        TRACE_F(L"err:PrintSettings::Load %d", static_cast<int>(result));
    return result;
}

LoadResult PrintSettings::LoadBytes(std::string_view bytes, bool keepCurrent) {
    switch (const SettingKind kind = RecogniseBytes(bytes)) {
        case kPS4:
            return LoadPS4(bytes.substr(kByteOrderMark.size()), keepCurrent);
        case kLegacyFirst:
        case kLegacyChunked:
            return read_legacy(bytes, kind);
        default:
            return kUnreadable;
    }
}

LoadResult PrintSettings::LoadPS4(std::string_view text, bool keepCurrent) {
    TRACE("LoadPS4");
    try {
        picojson::value document;
        const PasswordsWipedAtEnd wiped(document);
        if (!json::try_parse(text, document))
            return kUnreadable;
        read_setting(document, *impl_, keepCurrent);
        return kLoaded;
    } catch (const std::exception& error) {
        TRACE(error.what());
        return kUnreadable;
    }
}

std::string PrintSettings::Serialise() const {
    constexpr size_t kUsualBytes = 16384;  // so that no half of the text is left behind where it grew
    picojson::value document = write_setting(*impl_);
    const PasswordsWipedAtEnd wiped(document);
    std::string bytes(kByteOrderMark);
    bytes.reserve(kUsualBytes);
    document.serialize(std::back_inserter(bytes), true);
    return bytes;
}

bool PrintSettings::Save(const std::wstring& path) const {
    TRACE("PrintSettings::Save");
    TRACE(path);
    try {
        std::string bytes = Serialise();
        const qk::WipedAtEnd wiped(bytes);
        return setting_file::try_replace(path, bytes);
    } catch (const std::overflow_error& error) {
        TRACE(error.what());
        SetLastError(ERROR_INVALID_DATA);
    } catch (const std::exception& error) {
        TRACE(error.what());
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    }
    return false;
}

bool operator==(const PrintSettings& a, const PrintSettings& b) {
    const auto same = [&](const auto& field) { return (*a).*field.member == (*b).*field.member; };
    if (qk::trace::level >= qk::trace::kPlainLevel)
        for_each_field<PrintSettings_impl>([&](const auto& field) {
            if (!same(field))
                TRACE_F(L"PrintSettings differ: %S", field.key);
        });
    return all_fields<PrintSettings_impl>(same);
}

}  // namespace Corvanta::Vantrix::PrintSettings
