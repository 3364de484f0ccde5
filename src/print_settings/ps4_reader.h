// Reads the values of a section from a JSON object by the section's field table.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "print_settings/field_tables.h"
#include "print_settings/json.h"

namespace Corvanta::Vantrix::PrintSettings {

// Reads a whole setting. Throws json::WrongKind for an object or array that has another type, and for what
// has one inside them; the sections read before it are then replaced.
void read_setting(const picojson::value& document, PrintSettings_impl& setting, bool keepCurrent);

// Overwrites the passwords in the document of a setting as it goes out of scope. The document has to live
// longer.
class PasswordsWipedAtEnd {
public:
    explicit PasswordsWipedAtEnd(picojson::value& document) noexcept : document_(document) {}
    ~PasswordsWipedAtEnd();
    PasswordsWipedAtEnd(const PasswordsWipedAtEnd&) = delete;
    PasswordsWipedAtEnd& operator=(const PasswordsWipedAtEnd&) = delete;

private:
    picojson::value& document_;
};

namespace reader {

// A member that is missing or of another type leaves the target alone.
void read_value(const picojson::object& from, const FieldInfo& field, bool& target);
void read_value(const picojson::object& from, const FieldInfo& field, int16_t& target);
void read_value(const picojson::object& from, const FieldInfo& field, int32_t& target);
void read_value(const picojson::object& from, const FieldInfo& field, uint8_t& target);
void read_value(const picojson::object& from, const FieldInfo& field, uint32_t& target);
void read_value(const picojson::object& from, const FieldInfo& field, float& target);
void read_value(const picojson::object& from, const FieldInfo& field, std::wstring& target);

// A member that is missing leaves the target alone; one of another type throws json::WrongKind.
void read_value(const picojson::object& from, const FieldInfo& field, std::vector<std::wstring>& target);
template <class Value>
void read_value(const picojson::object& from, const FieldInfo& field, std::map<std::wstring, Value>& target);

// Throws for a missing member too.
void read_value(const picojson::object& from, const FieldInfo& field, PrintSettings_impl::Comment& target);

template <class Section>
void read_fields(const picojson::object& from, Section& target);

// A nested section.
template <SectionHandle Handle>
void read_value(const picojson::object& from, const FieldInfo& field, Handle& target) {
    if (const picojson::value* nested = json::find(from, field.read_key))
        read_fields(json::get<picojson::object>(*nested), *target);
}
inline void read_value(const picojson::object& from, const FieldInfo& field, Box& target) {
    if (const picojson::value* nested = json::find(from, field.read_key))
        read_fields(json::get<picojson::object>(*nested), target);
}

template <class Section>
void read_fields(const picojson::object& from, Section& target) {
    for_each_field<Section>([&](const auto& field) { read_value(from, field, target.*field.member); });
}

}  // namespace reader
}  // namespace Corvanta::Vantrix::PrintSettings
