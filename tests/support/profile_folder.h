// A profile folder of a test's own in the place of the machine's, and small colour profiles to put into it.
#pragma once

#include "common/qk/text.h"
#include "support/import_patch.h"
#include "support/temp_folder.h"

class ProfileFolder {
public:
    ProfileFolder() {
        CreateDirectoryW(files.file(L"color").c_str(), nullptr);
        driver_folder_ = files.file(L"x64");
    }

    // Adds a profile; a space is "RGB " or "CMYK", a device class "prtr" or "mntr". Returns its path.
    std::wstring add(std::wstring_view name, const char* space, const char* device,
                     std::string_view text) const {
        return files.write(L"color\\" + std::wstring(name), profile(space, device, text));
    }

    // A header and one tag, the description.
    static std::string profile(const char* space, const char* device, std::string_view text) {
        const auto tag_bytes = static_cast<uint32_t>(text.size() + 13);
        const std::string tag = "desc" + number(0) + number(tag_bytes - 12) + std::string(text) + '\0';
        constexpr uint32_t kTagOffset = 128 + 4 + 12;
        std::string bytes(128, '\0');
        for (const auto& [at, field] : {std::pair{0, number(kTagOffset + tag_bytes)},
                                        {8, number(0x02400000)},
                                        {12, device},
                                        {16, space},
                                        {20, "Lab "},
                                        {36, "acsp"}})
            bytes.replace(static_cast<size_t>(at), 4, field);
        return bytes + number(1) + "desc" + number(kTagOffset) + number(tag_bytes) + tag;
    }

    // As profiles hold it: the highest byte first.
    static std::string number(uint32_t value) { return raw_bytes(uint32_t{_byteswap_ulong(value)}); }

    TempFolder files;  // the profile folder is its "color"

private:
    static BOOL WINAPI on_directory(wchar_t*, wchar_t*, DWORD, BYTE* buffer, DWORD bytes, DWORD* needed) {
        *needed = static_cast<DWORD>((driver_folder_.size() + 1) * sizeof(wchar_t));
        if (bytes < *needed) {
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return FALSE;
        }
        qk::copy_zero_padded(reinterpret_cast<wchar_t*>(buffer), *needed / sizeof(wchar_t), driver_folder_);
        return TRUE;
    }

    static inline std::wstring driver_folder_;
    ImportPatch directory_{"GetPrinterDriverDirectoryW", &on_directory};
};
