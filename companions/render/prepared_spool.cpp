#include "companions/render/prepared_spool.h"

#include <windows.h>

#include <optional>
#include <string_view>
#include <utility>

#include "common/qk/handle.h"
#include "companions/render/result_codes.h"
#include "companions/render/spool_pictures.h"
#include "companions/render/spool_text.h"

namespace companions::render {

namespace {

// A file as it lies on the disk.
class MappedFile {
public:
    explicit MappedFile(const std::wstring& path)
        : file_(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr)),
          mapping_(file_ ? CreateFileMappingW(file_.get(), nullptr, PAGE_READONLY, 0, 0, nullptr) : nullptr),
          view_(mapping_ ? MapViewOfFile(mapping_.get(), FILE_MAP_READ, 0, 0, 0) : nullptr) {}
    [[nodiscard]] std::string_view bytes() const noexcept {
        LARGE_INTEGER size = {};
        if (!view_ || !GetFileSizeEx(file_.get(), &size))
            return {};
        return {static_cast<const char*>(view_.get()), static_cast<size_t>(size.QuadPart)};
    }

private:
    qk::FileObj file_;
    qk::HandleObj mapping_;
    qk::View view_;
};

}  // namespace

PreparedSpool prepare_spool(const std::wstring& spool,
                            const Corvanta::Vantrix::PrintSettings::PrintSettings& settings, bool links,
                            const ScratchFolder& scratch) {
    const MappedFile file(spool);
    PictureWork work;
    std::optional<std::string> pictured;
    if (!file.bytes().empty() && wants_picture_work(settings, work))
        pictured = change_pictures(file.bytes(), work);
    const std::string_view document = pictured ? std::string_view(*pictured) : file.bytes();
    const bool from_wine = has_wine_text(document);
    if (!pictured && !from_wine)
        return {spool};
    ScratchFile copy(scratch, kSpoolFile);
    if (from_wine)
        change_text(document, links, [&copy](std::string_view piece) { copy.add(piece); });
    else
        copy.add(document);
    std::wstring path = copy.finish();
    const DWORD error = GetLastError();
    if (!path.empty())
        return {std::move(path), links && from_wine};
    if (pictured)
        throw Failure{ResultCode::kInternal, error, L"the temporary folder cannot be written"};
    return {spool};  // it only takes longer
}

}  // namespace companions::render
