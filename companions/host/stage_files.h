// The built tree and where its files are installed to.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace host {

// The places of an installation, each with its trailing backslash.
struct InstallPlaces {
    std::wstring installation;     // "…\Corvanta\Vantrix\"
    std::wstring drivers;          // the spooler's folder for this system's drivers
    std::wstring processors = {};  // and for print processors; empty: none is installed
};

struct FileCopy {
    std::wstring source;
    std::wstring target;
    bool keep_newer;  // a target newer than the source has been edited by somebody and stays
};

enum class CopyOutcome { kCopied, kReplaced, kUpToDate, kKept };

[[nodiscard]] const wchar_t* outcome_name(CopyOutcome outcome) noexcept;

// The user's guide, in the built tree and in the installation.
inline constexpr wchar_t kHelpFolder[] = L"Help\\";

// The files in `folder` (with its trailing backslash) and, as relative paths, in the folders below it.
[[nodiscard]] std::vector<std::wstring> files_below(const std::wstring& folder,
                                                    const std::wstring& relative = {});

// Which file of the built tree `stage` (with its trailing backslash) goes where: the module and its language
// libraries to the drivers; the print processor to its folder; language libraries, dialog library, renderer,
// user's guide and settings to the installation. Throws HostError (installation) when a file is missing that
// the driver does not work without.
[[nodiscard]] std::vector<FileCopy> plan_copies(const std::wstring& stage, const InstallPlaces& places);

// Brings one target up to date with its source: contents are compared, folders made. A target that a running
// program holds open is moved aside first. Throws HostError (installation) when that fails.
CopyOutcome bring_up_to_date(const FileCopy& copy);

// Deletes what was moved aside from there, unless a program still holds it, and what an installation that was
// ended from outside has written of it.
void delete_leftovers_of(const std::wstring& target);

// What a file holds; nothing when it cannot be read.
[[nodiscard]] std::optional<std::string> find_bytes(const std::wstring& path);

}  // namespace host
