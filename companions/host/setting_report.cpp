#include <windows.h>

#include <algorithm>

#include "common/qk/handle.h"
#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/rwPDFSet_functions.h"
#include "companions/host/host_error.h"
#include "companions/host/report_parts.h"
#include "companions/host/setting_check.h"
#include "print_settings/display.h"

namespace host {

std::vector<std::wstring> setting_files(const std::wstring& path) {
    if (!qk::is_folder(path))
        return {path};
    const std::wstring folder = path.find_last_of(L"\\/") == path.size() - 1 ? path : path + L"\\";
    std::vector<std::wstring> files;
    WIN32_FIND_DATAW found = {};
    const qk::FindObj search(FindFirstFileW((folder + L"*").c_str(), &found));
    for (bool more = static_cast<bool>(search); more; more = FindNextFileW(search.get(), &found)) {
        const auto is_kind = [&found](std::wstring_view extension) {
            return qk::ends_with_no_case(found.cFileName, extension);
        };
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 &&
            (is_kind(L".ps4a") || std::ranges::any_of(kSettingExtensions, is_kind)))
            files.push_back(folder + found.cFileName);
    }
    if (files.empty())
        throw HostError{ExitCode::kUsage, L"there is no print setting in " + path};
    std::ranges::sort(files);
    return files;
}

std::vector<std::wstring> setting_differences(const std::wstring& older, const std::wstring& newer) {
    ps::PrintSettings settings[2];
    const std::wstring* paths[2] = {&older, &newer};
    for (size_t i = 0; i < 2; ++i)
        if (!settings[i].Load(*paths[i]))
            throw HostError{ExitCode::kUsage, *paths[i] + L" cannot be loaded; \"zr_print check\" tells why"};
    return ps::Changed2Str(settings[0], settings[1]);
}

std::vector<std::wstring> report_lines(const SettingFindings& findings) {
    std::vector<std::wstring> lines;
    for (const std::wstring& fault : findings.faults)
        lines.push_back(findings.path + L": " + fault);
    if (findings.faults.empty())
        lines.push_back(findings.path + L": nothing is wrong");
    for (const std::wstring& forced : findings.forced)
        lines.push_back(L"  forces " + forced);
    return lines;
}

std::string report_json(std::span<const SettingFindings> files) {
    picojson::array list;
    for (const SettingFindings& findings : files) {
        picojson::object file;
        file["path"] = json_text(findings.path);
        file["readable"] = picojson::value(findings.readable);
        file["faults"] = json_texts(findings.faults);
        file["forced"] = json_texts(findings.forced);
        list.emplace_back(file);
    }
    picojson::object object;
    object["files"] = picojson::value(list);
    return picojson::value(object).serialize(true);
}

}  // namespace host
