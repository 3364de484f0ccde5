#include "UI_dll/PDFSettings/setting_list.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <memory>
#include <set>
#include <span>
#include <utility>

#include "UI_dll/PDFSettings/messages.h"
#include "common/qk/paths.h"
#include "common/qk/registry.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"
#include "common/qk/wipe.h"
#include "common/rwPDFSet_functions.h"
#include "print_settings/setting_file.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

std::wstring with_backslash(std::wstring folder) {
    if (!folder.empty() && !folder.ends_with(L'\\'))
        folder += L'\\';
    return folder;
}

// In the order of the list: the user's own first.
std::vector<SettingFolder> listed_folders() {
    std::wstring& root = dialog_state().list.install_folder;
    if (root.empty())
        root = qk::install_folder();
    auto folders = setting_folders(root);
    std::ranges::stable_sort(folders, {}, &SettingFolder::owner);
    return folders;
}

// The folder's setting files by full path: those of the oldest kind first, each kind as the folder has them.
std::vector<std::wstring> setting_files(const std::wstring& folder) {
    std::array<std::vector<std::wstring>, kSettingExtensions.size()> by_extension;
    WIN32_FIND_DATAW file;
    const qk::FindObj search(FindFirstFileExW((folder + L'*').c_str(), FindExInfoBasic, &file,
                                              FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH));
    if (!search)
        return {};
    do {
        for (size_t i = 0; i < kSettingExtensions.size(); ++i)
            if (!(file.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) &&
                qk::ends_with_no_case(file.cFileName, kSettingExtensions[i]))
                by_extension[i].push_back(folder + file.cFileName);
    } while (FindNextFileW(search.get(), &file));
    std::vector<std::wstring> files;
    for (auto kind = by_extension.rbegin(); kind != by_extension.rend(); ++kind)
        std::ranges::move(*kind, std::back_inserter(files));
    return files;
}

// The settings that come with the product: what their files call them, and what the user's language does.
constexpr struct {
    std::wstring_view file, name;
    UINT translation;
} kReady[] = {{L"smallest.ps4", L"Smallest file", IDS_READY_SMALLEST},
              {L"everyday.ps4", L"Everyday", IDS_READY_EVERYDAY},
              {L"quality.ps4", L"High quality for printing", IDS_READY_QUALITY},
              {L"archive.ps4", L"Archive (PDF/A-2b)", IDS_READY_ARCHIVE},
              {L"press.ps4", L"Press (PDF/X-4)", IDS_READY_PRESS},
              {L"protected.ps4", L"Protected against changes", IDS_READY_PROTECTED}};

SettingEntry entry_of(int32_t kind, const std::wstring& path) {
    const auto name = Corvanta::Vantrix::PrintSettings::ReadName(path);
    SettingEntry entry{kind, path, name && !name->empty() ? *name : std::wstring(qk::file_stem(path)),
                       name.has_value()};
    if (kind == SettingEntry::kInstalled && entry.is_readable)
        for (const auto& ready : kReady)
            if (qk::equal_no_case(qk::file_part(path), ready.file) && entry.name == ready.name)
                entry.name = dialog_text(ready.translation);
    return entry;
}

// Whether one of the folders has such a file.
bool is_in(std::span<const SettingFolder> folders, const std::wstring& file_name) {
    return std::ranges::any_of(folders, [&](const SettingFolder& folder) {
        const std::wstring path = folder.path + file_name;
        return qk::is_file(path) || qk::is_folder(path);
    });
}

// --- Settings of older versions ---

constexpr wchar_t kImported[] = L"ImportedOldCustomSettings";
constexpr int kThisVersion = 8;

// The older version's folder of settings, "<roaming>\Corvanta\Vantrix\7.0\CustomSettings\"; empty when the
// user has no folder for such.
std::wstring old_folder(int version) {
    const std::wstring roaming = qk::roaming_folder();
    return roaming.empty()
               ? roaming
               : qk::format(L"%s\\Corvanta\\Vantrix\\%d.0\\CustomSettings\\", roaming.c_str(), version);
}

// A name that an administrator's or an installed setting has would be found there by every job: such a file
// gets another, which is the same again should this be done twice.
void copy_settings(const std::wstring& from, const std::wstring& to) {
    auto others = listed_folders();
    std::erase_if(others, [](const SettingFolder& folder) { return folder.owner == SettingFolder::kUser; });
    for (const std::wstring& path : setting_files(from)) {
        const std::wstring stem(qk::file_stem(path));
        const std::wstring extension = path.substr(path.rfind(L'.'));
        const std::wstring name = free_name(stem, [&](const std::wstring& candidate) {
            const bool is_other = candidate != stem;
            return is_in(others, candidate + extension) ||
                   (is_other && qk::is_file(from + candidate + extension));
        });
        const std::wstring target = to + name + extension;
        if (CopyFileW(path.c_str(), target.c_str(), TRUE))
            TRACE_F(L"imported %s", target.c_str());
    }
}

}  // namespace

void ImportOldCustomSettings() {
    TRACE("ImportOldCustomSettings");
    if (std::exchange(dialog_state().list.imported, true))
        return;  // a list that is filled again asks nobody
    const qk::registry::CurrentUser user;
    if (qk::registry::find_number(user.get(), qk::registry::kRoot, kImported).value_or(0) != 0)
        return;
    for (int version = kThisVersion - 1; version > 0; --version) {  // newer ones first: theirs stay
        const std::wstring from = old_folder(version);
        if (!qk::is_folder(from))
            continue;
        const std::wstring to = with_backslash(GetAppDataPath(true));
        if (to.empty())
            return;  // again the next time
        copy_settings(from, to);
    }
    const qk::RegKey key = qk::registry::create(user.get(), qk::registry::kRoot, KEY_WRITE);
    const DWORD done = 1;
    if (key)
        RegSetValueExW(key.get(), kImported, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&done), sizeof done);
}

std::wstring shown_setting_name(const std::wstring& path) {
    for (const SettingFolder& folder : setting_folders(qk::install_folder()))
        if (path.size() > folder.path.size() &&
            qk::equal_no_case(std::wstring_view(path).substr(0, folder.path.size()), folder.path))
            return entry_of(folder.owner, path).name;
    return entry_of(SettingEntry::kOwn, path).name;
}

std::vector<SettingEntry> ListUpPSFiles() {
    TRACE("ListUpPSFiles");
    ImportOldCustomSettings();
    std::vector<SettingEntry> entries;
    for (const SettingFolder& folder : listed_folders())
        for (const std::wstring& path : setting_files(folder.path))
            entries.push_back(entry_of(folder.owner, path));
    return entries;
}

bool is_name_taken(const std::wstring& name, const std::wstring& ignored) {
    for (const SettingFolder& folder : listed_folders())
        for (const std::wstring& path : setting_files(folder.path))
            if (!qk::equal_no_case(path, ignored) && entry_of(folder.owner, path).name == name)
                return true;
    return false;
}

std::wstring free_setting_name(const std::wstring& base) {
    std::set<std::wstring> taken;
    for (const SettingFolder& folder : listed_folders())
        for (const std::wstring& path : setting_files(folder.path))
            taken.insert(entry_of(folder.owner, path).name);
    return free_name(base, [&](const std::wstring& name) { return taken.contains(name); });
}

std::wstring create_setting_file(const Setting& setting) {
    const std::wstring folder = with_backslash(GetAppDataPath(true));
    if (folder.empty()) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return {};
    }
    const auto folders = listed_folders();
    const std::wstring name = free_name(file_name_of(setting->PSName), [&](const std::wstring& candidate) {
        return is_in(folders, candidate + L".ps4");
    });
    std::wstring path = folder + name + L".ps4";
    if (!setting.Save(path)) {
        const qk::LastErrorKeeper keep;
        path.clear();
    }
    return path;
}

std::optional<uint64_t> file_mark(const std::wstring& path) {
    std::string bytes;
    const qk::WipedAtEnd wiped(bytes);
    if (path.empty() || ps::setting_file::read(path, bytes) != ps::kLoaded)
        return std::nullopt;
    uint64_t mark = 14695981039346656037u;  // FNV-1a
    for (const char byte : bytes)
        mark = (mark ^ static_cast<unsigned char>(byte)) * 1099511628211u;
    return mark;
}

bool LoadSettingFile(const std::wstring& path) {
    TRACE("LoadSettingFile");
    EditedFile& state = dialog_state().file;
    Setting& edited = edited_setting();
    edited = Setting();
    state.path = path;
    state.mark = file_mark(path);
    const bool loaded = !path.empty() && edited.Load(path);
    if (!loaded) {
        TRACE("no ps");
        edited = Setting();
        edited->PSName = qk::file_stem(path);
    }
    state.saved = std::make_unique<Setting>(edited);
    return loaded;
}

}  // namespace pdf_settings
