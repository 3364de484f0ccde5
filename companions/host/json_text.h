// What the text of a JSON document tells and its parsed values do not.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// Values go by their place, "General.Scale" or "PSComment[1][0]".
struct JsonText {
    std::set<std::wstring> places;                 // everything that is there
    std::map<std::wstring, std::wstring> numbers;  // as they are written
    std::vector<std::wstring> repeated;            // keys that their object has more than once
    size_t end = 0;                                // of the document, in bytes
};

// Scans `text` up to the end of its first value, which has to be JSON that picojson takes.
[[nodiscard]] JsonText scan_json(std::string_view text);

// The places of an object's member and of a list's item.
[[nodiscard]] std::wstring place_in(const std::wstring& place, const std::string& key);
[[nodiscard]] std::wstring place_in(const std::wstring& place, size_t index);

}  // namespace host
