// What is wrong with a setting file, and what differs between two, for people who write them by hand.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace host {

// What was found in one file.
struct SettingFindings {
    std::wstring path;
    bool readable = true;              // its bytes could be had
    std::vector<std::wstring> faults;  // one sentence each; what makes the whole file useless first
    std::vector<std::wstring> forced;  // of an administrator's file: what it does to every job

    // Adds a fault: "<place>: <what>", or `what` alone where the whole file is meant.
    void add(const std::wstring& place, const std::wstring& what);
};

// The setting files of a folder, of every kind and the administrator's, in the order of their names; another
// path alone. Throws HostError (usage) for a folder that holds none.
[[nodiscard]] std::vector<std::wstring> setting_files(const std::wstring& path);

// Checks a file by what the driver, having read it, has of it. A file whose name ends in ".ps4a" counts
// as an administrator's.
[[nodiscard]] SettingFindings check_setting(const std::wstring& path);

// What differs between two setting files in words, one sentence each. Throws HostError (usage) when one of
// them cannot be loaded.
[[nodiscard]] std::vector<std::wstring> setting_differences(const std::wstring& older,
                                                            const std::wstring& newer);

[[nodiscard]] std::vector<std::wstring> report_lines(const SettingFindings& findings);
[[nodiscard]] std::string report_json(std::span<const SettingFindings> files);

}  // namespace host
