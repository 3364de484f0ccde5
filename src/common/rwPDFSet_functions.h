// Where setting files live, which one belongs to which printer, and what kind of file it is. No state is kept
// between calls; any thread. Failures are traced, never shown. Paths are UTF-16.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

inline constexpr wchar_t kDefaultSettingFile[] = L"standard.ps4";

// A folder of setting files, with its trailing backslash.
struct SettingFolder {
    enum Owner : int32_t { kUser, kAdministrator, kInstallation };

    Owner owner;
    std::wstring path;
};

// The folders in the order in which a name is looked for: what is installed wins over what the user saved.
// One that is not known is left out, since a name alone would be looked for in the host program's current
// folder.
[[nodiscard]] std::vector<SettingFolder> setting_folders(const std::wstring& install_folder);

// The extensions of setting files, in the order in which they are tried.
inline constexpr std::array<std::wstring_view, 3> kSettingExtensions = {L".ps4", L".printSetting3",
                                                                        L".printSetting2"};

// What `ProbeSettingFile` tells of a file.
enum class SettingFormat : DWORD {
    kNone = 0,  // not a usable setting file
    kJson = 70000,
    kBinary3 = 0x30000,
    kBinary2_1 = 0x20001,
    kBinary2_2 = 0x20002,
    kBinary2_3 = 0x20003,
    kBinary2_4 = 0x20004,
    kBinary2_5 = 0x20005,
    kBinary2_9 = 0x20009,
};

// The setting file to use for the printer: a bare file name or a full path, never empty.
[[nodiscard]] std::wstring GetSettingFileName(const std::wstring& printer_name);

// Records the user's choice for the printer, in the current user's key; a file of the installation's settings
// folder by its bare name.
void SetSettingFileName(std::wstring_view file_path, const std::wstring& printer_name);

// Looks `name` up: as it stands when it is a full path, then in the setting folders with each known
// extension; never in the current folder, which is the host program's. Returns 1 and overwrites `name` with
// the full path, cut to `capacity` units with its terminating zero, or returns 0 and leaves it unchanged.
int FindSettingFile(wchar_t* name, size_t capacity);

// The full path of a setting file, or an empty text; also for a name of kSettingNameUnits or more.
[[nodiscard]] std::wstring ResolveSettingFilePath(std::wstring_view name);

// The kind of a file by its first bytes; kNone also when it is missing, a folder or cannot be opened.
[[nodiscard]] SettingFormat ProbeSettingFile(const std::wstring& path);

// The user's folder of settings, made when `create`; empty when it is not there. It ends in a backslash, but
// for a value of "AppDataPath", which comes as it stands there.
[[nodiscard]] std::wstring GetAppDataPath(bool create);

inline constexpr size_t kSettingNameUnits = 512;

// Asks the save-file dialog library which setting file belongs to the printer; empty when it cannot say. The
// library is given room for `units`, at most kSettingNameUnits, with the terminating zero.
[[nodiscard]] std::wstring GetSettingFileNameFromFD(const std::wstring& printer_name,
                                                    size_t units = kSettingNameUnits);

// The same of the library already loaded.
[[nodiscard]] std::wstring GetSettingFileNameFromFD(HMODULE library, const std::wstring& printer_name,
                                                    size_t units = kSettingNameUnits);

// The path behind a name that the library gave: a full path is used as it is, anything else is looked for in
// the setting folders; empty when it is not there.
[[nodiscard]] std::wstring SettingPathOf(const std::wstring& name);
