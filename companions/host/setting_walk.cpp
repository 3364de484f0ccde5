#include "companions/host/setting_walk.h"

namespace host {

void SettingWalk::fault(const std::wstring& path, const std::wstring& what) {
    findings_.faults.push_back(path.empty() ? what : path + L": " + what);
}

void SettingWalk::fatal(const std::wstring& path, const wchar_t* kind) {
    fault(path, std::wstring(L"has to be ") + kind + L"; the whole file cannot be loaded");
}

bool SettingWalk::is_object(const std::wstring& path, const picojson::value& given) {
    if (!given.is<picojson::object>())
        fatal(path, L"an object");
    return given.is<picojson::object>();
}

void SettingWalk::unknown_key(const std::wstring& path) {
    fault(path, path == L"Administrator" ? L"counts in administrator.ps4a only; it is ignored"
                                         : L"the driver knows no such key; it is ignored");
}

void SettingWalk::force(const std::wstring& path, const FieldInfo& field, const picojson::value& given) {
    findings_.forced.push_back(path + (field.shown == Corvanta::Vantrix::PrintSettings::Shown::kSecret
                                           ? std::wstring()
                                           : L" = " + shown(given)));
}

std::wstring SettingWalk::joined(const std::wstring& path, const std::string& key) {
    return path.empty() ? qk::to_wide(key) : path + L"." + qk::to_wide(key);
}

std::wstring SettingWalk::shown(const picojson::value& given) {
    if (given.is<std::string>())
        return L"\"" + qk::to_wide(given.get<std::string>()) + L"\"";
    return qk::to_wide(given.serialize());
}

void SettingWalk::value(const std::wstring& path, const FieldInfo& field, const picojson::value& given,
                        const std::vector<std::wstring>&) {
    const size_t before = findings_.faults.size();
    SettingFindings apart;  // the list is forced as a whole
    SettingWalk(administrator_, apart).element<std::vector<std::wstring>>(path, given);
    findings_.faults.insert(findings_.faults.end(), apart.faults.begin(), apart.faults.end());
    if (findings_.faults.size() == before)
        force(path, field, given);
}

void SettingWalk::value(const std::wstring& path, const FieldInfo& field, const picojson::value& given,
                        const Comment&) {
    if (!is_kind<std::vector<std::wstring>>(given)) {
        fatal(path, L"a list");
        return;
    }
    for (const picojson::value& item : given.get<picojson::array>()) {
        if (!item.is<picojson::array>()) {
            fatal(path, L"a list of pairs");
            return;
        }
        const auto& pair = item.get<picojson::array>();
        if (pair.size() != 2)
            fault(path, shown(item) + L" is no pair of number and text; it is skipped");
        else if (!pair[0].is<double>() || !pair[1].is<std::string>())
            fatal(path, L"a list of pairs of number and text");
    }
    force(path, field, given);
}

}  // namespace host
