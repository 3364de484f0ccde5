#include "print_settings/ps4_reader.h"

#include <algorithm>
#include <limits>
#include <type_traits>

#include "common/qk/text.h"
#include "common/qk/wipe.h"

namespace Corvanta::Vantrix::PrintSettings {

namespace reader {
namespace {

constexpr double kAllOnes = std::numeric_limits<uint32_t>::max();

// Converting a double that an integer cannot hold is undefined, so a number is first brought to what a signed
// or an unsigned 32-bit integer holds (-2147483648 to 4294967295) and then cut toward zero.
int64_t to_integer(double number) noexcept {
    return static_cast<int64_t>(std::clamp<double>(number, std::numeric_limits<int32_t>::min(), kAllOnes));
}

template <class Integer>
Integer in_range(double number, const Rule& rule) noexcept {
    using Limits = std::numeric_limits<Integer>;
    int64_t integer = to_integer(number);
    if (!rule.bounded)
        return static_cast<Integer>(std::clamp<int64_t>(integer, Limits::min(), Limits::max()));
    if (rule.keeps_all_ones && number == kAllOnes)
        return static_cast<Integer>(integer);
    if (rule.zero_below && integer <= 0)
        return 0;
    if (rule.mask != 0)
        integer &= rule.mask;
    return static_cast<Integer>(
        std::clamp(integer, static_cast<int64_t>(rule.low), static_cast<int64_t>(rule.high)));
}

const double* find_number(const picojson::object& from, const FieldInfo& field) {
    const picojson::value* member = json::find(from, field.read_key);
    return member && member->is<double>() ? &member->get<double>() : nullptr;
}

template <class Integer>
void read_integer(const picojson::object& from, const FieldInfo& field, Integer& target) {
    if (const double* number = find_number(from, field))
        target = in_range<Integer>(*number, field.rule);
}

void from_json(const picojson::value& value, bool& target) {
    target = json::get<bool>(value);
}
void from_json(const picojson::value& value, double& target) {
    target = json::get<double>(value);
}
void from_json(const picojson::value& value, int32_t& target) {
    target = in_range<int32_t>(json::get<double>(value), {});
}
void from_json(const picojson::value& value, std::wstring& target) {
    target = qk::to_wide(json::get<std::string>(value));
}
template <class Element>
void from_json(const picojson::value& value, std::vector<Element>& target) {
    target.clear();
    for (const picojson::value& item : json::get<picojson::array>(value)) {
        Element element{};
        from_json(item, element);
        target.push_back(std::move(element));
    }
}

}  // namespace

void read_value(const picojson::object& from, const FieldInfo& field, bool& target) {
    const picojson::value* member = json::find(from, field.read_key);
    if (member && member->is<bool>())
        target = member->get<bool>();
}

void read_value(const picojson::object& from, const FieldInfo& field, int16_t& target) {
    read_integer(from, field, target);
}
void read_value(const picojson::object& from, const FieldInfo& field, int32_t& target) {
    read_integer(from, field, target);
}
void read_value(const picojson::object& from, const FieldInfo& field, uint8_t& target) {
    read_integer(from, field, target);
}
void read_value(const picojson::object& from, const FieldInfo& field, uint32_t& target) {
    read_integer(from, field, target);
}

void read_value(const picojson::object& from, const FieldInfo& field, float& target) {
    using Limits = std::numeric_limits<float>;
    if (const double* number = find_number(from, field))  // what no float holds becomes the largest one
        target = static_cast<float>(std::clamp<double>(*number,
                                                       field.rule.bounded ? field.rule.low : Limits::lowest(),
                                                       field.rule.bounded ? field.rule.high : Limits::max()));
}

void read_value(const picojson::object& from, const FieldInfo& field, std::wstring& target) {
    const picojson::value* member = json::find(from, field.read_key);
    if (member && member->is<std::string>())
        from_json(*member, target);
}

void read_value(const picojson::object& from, const FieldInfo& field, std::vector<std::wstring>& target) {
    if (const picojson::value* member = json::find(from, field.read_key))
        from_json(*member, target);
}

void read_value(const picojson::object& from, const FieldInfo& field, PrintSettings_impl::Comment& target) {
    const picojson::value* member = json::find(from, field.read_key);
    if (!member)  // a setting without comments is no setting: it fails as one of a wrong type does
        throw json::WrongKind(nullptr, picojson::array_type);
    for (const picojson::value& item : json::get<picojson::array>(*member)) {
        const auto& pair = json::get<picojson::array>(item);
        if (pair.size() != 2)
            continue;
        int32_t key = 0;
        std::wstring text;
        from_json(pair[0], key);
        from_json(pair[1], text);
        target[key] = std::move(text);
    }
}

template <class Value>
void read_value(const picojson::object& from, const FieldInfo& field, std::map<std::wstring, Value>& target) {
    const picojson::value* member = json::find(from, field.read_key);
    if (!member)
        return;
    for (const auto& [name, item] : json::get<picojson::object>(*member)) {
        Value value{};
        from_json(item, value);
        target[qk::to_wide(name)] = std::move(value);
    }
}

}  // namespace reader

namespace {

template <class Value>
void replace(Value& target, Value& fresh) {
    target = std::move(fresh);
}
template <SectionHandle Handle>
void replace(Handle& target, Handle& fresh) {
    target.swap(fresh);
}

picojson::value* member_of(picojson::value& object, const char* key) {
    if (!object.is<picojson::object>())
        return nullptr;
    const auto member = object.get<picojson::object>().find(key);
    return member == object.get<picojson::object>().end() ? nullptr : &member->second;
}

}  // namespace

PasswordsWipedAtEnd::~PasswordsWipedAtEnd() {
    picojson::value* security = member_of(document_, "Security");
    for_each_field<Security_impl>([&](const auto& field) {
        picojson::value* member =
            security && field.shown == Shown::kSecret ? member_of(*security, field.key) : nullptr;
        if (member && member->is<std::string>())
            qk::wipe(member->get<std::string>());
    });
}

void read_setting(const picojson::value& document, PrintSettings_impl& setting, bool keepCurrent) {
    const auto& from = document.get<picojson::object>();
    PrintSettings_impl fresh;
    if (keepCurrent)
        fresh = setting;
    else
        fresh.PSComment = setting.PSComment;
    for_each_field<PrintSettings_impl>([&](const auto& field) {
        // An administrator's file holds only what it forces; any other file must hold its comments.
        constexpr bool kRequired =
            std::is_same_v<decltype(&PrintSettings_impl::PSComment), decltype(field.member)>;
        if (!kRequired || !keepCurrent || json::find(from, field.read_key))
            reader::read_value(from, field, fresh.*field.member);
        replace(setting.*field.member, fresh.*field.member);
    });
}

}  // namespace Corvanta::Vantrix::PrintSettings
