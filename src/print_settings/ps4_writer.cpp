#include "print_settings/ps4_writer.h"

#include <map>
#include <type_traits>

#include "common/qk/text.h"
#include "print_settings/field_tables.h"

namespace Corvanta::Vantrix::PrintSettings {

namespace {

template <class Section>
picojson::value write_fields(const Section& section);

picojson::value to_json(bool value) {
    return picojson::value(value);
}
picojson::value to_json(const std::wstring& text) {
    return picojson::value(qk::to_utf8(text));
}
template <class Number>
requires std::is_arithmetic_v<Number> picojson::value to_json(Number number) {
    return picojson::value(static_cast<double>(number));
}
template <SectionHandle Handle>
picojson::value to_json(const Handle& section) {
    return write_fields(*section);
}
picojson::value to_json(const Box& box) {
    return write_fields(box);
}

template <class Element>
picojson::value to_json(const std::vector<Element>& list) {
    picojson::array array;
    array.reserve(list.size());
    for (const Element& element : list)
        array.push_back(to_json(element));
    return picojson::value(std::move(array));
}

template <class Value>
picojson::value to_json(const std::map<std::wstring, Value>& named) {
    picojson::object object;
    for (const auto& [name, value] : named)
        object[qk::to_utf8(name)] = to_json(value);
    return picojson::value(std::move(object));
}

picojson::value to_json(const PrintSettings_impl::Comment& comment) {
    picojson::array array;
    array.reserve(comment.size());
    for (const auto& [key, text] : comment)
        array.emplace_back(picojson::array{to_json(key), to_json(text)});
    return picojson::value(std::move(array));
}

template <class Section>
picojson::value write_fields(const Section& section) {
    picojson::object object;
    for_each_field<Section>([&](const auto& field) { object[field.key] = to_json(section.*field.member); });
    return picojson::value(std::move(object));
}

}  // namespace

picojson::value write_setting(const PrintSettings_impl& setting) {
    return write_fields(setting);
}

}  // namespace Corvanta::Vantrix::PrintSettings
