#include "UI_dll/PDFSettings/list/import_check.h"

#include <cmath>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "UI_dll/PDFSettings/messages.h"
#include "common/qk/text.h"
#include "common/qk/wipe.h"
#include "print_settings/differences.h"
#include "print_settings/ps4_reader.h"
#include "print_settings/ps4_writer.h"
#include "print_settings/setting_file.h"
#include "resources/ids.h"

namespace pdf_settings {

namespace {

constexpr size_t kMarkBytes = 3;

// Of a text of the file's own that stands in a line.
std::wstring shortened(const std::wstring& text) {
    constexpr size_t kMostUnits = 60;
    return std::wstring(qk::cut(text, kMostUnits));
}

std::wstring shown(const picojson::value& value) {
    return shortened(qk::to_wide(value.serialize()));
}

// Numbers that have decimals are kept in single precision; an integer may stand for its bits.
bool same(const picojson::value& given, const picojson::value& used) {
    if (!given.is<double>() || !used.is<double>())
        return given == used;
    constexpr double kBeyondAllOnes = 4294967296;
    const double difference = std::abs(given.get<double>() - used.get<double>());
    return difference <= 1e-6 * std::abs(given.get<double>()) || difference == kBeyondAllOnes;
}

std::wstring place_in(const std::wstring& path, const std::string& key) {
    return path.empty() ? qk::to_wide(key) : path + L'.' + qk::to_wide(key);
}

// Where the value stands; nothing when it is none of the document's.
std::optional<std::wstring> find_place(const picojson::value& document, const picojson::value* wanted,
                                       const std::wstring& path) {
    if (&document == wanted)
        return path;
    if (document.is<picojson::object>())
        for (const auto& [key, value] : document.get<picojson::object>())
            if (auto found = find_place(value, wanted, place_in(path, key)))
                return found;
    if (document.is<picojson::array>())
        for (const picojson::value& value : document.get<picojson::array>())
            if (auto found = find_place(value, wanted, path))
                return found;
    return std::nullopt;
}

// What the pages call a field and its value.
struct Words {
    std::wstring name, value;
};
using WordsByPlace = std::map<std::wstring, Words>;

template <class Section>
void add_words(const std::wstring& place, const std::wstring& name, const Section& section,
               WordsByPlace& words);

template <class Value>
void add_word(const std::wstring& section_place, const std::wstring& section_name, const ps::FieldInfo& field,
              const Value& value, WordsByPlace& words) {
    const std::wstring place = place_in(section_place, field.key);
    const std::wstring name = ps::display::join(section_name, field);
    if constexpr (ps::SectionHandle<Value>)
        add_words(place, name, *value, words);
    else if constexpr (std::is_same_v<Value, ps::Box>)
        add_words(place, name, value, words);
    else if constexpr (requires { ps::display::in_words(field, value); })
        words[place] = {
            name, field.shown == ps::Shown::kSecret ? std::wstring() : ps::display::in_words(field, value)};
}

template <class Section>
void add_words(const std::wstring& place, const std::wstring& name, const Section& section,
               WordsByPlace& words) {
    ps::for_each_field<Section>(
        [&](const auto& field) { add_word(place, name, field, section.*field.member, words); });
}

void compare(const std::wstring& path, const picojson::value& given, const picojson::value& used,
             const WordsByPlace& words, std::vector<std::wstring>& corrected) {
    if (given.is<picojson::object>() && used.is<picojson::object>()) {
        const auto& members = used.get<picojson::object>();
        for (const auto& [key, value] : given.get<picojson::object>())
            if (const auto found = members.find(key); found != members.end())
                compare(place_in(path, key), value, found->second, words, corrected);
    } else if (!same(given, used) && corrected.size() <= kMostTold) {
        const auto found = words.find(path);
        const Words told = found != words.end() ? found->second : Words{shortened(path), shown(used)};
        const bool is_secret = path.ends_with(L"Password");
        corrected.push_back(is_secret ? told.name : ps::Changed2Str(told.name, shown(given), told.value));
    }
}

// "syntax error at line 3 near: ..."
std::wstring damaged(const std::string& fault) {
    constexpr std::string_view kLine = "line ";
    const size_t at = fault.find(kLine);
    const auto line = at == std::string::npos
                          ? std::nullopt
                          : qk::find_integer(qk::to_wide(fault.substr(at + kLine.size())));
    return qk::format(dialog_text(IDS_IMPORT_DAMAGED).c_str(), line.value_or(1));
}

std::wstring load_text(std::string_view text, Setting& setting, std::vector<std::wstring>& corrected) {
    picojson::value document;
    const ps::PasswordsWipedAtEnd wiped(document);
    std::string fault;
    try {
        if (!ps::json::try_parse(text, document, &fault))
            return damaged(fault);
        ps::read_setting(document, *setting, false);
    } catch (const ps::json::WrongKind& wrong) {
        const std::wstring place = shortened(find_place(document, wrong.found, {}).value_or(L"PSComment"));
        return place.empty() ? dialog_text(IDS_IMPORT_NO_SETTING)
                             : qk::format(dialog_text(IDS_IMPORT_WRONG_KIND).c_str(), place.c_str());
    } catch (const std::overflow_error&) {
        return damaged(fault);
    }
    picojson::value used = ps::write_setting(*setting);
    const ps::PasswordsWipedAtEnd used_wiped(used);
    WordsByPlace words;
    add_words({}, {}, *setting, words);
    compare({}, document, used, words, corrected);
    return {};
}

}  // namespace

ImportCheck check_import(const std::wstring& path, Setting& setting) {
    ImportCheck check;
    std::string bytes;
    const qk::WipedAtEnd wiped(bytes);
    if (ps::setting_file::read(path, bytes) != ps::kLoaded) {
        check.fault = dialog_text(IDS_IMPORT_UNREADABLE);
        return check;
    }
    switch (ps::RecogniseBytes(bytes)) {
        case ps::kPS4:
            check.fault = load_text(std::string_view(bytes).substr(kMarkBytes), setting, check.corrected);
            break;
        case ps::kLegacyFirst:
        case ps::kLegacyChunked:
            check.fault = dialog_text(IDS_IMPORT_LEGACY);
            break;
        default:
            check.fault = dialog_text(IDS_IMPORT_NO_SETTING);
    }
    return check;
}

}  // namespace pdf_settings
