// One print setting: every PDF option that the rendering module obeys, in memory and as a setting file.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "print_settings/PrintSettings_impl.h"

namespace Corvanta::Vantrix::PrintSettings {

// Results of loading.
enum class LoadResult : int {
    kLoaded = 0,
    kUnreadable = 17,     // unknown kind, not JSON, wrong structure, locked, too large
    kMissing = 18,        // no path, no such file, or a folder
    kLegacyPayload = 21,  // a sound older binary setting, whose values cannot be taken over
};
using enum LoadResult;

// Setting files above this many bytes are unreadable; a full one has some 4 KiB.
inline constexpr unsigned kMostFileBytes = 4u << 20;

// Kinds of setting file.
enum class SettingKind : int {
    kUnknownKind = 0,
    kLegacyFirst = 5,    // binary, first generation
    kLegacyChunked = 6,  // binary, chunks
    kPS4 = 7,            // JSON
};
using enum SettingKind;

// The kind of a file by its first bytes; kUnknownKind also when it is missing, a folder or cannot be opened.
[[nodiscard]] SettingKind Recognise(const std::wstring& path);
[[nodiscard]] SettingKind RecogniseBytes(std::string_view first_bytes) noexcept;

// The display name in a setting file of the JSON kind, found without reading its values; empty when it holds
// none, nothing when the file cannot be read or loading it would find broken JSON or too deep nesting.
[[nodiscard]] std::optional<std::wstring> ReadName(const std::wstring& path) noexcept;

// Owns one print setting; copies are deep. Name, version and comment are reached with `->`, the sections with
// the accessors: `settings->PSName`, `settings.general()->Scale`. Not for two threads at once.
class PrintSettings {
public:
    PrintSettings() : impl_(std::make_unique<PrintSettings_impl>()) {}
    PrintSettings(const PrintSettings& other) : impl_(std::make_unique<PrintSettings_impl>(*other.impl_)) {}
    PrintSettings& operator=(const PrintSettings& other) {
        PrintSettings copy(other);
        impl_.swap(copy.impl_);
        return *this;
    }
    virtual ~PrintSettings() = default;

    [[nodiscard]] PrintSettings_impl* operator->() noexcept { return impl_.get(); }
    [[nodiscard]] const PrintSettings_impl* operator->() const noexcept { return impl_.get(); }
    [[nodiscard]] PrintSettings_impl& operator*() noexcept { return *impl_; }
    [[nodiscard]] const PrintSettings_impl& operator*() const noexcept { return *impl_; }

    [[nodiscard]] General& general() noexcept { return impl_->general; }
    [[nodiscard]] const General& general() const noexcept { return impl_->general; }
    [[nodiscard]] Compression& compression() noexcept { return impl_->compression; }
    [[nodiscard]] const Compression& compression() const noexcept { return impl_->compression; }
    [[nodiscard]] Font& font() noexcept { return impl_->font; }
    [[nodiscard]] const Font& font() const noexcept { return impl_->font; }
    [[nodiscard]] Summary& summary() noexcept { return impl_->summary; }
    [[nodiscard]] const Summary& summary() const noexcept { return impl_->summary; }
    [[nodiscard]] OpenAction& openAction() noexcept { return impl_->openAction; }
    [[nodiscard]] const OpenAction& openAction() const noexcept { return impl_->openAction; }
    [[nodiscard]] PDFVersion& pdfVersion() noexcept { return impl_->pdfVersion; }
    [[nodiscard]] const PDFVersion& pdfVersion() const noexcept { return impl_->pdfVersion; }
    [[nodiscard]] Security& security() noexcept { return impl_->security; }
    [[nodiscard]] const Security& security() const noexcept { return impl_->security; }
    [[nodiscard]] Watermark& watermark() noexcept { return impl_->watermark; }
    [[nodiscard]] const Watermark& watermark() const noexcept { return impl_->watermark; }
    [[nodiscard]] Color& color() noexcept { return impl_->color; }
    [[nodiscard]] const Color& color() const noexcept { return impl_->color; }
    [[nodiscard]] Notification& notification() noexcept { return impl_->notification; }
    [[nodiscard]] const Notification& notification() const noexcept { return impl_->notification; }
    [[nodiscard]] Addition& addition() noexcept { return impl_->addition; }
    [[nodiscard]] const Addition& addition() const noexcept { return impl_->addition; }

    // Reads a setting file; what it does not name takes its default. True on success. After a failure the
    // sections read before it are replaced.
    [[nodiscard]] virtual bool Load(const std::wstring& path);

    // The same with its result code (kLoaded, ...). With `keepCurrent` what the file does not name stays as
    // it is. Entries of PSComment are only ever added or replaced.
    [[nodiscard]] LoadResult Load(const std::wstring& path, bool keepCurrent);

    // Reads the JSON text of a setting (UTF-8, what follows the byte-order mark): kLoaded or kUnreadable.
    [[nodiscard]] LoadResult LoadPS4(std::string_view text, bool keepCurrent);

    // Writes a setting file. On failure false with the last error; the file that was there is then unchanged,
    // but for a write that fails after it had to be done in place. A value that is not finite cannot be
    // written (ERROR_INVALID_DATA), nor what Load would find too large (ERROR_FILE_TOO_LARGE).
    [[nodiscard]] bool Save(const std::wstring& path) const;

    // The bytes that Save writes. Throws std::overflow_error for a value that is not finite.
    [[nodiscard]] std::string Serialise() const;

    // Traces every part that differs, then compares.
    friend bool operator==(const PrintSettings& a, const PrintSettings& b);

protected:
    // Load for the bytes of a file that was read already.
    [[nodiscard]] LoadResult LoadBytes(std::string_view bytes, bool keepCurrent);

private:
    std::unique_ptr<PrintSettings_impl> impl_;
};

}  // namespace Corvanta::Vantrix::PrintSettings
