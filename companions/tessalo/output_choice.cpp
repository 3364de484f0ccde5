#include "companions/tessalo/output_choice.h"

#include <windows.h>

#include <utility>

#include "common/qk/disk_file.h"
#include "common/qk/handle.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "companions/system_texts.h"
#include "job/output_name.h"
#include "resources/ids.h"

namespace companions {

namespace {

constexpr unsigned kMostNumbers = 9999;
constexpr unsigned kMostTries = 100;

// Whether a file is there that cannot be replaced: the job would end as if the user had cancelled it.
bool is_held(const std::wstring& path) {
    return qk::is_file(path) && !qk::open_disk_file(path, GENERIC_WRITE, 0);
}

// One answer of the dialog, settled under the rule; nothing, after the user was told, when it cannot be
// taken.
std::optional<OutputFile> settle(SaveDialog& dialog, const std::wstring& path, bool confirmed, SameName rule,
                                 const NameLimits& limits) {
    if (path.size() > limits.path_units) {
        dialog.refuse(path, IDS_SAVE_TOO_LONG);
        return std::nullopt;
    }
    if ((rule == SameName::kOverwrite || rule == SameName::kAsk) && is_held(path)) {
        dialog.refuse(path, IDS_SAVE_HELD);
        return std::nullopt;
    }
    if (rule == SameName::kOverwrite)
        return OutputFile{path, false};
    switch (reserve(path)) {
        case Reservation::kMade:
            return OutputFile{path, true};
        case Reservation::kFailed:
            dialog.refuse(path, IDS_SAVE_NOT_MADE);
            return std::nullopt;
        case Reservation::kTaken:
            break;
    }
    if (rule == SameName::kNumber)
        return find_numbered(folder_part(path), qk::file_part(path), limits);
    if (rule == SameName::kAsk && confirmed)
        return OutputFile{path, false};
    dialog.refuse(path, IDS_SAVE_TAKEN);
    return std::nullopt;
}

}  // namespace

SameName same_name_rule(int32_t code) noexcept {
    return code >= 0 && code <= static_cast<int32_t>(SameName::kRefuse) ? static_cast<SameName>(code)
                                                                        : SameName::kAsk;
}

Reservation reserve(const std::wstring& path) noexcept {
    const qk::FileObj file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file)
        return Reservation::kMade;
    const DWORD error = GetLastError();
    // A folder of that name, or a file that is just being deleted, reads as a denied access.
    const bool exists = GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
    SetLastError(error);
    return error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS || exists ? Reservation::kTaken
                                                                                 : Reservation::kFailed;
}

std::optional<OutputFile> find_numbered(std::wstring_view folder, std::wstring_view title,
                                        const NameLimits& limits) {
    for (unsigned number = 0; number <= kMostNumbers; ++number) {
        auto path = find_safe_path(folder, title, number, limits);
        if (!path)
            return std::nullopt;
        const Reservation result = reserve(*path);
        if (result != Reservation::kTaken)
            return OutputFile{std::move(*path), result == Reservation::kMade};
    }
    return std::nullopt;
}

std::optional<OutputFile> choose_unattended(std::wstring_view folder, std::wstring_view title, SameName rule,
                                            const NameLimits& limits) {
    if (rule == SameName::kAsk || rule == SameName::kNumber)
        return find_numbered(folder, title, limits);
    auto path = find_safe_path(folder, title, 0, limits);
    if (!path)
        return std::nullopt;
    if (rule == SameName::kOverwrite)
        return OutputFile{std::move(*path), false};
    const Reservation result = reserve(*path);
    if (result == Reservation::kTaken)
        return std::nullopt;
    return OutputFile{std::move(*path), result == Reservation::kMade};
}

// A title that is cut may come out without its number: then the file is numbered as any other.
std::wstring find_free_title(std::wstring_view folder, const WantedName& name, const NameLimits& limits) {
    std::optional<std::wstring> before;
    for (unsigned number = 1; name.counts && number <= kMostNumbers; ++number) {
        auto path = find_safe_path(folder, name.title(number), 0, limits);
        if (!path || path == before)
            break;
        if (GetFileAttributesW(path->c_str()) == INVALID_FILE_ATTRIBUTES)
            return name.title(number);
        before = std::move(path);
    }
    return name.title(1);
}

std::optional<OutputFile> choose_unattended(std::wstring_view folder, const WantedName& name, SameName rule,
                                            const NameLimits& limits) {
    if (!name.counts)
        return choose_unattended(folder, name.title(1), rule, limits);
    // Another job may take the name that was free a moment ago.
    for (unsigned tries = 0; tries < kMostTries; ++tries)
        if (auto file =
                choose_unattended(folder, find_free_title(folder, name, limits), SameName::kRefuse, limits))
            return file;
    return find_numbered(folder, name.title(1), limits);
}

std::optional<OutputFile> choose_with_dialog(SaveDialog& dialog, std::wstring folder, std::wstring_view title,
                                             SameName rule, const NameLimits& limits) {
    std::wstring name = safe_stem(title) + std::wstring(kPdfExtension);
    if (const auto path = find_safe_path(folder, title, 0, limits))
        name = qk::file_part(*path);
    for (;;) {
        const auto answer = dialog.ask(folder, name, rule == SameName::kAsk);
        if (!answer)
            return std::nullopt;
        // A name that the extension is added to is not the one that the dialog has asked about.
        const bool confirmed = ends_in_pdf(*answer);
        const std::wstring path = confirmed ? *answer : *answer + std::wstring(kPdfExtension);
        if (auto file = settle(dialog, path, confirmed, rule, limits))
            return file;
        folder = folder_part(path);
        name = qk::file_part(path);
    }
}

std::optional<OutputFile> choose_in_folder(SaveDialog& dialog, const std::wstring& folder,
                                           const WantedName& name, SameName rule, const NameLimits& limits) {
    if (name.counts && qk::is_folder(folder))
        return choose_unattended(folder, name, rule, limits);
    const std::wstring title = name.title(1);
    const auto path = find_safe_path(folder, title, 0, limits);
    if (rule == SameName::kOverwrite && path && qk::is_folder(folder) && !is_held(*path))
        return OutputFile{*path, false};
    if (rule != SameName::kOverwrite && path) {
        const Reservation result = reserve(*path);
        if (result == Reservation::kMade)
            return OutputFile{*path, true};
        if (result == Reservation::kTaken && rule == SameName::kNumber)
            return find_numbered(folder, title, limits);
        if (result == Reservation::kTaken && rule == SameName::kRefuse) {
            dialog.refuse(*path, IDS_SAVE_KEPT);
            return std::nullopt;
        }
    }
    return choose_with_dialog(dialog, folder, title, rule, limits);
}

}  // namespace companions
