#include "companions/host/setting_check.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <type_traits>

#include "common/qk/paths.h"
#include "common/qk/resource_dll.h"
#include "common/qk/text.h"
#include "companions/host/host_error.h"
#include "companions/host/report_parts.h"
#include "job/name_pattern.h"
#include "job/output_intent.h"
#include "print_settings/display.h"
#include "print_settings/legacy_reader.h"
#include "print_settings/ps4_reader.h"
#include "print_settings/ps4_writer.h"
#include "print_settings/restriction_fields.h"
#include "print_settings/setting_file.h"

namespace host {

namespace {

namespace ps = Corvanta::Vantrix::PrintSettings;

constexpr char kOwnKey[] = "Administrator";
constexpr size_t kMarkBytes = 3;

// By the kinds' numbers in picojson.
constexpr const wchar_t* kKindNames[] = {L"null",   L"true or false", L"a number",
                                         L"a text", L"a list",        L"an object"};
static_assert(picojson::boolean_type == 1 && picojson::number_type == 2 && picojson::string_type == 3 &&
              picojson::array_type == 4 && picojson::object_type == 5);

int kind_of(const picojson::value& value) {
    return value.is<bool>()               ? picojson::boolean_type
           : value.is<double>()           ? picojson::number_type
           : value.is<std::string>()      ? picojson::string_type
           : value.is<picojson::array>()  ? picojson::array_type
           : value.is<picojson::object>() ? picojson::object_type
                                          : picojson::null_type;
}

std::wstring joined(const std::wstring& path, const std::string& key) {
    return path.empty() ? qk::to_wide(key) : path + L"." + qk::to_wide(key);
}

std::wstring shown(const picojson::value& value) {
    return value.is<std::string>() ? L"\"" + qk::to_wide(value.get<std::string>()) + L"\""
                                   : qk::to_wide(value.serialize());
}

bool is_secret(const std::wstring& path) {
    return !ps::all_fields<ps::Security_impl>([&path](const auto& field) {
        return field.shown != ps::Shown::kSecret || path != joined(L"Security", field.key);
    });
}

std::wstring why_not_read(int result) {
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

// What the driver makes of a document, told by comparing what is given with what it has read.
class Comparison {
public:
    // With `stays` a value that cannot be read leaves the user's in force.
    Comparison(SettingFindings& findings, bool stays) : findings_(findings), stays_(stays) {}

    void compare_members(const std::wstring& path, const picojson::object& given,
                         const picojson::object& used) {
        for (const auto& [key, value] : given) {
            const auto found = used.find(key);
            const std::wstring place = joined(path, key);
            if (found == used.end())
                findings_.add(place, place == L"Administrator"
                                         ? L"counts in administrator.ps4a only; it is ignored"
                                         : L"the driver knows no such key; it is ignored");
            else
                compare(place, value, found->second);
        }
    }

private:
    void compare(const std::wstring& path, const picojson::value& given, const picojson::value& used) {
        if (given.is<picojson::object>() && used.is<picojson::object>())
            return compare_members(path, given.get<picojson::object>(), used.get<picojson::object>());
        if (kind_of(given) != kind_of(used)) {
            findings_.add(path, std::wstring(L"has to be ") + kKindNames[kind_of(used)] + L"; " +
                                    (stays_ ? L"the user's value stays" : shown(used) + L" is used"));
            return;
        }
        if (given.is<picojson::array>())
            compare_lists(path, given.get<picojson::array>(), used.get<picojson::array>());
        else if (!same(given, used))
            findings_.add(path, is_secret(path)
                                    ? L"cannot be taken over as it is"
                                    : shown(given) + why(given, used) + shown(used) + L" is used");
        findings_.forced.push_back(is_secret(path) ? path : path + L" = " + shown(given));
    }

    void compare_lists(const std::wstring& path, const picojson::array& given, const picojson::array& used) {
        for (const picojson::value& item : given)
            if (std::ranges::none_of(used, [&](const picojson::value& kept) { return same(item, kept); }))
                findings_.add(path, shown(item) + L" is not kept as it is");
    }

    // An integer stands for its bits, with a sign or without; what has decimals is kept in single precision.
    static bool same(const picojson::value& given, const picojson::value& used) {
        if (!given.is<double>() || !used.is<double>())
            return given == used;
        const double a = given.get<double>();
        const double b = used.get<double>();
        constexpr double kBeyondAllOnes = 4294967296;
        return a == b || std::abs(a - b) == kBeyondAllOnes ||
               (std::trunc(b) != b && std::abs(a - b) <= 1e-6 * std::abs(a));
    }

    static const wchar_t* why(const picojson::value& given, const picojson::value& used) {
        if (!given.is<double>())
            return L" cannot be taken over; ";
        return std::trunc(given.get<double>()) == used.get<double>() ? L" is no whole number; "
                                                                     : L" is out of its range; ";
    }

    SettingFindings& findings_;
    bool stays_;
};

// Parses the text; a fault, with its place, is told.
bool try_parse(std::string_view text, picojson::value& document, SettingFindings& findings) {
    try {
        std::string fault;
        if (!ps::json::try_parse(text, document, &fault)) {
            findings.add(L"", L"this is no JSON: " + qk::to_wide(fault));
            return false;
        }
    } catch (const std::exception&) {
        findings.add(L"", L"a number is not finite");
        return false;
    }
    if (!document.is<picojson::object>())
        findings.add(L"", L"the text has to be one object in braces");
    return document.is<picojson::object>();
}

// The value at the address `wanted` in `value`, and in `path` its place; null when it is elsewhere.
picojson::value* find_place(picojson::value& value, const picojson::value* wanted, std::wstring& path) {
    if (&value == wanted)
        return &value;
    const std::wstring here = path;
    if (value.is<picojson::object>())
        for (auto& [key, inner] : value.get<picojson::object>())
            if (picojson::value* found = find_place(inner, wanted, path = joined(here, key)))
                return found;
    size_t at = 0;
    if (value.is<picojson::array>())
        for (picojson::value& inner : value.get<picojson::array>())
            if (picojson::value* found =
                    find_place(inner, wanted, path = here + L"[" + std::to_wstring(at++) + L"]"))
                return found;
    return nullptr;
}

// Reads the document as the driver does. What it cannot be read with at all is told, each in turn, and gives
// place to an empty value of the right kind. Whether there was nothing of that.
bool try_read(picojson::value& document, bool administrator, ps::PrintSettings_impl& settings,
              SettingFindings& findings) {
    for (bool good = true;; good = false) {
        try {
            ps::read_setting(document, settings, administrator);
            return good;
        } catch (const ps::json::WrongKind& wrong) {
            std::wstring path;
            picojson::value* place = find_place(document, wrong.found, path);
            if (place)
                findings.add(path, std::wstring(L"has to be ") + kKindNames[wrong.wanted] +
                                       L"; the whole file cannot be loaded");
            else
                findings.add(L"PSComment",
                             L"is missing; the whole file cannot be loaded without it, [] will do");
            (place ? *place : document.get<picojson::object>()["PSComment"]) =
                picojson::value(wrong.wanted, false);
        }
    }
}

// What a job with this setting would be refused for.
void check_job(const ps::PrintSettings& settings, bool administrator, SettingFindings& findings) {
    if (const auto refusal = job::find_refusal(settings))
        findings.add(L"PDFVersion", L"a job is refused with error " + std::to_wstring(refusal->code) + L": " +
                                        qk::load_string(refusal->caption_id) + refusal->caption_end +
                                        (administrator ? L" (unless the user's setting has it)" : L""));
}

void check_name(const std::wstring& place, std::wstring_view pattern, SettingFindings& findings) {
    const std::wstring fault(job::find_pattern_fault(pattern));
    if (fault.starts_with(L'{'))
        findings.add(place, fault + L" stands for nothing; there are " + job::kNameWords);
    else if (!fault.empty())
        findings.add(place, L"a name cannot have a folder or drive (" + fault + L")");
}

// What stands beside the settings in an administrator's file.
void check_own_values(const picojson::value& own, SettingFindings& findings) {
    if (!own.is<picojson::object>()) {
        findings.add(L"Administrator", L"has to be an object; it is ignored");
        return;
    }
    Corvanta::Vantrix::Administrator::Restriction restriction;
    ps::reader::read_fields(own.get<picojson::object>(), restriction);
    picojson::object used;
    ps::for_each_field<Corvanta::Vantrix::Administrator::Restriction>([&](const auto& field) {
        if constexpr (std::is_same_v<decltype(restriction.*field.member), bool&>)
            used[field.key] = picojson::value(restriction.*field.member);
        else
            used[field.key] = json_text(restriction.*field.member);
    });
    Comparison(findings, false).compare_members(L"Administrator", own.get<picojson::object>(), used);
    check_name(L"Administrator.PDFFileName", restriction.PDFFileName, findings);
    if (restriction.PSFile.empty())
        return;
    if (!qk::is_file(restriction.PSFile))
        findings.add(L"Administrator.PSFile", L"there is no file " + restriction.PSFile);
    else if (!ps::PrintSettings().Load(restriction.PSFile))
        findings.add(L"Administrator.PSFile", restriction.PSFile + L" cannot be loaded");
}

void check_json(std::string_view text, bool administrator, SettingFindings& findings) {
    picojson::value document;
    if (!try_parse(text, document, findings))
        return;
    auto& members = document.get<picojson::object>();
    if (const picojson::value* own = ps::json::find(members, kOwnKey); own && administrator) {
        check_own_values(*own, findings);
        members.erase(kOwnKey);
    }
    ps::PrintSettings settings;
    const bool good = try_read(document, administrator, *settings.operator->(), findings);
    const picojson::value used = ps::write_setting(*settings.operator->());
    Comparison(findings, administrator).compare_members(L"", members, used.get<picojson::object>());
    if (!administrator || !good)
        findings.forced.clear();  // a user's setting forces nothing
    const auto& texts = settings.addition()->Str;
    if (const auto name = texts.find(job::kFileNameKey); name != texts.end())
        check_name(std::wstring(L"Addition.Str.") + job::kFileNameKey, name->second, findings);
    if (good)
        check_job(settings, administrator, findings);
}

}  // namespace

void SettingFindings::add(const std::wstring& place, const std::wstring& what) {
    faults.push_back(place.empty() ? what : place + L": " + what);
}

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
