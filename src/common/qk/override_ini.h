// The override file "DunmereVantrix.ini" in the shared documents folder, which other programs of the vendor
// write to steer a job. It counts only while its "IniVersion" lies between 2.0 and 3.0.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace qk {

class OverrideIni {
public:
    // Finds the file and checks its version.
    OverrideIni();

    [[nodiscard]] bool valid() const noexcept { return valid_; }

    // "Orient": 0 portrait, 1 landscape. Nothing for anything else or when the file does not count.
    [[nodiscard]] std::optional<int> find_orientation() const;

    // "PDFFileName" and "PrintID"; empty and 0 when the file does not count.
    [[nodiscard]] std::wstring pdf_file_name() const;
    [[nodiscard]] int print_id() const;

    // "MessageID" (11 when absent), read whether or not the file counts, as the system's profile functions
    // read a number.
    [[nodiscard]] UINT message_id() const noexcept;

    [[nodiscard]] const std::wstring& path() const noexcept { return path_; }

private:
    [[nodiscard]] std::wstring text(const wchar_t* key) const;
    [[nodiscard]] int number(const wchar_t* key, int fallback) const;

    std::wstring path_;
    bool exists_ = false;
    bool valid_ = false;
};

}  // namespace qk
