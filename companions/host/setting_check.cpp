#include "companions/host/setting_check.h"

#include <algorithm>
#include <exception>

#include "common/qk/paths.h"
#include "common/qk/resource_dll.h"
#include "companions/host/host_error.h"
#include "companions/host/report_parts.h"
#include "companions/host/setting_walk.h"
#include "job/output_intent.h"
#include "print_settings/display.h"
#include "print_settings/legacy_reader.h"
#include "print_settings/setting_file.h"

namespace host {

namespace {

namespace ps = Corvanta::Vantrix::PrintSettings;

constexpr char kOwnKey[] = "Administrator";
constexpr size_t kMarkBytes = 3;

std::wstring why_not_read(ps::LoadResult result) {
    return result == ps::kMissing ? L"there is no such file"
                                  : L"it is locked by another program or too large for a setting file";
}

std::wstring why_unknown(std::string_view bytes) {
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF"))
        return L"the text is UTF-16; it has to be UTF-8 with a byte-order mark";
    const size_t start = bytes.find_first_not_of(" \t\r\n");
    if (start != std::string_view::npos && bytes[start] == '{')
        return L"the byte-order mark EF BB BF is missing; without it no program takes the file for a setting";
    return L"this is no print setting of any kind";
}

std::wstring why_legacy(std::string_view bytes, ps::SettingKind kind) {
    if (ps::read_legacy(bytes, kind) == ps::kUnreadable)
        return L"this is a binary setting of an older version, and it is damaged";
    return L"this is a binary setting of an older version, sound as far as can be told; its values "
           L"cannot be taken over, so make the setting anew";
}

// Parses the text; a fault, with its place, is told.
bool try_parse(std::string_view text, picojson::value& document, SettingWalk& walk) {
    try {
        std::string fault;
        if (!ps::json::try_parse(text, document, &fault)) {
            walk.fault(L"", L"this is no JSON: " + qk::to_wide(fault));
            return false;
        }
    } catch (const std::exception&) {
        walk.fault(L"", L"a number is not finite");
        return false;
    }
    if (!document.is<picojson::object>())
        walk.fault(L"", L"the text has to be one object in braces");
    return document.is<picojson::object>();
}

// What a job with this setting would be refused for.
void check_job(const ps::PrintSettings& settings, bool administrator, SettingWalk& walk) {
    if (const auto refusal = job::find_refusal(settings))
        walk.fault(L"PDFVersion", L"a job is refused with error " + std::to_wstring(refusal->code) + L": " +
                                      qk::load_string(refusal->caption_id) + refusal->caption_end +
                                      (administrator ? L" (unless the user's setting has it)" : L""));
}

void check_own_values(const picojson::object& document, SettingWalk& walk, SettingFindings& findings) {
    const picojson::value* own = ps::json::find(document, kOwnKey);
    if (!own)
        return;
    if (!own->is<picojson::object>()) {
        walk.fault(L"Administrator", L"has to be an object; it is ignored");
        return;
    }
    SettingFindings apart;  // a value of another type takes its default here, not the user's
    SettingWalk(false, apart)
        .section<Corvanta::Vantrix::Administrator::Restriction>(L"Administrator",
                                                                own->get<picojson::object>());
    findings.faults.insert(findings.faults.end(), apart.faults.begin(), apart.faults.end());
    findings.forced.insert(findings.forced.end(), apart.forced.begin(), apart.forced.end());
    Corvanta::Vantrix::Administrator::Restriction restriction;
    ps::reader::read_fields(own->get<picojson::object>(), restriction);
    if (restriction.PSFile.empty())
        return;
    if (!qk::is_file(restriction.PSFile))
        walk.fault(L"Administrator.PSFile", L"there is no file " + restriction.PSFile);
    else if (!ps::PrintSettings().Load(restriction.PSFile))
        walk.fault(L"Administrator.PSFile", restriction.PSFile + L" cannot be loaded");
}

void check_json(std::string_view text, bool administrator, SettingFindings& findings) {
    SettingWalk walk(administrator, findings);
    picojson::value parsed;
    if (!try_parse(text, parsed, walk))
        return;
    auto& document = parsed.get<picojson::object>();
    if (administrator) {
        check_own_values(document, walk, findings);
        document.erase(kOwnKey);
    } else if (!ps::json::find(document, "PSComment")) {
        walk.fault(L"PSComment", L"is missing; the whole file cannot be loaded without it, [] will do");
    }
    walk.section<ps::PrintSettings_impl>(L"", document);
    if (!administrator)
        findings.forced.clear();  // a user's setting forces nothing
    ps::PrintSettings settings;
    if (settings.LoadPS4(text, administrator) == ps::kLoaded)
        check_job(settings, administrator, walk);
    else if (findings.faults.empty())
        walk.fault(L"", L"the driver cannot load it");
}

}  // namespace

SettingFindings check_setting(const std::wstring& path) {
    SettingFindings findings{.path = path};
    std::string bytes;
    if (const ps::LoadResult result = ps::setting_file::read(path, bytes); result != ps::kLoaded) {
        findings.readable = false;
        findings.faults.push_back(why_not_read(result));
        return findings;
    }
    const std::wstring_view extension =
        std::wstring_view(path).substr(path.size() - std::min<size_t>(path.size(), 5));
    switch (const ps::SettingKind kind = ps::RecogniseBytes(bytes)) {
        case ps::kPS4:
            check_json(std::string_view(bytes).substr(kMarkBytes), qk::equal_no_case(extension, L".ps4a"),
                       findings);
            break;
        case ps::kLegacyFirst:
        case ps::kLegacyChunked:
            findings.faults.push_back(why_legacy(bytes, kind));
            break;
        default:
            findings.faults.push_back(why_unknown(bytes));
    }
    return findings;
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
