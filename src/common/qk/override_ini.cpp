#include "common/qk/override_ini.h"

#include "common/qk/disk_file.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"

namespace qk {

namespace {

constexpr wchar_t kSection[] = L"Vantrix";
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

}  // namespace

OverrideIni::OverrideIni() : path_(shared_documents_folder()) {
    if (path_.empty())
        return;
    path_ += L"\\DunmereVantrix.ini";
    // Anybody may lead the name to something that never answers whoever reads it.
    exists_ = is_file(path_) && open_disk_file(path_, GENERIC_READ, kShareAll);
    if (!exists_)
        return;
    const auto version = find_number(text(L"IniVersion"));
    valid_ = version && *version >= 2.0 && *version <= 3.0;
}

std::optional<int> OverrideIni::find_orientation() const {
    const int orientation = valid_ ? number(L"Orient", -1) : -1;
    if (orientation != 0 && orientation != 1)
        return std::nullopt;
    return orientation;
}

std::wstring OverrideIni::pdf_file_name() const {
    return valid_ ? text(L"PDFFileName") : std::wstring();
}

int OverrideIni::print_id() const {
    return valid_ ? number(L"PrintID", 0) : 0;
}

UINT OverrideIni::message_id() const noexcept {
    constexpr int kAbsent = 11;
    return !exists_ ? kAbsent : GetPrivateProfileIntW(kSection, L"MessageID", kAbsent, path_.c_str());
}

std::wstring OverrideIni::text(const wchar_t* key) const {
    return grow_until_it_fits([this, key](wchar_t* buffer, DWORD units) {
        return GetPrivateProfileStringW(kSection, key, L"", buffer, units, path_.c_str());
    });
}

int OverrideIni::number(const wchar_t* key, int fallback) const {
    if (!exists_ || !find_number(text(key)))  // the system reads rubbish as 0, which means something here
        return fallback;
    return static_cast<int>(GetPrivateProfileIntW(kSection, key, fallback, path_.c_str()));
}

}  // namespace qk
