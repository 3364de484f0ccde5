// Settings that an administrator forces on every user of the installation.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "print_settings/PrintSettings.h"

namespace Corvanta::Vantrix {

namespace Administrator {

inline constexpr wchar_t kFileName[] = L"administrator.ps4a";

// What the administrator's file holds beside settings. Paths and names as they stand there, UTF-16.
class Restriction {
public:
    virtual ~Restriction() = default;

    std::wstring PSFile;         // a print setting to load before the user's
    std::wstring PDFFileName;    // the PDF's file name
    bool NoSettingTabs = false;  // hide the settings pages
    std::wstring OutputFolder;
};

// Reads the restriction of this installation without any setting. True, with defaults, also when there is no
// administrator file; false, with `restriction` left alone, when it is there but cannot be read.
[[nodiscard]] bool load_restriction(Restriction& restriction);

// The full paths of the "administrator.ps4a" files that hold, the stronger one last: that of the installation
// folder (with its trailing backslash) and, where the user has named another folder, that of the machine's
// own, so that nobody lifts a restriction by looking elsewhere. The machine's counts as there unless it is
// known not to be.
[[nodiscard]] std::vector<std::wstring> find_files(const std::wstring& install_folder);

}  // namespace Administrator

namespace PrintSettings {

// A print setting as a job uses it: the user's file with the administrator's values on top.
class PrintSettingsAdmin : public PrintSettings {
public:
    PrintSettingsAdmin() = default;
    // With the installation folder already looked up, for a job that needs it more than once.
    explicit PrintSettingsAdmin(std::wstring install_folder) : install_folder_(std::move(install_folder)) {}

    using PrintSettings::Load;
    // Loads the user's file and then the administrator's, where there are any. False when one of them cannot
    // be loaded; the object is then not to be used.
    [[nodiscard]] bool Load(const std::wstring& path) override;

    // The same for a job that has no setting file: the defaults with the administrator's values on top.
    [[nodiscard]] bool LoadDefaults();

    [[nodiscard]] const Administrator::Restriction& restriction() const noexcept { return restriction_; }

private:
    [[nodiscard]] bool LoadWithAdministrator(std::string_view users);

    Administrator::Restriction restriction_;
    std::optional<std::wstring> install_folder_;
};

}  // namespace PrintSettings
}  // namespace Corvanta::Vantrix
