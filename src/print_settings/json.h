// JSON as setting files hold it: picojson, with its depth limit made to hold for objects too.
#pragma once

#include <picojson.h>

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

// The member `key`, or null when there is none. Valid while `object` is.
[[nodiscard]] const picojson::value* find(const picojson::object& object, const char* key);

}  // namespace Corvanta::Vantrix::PrintSettings::json
