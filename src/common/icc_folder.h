// The machine's colour profiles: where they lie and what their headers say.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace icc {

// What a profile's header says: values of its colour space and its device class.
inline constexpr uint32_t kRGB = 0x52474220;
inline constexpr uint32_t kCMYK = 0x434D594B;
inline constexpr uint32_t kOutputDevice = 0x70727472;

struct Profile {
    std::wstring path;
    uint32_t colour_space;
    uint32_t device_class;
};

// The machine's profile folder with its trailing backslash; empty when the driver folder is not known.
[[nodiscard]] std::wstring profile_folder();

// The full path of the profile that a setting names: the full path of a file as it is, else its file name in
// the profile folder. Nothing when the name is empty or there is no such file.
[[nodiscard]] std::optional<std::wstring> find_profile(std::wstring_view stored_name);

// The profiles of the profile folder, ".icc" files before ".icm" ones. What the system's colour management
// cannot open is left out.
[[nodiscard]] std::vector<Profile> list_profiles();

// The header of a file; nothing when it is no profile or cannot be opened.
[[nodiscard]] std::optional<Profile> read_profile(const std::wstring& path);

// Whether the profile that a setting names (see find_profile) exists and describes CMYK colours.
[[nodiscard]] bool is_cmyk_profile(std::wstring_view stored_name);

}  // namespace icc

// Writes the name, without its folder, of the first profile of the profile folder with that description
// (every character counts) into a buffer of `kFileNameUnits`. 0 also when there is none: the buffer is then
// left as it was. 1 without a buffer or a description; the buffer is then emptied.
inline constexpr size_t kFileNameUnits = 512;
int icc_FileNameFromDesc(const std::wstring& description, wchar_t* file_name);
