// The ini file that attaches external programs to the stages of a job.
#pragma once

#include <string>

namespace pd_tk {

// The per-user file "externalCallSetting.ini". Absent keys read as empty; values are cut at 4,095 units.
class ExternalCallIni {
public:
    ExternalCallIni();  // asks the shell where the file lies

    [[nodiscard]] bool exists() const noexcept;
    [[nodiscard]] std::wstring value(const wchar_t* section, const wchar_t* key) const;

private:
    std::wstring path_;
};

}  // namespace pd_tk
