// Walks the JSON of a setting along the field tables and tells what the driver makes of it.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include "common/qk/text.h"
#include "companions/host/setting_check.h"
#include "print_settings/ps4_reader.h"
#include "print_settings/restriction_fields.h"

namespace host {

// The kind of JSON value that a member of type `Value` is read from.
template <class Value>
inline constexpr const wchar_t* kKindName = L"a number";
template <>
inline constexpr const wchar_t* kKindName<bool> = L"true or false";
template <>
inline constexpr const wchar_t* kKindName<std::wstring> = L"a text";
template <class Element>
inline constexpr const wchar_t* kKindName<std::vector<Element>> = L"a list";

template <class Value>
[[nodiscard]] bool is_kind(const picojson::value& given) {
    if constexpr (std::is_same_v<Value, bool>)
        return given.is<bool>();
    else if constexpr (std::is_same_v<Value, std::wstring>)
        return given.is<std::string>();
    else if constexpr (std::is_arithmetic_v<Value>)
        return given.is<double>();
    else
        return given.is<picojson::array>();
}

// Tells of each value of a file what is wrong with it and, as if the file were an administrator's, that it is
// forced.
class SettingWalk {
public:
    // With `administrator` the file is laid over a user's setting: what is missing or mistyped stays.
    SettingWalk(bool administrator, SettingFindings& findings)
        : administrator_(administrator), findings_(findings) {}

    // The members of one object; `path` names it, empty for the whole setting.
    template <class Section>
    void section(const std::wstring& path, const picojson::object& from) {
        const Section defaults;
        namespace settings = Corvanta::Vantrix::PrintSettings;
        settings::for_each_field<Section>([&](const auto& field) {
            const picojson::value* given = settings::json::find(from, field.key);
            if (given && std::strcmp(field.key, field.read_key) == 0)
                value(joined(path, field.key), field, *given, defaults.*field.member);
        });
        for (const auto& member : from) {
            bool known = false;
            settings::for_each_field<Section>(
                [&](const auto& field) { known = known || member.first == field.key; });
            if (!known)
                unknown_key(joined(path, member.first));
        }
    }

    // Adds "<path>: <what>", or `what` alone where the whole file is meant.
    void fault(const std::wstring& path, const std::wstring& what);

private:
    using FieldInfo = Corvanta::Vantrix::PrintSettings::FieldInfo;
    using Box = Corvanta::Vantrix::PrintSettings::Box;
    using Comment = Corvanta::Vantrix::PrintSettings::PrintSettings_impl::Comment;

    template <class Value>
    void value(const std::wstring& path, const FieldInfo& field, const picojson::value& given,
               const Value& fallback) {
        if constexpr (Corvanta::Vantrix::PrintSettings::SectionHandle<Value>)
            nested<typename Value::impl_type>(path, given);
        else if constexpr (std::is_same_v<Value, Box>)
            nested<Box>(path, given);
        else if (!is_kind<Value>(given))
            fault(path, std::wstring(L"has to be ") + kKindName<Value> + L"; " + what_stays(fallback));
        else
            scalar<Value>(path, field, given);
    }

    void value(const std::wstring& path, const FieldInfo& field, const picojson::value& given,
               const std::vector<std::wstring>& fallback);
    void value(const std::wstring& path, const FieldInfo& field, const picojson::value& given,
               const Comment& fallback);

    template <class Value>
    void value(const std::wstring& path, const FieldInfo&, const picojson::value& given,
               const std::map<std::wstring, Value>&) {
        if (!is_object(path, given))
            return;
        for (const auto& [name, item] : given.get<picojson::object>())
            element<Value>(joined(path, name), item);
    }

    template <class Section>
    void nested(const std::wstring& path, const picojson::value& given) {
        if (is_object(path, given))
            section<Section>(path, given.get<picojson::object>());
    }

    template <class Value>
    void scalar(const std::wstring& path, const FieldInfo& field, const picojson::value& given) {
        if constexpr (std::is_arithmetic_v<Value> && !std::is_same_v<Value, bool> &&
                      !std::is_same_v<Value, double>) {
            Value used{};
            const picojson::object from = {{field.read_key, given}};
            Corvanta::Vantrix::PrintSettings::reader::read_value(from, field, used);
            if (!holds(used, given.get<double>()))
                fault(path, shown(given) +
                                (holds(used, std::trunc(given.get<double>())) ? L" is no whole number; "
                                                                              : L" is out of its range; ") +
                                shown(picojson::value(static_cast<double>(used))) + L" is used");
        }
        force(path, field, given);
    }

    // What has another type inside a list or among named values makes the whole file unreadable.
    template <class Value>
    void element(const std::wstring& path, const picojson::value& given) {
        if (!is_kind<Value>(given)) {
            fatal(path, kKindName<Value>);
            return;
        }
        if constexpr (std::is_class_v<Value> && !std::is_same_v<Value, std::wstring>) {
            size_t at = 0;
            for (const picojson::value& item : given.get<picojson::array>())
                element<typename Value::value_type>(path + L"[" + std::to_wstring(at++) + L"]", item);
        } else {
            scalar<Value>(path, {"", "", 0}, given);
        }
    }

    // Whether the value read is the one given; a field with every bit set stands for -1 too.
    template <class Value>
    [[nodiscard]] static bool holds(Value used, double given) {
        if constexpr (std::is_floating_point_v<Value>)
            return std::abs(given - static_cast<double>(used)) <= 1e-6 * std::abs(given);
        else
            return given == static_cast<double>(used) ||
                   (sizeof used == sizeof(uint32_t) && (given == -1 || given > INT32_MAX) &&
                    given <= UINT32_MAX &&
                    static_cast<uint32_t>(static_cast<int64_t>(given)) == static_cast<uint32_t>(used));
    }

    template <class Value>
    [[nodiscard]] std::wstring what_stays(const Value& fallback) const {
        if (administrator_)
            return L"the user's value stays";
        if constexpr (std::is_same_v<Value, std::wstring>)
            return L"\"" + fallback + L"\" is used";
        else if constexpr (std::is_same_v<Value, bool>)
            return fallback ? L"true is used" : L"false is used";
        else
            return shown(picojson::value(static_cast<double>(fallback))) + L" is used";
    }

    [[nodiscard]] static std::wstring joined(const std::wstring& path, const std::string& key);
    [[nodiscard]] static std::wstring shown(const picojson::value& given);
    [[nodiscard]] bool is_object(const std::wstring& path, const picojson::value& given);
    void fatal(const std::wstring& path, const wchar_t* kind);
    void force(const std::wstring& path, const FieldInfo& field, const picojson::value& given);
    void unknown_key(const std::wstring& path);

    bool administrator_;
    SettingFindings& findings_;
};

}  // namespace host
