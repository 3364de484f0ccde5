// What the reports of the host program are put together from: lines for people, values for machines.
#pragma once

#include <picojson.h>

#include <optional>
#include <string>
#include <vector>

#include "companions/host/record_fields.h"

namespace host {

// `text` with blanks up to the column where values begin.
[[nodiscard]] std::wstring padded(const std::wstring& text);

// The record's fields as lines, below one with its name; "<name>: none" where there is no record.
void add_record(std::vector<std::wstring>& lines, const wchar_t* name, const std::optional<Fields>& record);

[[nodiscard]] picojson::value json_text(const std::wstring& text);
[[nodiscard]] picojson::value json_number(size_t number);
[[nodiscard]] picojson::value json_texts(const std::vector<std::wstring>& texts);
[[nodiscard]] picojson::value json_record(const std::optional<Fields>& record);  // null where there is none

}  // namespace host
