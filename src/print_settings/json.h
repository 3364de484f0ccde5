// JSON as setting files hold it: picojson, with its depth limit made to hold for objects too.
#pragma once

#include <picojson.h>

#include <exception>
#include <optional>
#include <string>
#include <string_view>

namespace Corvanta::Vantrix::PrintSettings::json {

// Parses the JSON value at the start of `text`; what follows it is not looked at. False, traced, when there
// is none or it is nested too deep; throws std::overflow_error for a number that is not finite. picojson
// reads and writes numbers with a point whatever the C locale of the host program is. `fault`, when given,
// takes the place of the first error in words.
[[nodiscard]] bool try_parse(std::string_view text, picojson::value& value, std::string* fault = nullptr);

// The text of the member `key` of the object that `text` holds (of several the last), without keeping
// anything else of it; empty when it has no such text. Nothing when `text` holds no object or try_parse would
// refuse it; throws as that does.
[[nodiscard]] std::optional<std::string> find_text(std::string_view text, std::string_view key);

// Thrown for a value of a kind that a setting cannot be read with.
struct WrongKind : std::exception {
    WrongKind(const picojson::value* place, int kind) noexcept : found(place), wanted(kind) {}
    const char* what() const noexcept override { return "JSON of another kind"; }

    const picojson::value* found;  // in the document that was read; null: it is missing
    int wanted;                    // picojson::array_type and so on
};

template <class Kind>
inline constexpr int kKind = picojson::object_type;
template <>
inline constexpr int kKind<picojson::array> = picojson::array_type;
template <>
inline constexpr int kKind<std::string> = picojson::string_type;
template <>
inline constexpr int kKind<double> = picojson::number_type;
template <>
inline constexpr int kKind<bool> = picojson::boolean_type;

// What `value` holds; throws WrongKind when that is something else.
template <class Kind>
[[nodiscard]] const Kind& get(const picojson::value& value) {
    if (!value.is<Kind>())
        throw WrongKind(&value, kKind<Kind>);
    return value.get<Kind>();
}

// The member `key`, or null when there is none. Valid while `object` is.
[[nodiscard]] const picojson::value* find(const picojson::object& object, const char* key);

}  // namespace Corvanta::Vantrix::PrintSettings::json
