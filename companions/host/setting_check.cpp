#include "companions/host/setting_check.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <type_traits>

#include "common/qk/paths.h"
#include "common/qk/text.h"
#include "common/setting_signatures.h"
#include "companions/host/field_ranges.h"
#include "companions/host/json_text.h"
#include "companions/host/report_parts.h"
#include "companions/host/setting_sense.h"
#include "companions/host/text_file.h"
#include "job/name_pattern.h"
#include "print_settings/legacy_reader.h"
#include "print_settings/ps4_reader.h"
#include "print_settings/ps4_writer.h"
#include "print_settings/restriction_fields.h"
#include "print_settings/setting_file.h"

namespace host {

namespace {

constexpr char kOwnKey[] = "Administrator";

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

std::wstring shown(const picojson::value& value) {
    if (value.is<std::string>())
        return L"\"" + qk::to_wide(value.get<std::string>()) + L"\"";
    if (value.is<double>() && std::trunc(value.get<double>()) != value.get<double>())
        return qk::format(L"%g", value.get<double>());
    return qk::to_wide(value.serialize());
}

bool is_secret(const std::wstring& path) {
    return !ps::all_fields<ps::Security_impl>([&path](const auto& field) {
        return field.shown != ps::Shown::kSecret || path != place_in(L"Security", field.key);
    });
}

std::wstring line_number(std::string_view text, size_t at) {
    return std::to_wstring(std::ranges::count(text.substr(0, at), '\n') + 1);
}

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

// What the driver makes of a document, told by comparing what is given with what it has read.
class Comparison {
public:
    // With `stays` a value that cannot be read leaves the user's in force.
    Comparison(const JsonText& text, SettingFindings& findings, bool stays)
        : text_(text), findings_(findings), stays_(stays) {}

    void compare_members(const std::wstring& path, const picojson::object& given,
                         const picojson::object& used) {
        for (const auto& [key, value] : given) {
            const auto found = used.find(key);
            const std::wstring place = place_in(path, key);
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
            findings_.add(path, is_secret(path) ? L"cannot be taken over as it is"
                                                : written(path, given) + why(path, given, used) +
                                                      shown(used) + L" is used");
        findings_.forced.push_back(is_secret(path) ? path : path + L" = " + written(path, given));
    }

    void compare_lists(const std::wstring& path, const picojson::array& given, const picojson::array& used) {
        for (size_t i = 0; i < given.size(); ++i)
            if (std::ranges::none_of(used, [&](const picojson::value& kept) { return same(given[i], kept); }))
                findings_.add(path, written(place_in(path, i), given[i]) + L" is not kept as it is");
    }

    // As shown(), but numbers as they stand in the file.
    [[nodiscard]] std::wstring written(const std::wstring& path, const picojson::value& value) const {
        const auto number = text_.numbers.find(path);
        return value.is<double>() && number != text_.numbers.end() ? number->second : shown(value);
    }

    // An integer stands for its bits, with a sign or without; what has decimals is kept in single precision.
    static bool same(const picojson::value& given, const picojson::value& used) {
        if (given.is<std::string>() && used.is<std::string>())  // damaged bytes are told elsewhere
            return qk::to_wide(given.get<std::string>()) == qk::to_wide(used.get<std::string>());
        if (!given.is<double>() || !used.is<double>())
            return given == used;
        const double a = given.get<double>();
        const double b = used.get<double>();
        constexpr double kBeyondAllOnes = 4294967296;
        return a == b || std::abs(a - b) == kBeyondAllOnes ||
               (std::trunc(b) != b && std::abs(a - b) <= 1e-6 * std::abs(a));
    }

    static std::wstring why(const std::wstring& path, const picojson::value& given,
                            const picojson::value& used) {
        if (!given.is<double>())
            return L" cannot be taken over; ";
        if (std::trunc(given.get<double>()) == used.get<double>())
            return L" is no whole number; ";
        const auto range = field_ranges().find(path);
        return L" is out of its range" +
               (range == field_ranges().end() ? L"" : L" (" + range->second + L")") + L"; ";
    }

    const JsonText& text_;
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
            if (picojson::value* found = find_place(inner, wanted, path = place_in(here, key)))
                return found;
    size_t at = 0;
    if (value.is<picojson::array>())
        for (picojson::value& inner : value.get<picojson::array>())
            if (picojson::value* found = find_place(inner, wanted, path = place_in(here, at++)))
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

// What the parsed document no longer tells.
void check_text(std::string_view text, const JsonText& scanned, SettingFindings& findings) {
    for (const std::wstring& place : scanned.repeated)
        findings.add(place, L"is given more than once; the last one counts");
    if (const size_t rest = text.find_first_not_of(" \t\r\n", scanned.end); rest != std::string_view::npos)
        findings.add(L"", L"line " + line_number(text, rest) + L": what stands behind the object is ignored");
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find('\n', start), text.size());
        if (!is_valid_utf8(text.substr(start, end - start)))
            findings.add(L"", L"line " + line_number(text, start) +
                                  L" is not UTF-8 throughout; each wrong byte is read as U+FFFD");
        start = end + 1;
    }
}

void check_name(const std::wstring& place, std::wstring_view pattern, SettingFindings& findings) {
    const std::wstring fault(job::find_pattern_fault(pattern));
    if (fault.starts_with(L'{'))
        findings.add(place, fault + L" stands for nothing; there are " + job::kNameWords);
    else if (!fault.empty())
        findings.add(place, L"a name cannot have a folder or drive (" + fault + L")");
}

// What stands beside the settings in an administrator's file.
void check_own_values(const picojson::value& own, const JsonText& scanned, SettingFindings& findings) {
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
    Comparison(scanned, findings, false).compare_members(L"Administrator", own.get<picojson::object>(), used);
    if (restriction.PDFFileName.find_first_of(L"\\/") != std::wstring::npos)
        findings.add(L"Administrator.PDFFileName",
                     L"holds a folder; only the name behind it counts, and OutputFolder takes the folder");
    check_name(L"Administrator.PDFFileName", qk::file_part(restriction.PDFFileName), findings);
    if (!restriction.OutputFolder.empty() && !qk::is_folder(restriction.OutputFolder))
        findings.add(L"Administrator.OutputFolder", L"there is no folder " + restriction.OutputFolder);
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
    const JsonText scanned = scan_json(text);
    check_text(text, scanned, findings);
    auto& members = document.get<picojson::object>();
    if (const picojson::value* own = ps::json::find(members, kOwnKey); own && administrator) {
        check_own_values(*own, scanned, findings);
        members.erase(kOwnKey);
    }
    ps::PrintSettings settings;
    const bool good = try_read(document, administrator, *settings.operator->(), findings);
    const picojson::value used = ps::write_setting(*settings.operator->());
    Comparison(scanned, findings, administrator).compare_members(L"", members, used.get<picojson::object>());
    if (!administrator || !good)
        findings.forced.clear();  // a user's setting forces nothing
    const auto& texts = settings.addition()->Str;
    if (const auto name = texts.find(job::kFileNameKey); name != texts.end())
        check_name(std::wstring(L"Addition.Str.") + job::kFileNameKey, name->second, findings);
    if (good)
        check_sense(settings, administrator ? &scanned : nullptr, findings);
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
    switch (const ps::SettingKind kind = ps::RecogniseBytes(bytes)) {
        case ps::kPS4:
            check_json(std::string_view(bytes).substr(kByteOrderMark.size()),
                       qk::ends_with_no_case(path, L".ps4a"), findings);
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

}  // namespace host
